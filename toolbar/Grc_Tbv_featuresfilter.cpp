#include "Grc_Tbv_featuresfilter.h"

#include <glog/logging.h>

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "QTpluginsManger4CAM.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/PluginMessages.h"
#include "toolbar/AttributeConditions.h"
#include "toolbar/PopupParts.h"
#include "toolbar/SymbolListEntries.h"
#include "toolbar/UserFilterPresets.h"
#include "toolbar/Widget_Filter_Attributes.h"
#include "toolbar/Widget_Filter_Searchpopup.h"
#include "toolbar/Widget_UserFilterList.h"
#include "toolbar/Widget_listpopup.h"

namespace {

const char* const kAttributeButtonRed = "background-color:rgb(255, 0, 0)";

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
    ui_.setupUi(this);
    connectControls();
    // Misspelt on purpose: the host's title. After a language change it reads differently.
    wc::setSourceText(this, this, QT_TR_NOOP("Feature Seleciton filter"),
                      QT_TR_NOOP("Features Filter Popup"));
}

void Grc_Tbv_featuresfilter::connectControls() {
    const std::array<int, 7> bits = wc::featureTypeBits();
    for (size_t i = 0; i < bits.size(); ++i) {
        connect(ui_.type_buttons[i], &QPushButton::clicked, this,
                [this, bit = bits[i]](bool checked) { on_FeatureType_clicked(bit, checked); });
    }
    const std::array<int, 4> codes = wc::symbolPickCodes();
    for (size_t i = 0; i < codes.size(); ++i) {
        connect(ui_.pick_buttons[i], &QPushButton::clicked, this,
                [this, code = codes[i]] { pickSymbol(code); });
    }
    for (QLineEdit* field : {ui_.include_symbols, ui_.exclude_symbols}) {
        connect(field, &QLineEdit::editingFinished, this,
                &Grc_Tbv_featuresfilter::on_Symbols_edited);
        field->installEventFilter(this);
    }
    for (QLineEdit* field : {ui_.include_attributes, ui_.exclude_attributes}) {
        connect(field, &QLineEdit::editingFinished, this,
                &Grc_Tbv_featuresfilter::Compare_Filter_Attitide);
    }
    for (QCheckBox* box : {ui_.lines, ui_.ovals, ui_.length, ui_.angle}) {
        connect(box, &QCheckBox::toggled, this, [this] { ui_.updateLengthAngleRows(); });
    }
    connect(ui_.filter, &QCheckBox::toggled, this, &Grc_Tbv_featuresfilter::on_Filter_toggled);
    connect(ui_.profile, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &Grc_Tbv_featuresfilter::on_Profile_changed);
    using Slot = void (Grc_Tbv_featuresfilter::*)();
    const std::pair<QPushButton*, Slot> buttons[] = {
        {ui_.include_attr_button, &Grc_Tbv_featuresfilter::on_Attributes_clicked},
        {ui_.attributes, &Grc_Tbv_featuresfilter::on_Attributes_clicked},
        {ui_.user_filter, &Grc_Tbv_featuresfilter::on_UserFilter_clicked},
        {ui_.reset, &Grc_Tbv_featuresfilter::on_Reset_clicked},
        {ui_.advanced, &Grc_Tbv_featuresfilter::on_Advanced_clicked},
        {ui_.actions[0], &Grc_Tbv_featuresfilter::on_Select_clicked},
        {ui_.actions[1], &Grc_Tbv_featuresfilter::on_Highlight_clicked},
        {ui_.actions[2], &Grc_Tbv_featuresfilter::on_Search_clicked},
        {ui_.actions[3], &Grc_Tbv_featuresfilter::on_Unselect_clicked},
        {ui_.actions[4], &Grc_Tbv_featuresfilter::on_TurnOff_clicked},
        {ui_.actions[5], &Grc_Tbv_featuresfilter::on_Histogram_clicked},
        {ui_.actions[6], &Grc_Tbv_featuresfilter::on_CloseReset_clicked},
        {ui_.actions[7], &Grc_Tbv_featuresfilter::on_Close_clicked},
    };
    for (const auto& button : buttons) {
        connect(button.first, &QPushButton::clicked, this, button.second);
    }
}

// ---- public operations --------------------------------------------------------------------------

