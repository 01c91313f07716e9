#include <QtTest>

#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "UnitScope.h"
#include "analysis/HitNavigator.h"
#include "analysis/ResultAdapters.h"
#include "analysis/ValueHistogram.h"
#include "analysis/ViewerModes.h"

using namespace Korvo::API;
using wctest::row;

namespace {

const wc::AdapterInput kSignalRanges{"SignalLayerRanges", "", {}};

check_info hit(double value) {
    check_info info;
    info.value = value;
    info.shape.points = {{value, 0.0}, {value + 1.0, 1.0}};
    return info;
}

std::vector<check_info> hits(int count, double first) {
    std::vector<check_info> out;
    for (int i = 0; i < count; ++i) {
        out.push_back(hit(first + i));
    }
    return out;
}

signal_check_result levels(int red, int yellow, int green, int other) {
    signal_check_result result;
    result.red = hits(red, 100);
    result.yellow = hits(yellow, 200);
    result.green = hits(green, 300);
    result.other = hits(other, 400);
    return result;
}

}  // namespace

class tst_ResultsModel : public QObject {
    Q_OBJECT
private slots:
    void countsAreCumulative_data() {
        wctest::columns<int, int, int, int, int, int>("red", "yellow", "green", "other", "severity",
                                                      "expected");
        row("red and yellow at !", 2, 5, 7, 11, int(wc::SevYellow), 7);
        row("green level", 2, 5, 7, 11, int(wc::SevGreen), 14);
        row("All counts the fourth list", 2, 5, 7, 11, int(wc::SevAll), 25);
        row("only the fourth list at green", 0, 0, 0, 3, int(wc::SevGreen), 0);
    }

    void countsAreCumulative() {
        QFETCH(int, red);
        QFETCH(int, yellow);
        QFETCH(int, green);
        QFETCH(int, other);
        QFETCH(int, severity);
        QFETCH(int, expected);
        auto result = std::make_shared<signal_check_result_map>();
        (*result)["top"][sli_line_width] = levels(red, yellow, green, other);
        (*result)["top"][sli_pad_size] = levels(red, yellow, green, other);
        const wc::ResultsModel model = wc::modelOf(result, kSignalRanges);

        const auto categories = model.categories({0}, severity);
        QCOMPARE(int(categories.size()), 2);  // listed when they carry any hit at all
        for (const wc::CategoryEntry& entry : categories) {
            QCOMPARE(int(entry.count), expected);
        }
        QCOMPARE(categories[0].name, std::string("Line Width"));
        QCOMPARE(int(model.hits({0}, sli_pad_size, severity).size()), expected);
    }

    void categoriesMergeOverLayers() {
        auto result = std::make_shared<signal_check_result_map>();
        (*result)["bottom"][sli_line_width] = levels(1, 0, 0, 0);
        (*result)["top"][sli_line_width] = levels(2, 1, 0, 0);
        (*result)["top"][sli_pad_size] = levels(0, 0, 4, 0);
        const wc::ResultsModel model = wc::modelOf(result, kSignalRanges);

        QCOMPARE(int(model.layers().size()), 2);
        const auto both = model.categories({0, 1}, wc::SevRed);
        QCOMPARE(int(both.size()), 2);
        QCOMPARE(both[0].item, int(sli_line_width));
        QCOMPARE(int(both[0].count), 3);
        QCOMPARE(int(both[1].count), 0);
        QCOMPARE(int(both[1].all), 4);
        QCOMPARE(int(model.categories({0}, wc::SevAll).size()), 1);
        QCOMPARE(int(model.total()), 8);
    }

    void sequenceVisitsLayersRecordsThenLevels() {
        auto result = std::make_shared<signal_check_result_map>();
        (*result)["a"][sli_line_width] = levels(2, 1, 0, 0);
        (*result)["b"][sli_line_width] = levels(0, 3, 1, 0);
        const wc::ResultsModel model = wc::modelOf(result, kSignalRanges);
        const wc::HitSequence sequence = model.hits({0, 1}, sli_line_width, wc::SevYellow);

        QCOMPARE(int(sequence.size()), 6);
        const double values[] = {100, 101, 200, 200, 201, 202};
        const int layers[] = {0, 0, 0, 1, 1, 1};
        const int kinds[] = {0, 0, 1, 1, 1, 1};
        for (int i = 0; i < 6; ++i) {
            const wc::HitRef ref = sequence.at(i);
            QVERIFY(ref.hit != nullptr);
            QCOMPARE(ref.hit->value, values[i]);
            QCOMPARE(ref.layer, layers[i]);
            QCOMPARE(ref.level, kinds[i]);
        }
        QVERIFY(sequence.at(6).hit == nullptr);
        QCOMPARE(sequence.layers(), (std::vector<int>{0, 1}));
    }

