#pragma once
// The tour's triage scene on a real board: after the signal layer check's first run, three hits
// are waived with reasons and one feature of another hit is moved; the check runs again and its
// viewer, grouped by net, shows the waived, new and unchanged hits. The waivers go to a result
// database of the scene's own, so the user's stay untouched.

#include <QString>
#include <functional>

class DemoWindow;
class QWidget;

namespace demo {

// `dialog` is the signal layer check that has just run on the shown board.
void tourTriage(DemoWindow& window, QWidget* dialog,
                const std::function<void(QWidget*, const QString&)>& snap);

}  // namespace demo
