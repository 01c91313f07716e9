#include "ParameterSetActions.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "ParameterSetForm.h"
#include "RunControls.h"
#include "Translate.h"

namespace wc {

ParameterSetActions::ParameterSetActions(QWidget* dialog, RunControls* controls, QString key,
                                         WidgetList widgets)
    : QObject(dialog),
      dialog_(dialog),
      controls_(controls),
      key_(std::move(key)),
      widgets_(std::move(widgets)) {
    connect(controls_, &RunControls::erfChosen, this, [this](const QString& name) { load(name); });
}

void ParameterSetActions::askName() {
    if (name_dialog_ == nullptr) {
        name_dialog_ = new QInputDialog(dialog_);
        name_dialog_->setObjectName(QStringLiteral("templateNameDialog"));
        name_dialog_->setWindowTitle(
            translateFor(dialog_, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Save As"))));
        name_dialog_->setLabelText(translateFor(
            dialog_, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Template name:"))));
        connect(name_dialog_, &QInputDialog::textValueSelected, this,
                [this](const QString& name) { save(name); });
    }
    name_dialog_->setTextValue(controls_->erfEdit()->text());
    name_dialog_->open();
}

bool ParameterSetActions::save(const QString& name) {
    if (!saveParameterSet(dialog_, key_, name, widgets_())) {
        return false;
    }
    controls_->erfEdit()->setText(name);
    emit saved(name);
    return true;
}

bool ParameterSetActions::load(const QString& name) {
    QList<QObject*> widgets = widgets_();
    QString error;
    if (!loadParameterSet(dialog_, key_, name, widgets, &error)) {
        QMessageBox::information(
            dialog_,
            translateFor(dialog_, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Information"))),
            name + QStringLiteral(": ") + error);
        return false;
    }
    controls_->erfEdit()->setText(name);
    controls_->markStale();
    emit loaded(name);
    return true;
}

}  // namespace wc