    void mrcHitsAreReadInPlace() {
        auto result = std::make_shared<mrc_check_result>();
        (*result)["l1"]["width"] = {{"w1", hit(7)}, {"w2", hit(8)}, {"w3", hit(9)}};
        (*result)["l2"]["spacing"] = {{"s1", hit(3)}};
        (*result)["l2"]["width"] = {{"w4", hit(5)}};
        const wc::ResultsModel model = wc::modelOf(result, {});

        const auto categories = model.categories({0, 1}, wc::SevRed);
        QCOMPARE(int(categories.size()), 2);
        QCOMPARE(categories[1].name, std::string("width"));
        QCOMPARE(int(categories[1].count), 4);
        const wc::HitSequence width = model.hits({0, 1}, categories[1].item, wc::SevRed);
        QCOMPARE(width.at(2).hit, &(*result)["l1"]["width"][2].info);
        QCOMPARE(width.at(3).hit->value, 5.0);
    }

    void modelKeepsSharedResultAlive() {
        auto result = std::make_shared<signal_check_result_map>();
        (*result)["top"][sli_line_width] = levels(3, 0, 0, 0);
        std::weak_ptr<signal_check_result_map> watch = result;
        wc::ResultsModel model = wc::modelOf(std::move(result), kSignalRanges);
        QVERIFY(!watch.expired());
        QCOMPARE(model.hits({0}, sli_line_width, wc::SevRed).at(2).hit->value, 102.0);
        model = wc::ResultsModel();
        QVERIFY(watch.expired());
    }

    void navigationStaysInBounds_data() {
        wctest::columns<int, QString, int>("count", "steps", "index");
        row("empty sequence", 0, ">>L", 0);
        row("last then previous", 5, "L<", 4);
        row("index zero refused", 5, ">0", 2);
    }

    void navigationStaysInBounds() {
        QFETCH(int, count);
        QFETCH(QString, steps);
        QFETCH(int, index);
        wc::HitNavigator navigator;
        navigator.reset(count);
        const std::map<char, bool (wc::HitNavigator::*)()> moves = {
            {'>', &wc::HitNavigator::next},
            {'<', &wc::HitNavigator::previous},
            {'F', &wc::HitNavigator::first},
            {'L', &wc::HitNavigator::last}};
        for (QChar step : steps) {
            if (step.isDigit()) {
                navigator.goToIndex(step.digitValue());
            } else {
                (navigator.*moves.at(step.toLatin1()))();
            }
        }
        QCOMPARE(int(navigator.index()), index);
    }

    void valueTextsFollowTheModeAndUnit_data() {
        wctest::columns<int, int, QString>("style", "unit", "text");
        row("length in mm", int(wc::ValueStyle::Length), 1, "0.089 mm");
        row("MRC difference", int(wc::ValueStyle::Difference), 0, "Difference: 3.500 mil");
        row("drill table box", int(wc::ValueStyle::Extents), 0, "10.000 x 5.000mil ");
        row("drill table keeps mil in mm", int(wc::ValueStyle::Extents), 1, "0.254 x 0.127mil ");
    }

    void valueTextsFollowTheModeAndUnit() {
        QFETCH(int, style);
        QFETCH(int, unit);
        QFETCH(QString, text);
        int handle = 0;
        wctest::UnitScope scope(&handle, unit);
        check_info info;
        info.value = 3.5 * 25400;
        info.shape.points = {{254000, 0}, {0, 127000}};
        QCOMPARE(wc::hitValueText(wc::ValueStyle(style), info, &handle), text);
    }

    void histogramBinsEveryValue_data() {
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<QList<int>>("bins");
        row("no values", QList<double>{}, QList<int>{});
        row("equal values share one bin", QList<double>{2, 2, 2}, QList<int>{3});
        row("largest in the last bin", QList<double>{0, 1, 2, 3, 4}, QList<int>{2, 1, 2});
    }

    void histogramBinsEveryValue() {
        QFETCH(QList<double>, values);
        QFETCH(QList<int>, bins);
        const wc::ValueHistogram histogram =
            wc::histogramOf(std::vector<double>(values.begin(), values.end()), 3);
        QCOMPARE(int(histogram.bins.size()), bins.size());
        for (int i = 0; i < bins.size(); ++i) {
            QCOMPARE(int(histogram.bins[std::size_t(i)]), bins[i]);
        }
    }
};

QTEST_GUILESS_MAIN(tst_ResultsModel)
#include "tst_ResultsModel.moc"
