// The demo's layer matrix panel: edits made in its widgets reach the engine, refused ones show
// the engine's reason and the row as the engine has it, accepted ones are recorded and tell the
// host; and ekf2's neutrally named copper layers, typed through the panel, can be checked.

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

#include "DataRows.h"
#include "DemoWindow.h"
#include "HostSettings.h"
#include "Korvo_API.h"
#include "MatrixPanel.h"
#include "PluginSpy.h"
#include "ReferenceEngine.h"
#include "frame/PluginMessages.h"

using namespace Korvo::API;

namespace {

const std::string kJob = "sample_job";

std::vector<layer_info> matrixOf(const std::string& job) {
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    get_matrix(job, steps, layers);
    return layers;
}

int indexOf(const MatrixPanel& panel, const std::string& layer) {
    const auto& m = panel.matrix();
    for (size_t k = 0; k < m.size(); ++k) {
        if (m[k].name == layer) {
            return static_cast<int>(k);
        }
    }
    return -1;
}

QWidget* cell(MatrixPanel& panel, int index, MatrixPanel::Column column) {
    return panel.findChild<QTableWidget*>("matrix")->cellWidget(index, column);
}

// Sets `value` in the cell of `layer`'s row as a user would.
void edit(MatrixPanel& panel, const std::string& layer, MatrixPanel::Column column,
          const QString& value) {
    const int index = indexOf(panel, layer);
    QVERIFY2(index >= 0, layer.c_str());
    auto* table = panel.findChild<QTableWidget*>("matrix");
    if (column == MatrixPanel::Name) {
        table->item(index, column)->setText(value);
    } else if (column == MatrixPanel::Row) {
        auto* spin = static_cast<QSpinBox*>(table->cellWidget(index, column));
        spin->setValue(value.toInt());
        emit spin->editingFinished();
    } else {
        auto* box = static_cast<QComboBox*>(table->cellWidget(index, column));
        QVERIFY2(box->findText(value) >= 0, qPrintable(value));
        QVERIFY(box->isEnabled());
        box->setCurrentText(value);
    }
}

// What the panel shows for a layer, one field.
QString shown(MatrixPanel& panel, int index, MatrixPanel::Column column) {
    if (column == MatrixPanel::Name) {
        return panel.findChild<QTableWidget*>("matrix")->item(index, column)->text();
    }
    if (column == MatrixPanel::Row) {
        return QString::number(static_cast<QSpinBox*>(cell(panel, index, column))->value());
    }
    return static_cast<QComboBox*>(cell(panel, index, column))->currentText();
}

QString field(const layer_info& l, MatrixPanel::Column column) {
    const std::string* fields[] = {&l.name, &l.context,     &l.type,     &l.polarity,
                                   &l.side, &l.drill_start, &l.drill_end};
    return column == MatrixPanel::Row ? QString::number(l.row)
                                      : QString::fromStdString(*fields[column]);
}

}  // namespace

Q_DECLARE_METATYPE(MatrixPanel::Column)

