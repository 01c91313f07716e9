#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTranslator>
#include <QtTest>
#include <optional>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "MessageBoxAnswerer.h"
#include "PluginBus.h"
#include "PluginSpy.h"
#include "ReferenceEngine.h"
#include "ScopedEngineHook.h"
#include "UnitScope.h"
#include "toolbar/Grc_Tbv_featuresfilter.h"
#include "toolbar/Widget_Filter_Attributes.h"
#include "toolbar/Widget_Filter_Searchpopup.h"
#include "toolbar/Widget_listpopup.h"

using wctest::row;

namespace {

using wctest::child;
using wctest::click;

QLineEdit* edit(QObject& popup, const char* name) {
    return child<QLineEdit>(popup, name);
}

// The plug-in spy, with what only the delivery could read: the filter record of the last
// message, the zoomed symbol, and whether the popup was still open.
class Receiver : public wctest::PluginSpy {
public:
    explicit Receiver(QWidget* popup = nullptr) {
        id_ = wcref::PluginBus::instance().subscribe([this, popup](const PluginMetaData& m) {
            record_.reset();
            if (m.payload != nullptr && m.code >= 20000017 && m.code <= 20000021) {
                record_ = *static_cast<const FeatureFilterSettings*>(m.payload);
            }
            if (m.payload != nullptr && m.code == 20000065) {
                zoomed_symbol = static_cast<const Korvo::API::featureInfo*>(m.payload)->symbol;
            }
            sender_visible = popup != nullptr && popup->isVisible();
        });
    }
    ~Receiver() { wcref::PluginBus::instance().unsubscribe(id_); }

    const FeatureFilterSettings& lastRecord() const {
        if (!record_) {
            qFatal("no filter record was sent last");
        }
        return *record_;
    }

    std::string zoomed_symbol;
    bool sender_visible = false;

private:
    int id_ = 0;
    std::optional<FeatureFilterSettings> record_;
};

QString symbols(const FeatureFilterSettings& record) {
    QStringList names;
    for (const std::string& name : record.symbols) {
        names << QString::fromStdString(name);
    }
    return names.join(QLatin1Char('|'));
}

QString attributes(const FeatureFilterSettings& record) {
    QStringList parts;
    for (const auto& entry : record.attributes) {
        parts << QString::fromStdString(entry.first + "=" + entry.second);
    }
    return parts.join(QLatin1Char(';'));
}

// Shows every text as "<context>:<source>": a test sees in which class's context it was
// translated.
class ContextMarker : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        return QLatin1String(context) + QLatin1Char(':') + QString::fromUtf8(source);
    }
};

// Shape boxes and rows checked, and what is enabled then.
struct Rows {
    bool lines, ovals, length, angle;
    bool boxes_enabled, length_fields, angle_fields;
};

// What is typed in the four fields, and what the record then holds.
struct Typed {
    int unit;
    QString button, include, exclude, include_attributes, exclude_attributes;
    int mode;
    QString symbols;
    int logic;
    QString map;
};

}  // namespace

Q_DECLARE_METATYPE(Typed)

Q_DECLARE_METATYPE(Rows)

