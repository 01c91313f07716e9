#include "UnitChange.h"

#include <QLabel>
#include <QLineEdit>

#include "Korvo_UIAPI.h"
#include "Translate.h"
#include "ZeLineEdit.h"

namespace wc {

void reexpressFields(const void* handle, const QList<QLineEdit*>& fields) {
    for (QLineEdit* field : fields) {
        const QString text = field->text();
        if (text.isEmpty()) {
            continue;
        }
        const double value = Korvo::UIAPI::getUnitData(handle, text.toDouble());
        field->setText(QString::number(value, 'g', 6));
    }
}

void refreshUnitLabels(const void* handle, const QList<QLabel*>& labels, int flavour) {
    const QString unit = QString::fromStdString(Korvo::UIAPI::getUnitStringType(handle, flavour));
    for (QLabel* label : labels) {
        label->setText(translateFor(label->window(), unit));
    }
}

void changeZeUnits(const void* handle, const QList<Korvo::UIAPI::ZeLineEdit*>& fields) {
    const int unit = Korvo::UIAPI::getUnit(handle);
    for (Korvo::UIAPI::ZeLineEdit* field : fields) {
        field->changeunit(unit);
    }
}

}  // namespace wc
