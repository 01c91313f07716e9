#pragma once
// The demo host's answer to the feature filter popup: like the host's job list and view, it
// selects, unselects, highlights or turns off the features of the displayed layers that pass
// the filter record, and marks them so in the graphic view. It also answers the popup's symbol
// pick buttons: after the request, the next click in the view gives the symbol of the nearest
// pad or line.

#include <QObject>
#include <set>
#include <string>
#include <utility>

#include "FeatureFilterSettings.h"
#include "Korvo_API_types.h"
#include "PluginMetaData.h"

class DemoWindow;

namespace demo {

class FeatureFilterHost : public QObject {
public:
    explicit FeatureFilterHost(DemoWindow* window);

private:
    using FeatureKey = std::pair<std::string, int>;  // layer, feature id

    void receive(const PluginMetaData& message);
    void pickSymbolAt(const Korvo::API::point& at);
    void apply(int code, const FeatureFilterSettings& filter);
    void showMarks();

    DemoWindow* window_;
    std::set<FeatureKey> selected_;
    std::set<FeatureKey> highlighted_;
    std::set<FeatureKey> hidden_;
    // The job list's own copy of the last filter, for the histogram.
    FeatureFilterSettings last_;
    // The pick request being answered (20000061 to 20000064), 0 when none.
    int pending_pick_ = 0;
};

}  // namespace demo
