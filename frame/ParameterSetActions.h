#pragma once
// "ERF:" and "Save As" of a dialog whose form is a fixed list of widgets: "Save As" asks for a
// name and writes the widgets' values and the dialog kind's ranges as a named parameter set;
// a name picked in the "ERF:" popup puts a saved set back. Composed by the optimisation dialogs.

#include <QList>
#include <QObject>
#include <QString>
#include <functional>

#include "frame/WidgetCommonExport.h"

class QInputDialog;
class QWidget;

namespace wc {

class RunControls;

class WIDGET_COMMON_EXPORT ParameterSetActions : public QObject {
    Q_OBJECT
public:
    using WidgetList = std::function<QList<QObject*>()>;

    // `widgets` gives the form's widgets in a fixed order; the set is stored under `key`.
    ParameterSetActions(QWidget* dialog, RunControls* controls, QString key, WidgetList widgets);

    const QString& key() const { return key_; }

    // Writes the form under `name`; refuses a bad or existing name with a warning. True when
    // written; the "ERF:" field then shows the name.
    bool save(const QString& name);
    // Puts the set `name` back into the form and the ranges; a set that cannot be read is
    // reported under "Information" and leaves the form as it was.
    bool load(const QString& name);

public slots:
    // "Save As": opens the name dialog (created once).
    void askName();

signals:
    // A set was written under `name` (the dialog passes it on as send_Sel_Template_Name).
    void saved(const QString& name);
    // A set was put back into the form.
    void loaded(const QString& name);

private:
    QWidget* dialog_;
    RunControls* controls_;
    QString key_;
    WidgetList widgets_;
    QInputDialog* name_dialog_ = nullptr;
};

}  // namespace wc
