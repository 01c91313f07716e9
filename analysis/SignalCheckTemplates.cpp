#include "SignalCheckTemplates.h"

#include <glog/logging.h>

#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "analysis/SignalCheckForm.h"
#include "analysis/Widget_SignalLayerChecks.h"
#include "frame/ParameterSetForm.h"
#include "frame/ParameterSetStore.h"
#include "frame/RunControls.h"
#include "frame/Translate.h"

namespace wc {

namespace {

const char* const kWarning = QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Warning");
const char* const kInformation = QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Information");
const char* const kSameName = QT_TRANSLATE_NOOP(
    "Widget_SignalLayerChecks", " have a same name file! Do you want to overwrite?");

QString key() {
    return QLatin1String(kSignalRangeKey);
}

}  // namespace

SignalCheckTemplates::SignalCheckTemplates(Widget_SignalLayerChecks* dialog, RunControls& controls)
    : QObject(dialog), dialog_(dialog), controls_(controls) {}

void SignalCheckTemplates::askName() {
    if (name_dialog_ == nullptr) {
        name_dialog_ = new QInputDialog(dialog_);
        name_dialog_->setObjectName(QStringLiteral("templateNameDialog"));
        name_dialog_->setWindowTitle(
            translateFor(dialog_, QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Save as")));
        name_dialog_->setLabelText(
            translateFor(dialog_, QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Template name:")));
        connect(name_dialog_, &QInputDialog::textValueSelected, dialog_,
                &Widget_SignalLayerChecks::send_Sel_Template_Name);
    }
    name_dialog_->setTextValue(controls_.erfEdit()->text());
    name_dialog_->open();
}

bool SignalCheckTemplates::save(const QString& name) {
    const QString problem = ParameterSetStore::nameProblem(name);
    if (!problem.isEmpty()) {
        QMessageBox::warning(dialog_, translateFor(dialog_, kWarning),
                             translateFor(dialog_, problem));
        return false;
    }
    ParameterSetStore store(key());
    if (store.exists(name)) {
        const auto answer = QMessageBox::warning(dialog_, translateFor(dialog_, kWarning),
                                                 name + translateFor(dialog_, kSameName),
                                                 QMessageBox::Yes | QMessageBox::No);
        if (answer != QMessageBox::Yes) {
            return false;
        }
        store.remove(name);
    }
    if (!write(name)) {
        return false;
    }
    controls_.erfEdit()->setText(name);
    return true;
}

bool SignalCheckTemplates::write(const QString& name) {
    QString error;
    const QJsonObject root = withRanges(key(), signalCheckTemplate(dialog_->form()));
    if (ParameterSetStore(key()).save(name, root, &error) != ParameterSetStore::SaveResult::Saved) {
        LOG(ERROR) << "template " << name.toStdString() << " not saved: " << error.toStdString();
        QMessageBox::warning(dialog_, translateFor(dialog_, kWarning), error);
        return false;
    }
    return true;
}

bool SignalCheckTemplates::load(const QString& name) {
    controls_.erfEdit()->setText(name);
    QJsonObject root;
    QString error;
    if (ParameterSetStore(key()).load(name, root, &error) !=
        ParameterSetStore::LoadResult::Loaded) {
        LOG(ERROR) << "template " << name.toStdString() << " not loaded: " << error.toStdString();
        information(error);
        return false;
    }
    SignalCheckForm loaded = dialog_->form();
    if (error = rangesShapeProblem(root); error.isEmpty()) {
        readSignalCheckTemplate(root, loaded, &error);
    }
    if (!error.isEmpty()) {
        LOG(ERROR) << "template " << name.toStdString() << " not loaded: " << error.toStdString();
        information(name + QStringLiteral(": ") + error);
        return false;
    }
    dialog_->setForm(loaded);
    applyRangesList(key(), root);
    controls_.markStale();
    return true;
}

void SignalCheckTemplates::information(const QString& text) {
    QMessageBox::information(dialog_, translateFor(dialog_, kInformation), text, QMessageBox::Ok);
}

}  // namespace wc
