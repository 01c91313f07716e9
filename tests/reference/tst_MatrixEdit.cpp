// Matrix edits of the reference engine on the sample job: change_matrix and move_layer_poi,
// what they refuse (with a message, the matrix and edit counters unchanged) and what they do.
//
// Sample matrix rows: 1 top_silk, 2 top_mask, 3 top, 4 l2_gnd, 5 l3, 6 l4, 7 l5_pwr, 8 bottom,
// 9 bottom_mask, 10 bottom_silk, 11 drill (top..bottom), 12 via_drill (top..l3), 13 doc,
// 14 fab_notes.

#include <QtTest>

#include "DataRows.h"
#include "Korvo_API.h"
#include "LogCapture.h"
#include "ReferenceEngine.h"

using namespace Korvo::API;

namespace {

const std::string kJob = "matrix";

std::vector<layer_info> matrixOf(const std::string& job = kJob) {
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    get_matrix(job, steps, layers);
    return layers;
}

// Every field of every row, one row per line.
QString text(const std::vector<layer_info>& matrix) {
    QStringList lines;
    for (const layer_info& l : matrix) {
        lines << QString::fromStdString(std::to_string(l.row) + " " + l.name + " " + l.context +
                                        " " + l.type + " " + l.polarity + " " + l.side + " " +
                                        l.drill_start + ".." + l.drill_end);
    }
    return lines.join('\n');
}

QString names(const std::vector<layer_info>& matrix) {
    QStringList out;
    for (const layer_info& l : matrix) {
        out << QString::fromStdString(l.name);
    }
    return out.join(' ');
}

std::vector<int> editCounts() {
    return {get_editop_count(kJob, "pcb"), get_editop_count(kJob, "panel")};
}

// The row's fields with "field=value;..." applied.
layer_info edited(layer_info info, const QString& edits) {
    for (const QString& edit : edits.split(';', Qt::SkipEmptyParts)) {
        const QString field = edit.section('=', 0, 0);
        const std::string value = edit.section('=', 1).toStdString();
        std::string* target = field == "name"          ? &info.name
                              : field == "context"     ? &info.context
                              : field == "type"        ? &info.type
                              : field == "polarity"    ? &info.polarity
                              : field == "side"        ? &info.side
                              : field == "drill_start" ? &info.drill_start
                              : field == "drill_end"   ? &info.drill_end
                                                       : nullptr;
        if (target == nullptr) {
            qFatal("unknown field %s", qPrintable(field));
        }
        *target = value;
    }
    return info;
}

}  // namespace

