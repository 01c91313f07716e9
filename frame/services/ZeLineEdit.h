#pragma once

#include <QLineEdit>

namespace Korvo {
namespace UIAPI {

// Validator kinds of a ZeLineEdit.
enum ZeERegExp : int {
    ZeE_Text = 0,
    ZeE_Integer = 1,
    ZeE_PositiveInteger = 2,
    ZeE_Float = 3,  // the ordinary numeric field
    ZeE_PositiveFloat = 4,
    ZeE_LayerName = 5,
    ZeE_Symbol = 6,
    ZeE_Angle = 7,
};

// A line edit that validates by kind and re-expresses its own number when the unit changes.
class ZeLineEdit : public QLineEdit {
    Q_OBJECT
public:
    ZeLineEdit(ZeERegExp kind, QWidget* parent);
    ZeLineEdit(const QString& text, ZeERegExp kind, QWidget* parent);
    explicit ZeLineEdit(QWidget* parent = nullptr);

    ZeERegExp kind() const { return kind_; }
    // Converts a length kind's text from the unit it was written in to `unit`.
    void changeunit(const int& unit);
    // The unit the text is written in. At construction it is the unit of the nearest parent
    // that has a display unit of its own, else the process default.
    int textUnit() const { return unit_; }
    void setTextUnit(int unit);

private:
    void applyKind();

    ZeERegExp kind_ = ZeE_Text;
    int unit_ = -1;  // unit the text is written in, set by the constructors
};

}  // namespace UIAPI
}  // namespace Korvo
