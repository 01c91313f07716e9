#pragma once
// What change_unit() does to the fields and unit labels of a dialog after the host switched the
// display unit of `handle`.

#include <QList>

class QLabel;
class QLineEdit;

namespace Korvo {
namespace UIAPI {
class ZeLineEdit;
}
}  // namespace Korvo

namespace wc {

// Every non-empty field gets its value re-expressed in the new unit, 6 significant digits.
void reexpressFields(const void* handle, const QList<QLineEdit*>& fields);

// Every label gets the translated unit text of `flavour` (1 "mil"/"mm", 0 "inch"/"mm").
void refreshUnitLabels(const void* handle, const QList<QLabel*>& labels, int flavour = 1);

// Fields that convert themselves are told the new unit code.
void changeZeUnits(const void* handle, const QList<Korvo::UIAPI::ZeLineEdit*>& fields);

}  // namespace wc
