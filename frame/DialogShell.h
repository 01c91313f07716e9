#pragma once
// What the host calls on every dialog that runs the engine, in one place: the job and step the
// dialog works on (and the windows that follow them), the layers the host marks, the named
// parameter sets, and the re-entrance rule before a run or a save. Composed with the dialog's
// run controls; the dialog keeps its public slot names as one-line forwards.
//
//     shell_ = new wc::DialogShell(this, handle, job, step, options);
//     shell_->useParameterSets([this] { return parameterWidgets(); });
//     void Widget_Teardrops::UpdateJobStep(const QString& j, const QString& s) {
//         shell_->updateJobStep(j, s);
//     }

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <vector>

#include "Korvo_API.h"
#include "frame/ParameterSetActions.h"
#include "frame/RunControls.h"
#include "frame/WidgetCommonExport.h"

class QWidget;

namespace wc {

class WIDGET_COMMON_EXPORT DialogShell : public QObject {
    Q_OBJECT
public:
    // `handle` is the host window the dialog was opened from: the unit, the layers and the
    // graphic view belong to it. The dialog becomes a tool window of the host.
    DialogShell(QWidget* dialog, const void* handle, QString job, QString step,
                RunControlsOptions options);

    RunControls& controls() const { return *controls_; }
    // "ERF:" and "Save As" over the form's widgets, in the fixed order `widgets` gives.
    ParameterSetActions& useParameterSets(ParameterSetActions::WidgetList widgets);
    ParameterSetActions* sets() const { return sets_; }

    const QString& job() const { return job_; }
    const QString& step() const { return step_; }
    const void* handle() const { return handle_; }
    // The host window as a parent for the dialog's own windows (viewer, range editor).
    QWidget* host() const;

    // UpdateJobStep / changeJobAndStep: the run controls and every window that follows the
    // dialog (jobStepChanged) take the new job and step.
    void updateJobStep(const QString& job, const QString& step);
    // setAffectedLayers: the "Layer:" field shows the names joined by ";".
    void setAffectedLayers(const QStringList& layers);
    // setErfValues: puts the named set back into the form (reported when it cannot be read).
    void setErfValues(const QString& name);
    // isErfFileExist: whether a set of that name is saved for the dialog's kind.
    bool isErfFileExist(const QString& name) const;
    QStringList erfNames() const;

    // True while this dialog's own run or save is under way: a second one is refused.
    bool busy() const;

    // The names of the job's layers that `keep` admits (all when it is empty), in matrix order.
    QStringList layerNames(
        const std::function<bool(const Korvo::API::layer_info&)>& keep = {}) const;

    // The layers of the "Layer:" field; names the job lacks are logged and given in `missing`.
    std::vector<std::string> runLayers(QStringList* missing = nullptr) const;

signals:
    void jobStepChanged(const QString& job, const QString& step);

private:
    QWidget* dialog_;
    const void* handle_;
    QString job_;
    QString step_;
    RunControls* controls_;
    ParameterSetActions* sets_ = nullptr;
};

}  // namespace wc