class tst_MatrixPanel : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        wcref::setSaveFlag(false);
        wcref::clearRecordedSaves();
        QVERIFY(wcref::openSampleJob(kJob));
    }

    // One edit in a cell of the sample job's matrix. Accepted: the engine has the value (and
    // `also` for the fields the panel adjusts with a new type), the edit is recorded before
    // the engine call, and the matrix message goes out. Refused: the message names the reason
    // and the row shows the engine's values again.
    void cellEdits_data() {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<MatrixPanel::Column>("column");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("also");     // accepted: "field=value;..." afterwards
        QTest::addColumn<QString>("message");  // refused: part of the reason shown
        using C = MatrixPanel;
        wctest::row("document typed as signal", "doc", C::Type, "signal", true,
                    "side=inner;context=board", "");
        wctest::row("document typed as mask", "fab_notes", C::Type, "solder_mask", true,
                    "side=top;context=board", "");
        wctest::row("copper typed as drill spans the outer copper", "l4", C::Type, "drill", true,
                    "side=none;drill_start=top;drill_end=bottom", "");
        wctest::row("drill typed as rout loses its span", "drill", C::Type, "rout", true,
                    "drill_start=;drill_end=", "");
        wctest::row("plane made positive", "l2_gnd", C::Polarity, "positive", true, "", "");
        wctest::row("span narrowed", "via_drill", C::DrillEnd, "l4", true, "drill_start=top", "");
        wctest::row("renamed", "l3", C::Name, "inner3", true, "", "");
        wctest::row("moved by its row", "doc", C::Row, "2", true, "", "");
        wctest::row("rename clashing", "l3", C::Name, "top", false, "", "two layers are named top");
        wctest::row("inner mask", "top_mask", C::Side, "inner", false, "",
                    "cannot have side \"inner\"");
        wctest::row("copper without side", "l3", C::Side, "none", false, "",
                    "cannot have side \"none\"");
        wctest::row("span with one end", "drill", C::DrillEnd, "", false, "",
                    "both ends are needed");
        wctest::row("spanned copper made document", "l3", C::Type, "document", false, "",
                    "which is a document layer, not copper");
        wctest::row("misc context for copper", "top", C::Context, "misc", true, "", "");
    }
    void cellEdits() {
        QFETCH(QString, layer);
        QFETCH(MatrixPanel::Column, column);
        QFETCH(QString, value);
        QFETCH(bool, accepted);
        QFETCH(QString, also);
        QFETCH(QString, message);
        MatrixPanel panel(QString::fromStdString(kJob));
        const std::vector<layer_info> before = matrixOf(kJob);
        const int index = indexOf(panel, layer.toStdString());
        const int edits = get_editop_count(kJob, "pcb");
        wcref::setSaveFlag(true);
        wcref::clearEngineCalls();
        wctest::PluginSpy spy;
        edit(panel, layer.toStdString(), column, value);
        const std::vector<layer_info> after = matrixOf(kJob);
        const std::vector<std::string> saves = wcref::recordedSaves();
        QCOMPARE(saves.size(), size_t(1));
        QVERIFY2(QString::fromStdString(saves[0]).startsWith(
                     QString::fromStdString("change_matrix_db_save(" + kJob)),
                 saves[0].c_str());
        if (!accepted) {
            QVERIFY2(panel.message().contains(message), qPrintable(panel.message()));
            QCOMPARE(after.size(), before.size());
            for (size_t k = 0; k < after.size(); ++k) {
                for (int c = MatrixPanel::Name; c <= MatrixPanel::Row; ++c) {
                    QCOMPARE(field(after[k], MatrixPanel::Column(c)),
                             field(before[k], MatrixPanel::Column(c)));
                }
            }
            QCOMPARE(get_editop_count(kJob, "pcb"), edits);
            QCOMPARE(spy.withCode(wc::code::RefreshMatrix).size(), 0);
            for (int c = MatrixPanel::Name; c <= MatrixPanel::Row; ++c) {
                QCOMPARE(shown(panel, index, MatrixPanel::Column(c)),
                         field(before[index], MatrixPanel::Column(c)));
            }
            return;
        }
        QVERIFY2(panel.message().isEmpty(), qPrintable(panel.message()));
        const int now = column == MatrixPanel::Row ? value.toInt() - 1 : index;
        const layer_info& l = after[now];
        QCOMPARE(field(l, column), value);
        for (const QString& pair : also.split(';', Qt::SkipEmptyParts)) {
            const QStringList names{"name", "context",     "type",     "polarity",
                                    "side", "drill_start", "drill_end"};
            const int c = names.indexOf(pair.section('=', 0, 0));
            QVERIFY(c >= 0);
            QCOMPARE(field(l, MatrixPanel::Column(c)), pair.section('=', 1));
        }
        // The panel shows what the engine has, in every cell.
        for (size_t k = 0; k < after.size(); ++k) {
            for (int c = MatrixPanel::Name; c <= MatrixPanel::Row; ++c) {
                QCOMPARE(shown(panel, int(k), MatrixPanel::Column(c)),
                         field(after[k], MatrixPanel::Column(c)));
            }
        }
        QCOMPARE(get_editop_count(kJob, "pcb"), edits + 1);
        const QList<wctest::SeenMessage> sent = spy.withCode(wc::code::RefreshMatrix);
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent[0].receiver, wc::module::Matrix);
        QCOMPARE(sent[0].values.value("DstType").toString(), QString("Matrix"));
        QCOMPARE(sent[0].values.value("Job").toString(), QString::fromStdString(kJob));
    }

    // Moving rows with the buttons (the drag ends in the same call).
    void moveButtons_data() {
        QTest::addColumn<int>("selected");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("first");  // the first three layers afterwards
        QTest::addColumn<int>("current");
        wctest::row("down", 0, "down", "top_mask top_silk top", 1);
        wctest::row("up", 2, "up", "top_silk top top_mask", 1);
        wctest::row("up from the first", 0, "up", "top_silk top_mask top", 0);
    }
    void moveButtons() {
        QFETCH(int, selected);
        QFETCH(QString, button);
        QFETCH(QString, first);
        QFETCH(int, current);
        MatrixPanel panel(QString::fromStdString(kJob));
        auto* table = panel.findChild<QTableWidget*>("matrix");
        table->selectRow(selected);
        QTest::mouseClick(panel.findChild<QPushButton*>(button), Qt::LeftButton);
        const std::vector<layer_info> after = matrixOf(kJob);
        QCOMPARE(QString::fromStdString(after[0].name + " " + after[1].name + " " + after[2].name),
                 first);
        QCOMPARE(table->currentRow(), current);
        QCOMPARE(shown(panel, 0, MatrixPanel::Name), QString::fromStdString(after[0].name));
    }

    // The host's layer list follows an edit made in the panel it opened.
    void hostSeesTheChange() {
        DemoWindow window;
        QVERIFY(window.openSampleJob());
        auto* panel = qobject_cast<MatrixPanel*>(window.openLayerMatrix());
        QVERIFY(panel != nullptr);
        edit(*panel, "l3", MatrixPanel::Name, "inner3");
        auto* layers = window.findChild<QListWidget*>("layers");
        QVERIFY(!layers->findItems("inner3", Qt::MatchExactly).isEmpty());
        QVERIFY(layers->findItems("l3", Qt::MatchExactly).isEmpty());
        // And the panel follows a change the engine made elsewhere.
        QVERIFY(move_layer_poi(kJob, 1, 14));
        wc::notifyJobChanged(QString::fromStdString(kJob));
        QTRY_COMPARE(shown(*panel, 13, MatrixPanel::Name), QString("top_silk"));
        panel->close();
    }

    // ekf2's copper layers are named l0..l5 and open as documents. Typed as signal layers in
    // the panel, moved into the stack and spanned by the drill layers, the signal layer check
    // finds the drill hits on l0 that it could not find before.
    void ekf2TypedThroughThePanel() {
        const std::string job = "ekf2";
        QVERIFY(open_job(job, "/usr/share/doc/gerbv/examples/ekf2"));
        const auto drillHits = [&] {
            signal_check_params params;
            params.layers = "l0.grb";
            params.spacing = 8 * 25400.0;
            params.drill_to_copper = 10 * 25400.0;
            params.rout_to_copper = 10 * 25400.0;
            params.sliver_min = 2 * 25400.0;
            params.min_pad_overlap = 2 * 25400.0;
            std::map<signal_layers_checks_items, signal_check_result> result;
            Korvo::COMMON::progress_value<signal_check_result_map> progress;
            if (!signal_layers_checks(job, "pcb", "l0.grb", params, {sl_drill}, {}, result,
                                      &progress, 0)) {
                return -1;
            }
            size_t hits = 0;
            for (const auto& entry : result) {
                hits += entry.second.red.size() + entry.second.yellow.size() +
                        entry.second.green.size() + entry.second.other.size();
            }
            return static_cast<int>(hits);
        };
        MatrixPanel panel(QString::fromStdString(job));
        const int l0 = indexOf(panel, "l0.grb");
        QVERIFY(l0 >= 0);
        QCOMPARE(QString::fromStdString(panel.matrix()[l0].type), QString("document"));
        QCOMPARE(drillHits(), 0);

        const std::vector<std::pair<std::string, QString>> stack = {
            {"l0.grb", "top"},   {"l1.grb", "inner"}, {"l2.grb", "inner"},
            {"l3.grb", "inner"}, {"l4.grb", "inner"}, {"l5.grb", "bottom"}};
        int target = 1;
        for (const auto& layer : stack) {
            edit(panel, layer.first, MatrixPanel::Type, "signal");
            edit(panel, layer.first, MatrixPanel::Side, layer.second);
            edit(panel, layer.first, MatrixPanel::Row, QString::number(target++));
            QVERIFY2(panel.message().isEmpty(), qPrintable(panel.message()));
            if (QTest::currentTestFailed()) {
                return;
            }
        }
        for (const layer_info& l : matrixOf(job)) {
            if (l.type == "drill") {
                edit(panel, l.name, MatrixPanel::DrillStart, "l0.grb");
                edit(panel, l.name, MatrixPanel::DrillEnd, "l5.grb");
            }
        }
        QVERIFY2(panel.message().isEmpty(), qPrintable(panel.message()));
        const std::vector<layer_info> typed = matrixOf(job);
        for (int k = 0; k < 6; ++k) {
            QCOMPARE(QString::fromStdString(typed[k].name), QString("l%1.grb").arg(k));
            QCOMPARE(QString::fromStdString(typed[k].type), QString("signal"));
            QCOMPARE(QString::fromStdString(typed[k].side), stack[k].second);
            QCOMPARE(QString::fromStdString(typed[k].context), QString("board"));
        }
        const int hits = drillHits();
        QVERIFY2(hits > 0, qPrintable(QString::number(hits)));
    }
};

QTEST_MAIN(tst_MatrixPanel)
#include "tst_MatrixPanel.moc"
