#pragma once
// The feature filter popup of the graphic view's toolbar: restricts the next Select, Unselect,
// Highlight or Turn Off to features of chosen types, polarities, symbols, attributes and
// position against the profile. It keeps the filter record and hands it to the job list by
// message; the job list and the view do the selecting.

#include <QPointer>
#include <QWidget>
#include <array>
#include <map>
#include <string>

#include "FeatureFilterSettings.h"
#include "Korvo_API_types.h"
#include "frame/WidgetCommonExport.h"
#include "toolbar/FeatureFilterForm.h"
#include "toolbar/SymbolFilterFields.h"

class QLineEdit;
class Widget_Filter_Attributes;
class Widget_Filter_Searchpopup;
class Widget_UserFilterList;
class Widget_listpopup;

class WIDGET_COMMON_EXPORT Grc_Tbv_featuresfilter : public QWidget {
    Q_OBJECT
public:
    // The toolbar is the host handle of every service call and message; without one the
    // parent stands in for it.
    Grc_Tbv_featuresfilter(Graphic_Toolbar_Move* toolbar, QWidget* parent);
    explicit Grc_Tbv_featuresfilter(QWidget* parent);

    // The record the filter messages carry.
    const FeatureFilterSettings& filterSettings() const { return settings_; }

public slots:
    // Sets the type and polarity buttons, and the record's mask, from the host's selection mask.
    void update_featuretype_filter();
    // Takes the attribute popup's conditions into the include attribute field.
    void update_attribute_filter();
    // The view's answer to a pick: `symbol` in the engine's spelling.
    void update_symbol_text(QString symbol, bool replace, bool include);
    // A text to look for, shown in the search popup.
    void send_search_info(QString text);
    // The job, step and work layers the symbol lists and the search draw from.
    void get_job_info(const QString& job, const QString& step, const QStringList& layers);
    void get_attributeFilter_list(std::map<std::string, std::string> conditions);
    // `info` is a Korvo::API::featureInfo the user picked: its attributes become conditions.
    void forward_FilterAttribute_Info(QObject* info);
    void get_arrtibuteIncludeLogic(int logic);
    void receive_search_info(Korvo::API::featureInfo& feature);

    void on_Select_clicked();
    void on_Highlight_clicked();
    void on_Search_clicked();
    void on_Unselect_clicked();
    void on_TurnOff_clicked();
    void on_Histogram_clicked();
    void on_Reset_clicked();
    void on_CloseReset_clicked();
    void on_Close_clicked();
    void on_UserFilter_clicked();
    void on_UserFilter_chosen(const QString& name);
    void on_Attributes_clicked();
    void on_Advanced_clicked();
    void change_language();
    void change_unit();

signals:
    void Change_Filter_Attitude_Signal();
    void Reset_Filter_Attitude_Signal();
    void Reset_Attributes_Conditions();
    void send_AttributesFilter_Info(QObject* info);
    // Asks the host to report the attributes of the next feature picked in the view.
    void send_AttrpointFilter_signal();
    void send_attributeinfoFilter_list(std::map<std::string, std::string> conditions);
    void send_change_unit();

private:
    void initFeaturesFilter();
    bool eventFilter(QObject* watched, QEvent* event) override;

    void on_FeatureType_clicked(int bit, bool checked);
    void on_Profile_changed(int index);
    void on_Symbols_edited();
    void on_Filter_toggled(bool checked);
    void pickSymbol(int code);
    void connectControls();

    void buildSymbolList();
    void buildAttributeMap();
    // Select and Highlight: the symbol list and attribute map built from the fields first.
    void sendBuiltFilter(int code);
    void sendFilter(int code);
    void send(const QString& receiver, int code, const QVariantMap& values, void* payload);
    void Compare_Filter_Attitide();
    void setAttributeButtonRed(bool red);
    QLineEdit* symbolField(bool include) const;
    Widget_listpopup* symbolList(bool include);
    Widget_Filter_Attributes* attributePopup();
    void fillSymbolList(Widget_listpopup* popup);
    void takePickedSymbols(bool include, const QStringList& shown, const QStringList& engine);
    void closeChildren();

    void* host_;
    FeatureFilterSettings settings_;
    wc::SymbolNameMap include_names_;
    wc::SymbolNameMap exclude_names_;
    int popup_logic_ = 0;
    bool popup_has_conditions_ = false;
    std::map<std::string, std::string> popup_conditions_;
    int saved_logic_ = 0;
    QString job_;
    QString step_;
    QStringList layers_;

    QPointer<Widget_listpopup> include_list_;
    QPointer<Widget_listpopup> exclude_list_;
    QPointer<Widget_Filter_Attributes> attributes_popup_;
    QPointer<Widget_Filter_Searchpopup> search_popup_;
    QPointer<Widget_UserFilterList> user_filters_;

    wc::FeatureFilterForm ui_;
};