class tst_MatrixEdit : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob(kJob));
    }

    void refusedChanges_data() {
        QTest::addColumn<QString>("job");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("new_row");
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("edits");    // applied to the layer's own row
        QTest::addColumn<QString>("message");  // part of the logged reason
        const auto add = [](const char* tag, int row, int new_row, const char* layer,
                            const char* edits, const char* message) {
            wctest::row(tag, "matrix", row, new_row, layer, edits, message);
        };
        wctest::row("unknown job", "nothing", 3, 3, "top", "type=mixed", "nothing");
        add("row 0", 0, 3, "top", "", "row 0 is outside 1..14");
        add("row beyond the last", 15, 3, "top", "", "row 15 is outside 1..14");
        add("new row 0", 3, 0, "top", "", "new row 0 is outside 1..14");
        add("new row beyond the last", 3, 15, "top", "", "new row 15 is outside 1..14");
        add("layer not in that row", 3, 3, "l3", "type=mixed", "row 3 holds layer top, not l3");
        add("rename onto another layer", 5, 5, "l3", "name=top", "two layers are named top");
        add("empty name", 5, 5, "l3", "name=", "is empty");
        add("name with a space", 5, 5, "l3", "name=l 3", "white space");
        add("unknown type", 5, 5, "l3", "type=copper", "unknown type \"copper\"");
        add("unknown side", 5, 5, "l3", "side=middle", "cannot have side \"middle\"");
        add("unknown polarity", 5, 5, "l3", "polarity=inverted", "unknown polarity");
        add("unknown context", 5, 5, "l3", "context=panel", "unknown context");
        add("inner solder mask", 2, 2, "top_mask", "side=inner", "cannot have side \"inner\"");
        add("copper without a side", 5, 5, "l3", "side=none", "cannot have side \"none\"");
        add("span to a missing layer", 11, 11, "drill", "drill_end=l9", "l9, which does not");
        add("span to a mask", 11, 11, "drill", "drill_end=bottom_mask", "not copper");
        add("span with one end", 11, 11, "drill", "drill_end=", "both ends are needed");
        add("span on a document", 13, 13, "doc", "drill_start=top;drill_end=bottom",
            "cannot span layers");
        add("drill made document keeping its span", 12, 12, "via_drill",
            "type=document;context=misc", "cannot span layers");
        add("spanned copper made document", 5, 5, "l3", "type=document;context=misc;side=none",
            "which is a document layer, not copper");
    }
    void refusedChanges() {
        QFETCH(QString, job);
        QFETCH(int, row);
        QFETCH(int, new_row);
        QFETCH(QString, layer);
        QFETCH(QString, edits);
        QFETCH(QString, message);
        const std::vector<layer_info> before = matrixOf();
        const std::vector<int> counts = editCounts();
        const layer_info base = before[std::clamp(row, 1, 14) - 1];
        wctest::LogCapture log;
        QVERIFY(!change_matrix(job.toStdString(), row, new_row, layer.toStdString(),
                               edited(base, edits)));
        QCOMPARE(text(matrixOf()), text(before));
        QVERIFY(editCounts() == counts);
        const std::vector<std::string> errors = log.errors();
        QVERIFY(!errors.empty());
        QVERIFY2(QString::fromStdString(errors.back()).contains(message), errors.back().c_str());
    }

    void acceptedChanges_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("new_row");
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("edits");
        QTest::addColumn<QString>("order");  // names in row order afterwards
        QTest::addColumn<QString>("spans");  // drill, via_drill spans afterwards
        const QString order =
            "top_silk top_mask top l2_gnd l3 l4 l5_pwr bottom bottom_mask bottom_silk drill "
            "via_drill doc fab_notes";
        wctest::row("document typed as inner signal", 13, 13, "doc",
                    "type=signal;context=board;side=inner", order, "top..bottom top..l3");
        wctest::row("plane made positive", 4, 4, "l2_gnd", "polarity=positive", order,
                    "top..bottom top..l3");
        wctest::row("span narrowed", 12, 12, "via_drill", "drill_end=l4", order,
                    "top..bottom top..l4");
        wctest::row("drill made document with its span dropped", 12, 12, "via_drill",
                    "type=document;context=misc;drill_start=;drill_end=", order, "top..bottom");
        wctest::row("document typed and moved between the planes", 13, 5, "doc",
                    "type=power_ground;context=board;side=inner",
                    "top_silk top_mask top l2_gnd doc l3 l4 l5_pwr bottom bottom_mask "
                    "bottom_silk drill via_drill fab_notes",
                    "top..bottom top..l3");
        wctest::row("top silk moved to the end", 1, 14, "top_silk", "",
                    "top_mask top l2_gnd l3 l4 l5_pwr bottom bottom_mask bottom_silk drill "
                    "via_drill doc fab_notes top_silk",
                    "top..bottom top..l3");
        wctest::row("spanned copper renamed: spans follow", 5, 5, "l3", "name=inner3",
                    "top_silk top_mask top l2_gnd inner3 l4 l5_pwr bottom bottom_mask "
                    "bottom_silk drill via_drill doc fab_notes",
                    "top..bottom top..inner3");
        wctest::row("nothing changed", 7, 7, "l5_pwr", "", order, "top..bottom top..l3");
    }
    void acceptedChanges() {
        QFETCH(int, row);
        QFETCH(int, new_row);
        QFETCH(QString, layer);
        QFETCH(QString, edits);
        QFETCH(QString, order);
        QFETCH(QString, spans);
        const std::vector<layer_info> before = matrixOf();
        const std::vector<int> counts = editCounts();
        const layer_info wanted = edited(before[row - 1], edits);
        wcref::clearEngineCalls();
        QVERIFY(change_matrix(kJob, row, new_row, layer.toStdString(), wanted));
        const std::vector<layer_info> after = matrixOf();
        QCOMPARE(names(after), order);
        QStringList spanTexts;
        for (const layer_info& l : after) {
            QCOMPARE(l.row, static_cast<int>(&l - after.data()) + 1);
            if (l.type == "drill") {
                spanTexts << QString::fromStdString(l.drill_start + ".." + l.drill_end);
            }
        }
        QCOMPARE(spanTexts.join(' '), spans);
        layer_info got = after[new_row - 1];
        QCOMPARE(got.row, new_row);
        got.row = wanted.row;
        if (got.name == "via_drill" || got.type == "drill") {
            got.drill_start = wanted.drill_start;  // spans are compared above
            got.drill_end = wanted.drill_end;
        }
        QCOMPARE(text({got}), text({wanted}));
        QVERIFY(editCounts() == std::vector<int>({counts[0] + 1, counts[1] + 1}));
        const std::vector<wcref::EngineCall> calls = wcref::engineCalls();
        QVERIFY(!calls.empty());
        QCOMPARE(calls.front().operation, std::string("change_matrix"));
    }

    // A renamed layer keeps its features, in every step, under its new name.
    void renameKeepsFeatures() {
        std::vector<featureInfo> before;
        QVERIFY(get_all_feature_info(kJob, "pcb", "l3", before, FT_All));
        QVERIFY(!before.empty());
        layer_info info = matrixOf()[4];
        info.name = "inner3";
        QVERIFY(change_matrix(kJob, 5, 5, "l3", info));
        std::vector<featureInfo> after;
        QVERIFY(get_all_feature_info(kJob, "pcb", "inner3", after, FT_All));
        QCOMPARE(after.size(), before.size());
        for (const featureInfo& f : after) {
            QCOMPARE(f.layer, std::string("inner3"));
        }
        std::vector<featureInfo> old;
        QVERIFY(!get_all_feature_info(kJob, "pcb", "l3", old, FT_All));
        std::vector<std::string> steps;
        std::vector<layer_info> shown;
        get_graphics(kJob, steps, shown);
        QVERIFY(std::any_of(shown.begin(), shown.end(),
                            [](const layer_info& l) { return l.name == "inner3"; }));
    }

    void moves_data() {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("order");  // first five names afterwards
        QTest::addColumn<int>("edits");      // added to each step's counter
        wctest::row("down", 1, 3, true, "top_mask top top_silk l2_gnd l3", 1);
        wctest::row("up", 5, 2, true, "top_silk l3 top_mask top l2_gnd", 1);
        wctest::row("last to first", 14, 1, true, "fab_notes top_silk top_mask top l2_gnd", 1);
        wctest::row("onto itself", 3, 3, true, "top_silk top_mask top l2_gnd l3", 0);
        wctest::row("from row 0", 0, 3, false, "top_silk top_mask top l2_gnd l3", 0);
        wctest::row("to beyond the last", 3, 15, false, "top_silk top_mask top l2_gnd l3", 0);
        wctest::row("from beyond the last", 15, 1, false, "top_silk top_mask top l2_gnd l3", 0);
        wctest::row("to a negative row", 2, -1, false, "top_silk top_mask top l2_gnd l3", 0);
    }
    void moves() {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(bool, accepted);
        QFETCH(QString, order);
        QFETCH(int, edits);
        const std::vector<int> counts = editCounts();
        wctest::LogCapture log;
        QCOMPARE(move_layer_poi(kJob, from, to), accepted);
        QCOMPARE(log.errors().empty(), accepted);
        const std::vector<layer_info> after = matrixOf();
        QCOMPARE(names(after).section(' ', 0, 4), order);
        QCOMPARE(after.size(), size_t(14));
        for (size_t k = 0; k < after.size(); ++k) {
            QCOMPARE(after[k].row, static_cast<int>(k) + 1);
        }
        QVERIFY(editCounts() == std::vector<int>({counts[0] + edits, counts[1] + edits}));
        QVERIFY(!move_layer_poi("nothing", 1, 2));
    }
};

QTEST_MAIN(tst_MatrixEdit)
#include "tst_MatrixEdit.moc"
