#include "Grc_Tbv_featuresfilter.h"

#include <glog/logging.h>

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegExpValidator>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "QTpluginsManger4CAM.h"
#include "frame/ExceptionGuard.h"
#include "frame/PluginMessages.h"
#include "frame/Validators.h"
#include "toolbar/AttributeConditions.h"
#include "toolbar/UserFilterPresets.h"
#include "toolbar/Widget_Filter_Attributes.h"
#include "toolbar/Widget_Filter_Searchpopup.h"
#include "toolbar/Widget_UserFilterList.h"
#include "toolbar/Widget_listpopup.h"

namespace {

constexpr int kWidth = 500;
constexpr int kRowCheckWidth = 70;
constexpr int kTypeButtonSize = 30;
constexpr int kPickButtonSize = 24;
const char* const kAttributeButtonRed = "background-color:rgb(255, 0, 0)";

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

// A button shows "&" only doubled; a single one would underline the next letter.
QString buttonText(const QString& text) {
    return QString(text).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QString resource(const char* file) {
    return QStringLiteral(":/Widget_Common/Resources/") + QString::fromLatin1(file);
}

QString typeButtonStyle(const TypeButton& button) {
    return QStringLiteral(
               "QPushButton{background-image:url(%1);}QPushButton::checked{background-image:url(%"
               "2);}")
        .arg(resource(button.normal), resource(button.checked));
}

struct PickButton {
    const char* name;
    const char* image;
    const char* tip;
    int code;
};

// Replace and add buttons of the include field, then of the exclude field.
const PickButton kPickButtons[] = {
    {"pushButton_IncludePick", "add_fea.jpg", "Single selection", wc::code::PickIncludeSymbol},
    {"pushButton_IncludePickAdd", "add_fea_pls.jpg", "Multi selection",
     wc::code::PickAddIncludeSymbol},
    {"pushButton_ExcludePick", "add_fea.jpg", "Single selection", wc::code::PickExcludeSymbol},
    {"pushButton_ExcludePickAdd", "add_fea_pls.jpg", "Multi selection",
     wc::code::PickAddExcludeSymbol},
};

}  // namespace

Grc_Tbv_featuresfilter::Grc_Tbv_featuresfilter(Graphic_Toolbar_Move* toolbar, QWidget* parent)
    : QWidget(parent, Qt::Window),
      host_(toolbar != nullptr ? static_cast<void*>(toolbar) : static_cast<void*>(parent)) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initFeaturesFilter();
}

Grc_Tbv_featuresfilter::Grc_Tbv_featuresfilter(QWidget* parent)
    : Grc_Tbv_featuresfilter(nullptr, parent) {}

