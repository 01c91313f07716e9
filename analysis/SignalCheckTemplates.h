#pragma once
// The named templates of the signal layer check: "Save as" asks for a name, the name given
// writes the form and the ranges as a template (asking before one is replaced), and a name
// picked in the "ERF:" list puts a template back into the form and the ranges.

#include <QObject>
#include <QString>

#include "frame/WidgetCommonExport.h"

class QInputDialog;
class Widget_SignalLayerChecks;

namespace wc {

class RunControls;

class WIDGET_COMMON_EXPORT SignalCheckTemplates : public QObject {
    Q_OBJECT
public:
    SignalCheckTemplates(Widget_SignalLayerChecks* dialog, RunControls& controls);

    // "Save as": the name dialog (made once); the name given reaches the dialog's
    // send_Sel_Template_Name.
    void askName();
    // get_ERF_Name: refuses a bad name with a warning, asks before replacing a template. True
    // when written; the "ERF:" field then shows the name.
    bool save(const QString& name);
    // get_ERF_text: a template that cannot be read is reported under "Information" and leaves
    // the form as it was.
    bool load(const QString& name);

private:
    // writeConfigJson: the form and the ranges under `name`.
    bool write(const QString& name);
    void information(const QString& text);

    Widget_SignalLayerChecks* dialog_;
    RunControls& controls_;
    QInputDialog* name_dialog_ = nullptr;
};

}  // namespace wc
