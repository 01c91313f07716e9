#pragma once
// The controls of the feature filter popup, made and laid out in code: object names, pictures,
// validators and texts that follow the popup's language. The popup connects them and keeps the
// filter; this only builds, and sets what the controls show.

#include <QCoreApplication>
#include <array>

#include "frame/WidgetCommonExport.h"

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QWidget;

namespace wc {

// Type and polarity bits of the seven type buttons, in their order on screen.
std::array<int, 7> featureTypeBits();
// Message codes of the pick buttons: replace and add of the include field, then of the exclude.
std::array<int, 4> symbolPickCodes();

struct WIDGET_COMMON_EXPORT FeatureFilterForm {
    // Makes every control as a child of `popup`, lays them out and fixes the popup's width.
    void setupUi(QWidget* popup);
    // Checks the type buttons whose bit `mask` holds.
    void setTypeButtons(int mask) const;
    // "Length" and "Angle" need "Lines" or "Ovals"; their Min/Max fields need their own box too.
    void updateLengthAngleRows() const;

    std::array<QPushButton*, 7> type_buttons{};
    QLineEdit* include_symbols = nullptr;
    QLineEdit* exclude_symbols = nullptr;
    std::array<QPushButton*, 4> pick_buttons{};
    QLineEdit* include_attributes = nullptr;
    QPushButton* include_attr_button = nullptr;
    QLineEdit* exclude_attributes = nullptr;
    QCheckBox* lines = nullptr;
    QCheckBox* ovals = nullptr;
    QCheckBox* length = nullptr;
    QCheckBox* angle = nullptr;
    std::array<QLabel*, 4> min_max_labels{};  // length min, length max, angle min, angle max
    std::array<QLineEdit*, 4> min_max{};
    QPushButton* user_filter = nullptr;
    QCheckBox* filter = nullptr;
    QPushButton* reset = nullptr;
    QPushButton* attributes = nullptr;
    QComboBox* profile = nullptr;
    QPushButton* advanced = nullptr;
    // Select, Highlight, Search, Unselect, Turn Off, Histogram, Close & Reset, Close.
    std::array<QPushButton*, 8> actions{};

private:
    QLayout* makeFieldRows(QWidget* popup);
    void makeShapeRows(QWidget* popup, QBoxLayout* layout);
    void makeLowerRows(QWidget* popup, QBoxLayout* layout);

    // The texts are the popup's own and translate in its context.
    Q_DECLARE_TR_FUNCTIONS(Grc_Tbv_featuresfilter)
};

}  // namespace wc