void Grc_Tbv_featuresfilter::initFeaturesFilter() {
    auto label = [this](const QString& text, const char* name) {
        auto* l = new QLabel(text, this);
        l->setObjectName(QString::fromLatin1(name));
        return l;
    };
    auto button = [this](const QString& text, const char* name) {
        auto* b = new QPushButton(text, this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    auto edit = [this](const char* name, QValidator* validator) {
        auto* e = new QLineEdit(this);
        e->setObjectName(QString::fromLatin1(name));
        e->setValidator(validator);
        return e;
    };
    auto check = [this](const QString& text, const char* name) {
        auto* c = new QCheckBox(text, this);
        c->setObjectName(QString::fromLatin1(name));
        return c;
    };
    auto* symbol_validator =
        new QRegExpValidator(QRegExp(wc::symbolFieldPattern(), Qt::CaseSensitive), this);
    symbol_validator->setObjectName(QStringLiteral("symbolValidator"));
    QRegExpValidator* float_validator = wc::makeFloatValidator(this);
    QRegExpValidator* no_cjk_validator = wc::makeNoCjkValidator(this);

    snap_ = button(tr("Snap Features"), "pushButton_SnapFeatures");
    snap_->setCheckable(true);

    for (size_t i = 0; i < type_buttons_.size(); ++i) {
        QPushButton* b = button(QString(), kTypeButtons[i].name);
        b->setCheckable(true);
        b->setChecked(true);
        b->setFixedSize(kTypeButtonSize, kTypeButtonSize);
        b->setStyleSheet(typeButtonStyle(kTypeButtons[i]));
        type_buttons_[i] = b;
    }

    include_label_ = label(tr("Include Symbols:"), "label_IncludeSymbols");
    include_symbols_ = edit("lineEdit_IncludeSymbols", symbol_validator);
    exclude_label_ = label(tr("Exclude Symbols:"), "label_ExcludeSymbols");
    exclude_symbols_ = edit("lineEdit_ExcludeSymbols", symbol_validator);
    for (size_t i = 0; i < pick_buttons_.size(); ++i) {
        QPushButton* b = button(QString(), kPickButtons[i].name);
        b->setIcon(QIcon(resource(kPickButtons[i].image)));
        b->setIconSize(QSize(kPickButtonSize, kPickButtonSize));
        b->setFixedSize(kPickButtonSize + 4, kPickButtonSize + 4);
        b->setToolTip(tr(kPickButtons[i].tip));
        pick_buttons_[i] = b;
    }

    include_attr_label_ = label(tr("Include Attributes:"), "label_IncludeAttributes");
    include_attributes_ = edit("lineEdit_IncludeAttributes", no_cjk_validator);
    include_attr_button_ = button(tr("..."), "pushButton_IncludeAttributes");
    include_attr_button_->setFixedWidth(2 * (kPickButtonSize + 4) + 6);
    exclude_attr_label_ = label(tr("Exclude Attributes:"), "label_ExcludeAttributes");
    exclude_attributes_ = edit("lineEdit_ExcludeAttributes", no_cjk_validator);
    text_label_ = label(tr("Text filter:"), "label_TextFilter");
    text_filter_ = edit("lineEdit_TextFilter", no_cjk_validator);

    lines_ = check(tr("Lines"), "checkBox_Lines");
    ovals_ = check(tr("Ovals"), "checkBox_Ovals");
    length_ = check(tr("Length"), "checkBox_Length");
    angle_ = check(tr("Angle"), "checkBox_Angle");
    length_->setFixedWidth(kRowCheckWidth);
    angle_->setFixedWidth(kRowCheckWidth);
    const char* const min_max_labels[] = {"label_LengthMin", "label_LengthMax", "label_AngleMin",
                                          "label_AngleMax"};
    const char* const min_max_edits[] = {"lineEdit_LengthMin", "lineEdit_LengthMax",
                                         "lineEdit_AngleMin", "lineEdit_AngleMax"};
    for (size_t i = 0; i < min_max_.size(); ++i) {
        min_max_labels_[i] = label(i % 2 == 0 ? tr("Min:") : tr("Max:"), min_max_labels[i]);
        min_max_[i] = edit(min_max_edits[i], float_validator);
    }

    user_filter_ = button(tr("User filter ..."), "pushButton_UserFilter");
    dcode_label_ = label(tr("Dcode :"), "label_Dcode");
    dcode_ = edit("lineEdit_Dcode", float_validator);
    dcode_->setEnabled(false);

    filter_ = check(tr("Filter"), "checkBox_Filter");
    filter_->setChecked(true);
    reset_ = button(tr("Reset"), "pushButton_Reset");
    attributes_ = button(tr("Attributes"), "pushButton_Attributes");
    profile_ = new QComboBox(this);
    profile_->setObjectName(QStringLiteral("comboBox_Profile"));
    profile_->addItems({tr("All Profile"), tr("In Profile"), tr("Out Profile")});
    advanced_ = button(tr("Advanced ..."), "pushButton_Advanced");

    select_ = button(tr("Select"), "pushButton_Select");
    highlight_ = button(tr("Highlight"), "pushButton_Highlight");
    search_ = button(tr("Search"), "pushButton_Search");
    unselect_ = button(tr("Unselect"), "pushButton_Unselect");
    turn_off_ = button(tr("Turn Off"), "pushButton_TurnOff");
    histogram_ = button(tr("Histogram"), "pushButton_Histogram");
    close_reset_ = button(buttonText(tr("Close & Reset")), "pushButton_CloseReset");
    close_ = button(tr("Close"), "pushButton_Close");

    // ---- layout -------------------------------------------------------------------------------
    auto* layout = new QVBoxLayout(this);
    auto* type_row = new QHBoxLayout;
    type_row->addWidget(snap_);
    type_row->addStretch();
    for (QPushButton* b : type_buttons_) {
        type_row->addWidget(b);
    }
    layout->addLayout(type_row);

    auto* fields = new QGridLayout;
    fields->addWidget(include_label_, 0, 0);
    fields->addWidget(include_symbols_, 0, 1);
    fields->addWidget(pick_buttons_[0], 0, 2);
    fields->addWidget(pick_buttons_[1], 0, 3);
    fields->addWidget(exclude_label_, 1, 0);
    fields->addWidget(exclude_symbols_, 1, 1);
    fields->addWidget(pick_buttons_[2], 1, 2);
    fields->addWidget(pick_buttons_[3], 1, 3);
    fields->addWidget(include_attr_label_, 2, 0);
    fields->addWidget(include_attributes_, 2, 1);
    fields->addWidget(include_attr_button_, 2, 2, 1, 2);
    fields->addWidget(exclude_attr_label_, 3, 0);
    fields->addWidget(exclude_attributes_, 3, 1);
    fields->addWidget(text_label_, 4, 0);
    fields->addWidget(text_filter_, 4, 1);
    layout->addLayout(fields);

    auto* shape_row = new QHBoxLayout;
    shape_row->addWidget(lines_);
    shape_row->addWidget(ovals_);
    shape_row->addStretch();
    layout->addLayout(shape_row);
    for (int row = 0; row < 2; ++row) {
        auto* limits = new QHBoxLayout;
        limits->addWidget(row == 0 ? length_ : angle_);
        for (int i = 2 * row; i < 2 * row + 2; ++i) {
            limits->addWidget(min_max_labels_[i]);
            limits->addWidget(min_max_[i]);
        }
        layout->addLayout(limits);
    }

    auto* user_row = new QHBoxLayout;
    user_row->addWidget(user_filter_);
    user_row->addStretch();
    user_row->addWidget(dcode_label_);
    user_row->addWidget(dcode_);
    layout->addLayout(user_row);

    auto* filter_row = new QHBoxLayout;
    filter_row->addWidget(filter_);
    filter_row->addStretch();
    filter_row->addWidget(reset_);
    filter_row->addWidget(attributes_);
    layout->addLayout(filter_row);

    auto* profile_row = new QHBoxLayout;
    profile_row->addWidget(profile_);
    profile_row->addStretch();
    profile_row->addWidget(advanced_);
    layout->addLayout(profile_row);

    auto* actions = new QGridLayout;
    const QList<QPushButton*> action_buttons = {select_,   highlight_, search_,      unselect_,
                                                turn_off_, histogram_, close_reset_, close_};
    for (int i = 0; i < action_buttons.size(); ++i) {
        actions->addWidget(action_buttons.at(i), i / 4, i % 4);
    }
    layout->addLayout(actions);
    setFixedWidth(kWidth);

    // ---- connections --------------------------------------------------------------------------
    for (size_t i = 0; i < type_buttons_.size(); ++i) {
        const int bit = kTypeButtons[i].bit;
        connect(type_buttons_[i], &QPushButton::clicked, this,
                [this, bit](bool checked) { on_FeatureType_clicked(bit, checked); });
    }
    for (size_t i = 0; i < pick_buttons_.size(); ++i) {
        const int code = kPickButtons[i].code;
        connect(pick_buttons_[i], &QPushButton::clicked, this, [this, code] { pickSymbol(code); });
    }
    connect(include_symbols_, &QLineEdit::editingFinished, this,
            &Grc_Tbv_featuresfilter::on_Symbols_edited);
    connect(exclude_symbols_, &QLineEdit::editingFinished, this,
            &Grc_Tbv_featuresfilter::on_Symbols_edited);
    include_symbols_->installEventFilter(this);
    exclude_symbols_->installEventFilter(this);
    connect(include_attributes_, &QLineEdit::editingFinished, this,
            &Grc_Tbv_featuresfilter::Compare_Filter_Attitide);
    connect(exclude_attributes_, &QLineEdit::editingFinished, this,
            &Grc_Tbv_featuresfilter::Compare_Filter_Attitide);
    connect(include_attr_button_, &QPushButton::clicked, this,
            &Grc_Tbv_featuresfilter::on_Attributes_clicked);
    connect(attributes_, &QPushButton::clicked, this,
            &Grc_Tbv_featuresfilter::on_Attributes_clicked);
    for (QCheckBox* box : {lines_, ovals_, length_, angle_}) {
        connect(box, &QCheckBox::toggled, this, &Grc_Tbv_featuresfilter::updateLengthAngleRows);
    }
    connect(user_filter_, &QPushButton::clicked, this,
            &Grc_Tbv_featuresfilter::on_UserFilter_clicked);
    connect(filter_, &QCheckBox::toggled, this, &Grc_Tbv_featuresfilter::on_Filter_toggled);
    connect(reset_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Reset_clicked);
    connect(profile_, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &Grc_Tbv_featuresfilter::on_Profile_changed);
    connect(advanced_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Advanced_clicked);
    connect(select_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Select_clicked);
    connect(highlight_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Highlight_clicked);
    connect(search_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Search_clicked);
    connect(unselect_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Unselect_clicked);
    connect(turn_off_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_TurnOff_clicked);
    connect(histogram_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Histogram_clicked);
    connect(close_reset_, &QPushButton::clicked, this,
            &Grc_Tbv_featuresfilter::on_CloseReset_clicked);
    connect(close_, &QPushButton::clicked, this, &Grc_Tbv_featuresfilter::on_Close_clicked);

    updateLengthAngleRows();
    setWindowTitle(tr("Feature Seleciton filter"));  // misspelt on purpose: the host's title
}

// ---- public operations --------------------------------------------------------------------------

void Grc_Tbv_featuresfilter::update_featuretype_filter() {
    WC_GUARDED({
        settings_.feature_type = Korvo::UIAPI::getSelectedPara(host_) & Korvo::API::FT_All;
        setTypeButtons(settings_.feature_type);
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::update_attribute_filter() {
    WC_GUARDED({
        if (attributes_popup_.isNull()) {
            return;
        }
        include_attributes_->setText(QString::fromStdString(
            wc::attributeFieldText(attributes_popup_->get_attributeinfoFilter_list())));
        attributes_popup_->hide();
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::update_symbol_text(QString symbol, bool replace, bool include) {
    WC_GUARDED({
        const std::string engine = symbol.toStdString();
        Korvo::UIAPI::setSymbolDataByMilUnit(host_, symbol);
        QLineEdit* field = include ? include_symbols_ : exclude_symbols_;
        wc::SymbolNameMap& names = include ? include_names_ : exclude_names_;
        if (replace) {
            names.clear();
            names[symbol] = engine;
            field->setText(symbol);
        } else {
            names[symbol] = engine;
            field->setText(wc::addSymbolToField(field->text(), symbol));
        }
        on_Symbols_edited();
    });
}

void Grc_Tbv_featuresfilter::send_search_info(QString text) {
    WC_GUARDED({
        on_Search_clicked();
        search_popup_->set_search_text(text);
        search_popup_->on_Search_clicked();
    });
}

void Grc_Tbv_featuresfilter::get_job_info(const QString& job, const QString& step,
                                          const QStringList& layers) {
    WC_GUARDED({
        job_ = job;
        step_ = step;
        layers_ = layers;
        for (Widget_listpopup* popup : {include_list_.data(), exclude_list_.data()}) {
            if (popup != nullptr) {
                fillSymbolList(popup);
            }
        }
        if (!search_popup_.isNull()) {
            search_popup_->set_job(job_, step_, layers_);
        }
    });
}

void Grc_Tbv_featuresfilter::get_attributeFilter_list(
    std::map<std::string, std::string> conditions) {
    WC_GUARDED({
        popup_conditions_ = conditions;
        popup_has_conditions_ = !conditions.empty();
        setAttributeButtonRed(popup_has_conditions_);
        emit send_attributeinfoFilter_list(conditions);
    });
}

void Grc_Tbv_featuresfilter::forward_FilterAttribute_Info(QObject* info) {
    WC_GUARDED({
        if (info == nullptr) {
            return;
        }
        const auto* feature = reinterpret_cast<const Korvo::API::featureInfo*>(info);
        attributePopup()->add_conditions(feature->attributes);
        emit send_AttributesFilter_Info(info);
    });
}

void Grc_Tbv_featuresfilter::get_arrtibuteIncludeLogic(int logic) {
    WC_GUARDED({ popup_logic_ = logic; });
}

void Grc_Tbv_featuresfilter::receive_search_info(Korvo::API::featureInfo& feature) {
    WC_GUARDED({ send(wc::module::GraphicView, wc::code::ZoomToFeature, {}, &feature); });
}

// ---- buttons, in the order the user meets them --------------------------------------------------

void Grc_Tbv_featuresfilter::on_FeatureType_clicked(int bit, bool checked) {
    WC_GUARDED({
        if (checked) {
            settings_.feature_type |= bit;
        } else {
            settings_.feature_type &= ~bit;
        }
        sendFilter(wc::code::FilterChanged);
        Compare_Filter_Attitide();
        Korvo::UIAPI::setSelectedPara(host_, settings_.feature_type);
    });
}

void Grc_Tbv_featuresfilter::pickSymbol(int code) {
    WC_GUARDED({ send(wc::module::GraphicView, code, {}, nullptr); });
}

void Grc_Tbv_featuresfilter::on_Symbols_edited() {
    WC_GUARDED({
        buildSymbolList();
        sendFilter(wc::code::FilterChanged);
        Compare_Filter_Attitide();
    });
}

bool Grc_Tbv_featuresfilter::eventFilter(QObject* watched, QEvent* event) {
    // A double click on a symbol field opens its symbol list.
    if (event->type() == QEvent::MouseButtonDblClick &&
        (watched == include_symbols_ || watched == exclude_symbols_)) {
        WC_GUARDED({
            Widget_listpopup* popup = symbolList(watched == include_symbols_);
            popup->show();
            popup->raise();
        });
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Grc_Tbv_featuresfilter::on_Attributes_clicked() {
    WC_GUARDED({
        Widget_Filter_Attributes* popup = attributePopup();
        popup->show();
        popup->raise();
        emit send_AttrpointFilter_signal();
    });
}

void Grc_Tbv_featuresfilter::updateLengthAngleRows() {
    const bool shapes = lines_->isChecked() || ovals_->isChecked();
    length_->setEnabled(shapes);
    angle_->setEnabled(shapes);
    const bool rows[] = {shapes && length_->isChecked(), shapes && angle_->isChecked()};
    for (size_t i = 0; i < min_max_.size(); ++i) {
        min_max_labels_[i]->setEnabled(rows[i / 2]);
        min_max_[i]->setEnabled(rows[i / 2]);
    }
}

void Grc_Tbv_featuresfilter::on_UserFilter_clicked() {
    WC_GUARDED({
        if (user_filters_.isNull()) {
            user_filters_ = new Widget_UserFilterList(this);
            user_filters_->setObjectName(QStringLiteral("userFilterList"));
            connect(user_filters_, &Widget_UserFilterList::send_user_filter, this,
                    &Grc_Tbv_featuresfilter::on_UserFilter_chosen);
        }
        user_filters_->move(user_filter_->mapToGlobal(QPoint(0, user_filter_->height())));
        user_filters_->show();
        user_filters_->raise();
    });
}

void Grc_Tbv_featuresfilter::on_UserFilter_chosen(const QString& name) {
    WC_GUARDED({
        const std::optional<wc::UserFilterPreset> preset = wc::userFilterPreset(name);
        if (!preset) {
            LOG(ERROR) << "unknown user filter \"" << name.toStdString() << "\"";
            return;
        }
        on_Reset_clicked();
        if (preset->reset_only) {
            return;
        }
        if (preset->feature_type) {
            settings_.feature_type = *preset->feature_type;
        }
        if (preset->attribute_logic) {
            settings_.attribute_logic = *preset->attribute_logic;
            // Select and Highlight rebuild the logic from the popup's: it must agree.
            popup_logic_ = *preset->attribute_logic;
        }
        if (preset->attributes) {
            settings_.attributes = *preset->attributes;
        }
        sendFilter(wc::code::FilterChanged);
        Compare_Filter_Attitide();
        Korvo::UIAPI::setSelectedPara(host_, settings_.feature_type);
        setTypeButtons(settings_.feature_type);
        include_attributes_->setText(
            QString::fromStdString(wc::attributeFieldText(settings_.attributes)));
        switch (wc::userFilterFollowUp(name)) {
            case wc::UserFilterFollowUp::Select:
                on_Select_clicked();
                break;
            case wc::UserFilterFollowUp::Highlight:
                on_Highlight_clicked();
                break;
            case wc::UserFilterFollowUp::None:
                break;
        }
    });
}

void Grc_Tbv_featuresfilter::on_Filter_toggled(bool checked) {
    WC_GUARDED({
        if (checked) {
            settings_.attribute_logic = saved_logic_;
        } else {
            saved_logic_ = settings_.attribute_logic;
            settings_.attribute_logic = wc::kAttributesOff;
        }
    });
}

void Grc_Tbv_featuresfilter::on_Reset_clicked() {
    WC_GUARDED({
        setTypeButtons(Korvo::API::FT_All);
        {
            // The box is checked without giving back a saved logic.
            const QSignalBlocker blocker(filter_);
            filter_->setChecked(true);
        }
        {
            const QSignalBlocker blocker(profile_);
            profile_->setCurrentIndex(0);
        }
        setAttributeButtonRed(false);
        settings_.feature_type = Korvo::API::FT_All;
        settings_.symbols.clear();
        settings_.symbol_mode = 0;
        settings_.profile = 0;
        include_symbols_->clear();
        exclude_symbols_->clear();
        include_names_.clear();
        exclude_names_.clear();
        include_attributes_->clear();
        exclude_attributes_->clear();
        popup_conditions_.clear();
        popup_has_conditions_ = false;
        emit Reset_Attributes_Conditions();
        Korvo::UIAPI::setSelectedPara(host_, Korvo::API::FT_All);
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::on_Profile_changed(int index) {
    WC_GUARDED({
        settings_.profile = index;
        sendFilter(wc::code::FilterChanged);
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::on_Advanced_clicked() {
    // Does nothing: kept on purpose.
}

void Grc_Tbv_featuresfilter::on_Select_clicked() {
    WC_GUARDED({
        buildSymbolList();
        buildAttributeMap();
        sendFilter(wc::code::FilterSelect);
    });
}

void Grc_Tbv_featuresfilter::on_Highlight_clicked() {
    WC_GUARDED({
        buildSymbolList();
        buildAttributeMap();
        sendFilter(wc::code::FilterHighlight);
    });
}

void Grc_Tbv_featuresfilter::on_Search_clicked() {
    WC_GUARDED({
        if (search_popup_.isNull()) {
            search_popup_ = new Widget_Filter_Searchpopup(host_, this);
            search_popup_->setObjectName(QStringLiteral("searchPopup"));
            search_popup_->set_job(job_, step_, layers_);
            connect(search_popup_, &Widget_Filter_Searchpopup::zoomtoview, this,
                    &Grc_Tbv_featuresfilter::receive_search_info);
        }
        search_popup_->show();
        search_popup_->raise();
    });
}

void Grc_Tbv_featuresfilter::on_Unselect_clicked() {
    WC_GUARDED({
        settings_.symbols.clear();
        sendFilter(wc::code::FilterUnselect);
    });
}

void Grc_Tbv_featuresfilter::on_TurnOff_clicked() {
    WC_GUARDED({ sendFilter(wc::code::FilterTurnOff); });
}

void Grc_Tbv_featuresfilter::on_Histogram_clicked() {
    WC_GUARDED({
        send(wc::module::JobList, wc::code::FilterHistogramOrClose,
             {{QStringLiteral("type"), QStringLiteral("histogram")}}, nullptr);
    });
}

void Grc_Tbv_featuresfilter::on_CloseReset_clicked() {
    WC_GUARDED({
        on_Reset_clicked();
        on_Close_clicked();
    });
}

void Grc_Tbv_featuresfilter::on_Close_clicked() {
    WC_GUARDED({
        closeChildren();
        // The job list drops its filter state before the window goes.
        send(wc::module::JobList, wc::code::FilterHistogramOrClose,
             {{QStringLiteral("type"), QStringLiteral("close")}}, nullptr);
        close();
    });
}

void Grc_Tbv_featuresfilter::change_language() {
    WC_GUARDED({
        snap_->setText(tr("Snap Features"));
        include_label_->setText(tr("Include Symbols:"));
        exclude_label_->setText(tr("Exclude Symbols:"));
        for (size_t i = 0; i < pick_buttons_.size(); ++i) {
            pick_buttons_[i]->setToolTip(tr(kPickButtons[i].tip));
        }
        include_attr_label_->setText(tr("Include Attributes:"));
        exclude_attr_label_->setText(tr("Exclude Attributes:"));
        text_label_->setText(tr("Text filter:"));
        lines_->setText(tr("Lines"));
        ovals_->setText(tr("Ovals"));
        length_->setText(tr("Length"));
        angle_->setText(tr("Angle"));
        for (size_t i = 0; i < min_max_labels_.size(); ++i) {
            min_max_labels_[i]->setText(i % 2 == 0 ? tr("Min:") : tr("Max:"));
        }
        user_filter_->setText(tr("User filter ..."));
        dcode_label_->setText(tr("Dcode :"));
        filter_->setText(tr("Filter"));
        reset_->setText(tr("Reset"));
        attributes_->setText(tr("Attributes"));
        profile_->setItemText(0, tr("All Profile"));
        profile_->setItemText(1, tr("In Profile"));
        profile_->setItemText(2, tr("Out Profile"));
        advanced_->setText(tr("Advanced ..."));
        select_->setText(tr("Select"));
        highlight_->setText(tr("Highlight"));
        search_->setText(tr("Search"));
        unselect_->setText(tr("Unselect"));
        turn_off_->setText(tr("Turn Off"));
        histogram_->setText(tr("Histogram"));
        close_reset_->setText(buttonText(tr("Close & Reset")));
        close_->setText(tr("Close"));
        if (!include_list_.isNull())
            include_list_->change_language();
        if (!exclude_list_.isNull())
            exclude_list_->change_language();
        if (!attributes_popup_.isNull())
            attributes_popup_->change_language();
        if (!search_popup_.isNull())
            search_popup_->change_language();
        if (!user_filters_.isNull())
            user_filters_->change_language();
        setWindowTitle(tr("Features Filter Popup"));
    });
}

void Grc_Tbv_featuresfilter::change_unit() {
    WC_GUARDED({
        // Picked symbols are shown again from their engine names, typed ones re-expressed.
        const auto reexpress = [this](double value) {
            return Korvo::UIAPI::getUnitData(host_, value);
        };
        for (const auto& field : {std::make_pair(include_symbols_, &include_names_),
                                  std::make_pair(exclude_symbols_, &exclude_names_)}) {
            wc::SymbolNameMap shown;
            QStringList parts = field.first->text().split(QLatin1Char(';'));
            for (QString& part : parts) {
                auto known = field.second->find(part);
                if (known == field.second->end()) {
                    part = wc::reexpressSymbolNumbers(part, reexpress);
                    continue;
                }
                QString again = QString::fromStdString(known->second);
                Korvo::UIAPI::setSymbolUIData(host_, again);
                shown[again] = known->second;
                part = again;
            }
            *field.second = shown;
            field.first->setText(parts.join(QLatin1Char(';')));
        }
        for (Widget_listpopup* popup : {include_list_.data(), exclude_list_.data()}) {
            if (popup != nullptr) {
                fillSymbolList(popup);
            }
        }
        emit send_change_unit();
    });
}

// ---- helpers ------------------------------------------------------------------------------------

void Grc_Tbv_featuresfilter::buildSymbolList() {
    wc::SymbolField include{include_symbols_->text(), include_names_, {}};
    wc::SymbolField exclude{exclude_symbols_->text(), exclude_names_, {}};
    if (!include_list_.isNull()) {
        include.expand = [this](const QString& p) { return include_list_->find_input_items(p); };
    }
    if (!exclude_list_.isNull()) {
        exclude.expand = [this](const QString& p) { return exclude_list_->find_input_items(p); };
    }
    std::function<QString(const QString&)> host_convert;
    if (Korvo::UIAPI::getUnit(host_) != 0) {
        host_convert = [this](const QString& name) {
            QString converted = name;
            Korvo::UIAPI::setSymbolAPIData(host_, converted);
            return converted;
        };
    }
    const wc::SymbolList list = wc::buildSymbolList(include, exclude, host_convert);
    settings_.symbol_mode = list.mode;
    settings_.symbols = list.symbols;
}

void Grc_Tbv_featuresfilter::buildAttributeMap() {
    wc::AttributeFilterInput input;
    input.include_text = include_attributes_->text().toStdString();
    input.exclude_text = exclude_attributes_->text().toStdString();
    input.popup_logic = popup_logic_;
    input.popup_has_conditions = popup_has_conditions_;
    input.current = popup_conditions_;
    const wc::AttributeFilter filter = wc::buildAttributeFilter(input);
    settings_.attributes = filter.attributes;
    // While "Filter" is off the conditions stay switched off; the logic waits for the box.
    if (filter_->isChecked()) {
        settings_.attribute_logic = filter.logic;
    } else {
        saved_logic_ = filter.logic;
        settings_.attribute_logic = wc::kAttributesOff;
    }
}

void Grc_Tbv_featuresfilter::sendFilter(int code) {
    send(wc::module::JobList, code, {}, &settings_);
}

void Grc_Tbv_featuresfilter::send(const QString& receiver, int code, const QVariantMap& values,
                                  void* payload) {
    PluginMetaData message;
    message.sender = wc::module::MoveToolbar;
    message.receiver = receiver;
    message.code = code;
    message.values = values;
    message.payload = payload;
    LOG(INFO) << "feature filter sends " << code << " to " << receiver.toStdString();
    QTpluginsManger4CAM::instance()->recMegToPlugin(host_, message);
}

void Grc_Tbv_featuresfilter::Compare_Filter_Attitide() {
    wc::FilterFace face;
    face.feature_type = settings_.feature_type;
    face.include_symbols = include_symbols_->text();
    face.exclude_symbols = exclude_symbols_->text();
    face.profile = profile_->currentIndex();
    face.include_attributes = include_attributes_->text();
    face.exclude_attributes = exclude_attributes_->text();
    if (wc::isDefaultFilter(face)) {
        emit Reset_Filter_Attitude_Signal();
    } else {
        emit Change_Filter_Attitude_Signal();
    }
}

void Grc_Tbv_featuresfilter::setTypeButtons(int mask) {
    for (size_t i = 0; i < type_buttons_.size(); ++i) {
        type_buttons_[i]->setChecked((mask & kTypeButtons[i].bit) != 0);
    }
}

void Grc_Tbv_featuresfilter::setAttributeButtonRed(bool red) {
    attributes_->setStyleSheet(red ? QString::fromLatin1(kAttributeButtonRed) : QString());
}

Widget_listpopup* Grc_Tbv_featuresfilter::symbolList(bool include) {
    QPointer<Widget_listpopup>& popup = include ? include_list_ : exclude_list_;
    if (popup.isNull()) {
        popup = new Widget_listpopup(this);
        popup->setObjectName(include ? QStringLiteral("includeSymbolList")
                                     : QStringLiteral("excludeSymbolList"));
        connect(popup, &Widget_listpopup::send_selected_symbols, this,
                [this, include](const QStringList& shown, const QStringList& engine) {
                    takePickedSymbols(include, shown, engine);
                });
        fillSymbolList(popup);
    }
    return popup;
}

void Grc_Tbv_featuresfilter::fillSymbolList(Widget_listpopup* popup) {
    std::map<std::string, int> counts;
    for (const QString& layer : layers_) {
        std::vector<Korvo::API::featureInfo> features;
        if (!Korvo::API::get_all_feature_info(job_.toStdString(), step_.toStdString(),
                                              layer.toStdString(), features,
                                              Korvo::API::FT_All & ~Korvo::API::FT_Text)) {
            LOG(ERROR) << "no features of layer " << layer.toStdString();
            continue;
        }
        for (const Korvo::API::featureInfo& feature : features) {
            if (!feature.symbol.empty()) {
                ++counts[feature.symbol];
            }
        }
    }
    QStringList shown;
    QStringList engine;
    for (const auto& entry : counts) {
        QString name = QString::fromStdString(entry.first);
        engine << name;
        Korvo::UIAPI::setSymbolUIData(host_, name);
        shown << QStringLiteral("%1 (%2)").arg(name).arg(entry.second);
    }
    popup->set_items(shown, engine);
}

void Grc_Tbv_featuresfilter::takePickedSymbols(bool include, const QStringList& shown,
                                               const QStringList& engine) {
    WC_GUARDED({
        QLineEdit* field = include ? include_symbols_ : exclude_symbols_;
        wc::SymbolNameMap& names = include ? include_names_ : exclude_names_;
        QString text = field->text();
        for (int i = 0; i < shown.size() && i < engine.size(); ++i) {
            names[shown.at(i)] = engine.at(i).toStdString();
            text = wc::addSymbolToField(text, shown.at(i));
        }
        field->setText(text);
        on_Symbols_edited();
    });
}

Widget_Filter_Attributes* Grc_Tbv_featuresfilter::attributePopup() {
    if (attributes_popup_.isNull()) {
        attributes_popup_ = new Widget_Filter_Attributes(this);
        attributes_popup_->setObjectName(QStringLiteral("attributesPopup"));
        attributes_popup_->set_attribute_names({QStringLiteral(".smd"), QStringLiteral(".drill"),
                                                QStringLiteral(".tear_drop"),
                                                QStringLiteral(".fiducial")});
        connect(attributes_popup_, &Widget_Filter_Attributes::send_attributeinfoFilter_list, this,
                &Grc_Tbv_featuresfilter::get_attributeFilter_list);
        connect(attributes_popup_, &Widget_Filter_Attributes::send_IncludeLogic, this,
                &Grc_Tbv_featuresfilter::get_arrtibuteIncludeLogic);
        connect(attributes_popup_, &Widget_Filter_Attributes::apply_conditions, this,
                &Grc_Tbv_featuresfilter::update_attribute_filter);
        connect(this, &Grc_Tbv_featuresfilter::Reset_Attributes_Conditions, attributes_popup_,
                &Widget_Filter_Attributes::reset_conditions);
    }
    return attributes_popup_;
}

void Grc_Tbv_featuresfilter::closeChildren() {
    const QList<QWidget*> children = {include_list_.data(), exclude_list_.data(),
                                      attributes_popup_.data(), search_popup_.data(),
                                      user_filters_.data()};
    for (QWidget* child : children) {
        if (child != nullptr) {
            child->close();
        }
    }
}