void Grc_Tbv_featuresfilter::update_featuretype_filter() {
    WC_GUARDED({
        settings_.feature_type = Korvo::UIAPI::getSelectedPara(host_) & Korvo::API::FT_All;
        ui_.setTypeButtons(settings_.feature_type);
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::update_attribute_filter() {
    WC_GUARDED({
        if (attributes_popup_.isNull()) {
            return;
        }
        ui_.include_attributes->setText(QString::fromStdString(
            wc::attributeFieldText(attributes_popup_->get_attributeinfoFilter_list())));
        attributes_popup_->hide();
        Compare_Filter_Attitide();
    });
}

void Grc_Tbv_featuresfilter::update_symbol_text(QString symbol, bool replace, bool include) {
    WC_GUARDED({
        const QString engine = symbol;
        Korvo::UIAPI::setSymbolDataByMilUnit(host_, symbol);
        if (replace) {
            (include ? include_names_ : exclude_names_).clear();
            symbolField(include)->clear();
        }
        takePickedSymbols(include, {symbol}, {engine});
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
        (watched == ui_.include_symbols || watched == ui_.exclude_symbols)) {
        WC_GUARDED({
            Widget_listpopup* popup = symbolList(watched == ui_.include_symbols);
            wc::showRaised(popup);
        });
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Grc_Tbv_featuresfilter::on_Attributes_clicked() {
    WC_GUARDED({
        Widget_Filter_Attributes* popup = attributePopup();
        wc::showRaised(popup);
        emit send_AttrpointFilter_signal();
    });
}

void Grc_Tbv_featuresfilter::on_UserFilter_clicked() {
    WC_GUARDED({
        if (user_filters_.isNull()) {
            user_filters_ = new Widget_UserFilterList(this);
            user_filters_->setObjectName(QStringLiteral("userFilterList"));
            connect(user_filters_, &Widget_UserFilterList::send_user_filter, this,
                    &Grc_Tbv_featuresfilter::on_UserFilter_chosen);
        }
        user_filters_->move(ui_.user_filter->mapToGlobal(QPoint(0, ui_.user_filter->height())));
        wc::showRaised(user_filters_);
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
        ui_.setTypeButtons(settings_.feature_type);
        ui_.include_attributes->setText(
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
        ui_.setTypeButtons(Korvo::API::FT_All);
        {
            // The box is checked without giving back a saved logic.
            const QSignalBlocker blocker(ui_.filter);
            ui_.filter->setChecked(true);
        }
        {
            const QSignalBlocker blocker(ui_.profile);
            ui_.profile->setCurrentIndex(0);
        }
        setAttributeButtonRed(false);
        settings_.feature_type = Korvo::API::FT_All;
        settings_.symbols.clear();
        settings_.symbol_mode = 0;
        settings_.profile = 0;
        ui_.include_symbols->clear();
        ui_.exclude_symbols->clear();
        include_names_.clear();
        exclude_names_.clear();
        ui_.include_attributes->clear();
        ui_.exclude_attributes->clear();
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
    WC_GUARDED({ sendBuiltFilter(wc::code::FilterSelect); });
}

void Grc_Tbv_featuresfilter::on_Highlight_clicked() {
    WC_GUARDED({ sendBuiltFilter(wc::code::FilterHighlight); });
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
        wc::showRaised(search_popup_);
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
        wc::retranslate(this);
        // That pass reaches the child popups too, in the filter's context; each then shows its
        // texts again in its own.
        const auto follow = [](auto* popup) {
            if (popup != nullptr) {
                popup->change_language();
            }
        };
        follow(include_list_.data());
        follow(exclude_list_.data());
        follow(attributes_popup_.data());
        follow(search_popup_.data());
        follow(user_filters_.data());
    });
}

void Grc_Tbv_featuresfilter::change_unit() {
    WC_GUARDED({
        // Picked symbols are shown again from their engine names, typed ones re-expressed.
        const auto show = [this](const std::string& engine) {
            QString shown = QString::fromStdString(engine);
            Korvo::UIAPI::setSymbolUIData(host_, shown);
            return shown;
        };
        const auto reexpress = [this](double value) {
            return Korvo::UIAPI::getUnitData(host_, value);
        };
        for (const bool include : {true, false}) {
            QLineEdit* field = symbolField(include);
            wc::SymbolNameMap& names = include ? include_names_ : exclude_names_;
            field->setText(wc::reexpressSymbolField(field->text(), names, show, reexpress));
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
    wc::SymbolField include{ui_.include_symbols->text(), include_names_, {}};
    wc::SymbolField exclude{ui_.exclude_symbols->text(), exclude_names_, {}};
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
    input.include_text = ui_.include_attributes->text().toStdString();
    input.exclude_text = ui_.exclude_attributes->text().toStdString();
    input.popup_logic = popup_logic_;
    input.popup_has_conditions = popup_has_conditions_;
    input.current = popup_conditions_;
    const wc::AttributeFilter filter = wc::buildAttributeFilter(input);
    settings_.attributes = filter.attributes;
    // While "Filter" is off the conditions stay switched off; the logic waits for the box.
    if (ui_.filter->isChecked()) {
        settings_.attribute_logic = filter.logic;
    } else {
        saved_logic_ = filter.logic;
        settings_.attribute_logic = wc::kAttributesOff;
    }
}

void Grc_Tbv_featuresfilter::sendBuiltFilter(int code) {
    buildSymbolList();
    buildAttributeMap();
    sendFilter(code);
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
    face.include_symbols = ui_.include_symbols->text();
    face.exclude_symbols = ui_.exclude_symbols->text();
    face.profile = ui_.profile->currentIndex();
    face.include_attributes = ui_.include_attributes->text();
    face.exclude_attributes = ui_.exclude_attributes->text();
    if (wc::isDefaultFilter(face)) {
        emit Reset_Filter_Attitude_Signal();
    } else {
        emit Change_Filter_Attitude_Signal();
    }
}

QLineEdit* Grc_Tbv_featuresfilter::symbolField(bool include) const {
    return include ? ui_.include_symbols : ui_.exclude_symbols;
}

void Grc_Tbv_featuresfilter::setAttributeButtonRed(bool red) {
    ui_.attributes->setStyleSheet(red ? QString::fromLatin1(kAttributeButtonRed) : QString());
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
    const wc::SymbolEntries entries = wc::symbolEntries(host_, job_, step_, layers_);
    popup->set_items(entries.shown, entries.engine);
}

void Grc_Tbv_featuresfilter::takePickedSymbols(bool include, const QStringList& shown,
                                               const QStringList& engine) {
    WC_GUARDED({
        QLineEdit* field = symbolField(include);
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
