#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "Korvo_UIAPI.h"
#include "MarkingTranslator.h"
#include "TemporaryWorkingDirectory.h"
#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "analysis/Widget_Ranges.h"

using Korvo::UIAPI::Analysis_Ranges_Record;
using Korvo::UIAPI::ZeLineEdit;
using wctest::row;

namespace {

ZeLineEdit* field(Widget_Ranges& ranges, const QString& level, int row) {
    return wctest::child<ZeLineEdit>(ranges, QStringLiteral("%1_%2").arg(level).arg(row));
}

// The green level's style sheet has three components in rgba(), which Qt's parser reports on
// every polish; the style is kept as the system writes it, so the report is dropped here.
QtMessageHandler previous_handler = nullptr;
void dropRgbaReport(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.contains(QLatin1String("rgba 0,255,0"))) {
        previous_handler(type, context, text);
    }
}

}  // namespace

class tst_Widget_Ranges : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { previous_handler = qInstallMessageHandler(dropRgbaReport); }
    void init() { workdir_ = std::make_unique<wctest::TemporaryWorkingDirectory>(); }
    void cleanup() { workdir_.reset(); }

    void emptyRecordListShowsOnlyClose() {
        QWidget host;
        Widget_Ranges ranges(&host);
        QVERIFY(ranges.findChildren<ZeLineEdit*>().isEmpty());
        QVERIFY(ranges.findChildren<QLabel*>().isEmpty());
        auto* close = wctest::child<QPushButton>(ranges, "m_pClosePB");
        QCOMPARE(close->text(), "Close");
        ranges.show();
        QTest::mouseClick(close, Qt::LeftButton);
        QVERIFY(!ranges.isVisible());
    }

    // The owner's name follows the title once, however often the language changes.
    void languageKeepsTheOwnerInTheTitle() {
        QWidget host;
        Widget_Ranges ranges(std::string("TeardropsRanges"), std::string("Teardrops"), &host,
                             &host);
        QCOMPARE(ranges.windowTitle(), "Ranges - Teardrops");
        wctest::MarkingTranslator language("Widget_Ranges");
        ranges.change_language();
        ranges.change_language();
        QCOMPARE(ranges.windowTitle(), "[Ranges] - Teardrops");
        QCOMPARE(wctest::child<QPushButton>(ranges, "m_pClosePB")->text(), "[Close]");
    }

    void disabledRowsOnlyWhereListed_data() {
        wctest::columns<QString, int, QList<int>>("key", "records", "disabled");
        row("silk screen, more records than listed", "SilkScreenRanges", 28,
            QList<int>{19, 20, 21, 25, 26});
        row("other keys have none", "TeardropsRanges", 30, QList<int>{});
    }

    void disabledRowsOnlyWhereListed() {
        QFETCH(QString, key);
        QFETCH(int, records);
        QFETCH(QList<int>, disabled);
        std::vector<Analysis_Ranges_Record> list(static_cast<std::size_t>(records));
        for (int i = 0; i < records; ++i) {
            list[std::size_t(i)].name = "item " + std::to_string(i);
            list[std::size_t(i)].RedLv = 25400.0 * (i + 1);
        }
        QWidget host;
        Widget_Ranges ranges(key, list, &host, &host);
        for (int i = 0; i < records; ++i) {
            const bool enabled = !disabled.contains(i);
            QCOMPARE(field(ranges, "red", i)->isEnabled(), enabled);
            QCOMPARE(field(ranges, "green", i)->isEnabled(), enabled);
            QCOMPARE(ranges.findChild<QLabel*>(QStringLiteral("label_%1").arg(i))->isEnabled(),
                     enabled);
        }
    }

    void twoEditsCommitOnlyTheUpperRow_data() {
        QTest::addColumn<QString>("level");
        for (const char* level : {"red", "yellow", "green"}) {
            row(level, QString(level));
        }
    }

    // Each level commits its upper edited row first, whichever was edited first.
    void twoEditsCommitOnlyTheUpperRow() {
        QFETCH(QString, level);
        const auto of = [&level](const Analysis_Ranges_Record& record) {
            return level == "red"      ? record.RedLv
                   : level == "yellow" ? record.YellowLv
                                       : record.GreenLv;
        };
        const auto stored = [&of](int row) {
            return of(Korvo::UIAPI::getRanges("SignalLayerRanges")[std::size_t(row)]);
        };
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_Ranges ranges(std::string("SignalLayerRanges"), std::string(), &host, &host);
        const double row2_before = stored(2);
        field(ranges, level, 2)->setText("7.5");
        field(ranges, level, 0)->setText("6.25");

        emit field(ranges, level, 2)->editingFinished();
        QCOMPARE(stored(0), 6.25 * 25400);
        QCOMPARE(stored(2), row2_before);
        const Analysis_Ranges_Record row0 = Korvo::UIAPI::getRanges("SignalLayerRanges")[0];
        QCOMPARE(row0.RedLv, ranges.records()[0].RedLv);  // the other levels are left alone
        QCOMPARE(row0.YellowLv, ranges.records()[0].YellowLv);
        QCOMPARE(row0.GreenLv, ranges.records()[0].GreenLv);

        emit field(ranges, level, 2)->editingFinished();
        QCOMPARE(stored(2), 7.5 * 25400);
        QCOMPARE(stored(1), of(ranges.records()[1]));
    }

    void emptiedFieldReadsZeroOnMousePress() {
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_Ranges ranges(std::string("SignalLayerRanges"), std::string(), &host, &host);
        ranges.show();
        ZeLineEdit* yellow = field(ranges, "yellow", 3);
        yellow->setFocus();
        yellow->selectAll();
        QTest::keyClick(yellow, Qt::Key_Delete);
        QVERIFY(yellow->text().isEmpty());
        ZeLineEdit* untouched = field(ranges, "yellow", 4);
        const QString untouched_text = untouched->text();

        QTest::mousePress(&ranges, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QCOMPARE(yellow->text(), "0.000");
        QVERIFY(!yellow->hasFocus());
        QCOMPARE(untouched->text(), untouched_text);
    }

    void valuesInBothUnits_data() {
        wctest::columns<int, QString, QString, double, QString>("unit", "shown", "typed",
                                                                "committed", "afterChange");
        row("mil", 0, "3.000", "4", 101600.0, "0.102");
        row("mm", 1, "0.076", "0.1", 100000.0, "3.937");
    }

    void valuesInBothUnits() {
        QFETCH(int, unit);
        QFETCH(QString, shown);
        QFETCH(QString, typed);
        QFETCH(double, committed);
        QFETCH(QString, afterChange);
        std::vector<Analysis_Ranges_Record> records(2);
        records[0] = {"Line Width", 76200.0, 101600.0, 127000.0};
        records[1] = {"Arc Width", 76200.0, 101600.0, 127000.0};
        QWidget host;
        wctest::UnitScope scope(&host, unit);
        Widget_Ranges ranges(QString("SignalLayerRanges"), records, &host, &host);
        QCOMPARE(field(ranges, "red", 0)->text(), shown);
        QCOMPARE(field(ranges, "red", 1)->text(), shown);

        field(ranges, "red", 1)->setText(typed);
        ranges.on_redlvl_edit_Finished();
        QCOMPARE(ranges.records()[1].RedLv, committed);
        QCOMPARE(ranges.records()[0].RedLv, 76200.0);  // unchanged row not committed by rounding

        scope.change(1 - unit);
        ranges.change_units();
        QCOMPARE(field(ranges, "red", 1)->text(), afterChange);
        QVERIFY(field(ranges, "red", 1)->hasAcceptableInput());
    }

private:
    std::unique_ptr<wctest::TemporaryWorkingDirectory> workdir_;
};

QTEST_MAIN(tst_Widget_Ranges)
#include "tst_Widget_Ranges.moc"
