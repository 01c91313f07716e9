#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "Korvo_UIAPI.h"
#include "TemporaryWorkingDirectory.h"
#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "analysis/Widget_Ranges.h"

using Korvo::UIAPI::Analysis_Ranges_Record;
using Korvo::UIAPI::ZeLineEdit;
using wctest::row;

namespace {

ZeLineEdit* field(Widget_Ranges& ranges, const char* level, int row) {
    return wctest::child<ZeLineEdit>(ranges, QStringLiteral("%1_%2").arg(level).arg(row));
}

double storedRed(const std::string& key, int row) {
    return Korvo::UIAPI::getRanges(key)[std::size_t(row)].RedLv;
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

    void twoEditsCommitOnlyTheUpperRow() {
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_Ranges ranges(std::string("SignalLayerRanges"), std::string(), &host, &host);
        const double row2_before = storedRed("SignalLayerRanges", 2);
        field(ranges, "red", 2)->setText("7.5");
        field(ranges, "red", 0)->setText("6.25");

        emit field(ranges, "red", 2)->editingFinished();
        QCOMPARE(storedRed("SignalLayerRanges", 0), 6.25 * 25400);
        QCOMPARE(storedRed("SignalLayerRanges", 2), row2_before);
        QCOMPARE(Korvo::UIAPI::getRanges("SignalLayerRanges")[0].YellowLv,
                 ranges.records()[0].YellowLv);

        emit field(ranges, "red", 2)->editingFinished();
        QCOMPARE(storedRed("SignalLayerRanges", 2), 7.5 * 25400);
        QCOMPARE(storedRed("SignalLayerRanges", 1), ranges.records()[1].RedLv);
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
