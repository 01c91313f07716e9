#pragma once
// The step-and-repeat part of the demo host: the popup's catalogue row, and a dock with the
// panel drawing and the table view of the panel step, wired to the popup.

#include "DialogCatalogue.h"

class QDockWidget;
class QMainWindow;

namespace demo {

DialogEntry stepRepeatEditor();
QDockWidget* makeStepRepeatDock(const DemoContext& context, QMainWindow* window);
// Re-reads the panel into the dock, after the host opened the job.
void refreshStepRepeatDock();

}  // namespace demo
