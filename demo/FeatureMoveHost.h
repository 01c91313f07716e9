#pragma once
// "Job → Move a feature...": the next click in the view picks the nearest pad or line, a small
// form asks by how much to move it in the display unit, and the engine moves it (select by id,
// transform, unselect), as the host's edit tools do. It is how a user changes a board between two
// runs of a check.

#include <QObject>
#include <string>

#include "Korvo_API_types.h"

class DemoWindow;

namespace demo {

class FeatureMoveHost : public QObject {
    Q_OBJECT
public:
    explicit FeatureMoveHost(DemoWindow* window);

    // Waits for the next click in the view.
    void start();
    // Moves feature `id` of `layer` in the shown step by (dx, dy) engine units; false when the
    // engine refuses (the reason is logged).
    bool move(const std::string& layer, int id, double dx, double dy);

private:
    void picked(const Korvo::API::point& at);

    DemoWindow* window_;
    bool waiting_ = false;
};

}  // namespace demo
