#include "DialogShell.h"

#include <glog/logging.h>

#include <QLineEdit>
#include <QWidget>

#include "BackgroundRun.h"
#include "Korvo_UIAPI.h"
#include "ParameterSetStore.h"
#include "RecordedCalls.h"

namespace wc {

DialogShell::DialogShell(QWidget* dialog, const void* handle, QString job, QString step,
                         RunControlsOptions options)
    : QObject(dialog),
      dialog_(dialog),
      handle_(handle),
      job_(std::move(job)),
      step_(std::move(step)),
      controls_(new RunControls(dialog, std::move(options))) {
    setObjectName(QStringLiteral("dialogShell"));
    // A tool window of the host with a title bar, a system menu and a close button.
    dialog->setWindowFlags(Qt::WindowFlags(0x8001003));
    controls_->setJob(job_);
}

ParameterSetActions& DialogShell::useParameterSets(ParameterSetActions::WidgetList widgets) {
    if (sets_ == nullptr) {
        sets_ = new ParameterSetActions(dialog_, controls_, controls_->options().range_key,
                                        std::move(widgets));
        controls_->setDefaultSaveAs([sets = sets_] { sets->askName(); });
    }
    return *sets_;
}

QWidget* DialogShell::host() const {
    return static_cast<QWidget*>(const_cast<void*>(handle_));
}

void DialogShell::updateJobStep(const QString& job, const QString& step) {
    job_ = job;
    step_ = step;
    controls_->setJob(job_);
    emit jobStepChanged(job_, step_);
}

void DialogShell::setAffectedLayers(const QStringList& layers) {
    controls_->layerEdit()->setText(layers.join(QLatin1Char(';')));
}

void DialogShell::setErfValues(const QString& name) {
    if (sets_ != nullptr) {
        sets_->load(name);
    }
}

bool DialogShell::isErfFileExist(const QString& name) const {
    return ParameterSetStore(controls_->options().range_key).exists(name);
}

QStringList DialogShell::erfNames() const {
    return Korvo::UIAPI::getERFList(controls_->options().range_key);
}

bool DialogShell::busy() const {
    return BackgroundRun::activeFor(dialog_);
}

QStringList DialogShell::layerNames(
    const std::function<bool(const Korvo::API::layer_info&)>& keep) const {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    recordedGetGraphics(job_.toStdString(), steps, layers);
    QStringList names;
    for (const Korvo::API::layer_info& layer : layers) {
        if (!keep || keep(layer)) {
            names.append(QString::fromStdString(layer.name));
        }
    }
    return names;
}

std::vector<std::string> DialogShell::runLayers(QStringList* missing) const {
    const LayerResolution resolution = controls_->resolveLayerField();
    for (const QString& name : resolution.missing) {
        LOG(ERROR) << "layer " << name.toStdString() << " is not in job " << job_.toStdString();
    }
    if (missing != nullptr) {
        *missing = resolution.missing;
    }
    return resolution.layers;
}

}  // namespace wc
