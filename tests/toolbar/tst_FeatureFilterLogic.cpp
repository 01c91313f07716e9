#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "toolbar/AttributeConditions.h"
#include "toolbar/SymbolFilterFields.h"
#include "toolbar/SymbolNameConversion.h"
#include "toolbar/UserFilterPresets.h"

using wctest::row;

namespace {

QString joined(const wc::AttributeMap& map) {
    return QString::fromStdString(wc::attributeFieldText(map));
}

}  // namespace

Q_DECLARE_METATYPE(wc::UserFilterFollowUp)

// The feature filter's logic without a window: typed-name conversion, attribute map, default
// test and predefined filters. The symbol list is tested through the popup's fields.
class tst_FeatureFilterLogic : public QObject {
    Q_OBJECT

private slots:
    void typedNamesInEngineSpelling_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("engine");
        row("three decimals", "10.005", "10.5");
        row("several numbers", "rect20.5x40.25", "rect20.500x40.250");
        row("integers as typed", "rect007x08", "rect007x08");
        row("no digits", "donut_r", "donut_r");
        row("trailing point", "r10.", "r10.");
        row("bare fraction", "r.5", "r.500");
        row("zero fraction", "r10.0", "r10.0");
        row("rounds up to a thousand", "r10.9999", "r10.1000");
        row("two points is no number", "s1.2.3", "s1.2.3");
        row("empty", "", "");
    }
    void typedNamesInEngineSpelling() {
        QFETCH(QString, typed);
        QFETCH(QString, engine);
        QCOMPARE(QString::fromStdString(wc::typedSymbolToEngine(typed.toStdString())), engine);
    }

    void addingToASymbolField_data() {
        wctest::columns<QString, QString, QString>("field", "symbol", "result");
        row("empty field", "", "r10", "r10");
        row("appended", "s20", "r10", "s20;r10");
        row("present in another case", "R10;s20", "r10", "R10;s20");
        row("inside a longer name", "r100", "r10", "r100");
    }
    void addingToASymbolField() {
        QFETCH(QString, field);
        QFETCH(QString, symbol);
        QFETCH(QString, result);
        QCOMPARE(wc::addSymbolToField(field, symbol), result);
    }

    void attributeMapFromTheFields_data() {
        wctest::columns<QString, QString, bool, int, QString>(
            "include", "exclude", "popup_has_conditions", "logic", "attributes");
        // The popup's last logic is 1 and its conditions are ".bga" in every row.
        row("nothing but the popup's conditions", "", "", true, 1, ".bga");
        row("exclude only, added to the popup's", "", ".smd", true, 2, ".bga;.smd");
        row("include", ".smd; .drill = via", "", false, 1, ".drill=via;.smd");
        row("name=value exclude takes out any", ".net=gnd;.smd", ".net=vcc", false, 1, ".smd");
    }
    void attributeMapFromTheFields() {
        QFETCH(QString, include);
        QFETCH(QString, exclude);
        QFETCH(bool, popup_has_conditions);
        QFETCH(int, logic);
        QFETCH(QString, attributes);
        wc::AttributeFilterInput input;
        input.include_text = include.toStdString();
        input.exclude_text = exclude.toStdString();
        input.popup_logic = 1;
        input.popup_has_conditions = popup_has_conditions;
        input.current = {{".bga", ""}};
        const wc::AttributeFilter filter = wc::buildAttributeFilter(input);
        QCOMPARE(filter.logic, logic);
        QCOMPARE(joined(filter.attributes), attributes);
    }

    void defaultTest_data() {
        QTest::addColumn<int>("mask");
        QTest::addColumn<int>("field");  // which text field holds "x", -1 none
        QTest::addColumn<int>("profile");
        QTest::addColumn<bool>("is_default");
        row("everything passes", 127, -1, 0, true);
        row("one type off", 126, -1, 0, false);
        row("include symbols", 127, 0, 0, false);
        row("exclude symbols", 127, 1, 0, false);
        row("include attributes", 127, 2, 0, false);
        row("exclude attributes", 127, 3, 0, false);
        row("in profile", 127, -1, 1, false);
    }
    void defaultTest() {
        QFETCH(int, mask);
        QFETCH(int, field);
        QFETCH(int, profile);
        QFETCH(bool, is_default);
        wc::FilterFace face;
        face.feature_type = mask;
        face.profile = profile;
        QString* fields[] = {&face.include_symbols, &face.exclude_symbols, &face.include_attributes,
                             &face.exclude_attributes};
        if (field >= 0) {
            *fields[field] = QStringLiteral("x");
        }
        QCOMPARE(wc::isDefaultFilter(face), is_default);
    }

    void offeredUserFiltersInOrder() {
        const QStringList offered = wc::offeredUserFilters();
        QCOMPARE(offered.size(), 13);
        QCOMPARE(offered.first(), "Highlight All Pads");
        QCOMPARE(offered.at(6), "Highlight Tear Drops");
        QCOMPARE(offered.last(), "Select Via Holes");
        QVERIFY(!offered.contains(QStringLiteral("Select Gold Connectors")));
    }

    void userFilterTable_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("mask");            // -1 unchanged
        QTest::addColumn<int>("logic");           // -1 unchanged
        QTest::addColumn<QString>("attributes");  // "-" unchanged
        QTest::addColumn<bool>("reset_only");
        QTest::addColumn<wc::UserFilterFollowUp>("follow_up");
        using F = wc::UserFilterFollowUp;
        row("pads", "Highlight All Pads", 97, -1, "-", false, F::Highlight);
        row("lines", "Highlight All Lines", 98, -1, "-", false, F::Highlight);
        row("surfaces", "Highlight All Surfaces", 104, -1, "-", false, F::Highlight);
        row("npth", "Select Non Plated Holes", -1, 1, ".drill=non_plated", false, F::Select);
        row("pth", "Highlight Plated Holes", -1, 1, ".drill=plated", false, F::Highlight);
        row("known, not offered", "Select Nomenclature", -1, -1, "-", true, F::Select);
    }
    void userFilterTable() {
        QFETCH(QString, name);
        QFETCH(int, mask);
        QFETCH(int, logic);
        QFETCH(QString, attributes);
        QFETCH(bool, reset_only);
        QFETCH(wc::UserFilterFollowUp, follow_up);
        const std::optional<wc::UserFilterPreset> preset = wc::userFilterPreset(name);
        QVERIFY(preset.has_value());
        QCOMPARE(preset->feature_type.value_or(-1), mask);
        QCOMPARE(preset->attribute_logic.value_or(-1), logic);
        QCOMPARE(preset->attributes ? joined(*preset->attributes) : QStringLiteral("-"),
                 attributes);
        QCOMPARE(preset->reset_only, reset_only);
        QCOMPARE(wc::userFilterFollowUp(name), follow_up);
        QVERIFY(!wc::userFilterPreset(QStringLiteral("Select Everything")).has_value());
    }
};

QTEST_GUILESS_MAIN(tst_FeatureFilterLogic)
#include "tst_FeatureFilterLogic.moc"
