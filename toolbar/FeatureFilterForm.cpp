#include "FeatureFilterForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegExpValidator>
#include <QVBoxLayout>

#include "Korvo_API_types.h"
#include "frame/PluginMessages.h"
#include "frame/Validators.h"
#include "toolbar/PopupParts.h"
#include "toolbar/SymbolFilterFields.h"

namespace wc {
namespace {

constexpr int kWidth = 500;
constexpr int kRowCheckWidth = 70;
constexpr int kTypeButtonSize = 30;
constexpr int kPickButtonSize = 24;

struct TypeButton {
    int bit;
    const char* name;
    const char* normal;
    const char* checked;
};

const TypeButton kTypeButtons[] = {
    {Korvo::API::FT_Pad, "pushButton_Pad", "Pad1.jpg", "Pad2.jpg"},
    {Korvo::API::FT_Line, "pushButton_Line", "Line1.jpg", "Line2.jpg"},
    {Korvo::API::FT_Arc, "pushButton_Arc", "Arc1.jpg", "Arc2.jpg"},
    {Korvo::API::FT_Surface, "pushButton_Surface", "Surf1.jpg", "Surf2.jpg"},
    {Korvo::API::FT_Text, "pushButton_Text", "Text1.jpg", "Text2.jpg"},
    {Korvo::API::FT_Negative, "pushButton_Negative", "negetive3.jpg", "negetive4.jpg"},
    {Korvo::API::FT_Positive, "pushButton_Positive", "positive3.jpg", "positive4.jpg"},
};

struct PickButton {
    const char* name;
    const char* image;
    const char* tip;
    int code;
};

const PickButton kPickButtons[] = {
    {"pushButton_IncludePick", "add_fea.jpg",
     QT_TRANSLATE_NOOP("Grc_Tbv_featuresfilter", "Single selection"), code::PickIncludeSymbol},
    {"pushButton_IncludePickAdd", "add_fea_pls.jpg",
     QT_TRANSLATE_NOOP("Grc_Tbv_featuresfilter", "Multi selection"), code::PickAddIncludeSymbol},
    {"pushButton_ExcludePick", "add_fea.jpg",
     QT_TRANSLATE_NOOP("Grc_Tbv_featuresfilter", "Single selection"), code::PickExcludeSymbol},
    {"pushButton_ExcludePickAdd", "add_fea_pls.jpg",
     QT_TRANSLATE_NOOP("Grc_Tbv_featuresfilter", "Multi selection"), code::PickAddExcludeSymbol},
};

QString resource(const char* file) {
    return QStringLiteral(":/Widget_Common/Resources/") + QString::fromLatin1(file);
}

QString typeButtonStyle(const TypeButton& button) {
    return QStringLiteral(
               "QPushButton{background-image:url(%1);}QPushButton::checked{background-image:url(%"
               "2);}")
        .arg(resource(button.normal), resource(button.checked));
}

QLineEdit* makeEdit(QWidget* popup, const char* name, QValidator* validator) {
    auto* edit = makeNamed<QLineEdit>(popup, name);
    edit->setValidator(validator);
    return edit;
}

}  // namespace

std::array<int, 7> featureTypeBits() {
    std::array<int, 7> bits{};
    for (size_t i = 0; i < bits.size(); ++i) {
        bits[i] = kTypeButtons[i].bit;
    }
    return bits;
}

std::array<int, 4> symbolPickCodes() {
    std::array<int, 4> codes{};
    for (size_t i = 0; i < codes.size(); ++i) {
        codes[i] = kPickButtons[i].code;
    }
    return codes;
}

void FeatureFilterForm::setupUi(QWidget* popup) {
    auto* snap =
        makeNamed<QPushButton>(popup, "pushButton_SnapFeatures", QT_TR_NOOP("Snap Features"));
    snap->setCheckable(true);
    auto* layout = new QVBoxLayout(popup);
    auto* type_row = new QHBoxLayout;
    type_row->addWidget(snap);
    type_row->addStretch();
    for (size_t i = 0; i < type_buttons.size(); ++i) {
        QPushButton* button = makeNamed<QPushButton>(popup, kTypeButtons[i].name);
        button->setCheckable(true);
        button->setChecked(true);
        button->setFixedSize(kTypeButtonSize, kTypeButtonSize);
        button->setStyleSheet(typeButtonStyle(kTypeButtons[i]));
        type_row->addWidget(button);
        type_buttons[i] = button;
    }
    layout->addLayout(type_row);
    layout->addLayout(makeFieldRows(popup));
    makeShapeRows(popup, layout);
    makeLowerRows(popup, layout);
    popup->setFixedWidth(kWidth);
    updateLengthAngleRows();
}

QLayout* FeatureFilterForm::makeFieldRows(QWidget* popup) {
    auto* symbol_validator =
        new QRegExpValidator(QRegExp(symbolFieldPattern(), Qt::CaseSensitive), popup);
    symbol_validator->setObjectName(QStringLiteral("symbolValidator"));
    QRegExpValidator* no_cjk = makeNoCjkValidator(popup);
    include_symbols = makeEdit(popup, "lineEdit_IncludeSymbols", symbol_validator);
    exclude_symbols = makeEdit(popup, "lineEdit_ExcludeSymbols", symbol_validator);
    include_attributes = makeEdit(popup, "lineEdit_IncludeAttributes", no_cjk);
    exclude_attributes = makeEdit(popup, "lineEdit_ExcludeAttributes", no_cjk);
    QLineEdit* text_filter = makeEdit(popup, "lineEdit_TextFilter", no_cjk);
    for (size_t i = 0; i < pick_buttons.size(); ++i) {
        QPushButton* button = makeNamed<QPushButton>(popup, kPickButtons[i].name);
        button->setIcon(QIcon(resource(kPickButtons[i].image)));
        button->setIconSize(QSize(kPickButtonSize, kPickButtonSize));
        button->setFixedSize(kPickButtonSize + 4, kPickButtonSize + 4);
        setSourceToolTip(popup, button, kPickButtons[i].tip);
        pick_buttons[i] = button;
    }
    include_attr_button =
        makeNamed<QPushButton>(popup, "pushButton_IncludeAttributes", QT_TR_NOOP("..."));
    include_attr_button->setFixedWidth(2 * (kPickButtonSize + 4) + 6);

    const std::pair<const char*, const char*> labels[] = {
        {"label_IncludeSymbols", QT_TR_NOOP("Include Symbols:")},
        {"label_ExcludeSymbols", QT_TR_NOOP("Exclude Symbols:")},
        {"label_IncludeAttributes", QT_TR_NOOP("Include Attributes:")},
        {"label_ExcludeAttributes", QT_TR_NOOP("Exclude Attributes:")},
        {"label_TextFilter", QT_TR_NOOP("Text filter:")},
    };
    QLineEdit* const edits[] = {include_symbols, exclude_symbols, include_attributes,
                                exclude_attributes, text_filter};
    auto* grid = new QGridLayout;
    for (int row = 0; row < 5; ++row) {
        grid->addWidget(makeNamed<QLabel>(popup, labels[row].first, labels[row].second), row, 0);
        grid->addWidget(edits[row], row, 1);
    }
    for (int i = 0; i < 4; ++i) {
        grid->addWidget(pick_buttons[static_cast<size_t>(i)], i / 2, 2 + i % 2);
    }
    grid->addWidget(include_attr_button, 2, 2, 1, 2);
    return grid;
}

void FeatureFilterForm::makeShapeRows(QWidget* popup, QBoxLayout* layout) {
    lines = makeNamed<QCheckBox>(popup, "checkBox_Lines", QT_TR_NOOP("Lines"));
    ovals = makeNamed<QCheckBox>(popup, "checkBox_Ovals", QT_TR_NOOP("Ovals"));
    length = makeNamed<QCheckBox>(popup, "checkBox_Length", QT_TR_NOOP("Length"));
    angle = makeNamed<QCheckBox>(popup, "checkBox_Angle", QT_TR_NOOP("Angle"));
    length->setFixedWidth(kRowCheckWidth);
    angle->setFixedWidth(kRowCheckWidth);
    auto* shape_row = new QHBoxLayout;
    shape_row->addWidget(lines);
    shape_row->addWidget(ovals);
    shape_row->addStretch();
    layout->addLayout(shape_row);

    const char* const names[] = {"LengthMin", "LengthMax", "AngleMin", "AngleMax"};
    QValidator* float_validator = makeFloatValidator(popup);
    for (size_t i = 0; i < min_max.size(); ++i) {
        const QByteArray name(names[i]);
        min_max_labels[i] = makeNamed<QLabel>(popup, ("label_" + name).constData(),
                                              i % 2 == 0 ? QT_TR_NOOP("Min:") : QT_TR_NOOP("Max:"));
        min_max[i] = makeEdit(popup, ("lineEdit_" + name).constData(), float_validator);
    }
    for (int row = 0; row < 2; ++row) {
        auto* limits = new QHBoxLayout;
        limits->addWidget(row == 0 ? length : angle);
        for (int i = 2 * row; i < 2 * row + 2; ++i) {
            limits->addWidget(min_max_labels[static_cast<size_t>(i)]);
            limits->addWidget(min_max[static_cast<size_t>(i)]);
        }
        layout->addLayout(limits);
    }
}

void FeatureFilterForm::makeLowerRows(QWidget* popup, QBoxLayout* layout) {
    user_filter =
        makeNamed<QPushButton>(popup, "pushButton_UserFilter", QT_TR_NOOP("User filter ..."));
    auto* dcode = makeEdit(popup, "lineEdit_Dcode", makeFloatValidator(popup));
    dcode->setEnabled(false);
    filter = makeNamed<QCheckBox>(popup, "checkBox_Filter", QT_TR_NOOP("Filter"));
    filter->setChecked(true);
    reset = makeNamed<QPushButton>(popup, "pushButton_Reset", QT_TR_NOOP("Reset"));
    attributes = makeNamed<QPushButton>(popup, "pushButton_Attributes", QT_TR_NOOP("Attributes"));
    profile = makeNamed<QComboBox>(popup, "comboBox_Profile");
    setSourceItems(
        popup, profile,
        {QT_TR_NOOP("All Profile"), QT_TR_NOOP("In Profile"), QT_TR_NOOP("Out Profile")});
    advanced = makeNamed<QPushButton>(popup, "pushButton_Advanced", QT_TR_NOOP("Advanced ..."));

    const QList<QList<QWidget*>> rows = {
        {user_filter, makeNamed<QLabel>(popup, "label_Dcode", QT_TR_NOOP("Dcode :")), dcode},
        {filter, reset, attributes},
        {profile, advanced},
    };
    for (const QList<QWidget*>& widgets : rows) {
        auto* row = new QHBoxLayout;
        row->addWidget(widgets.front());
        row->addStretch();
        for (int i = 1; i < widgets.size(); ++i) {
            row->addWidget(widgets.at(i));
        }
        layout->addLayout(row);
    }

    // "&" shows only doubled on a button; a single one would underline the next letter.
    const std::pair<const char*, const char*> made[] = {
        {"pushButton_Select", QT_TR_NOOP("Select")},
        {"pushButton_Highlight", QT_TR_NOOP("Highlight")},
        {"pushButton_Search", QT_TR_NOOP("Search")},
        {"pushButton_Unselect", QT_TR_NOOP("Unselect")},
        {"pushButton_TurnOff", QT_TR_NOOP("Turn Off")},
        {"pushButton_Histogram", QT_TR_NOOP("Histogram")},
        {"pushButton_CloseReset", QT_TR_NOOP("Close && Reset")},
        {"pushButton_Close", QT_TR_NOOP("Close")},
    };
    auto* grid = new QGridLayout;
    for (int i = 0; i < 8; ++i) {
        actions[static_cast<size_t>(i)] =
            makeNamed<QPushButton>(popup, made[i].first, made[i].second);
        grid->addWidget(actions[static_cast<size_t>(i)], i / 4, i % 4);
    }
    layout->addLayout(grid);
}

void FeatureFilterForm::setTypeButtons(int mask) const {
    for (size_t i = 0; i < type_buttons.size(); ++i) {
        type_buttons[i]->setChecked((mask & kTypeButtons[i].bit) != 0);
    }
}

void FeatureFilterForm::updateLengthAngleRows() const {
    const bool shapes = lines->isChecked() || ovals->isChecked();
    length->setEnabled(shapes);
    angle->setEnabled(shapes);
    const bool rows[] = {shapes && length->isChecked(), shapes && angle->isChecked()};
    for (size_t i = 0; i < min_max.size(); ++i) {
        min_max_labels[i]->setEnabled(rows[i / 2]);
        min_max[i]->setEnabled(rows[i / 2]);
    }
}

}  // namespace wc