// The popup as the toolbar and the job list see it: controls, enabling, messages and their
// record, the symbol and attribute lists, the "Filter" box and the predefined filters.
class tst_Grc_Tbv_featuresfilter : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetUnits(); }

    void controlsAsTheToolbarExpects() {
        QWidget parent;
        auto* toolbar = reinterpret_cast<Graphic_Toolbar_Move*>(&parent + 1);
        Grc_Tbv_featuresfilter popup(toolbar, &parent);
        QCOMPARE(popup.windowTitle(), "Feature Seleciton filter");
        for (const char* type : {"Pad", "Line", "Arc", "Surface", "Text", "Negative", "Positive"}) {
            auto* button = child<QPushButton>(popup, QStringLiteral("pushButton_") + type);
            QVERIFY2(button->isCheckable() && button->isChecked(), type);
        }
        QCOMPARE(child<QPushButton>(popup, "pushButton_IncludePick")->toolTip(),
                 "Single selection");
        QCOMPARE(child<QPushButton>(popup, "pushButton_ExcludePickAdd")->toolTip(),
                 "Multi selection");
        QVERIFY(!edit(popup, "lineEdit_Dcode")->isEnabled());
        QVERIFY(child<QCheckBox>(popup, "checkBox_Filter")->isChecked());
        auto* profile = child<QComboBox>(popup, "comboBox_Profile");
        QCOMPARE(profile->itemText(2), "Out Profile");
        // Numbers and free names are limited as typed; "+-/" in the pattern is a range, so a
        // comma passes: kept on purpose.
        for (const char* name : {"lineEdit_IncludeSymbols", "lineEdit_ExcludeSymbols"}) {
            QTest::keyClicks(edit(popup, name), QStringLiteral("R10;r1x.5_+-/*,"));
            QCOMPARE(edit(popup, name)->text(), "10r1x.5_+-/*,");
        }
        QLineEdit* min = edit(popup, "lineEdit_LengthMin");
        min->setEnabled(true);
        QTest::keyClicks(min, QStringLiteral("-2.5a"));
        QCOMPARE(min->text(), "-2.5");
        for (const char* name :
             {"lineEdit_TextFilter", "lineEdit_IncludeAttributes", "lineEdit_ExcludeAttributes"}) {
            QString cjk = QString::fromUtf8("a\xE4\xB8\x80z");
            int position = 0;
            QCOMPARE(edit(popup, name)->validator()->validate(cjk, position), QValidator::Invalid);
        }

        // The toolbar, not the parent, is the handle of the host's services.
        click(popup, "pushButton_Pad");
        QCOMPARE(Korvo::UIAPI::getSelectedPara(toolbar), 126);
        QCOMPARE(Korvo::UIAPI::getSelectedPara(&parent), 127);

        popup.change_language();
        QCOMPARE(popup.windowTitle(), "Features Filter Popup");
        QCOMPARE(child<QPushButton>(popup, "pushButton_CloseReset")->text(), "Close && Reset");
    }

    // Each popup, the child popups included, shows its texts again in its own context; the
    // user filter rows keep the names the filter knows them by.
    void languageChangeInEachPopupsContext_data() {
        wctest::columns<QString, QString, QString, QString>("window", "widget", "property", "text");
        const char* filter = "Grc_Tbv_featuresfilter:";
        row("title", "", "", "windowTitle", QString(filter) + "Features Filter Popup");
        row("button", "", "pushButton_CloseReset", "text", QString(filter) + "Close && Reset");
        row("tool tip", "", "pushButton_ExcludePickAdd", "toolTip",
            QString(filter) + "Multi selection");
        row("combo item", "", "comboBox_Profile", "currentText", QString(filter) + "All Profile");
        row("symbol list", "includeSymbolList", "pushButton_Ok", "text", "Widget_listpopup:Ok");
        row("placeholder", "includeSymbolList", "lineEdit_Find", "placeholderText",
            "Widget_listpopup:*");
        row("attributes", "attributesPopup", "comboBox_Logic", "currentText",
            "Widget_Filter_Attributes:Any condition (or)");
        row("search", "searchPopup", "label_Find", "text", "Widget_Filter_Searchpopup:Find :");
        row("user filters", "userFilterList", "listWidget_UserFilters", "last row",
            "Widget_UserFilterList:Select Via Holes");
    }
    void languageChangeInEachPopupsContext() {
        QFETCH(QString, window);
        QFETCH(QString, widget);
        QFETCH(QString, property);
        QFETCH(QString, text);
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        QTest::mouseDClick(edit(popup, "lineEdit_IncludeSymbols"), Qt::LeftButton);
        click(popup, "pushButton_Attributes");
        child<QComboBox>(popup, "comboBox_Logic")->setCurrentIndex(1);
        click(popup, "pushButton_Search");
        click(popup, "pushButton_UserFilter");
        ContextMarker marker;
        QCoreApplication::installTranslator(&marker);
        popup.change_language();
        QCoreApplication::removeTranslator(&marker);

        QObject* shown = window.isEmpty() ? &popup : child(popup, window);
        shown = widget.isEmpty() ? shown : child(*shown, widget);
        if (auto* list = qobject_cast<QListWidget*>(shown)) {
            QCOMPARE(list->count(), 13);
            QCOMPARE(list->item(12)->text(), text);
            QCOMPARE(list->item(12)->data(Qt::UserRole).toString(), "Select Via Holes");
        } else {
            QCOMPARE(shown->property(qPrintable(property)).toString(), text);
        }
    }

    void lengthAndAngleRows_data() {
        QTest::addColumn<Rows>("c");
        row("no shape", Rows{false, false, true, true, false, false, false});
        row("lines, no row", Rows{true, false, false, false, true, false, false});
        row("ovals, length", Rows{false, true, true, false, true, true, false});
        row("lines, angle", Rows{true, false, false, true, true, false, true});
        row("both shapes, both rows", Rows{true, true, true, true, true, true, true});
    }
    void lengthAndAngleRows() {
        QFETCH(Rows, c);
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        // Rows first, so that the shape boxes decide last.
        child<QCheckBox>(popup, "checkBox_Length")->setChecked(c.length);
        child<QCheckBox>(popup, "checkBox_Angle")->setChecked(c.angle);
        child<QCheckBox>(popup, "checkBox_Lines")->setChecked(c.lines);
        child<QCheckBox>(popup, "checkBox_Ovals")->setChecked(c.ovals);
        QCOMPARE(child<QCheckBox>(popup, "checkBox_Length")->isEnabled(), c.boxes_enabled);
        QCOMPARE(child<QCheckBox>(popup, "checkBox_Angle")->isEnabled(), c.boxes_enabled);
        for (const QString name : {"LengthMin", "LengthMax", "AngleMin", "AngleMax"}) {
            const bool enabled = name.startsWith("Length") ? c.length_fields : c.angle_fields;
            QCOMPARE(child(popup, "lineEdit_" + name)->isEnabled(), enabled);
            QCOMPARE(child(popup, "label_" + name)->isEnabled(), enabled);
        }
    }

    void buttonMessages_data() {
        wctest::columns<QString, int, QString>("button", "code", "receiver");
        QTest::addColumn<QString>("type");  // the "type" value, "record" for the filter record
        row("Select", "pushButton_Select", 20000018, "Graphic_JobList.dll", "record");
        row("Unselect", "pushButton_Unselect", 20000019, "Graphic_JobList.dll", "record");
        row("Highlight", "pushButton_Highlight", 20000020, "Graphic_JobList.dll", "record");
        row("Turn Off", "pushButton_TurnOff", 20000021, "Graphic_JobList.dll", "record");
        row("Histogram", "pushButton_Histogram", 20000031, "Graphic_JobList.dll", "histogram");
        row("Close", "pushButton_Close", 20000031, "Graphic_JobList.dll", "close");
        row("pick include", "pushButton_IncludePick", 20000061, "Graphic_View.dll", "");
        row("pick and add include", "pushButton_IncludePickAdd", 20000062, "Graphic_View.dll", "");
        row("pick exclude", "pushButton_ExcludePick", 20000063, "Graphic_View.dll", "");
        row("pick and add exclude", "pushButton_ExcludePickAdd", 20000064, "Graphic_View.dll", "");
    }
    void buttonMessages() {
        QFETCH(QString, button);
        QFETCH(int, code);
        QFETCH(QString, receiver);
        QFETCH(QString, type);
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        popup.show();
        edit(popup, "lineEdit_IncludeSymbols")->setText(QStringLiteral("r10"));
        Receiver seen(&popup);
        child<QPushButton>(popup, button)->click();
        QCOMPARE(seen.codes(), QList<int>{code});
        const wctest::SeenMessage& message = seen.messages().first();
        QCOMPARE(message.sender, "Graphic_Toolbar_Move.dll");
        QCOMPARE(message.receiver, receiver);
        if (type == QLatin1String("record")) {
            QCOMPARE(message.payload_address, std::uintptr_t(&popup.filterSettings()));
            QVERIFY(message.values.isEmpty());
            // Unselect sends no symbols; Select and Highlight build them.
            const bool builds = code == 20000018 || code == 20000020;
            QCOMPARE(symbols(seen.lastRecord()), builds ? QStringLiteral("r10") : QString());
        } else {
            QCOMPARE(message.payload_address, std::uintptr_t(0));
            QCOMPARE(message.values.value(QStringLiteral("type")).toString(), type);
        }
        // The job list hears of the close while the popup is still open.
        QCOMPARE(seen.sender_visible, true);
        QCOMPARE(popup.isVisible(), type != QLatin1String("close"));
    }

    void typeButtonsAndDefaultTest() {
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        QSignalSpy changed(&popup, &Grc_Tbv_featuresfilter::Change_Filter_Attitude_Signal);
        QSignalSpy reset(&popup, &Grc_Tbv_featuresfilter::Reset_Filter_Attitude_Signal);
        Receiver seen;
        click(popup, "pushButton_Line");
        QCOMPARE(seen.codes(), QList<int>{20000017});
        QCOMPARE(seen.lastRecord().feature_type, 125);
        QCOMPARE(Korvo::UIAPI::getSelectedPara(&parent), 125);
        QCOMPARE(changed.count(), 1);
        click(popup, "pushButton_Line");
        QCOMPARE(seen.lastRecord().feature_type, 127);
        QCOMPARE(reset.count(), 1);

        child<QComboBox>(popup, "comboBox_Profile")->setCurrentIndex(2);
        QCOMPARE(seen.lastRecord().profile, 2);
        QCOMPARE(changed.count(), 2);

        // The host's mask comes back onto the buttons.
        Korvo::UIAPI::setSelectedPara(&parent, 97);
        popup.update_featuretype_filter();
        QVERIFY(child<QPushButton>(popup, "pushButton_Pad")->isChecked());
        QVERIFY(!child<QPushButton>(popup, "pushButton_Surface")->isChecked());
        QVERIFY(child<QPushButton>(popup, "pushButton_Positive")->isChecked());

        click(popup, "pushButton_Reset");
        QCOMPARE(popup.filterSettings().feature_type, 127);
        QCOMPARE(popup.filterSettings().profile, 0);
        QCOMPARE(Korvo::UIAPI::getSelectedPara(&parent), 127);
        QVERIFY(child<QPushButton>(popup, "pushButton_Surface")->isChecked());
        QCOMPARE(reset.count(), 2);
    }

    // What is typed in the four fields reaches the record of Select and Highlight.
    void fieldsReachTheRecord_data() {
        QTest::addColumn<Typed>("c");
        row("nothing typed", Typed{0, "Select", "", "", "", "", 0, "", 0, ""});
        row("typed in mil, own conversion",
            Typed{0, "Select", "r10.05", "", "", "", 1, "r10.50", 0, ""});
        row("include beats exclude",
            Typed{0, "Highlight", "r10", "s20", ".smd;.net=gnd", ".smd", 1, "r10", 0, ".net=gnd"});
        row("exclude alone", Typed{0, "Highlight", "", "s20;;rect20.5x10", "", ".drill=via", 0,
                                   "s20|rect20.500x10", 2, ".drill=via"});
        row("typed in mm, the host converts",
            Typed{1, "Select", "r0.254", "", "", "", 1, "r10", 0, ""});
    }
    void fieldsReachTheRecord() {
        QFETCH(Typed, c);
        QWidget parent;
        wctest::UnitScope scope(&parent, c.unit);
        Grc_Tbv_featuresfilter popup(&parent);
        edit(popup, "lineEdit_IncludeSymbols")->setText(c.include);
        edit(popup, "lineEdit_ExcludeSymbols")->setText(c.exclude);
        edit(popup, "lineEdit_IncludeAttributes")->setText(c.include_attributes);
        edit(popup, "lineEdit_ExcludeAttributes")->setText(c.exclude_attributes);
        Receiver seen;
        child<QPushButton>(popup, "pushButton_" + c.button)->click();
        QCOMPARE(seen.lastRecord().symbol_mode, c.mode);
        QCOMPARE(::symbols(seen.lastRecord()), c.symbols);
        QCOMPARE(seen.lastRecord().attribute_logic, c.logic);
        QCOMPARE(attributes(seen.lastRecord()), c.map);
    }

    void pickedSymbolsFromTheView() {
        QWidget parent;
        wctest::UnitScope scope(&parent, 1);
        Grc_Tbv_featuresfilter popup(&parent);
        QLineEdit* include = edit(popup, "lineEdit_IncludeSymbols");
        Receiver seen;
        // The view answers in the engine's spelling; the field shows the display unit and the
        // record gets the picked name back, not a round trip through the conversion.
        popup.update_symbol_text(QStringLiteral("r10.5"), true, true);
        QCOMPARE(include->text(), "r0.2667");
        QCOMPARE(seen.codes(), QList<int>{20000017});
        QCOMPARE(::symbols(seen.lastRecord()), "r10.5");
        popup.update_symbol_text(QStringLiteral("s20"), false, true);
        QCOMPARE(include->text(), "r0.2667;s0.508");
        click(popup, "pushButton_Select");
        QCOMPARE(::symbols(seen.lastRecord()), "r10.5|s20");
        // Replacing forgets the earlier picks of that field.
        popup.update_symbol_text(QStringLiteral("r40"), true, true);
        include->setText(include->text() + QStringLiteral(";r0.2667"));
        click(popup, "pushButton_Select");
        QCOMPARE(::symbols(seen.lastRecord()), "r40|r10.5");
    }

    void unitChangeReexpressesTheFields() {
        QWidget parent;
        wctest::UnitScope scope(&parent, 0);
        Grc_Tbv_featuresfilter popup(&parent);
        QLineEdit* include = edit(popup, "lineEdit_IncludeSymbols");
        popup.update_symbol_text(QStringLiteral("r10.5"), false, true);
        include->setText(include->text() + QStringLiteral(";s20"));
        scope.change(1);
        popup.change_unit();
        QCOMPARE(include->text(), "r0.2667;s0.508");
        Receiver seen;
        click(popup, "pushButton_Select");
        QCOMPARE(::symbols(seen.lastRecord()), "r10.5|s20");
    }

    void slotsSurviveAThrowingEngine() {
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::get_all_feature_info,
                                      [](const std::string&, const std::string&, const std::string&,
                                         std::vector<Korvo::API::featureInfo>&,
                                         int) -> bool { throw std::runtime_error("engine gone"); });
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        popup.get_job_info(QStringLiteral("any"), QStringLiteral("pcb"), {QStringLiteral("top")});
        wctest::MessageBoxAnswerer boxes;
        popup.send_search_info(QStringLiteral("r10"));
        QCOMPARE(boxes.count(), 1);
        QCOMPARE(boxes.last().title, "Information");
        QCOMPARE(boxes.last().text, "engine gone");
        Receiver seen;
        click(popup, "pushButton_Select");
        QCOMPARE(seen.codes(), QList<int>{20000018});
    }

    void wildcardThroughTheSymbolList() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("filter_job"));
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        popup.show();
        popup.get_job_info(QStringLiteral("filter_job"), QStringLiteral("pcb"),
                           {QStringLiteral("top")});
        QLineEdit* include = edit(popup, "lineEdit_IncludeSymbols");
        include->setText(QStringLiteral("*6*"));
        Receiver seen;
        // Without its list the pattern is a name for the engine.
        click(popup, "pushButton_Select");
        QCOMPARE(::symbols(seen.lastRecord()), "*6*");
        QTest::mouseDClick(include, Qt::LeftButton);
        auto* list = child<Widget_listpopup>(popup, "includeSymbolList");
        QVERIFY(list->isVisible());
        QCOMPARE(list->find_input_items(QStringLiteral("*6*")),
                 QStringList({QStringLiteral("r60 (20)"), QStringLiteral("rect60x80 (24)")}));
        click(popup, "pushButton_Select");
        QCOMPARE(::symbols(seen.lastRecord()), "r60|rect60x80");

        // Picking from the list fills the field and the record.
        auto* rows = child<QListWidget>(*list, "listWidget_Symbols");
        rows->findItems(QStringLiteral("r24 (32)"), Qt::MatchExactly).first()->setSelected(true);
        include->clear();
        click(*list, "pushButton_Ok");
        QCOMPARE(include->text(), "r24");
        QCOMPARE(::symbols(seen.lastRecord()), "r24");
        click(popup, "pushButton_Close");
        QVERIFY(!list->isVisible());
        wcref::resetEngine();
    }

    void attributePopupConditions() {
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        int forwarded = 0;
        connect(&popup, &Grc_Tbv_featuresfilter::send_attributeinfoFilter_list, this,
                [&forwarded](std::map<std::string, std::string>) { ++forwarded; });
        click(popup, "pushButton_Attributes");
        auto* conditions = child<Widget_Filter_Attributes>(popup, "attributesPopup");
        QVERIFY(conditions->isVisible());
        auto* attributes_button = child<QPushButton>(popup, "pushButton_Attributes");
        child<QComboBox>(*conditions, "comboBox_Attribute")
            ->setCurrentText(QStringLiteral(".drill"));
        child<QLineEdit>(*conditions, "lineEdit_Value")->setText(QStringLiteral("via"));
        click(*conditions, "pushButton_Add");
        QCOMPARE(attributes_button->styleSheet(), "background-color:rgb(255, 0, 0)");
        QCOMPARE(forwarded, 1);
        child<QComboBox>(*conditions, "comboBox_Logic")->setCurrentIndex(1);

        Receiver seen;
        click(popup, "pushButton_Select");
        QCOMPARE(seen.lastRecord().attribute_logic, 1);
        QCOMPARE(attributes(seen.lastRecord()), ".drill=via");

        click(*conditions, "pushButton_Apply");
        QCOMPARE(edit(popup, "lineEdit_IncludeAttributes")->text(), ".drill=via");
        QVERIFY(!conditions->isVisible());

        click(popup, "pushButton_Reset");
        QVERIFY(attributes_button->styleSheet().isEmpty());
        QVERIFY(conditions->get_attributeinfoFilter_list().empty());
        QVERIFY(edit(popup, "lineEdit_IncludeAttributes")->text().isEmpty());
    }

    void filterBoxSavesTheLogic() {
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        auto* box = child<QCheckBox>(popup, "checkBox_Filter");
        edit(popup, "lineEdit_ExcludeAttributes")->setText(QStringLiteral(".smd"));
        click(popup, "pushButton_Select");
        QCOMPARE(popup.filterSettings().attribute_logic, 2);
        box->setChecked(false);
        QCOMPARE(popup.filterSettings().attribute_logic, -1);
        Receiver seen;
        click(popup, "pushButton_Select");
        QCOMPARE(seen.lastRecord().attribute_logic, -1);
        box->setChecked(true);
        QCOMPARE(popup.filterSettings().attribute_logic, 2);
        box->setChecked(false);
        click(popup, "pushButton_Reset");
        QVERIFY(box->isChecked());
        // Reset checks the box without giving the saved logic back.
        QCOMPARE(popup.filterSettings().attribute_logic, -1);
    }

    void predefinedUserFilters_data() {
        wctest::columns<QString, QList<int>, int, int, QString>("name", "codes", "mask", "logic",
                                                                "map");
        using Codes = QList<int>;
        row("tear drops", "Highlight Tear Drops", Codes{20000017, 20000020}, 127, 1, ".tear_drop=");
        row("smd", "Select Smd Pads", Codes{20000017, 20000018}, 97, 1, ".smd=");
        row("negative", "Highlight Negative Features", Codes{20000017, 20000020}, 63, 0, "");
        row("via", "Select Via Holes", Codes{20000017, 20000018}, 127, 1, ".drill=via");
        row("known, not offered", "Select Gold Connectors", Codes{}, 127, 0, "");
    }
    void predefinedUserFilters() {
        QFETCH(QString, name);
        QFETCH(QList<int>, codes);
        QFETCH(int, mask);
        QFETCH(int, logic);
        QFETCH(QString, map);
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        popup.show();
        edit(popup, "lineEdit_IncludeSymbols")->setText(QStringLiteral("r10"));
        click(popup, "pushButton_Surface");
        click(popup, "pushButton_UserFilter");
        auto* list = child<QListWidget>(popup, "listWidget_UserFilters");
        QCOMPARE(list->count(), 13);
        Receiver seen;
        popup.on_UserFilter_chosen(name);
        QCOMPARE(seen.codes(), codes);
        const FeatureFilterSettings& record = popup.filterSettings();
        QCOMPARE(record.feature_type, mask);
        QCOMPARE(Korvo::UIAPI::getSelectedPara(&parent), mask);
        QCOMPARE(record.attribute_logic, logic);
        QCOMPARE(attributes(record), map);
        QVERIFY(record.symbols.empty());
        QVERIFY(edit(popup, "lineEdit_IncludeSymbols")->text().isEmpty());
        QCOMPARE(child<QPushButton>(popup, "pushButton_Pad")->isChecked(), (mask & 1) != 0);
    }

    void searchHitZoomsTheView() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("search_job"));
        QWidget parent;
        Grc_Tbv_featuresfilter popup(&parent);
        popup.get_job_info(QStringLiteral("search_job"), QStringLiteral("pcb"),
                           {QStringLiteral("top"), QStringLiteral("drill")});
        popup.send_search_info(QStringLiteral("*x80"));
        auto* search = child<Widget_Filter_Searchpopup>(popup, "searchPopup");
        QVERIFY(search->isVisible());
        QCOMPARE(int(search->hits().size()), 24);
        Receiver seen;
        auto* results = child<QListWidget>(*search, "listWidget_Results");
        emit results->itemActivated(results->item(3));
        QCOMPARE(seen.codes(), QList<int>{20000065});
        QCOMPARE(seen.messages().first().receiver, "Graphic_View.dll");
        QCOMPARE(seen.zoomed_symbol, std::string("rect60x80"));
        wcref::resetEngine();
    }
};

QTEST_MAIN(tst_Grc_Tbv_featuresfilter)
#include "tst_Grc_Tbv_featuresfilter.moc"
