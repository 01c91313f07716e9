#include "FieldTable.h"

#include <QGridLayout>
#include <QLabel>
#include <QValidator>

#include "Korvo_UIAPI.h"
#include "Translate.h"
#include "UnitChange.h"
#include "Validators.h"
#include "ZeLineEdit.h"

namespace wc {
namespace {

QString objectKey(const char* key) {
    return QString::fromUtf8(key).remove(QLatin1Char(' '));
}

}  // namespace

FieldTableWidgets::FieldTableWidgets(QWidget* dialog, const void* handle,
                                     const std::vector<FieldSpec>& specs, FieldForm form)
    : dialog_(dialog), handle_(handle), form_(form), specs_(specs), fields_(specs.size()) {
    const QString unit =
        translateFor(dialog, QString::fromStdString(Korvo::UIAPI::getUnitStringType(handle, 1)));
    QValidator* float_validator = form == FieldForm::Plain ? makeFloatValidator(dialog) : nullptr;
    for (size_t row = 0; row < specs_.size(); ++row) {
        const FieldSpec& spec = specs_[row];
        const QString key = objectKey(spec.key);
        auto* label = new QLabel(translateFor(dialog, QString::fromUtf8(spec.label)), dialog);
        label->setObjectName(QStringLiteral("label_") + key);
        const QString shown = Korvo::UIAPI::getUnitJudgeString(handle, spec.default_mil, 2);
        QLineEdit* edit = nullptr;
        if (form == FieldForm::Plain) {
            edit = new QLineEdit(shown, dialog);
            edit->setValidator(float_validator);
        } else {
            edit = new Korvo::UIAPI::ZeLineEdit(shown, Korvo::UIAPI::ZeE_Float, dialog);
        }
        edit->setObjectName(QStringLiteral("lineEdit_") + key);
        auto* unit_label = new QLabel(unit, dialog);
        unit_label->setObjectName(QStringLiteral("label_") + key + QStringLiteral("Unit"));
        for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(edit),
                                static_cast<QWidget*>(unit_label)}) {
            widget->setEnabled(spec.enabled);
        }
        NumericField& field = fields_[row];
        field.edit = edit;
        field.engine_name = QString::fromUtf8(spec.engine_name);
        field.lower_mil = spec.lower_mil;
        field.upper_mil = spec.upper_mil;
        field.reset_text = QString::fromUtf8(spec.reset_text);
        labels_.append(label);
        unit_labels_.append(unit_label);
        if (spec.reset_text != nullptr && *spec.reset_text != '\0') {
            QObject::connect(edit, &QLineEdit::returnPressed, dialog,
                             [this, row = static_cast<int>(row)] { commit(row); });
        }
    }
}

Korvo::UIAPI::ZeLineEdit* FieldTableWidgets::edit(int row) const {
    return qobject_cast<Korvo::UIAPI::ZeLineEdit*>(lineEdit(row));
}

QLineEdit* FieldTableWidgets::lineEdit(int row) const {
    return fields_[static_cast<size_t>(row)].edit;
}

QList<QObject*> FieldTableWidgets::editObjects() const {
    QList<QObject*> objects;
    for (const NumericField& field : fields_) {
        objects.append(field.edit);
    }
    return objects;
}

void FieldTableWidgets::addToGrid(QGridLayout* grid, int first_row, int column) const {
    for (int row = 0; row < size(); ++row) {
        grid->addWidget(labels_[row], first_row + row, column);
        grid->addWidget(lineEdit(row), first_row + row, column + 1);
        grid->addWidget(unit_labels_[row], first_row + row, column + 2);
    }
}

bool FieldTableWidgets::commit(int row) {
    return commitField(dialog_, handle_, fields_[static_cast<size_t>(row)]);
}

bool FieldTableWidgets::judge() {
    NumericFields enabled;
    for (size_t row = 0; row < fields_.size(); ++row) {
        if (specs_[row].enabled) {
            enabled.append(&fields_[row]);
        }
    }
    return judgeFields(dialog_, handle_, enabled);
}

int FieldTableWidgets::commitPendingOnLeave(const QPoint& pos) {
    NumericFields enabled;
    QVector<int> rows;
    for (size_t row = 0; row < fields_.size(); ++row) {
        if (specs_[row].enabled) {
            enabled.append(&fields_[row]);
            rows.append(static_cast<int>(row));
        }
    }
    if (enabled.isEmpty()) {
        return 0;
    }
    return wc::commitPendingOnLeave(pos, enabled.front()->edit->geometry(), enabled,
                                    [this, &rows](int i) { commit(rows[i]); });
}

int FieldTableWidgets::firstEmpty() const {
    for (size_t row = 0; row < fields_.size(); ++row) {
        if (specs_[row].enabled && fields_[row].edit->text().isEmpty()) {
            return static_cast<int>(row);
        }
    }
    return -1;
}

bool FieldTableWidgets::allAcceptable() const {
    for (size_t row = 0; row < fields_.size(); ++row) {
        const QLineEdit* edit = fields_[row].edit;
        if (specs_[row].enabled && !edit->text().isEmpty() && !edit->hasAcceptableInput()) {
            return false;
        }
    }
    return true;
}

double FieldTableWidgets::engineValue(int row) const {
    const QString text = fields_[static_cast<size_t>(row)].edit->text();
    return Korvo::UIAPI::getUnitAPIData(handle_, 1, text.toDouble());
}

QStringList FieldTableWidgets::texts() const {
    QStringList result;
    for (const NumericField& field : fields_) {
        result.append(field.edit->text());
    }
    return result;
}

void FieldTableWidgets::setTexts(const QStringList& texts) {
    for (int row = 0; row < size() && row < texts.size(); ++row) {
        fields_[static_cast<size_t>(row)].edit->setText(texts[row]);
    }
}

void FieldTableWidgets::changeUnit() {
    QList<QLineEdit*> plain;
    QList<Korvo::UIAPI::ZeLineEdit*> edits;
    for (int row = 0; row < size(); ++row) {
        plain.append(lineEdit(row));
        edits.append(edit(row));
    }
    if (form_ == FieldForm::Plain) {
        reexpressFields(handle_, plain);
    } else {
        changeZeUnits(handle_, edits);
    }
    refreshUnitLabels(handle_, unit_labels_);
}

void FieldTableWidgets::changeLanguage() {
    for (int row = 0; row < size(); ++row) {
        labels_[row]->setText(
            translateFor(dialog_, QString::fromUtf8(specs_[static_cast<size_t>(row)].label)));
    }
    refreshUnitLabels(handle_, unit_labels_);
}

}  // namespace wc
