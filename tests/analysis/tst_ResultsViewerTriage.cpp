#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QtTest>

#include <functional>
#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "Korvo_API.h"
#include "MessageBoxAnswerer.h"
#include "ScopedEngineHook.h"
#include "TemporaryWorkingDirectory.h"
#include "UnitScope.h"
#include "analysis/HitTableModel.h"
#include "analysis/ResultAdapters.h"
#include "analysis/TriagePanel.h"
#include "analysis/WaiverFile.h"
#include "analysis/Widget_ResultsViewer.h"

// The results viewer's triage (waivers in the reference engine's result database, the
// comparison with an earlier run, the views) and its hit table's grouping, text filter and
// picks.

using namespace Korvo::API;
using wctest::child;
using wctest::row;

namespace {

using Result = std::shared_ptr<signal_check_result_map>;
const wc::TriageScope kScope{"SignalLayer", "sample_job", "pcb"};

// A hit measured along x from `x` (mil), `value` mil long, between `nets`.
check_info spaced(double x, double value, std::vector<std::string> nets) {
    check_info info;
    info.value = value * 25400.0;
    info.required = 4 * 25400.0;
    info.shape.points = {{x * 25400.0, 0.0}, {(x + value) * 25400.0, 0.0}};
    info.nets = std::move(nets);
    return info;
}

// Hits written "<item L|P>@<x>:<value>[/<net>,<net>]" on layer "top", in mil: L for Line Width,
// P for Pad Size, each in the red list.
Result result(const QString& text) {
    auto made = std::make_shared<signal_check_result_map>();
    for (const QString& spec : text.split(' ', Qt::SkipEmptyParts)) {
        const QStringList parts = spec.mid(2).split('/');
        const QStringList at = parts[0].split(':');
        std::vector<std::string> nets;
        for (const QString& net : parts.value(1).split(',', Qt::SkipEmptyParts)) {
            nets.push_back(net.toStdString());
        }
        const auto item = spec[0] == 'L' ? sli_line_width : sli_pad_size;
        (*made)["top"][item].red.push_back(spaced(at[0].toDouble(), at[1].toDouble(), nets));
    }
    return made;
}

const char* const kShown = "L@0:3/GND,VCC L@100:2/GND,VCC L@200:4/GND P@300:5";

std::shared_ptr<const wc::ResultsModel> modelOf(Result run) {
    return std::make_shared<wc::ResultsModel>(wc::modelOf(
        std::shared_ptr<const signal_check_result_map>(run), {"SignalLayerRanges", "", {}}));
}

wc::TriageContext contextWith(Result earlier = nullptr) {
    wc::TriageContext context;
    context.scope = kScope;
    if (earlier) {
        context.earlier = modelOf(earlier);
        context.earlier_label = "the run before";
    }
    context.load_run = [](int id, wc::ResultsModel& model, QString* error) {
        dms_signal_check_params params;
        auto stored = std::make_shared<signal_check_result_map>();
        if (!getSignalLayerAnalysisResult(id, params, *stored)) {
            *error = QStringLiteral("Run %1 is not stored.").arg(id);
            return false;
        }
        model = *modelOf(stored);
        return true;
    };
    return context;
}

// A viewer on `run` at "Sv:" "All", its triage started in `context`.
std::unique_ptr<Widget_ResultsViewer> viewerOf(QWidget* host, Result run,
                                               const wc::TriageContext& context) {
    auto viewer = std::make_unique<Widget_ResultsViewer>(0, host, run);
    auto* level = child<QComboBox>(*viewer, "m_pLevelCB");
    level->setCurrentIndex(wc::SevAll);
    viewer->on_Level_changed(level->currentText());
    viewer->setTriage(context);
    return viewer;
}

QStringList categoryLines(const QWidget& viewer) {
    QStringList lines;
    auto* list = child<QListWidget>(viewer, "m_pCategoriesList");
    for (int i = 0; i < list->count(); ++i) {
        lines << list->item(i)->text();
    }
    return lines;
}

// One column of the hit table, headings left out.
QStringList column(const QWidget& viewer, int which) {
    const QAbstractItemModel* table = child<QTableView>(viewer, "m_pHitTable")->model();
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (!table->index(row, 0).data(wc::HitTableModel::GroupRole).toBool()) {
            texts << table->index(row, which).data().toString();
        }
    }
    return texts;
}

QStringList headings(const QWidget& viewer) {
    const QAbstractItemModel* table = child<QTableView>(viewer, "m_pHitTable")->model();
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (table->index(row, 0).data(wc::HitTableModel::GroupRole).toBool()) {
            texts << table->index(row, 0).data().toString().mid(2);  // without the fold mark
        }
    }
    return texts;
}

void chooseView(QWidget& viewer, wc::TriageView view) {
    auto* views = child<QComboBox>(viewer, "m_pViewCB");
    views->setCurrentIndex(int(view));
    emit views->activated(int(view));
}

// Handles each modal dialog named `name` that a call opens, with `handle`.
class DialogHandler : public QObject {
public:
    DialogHandler(const char* name, std::function<void(QDialog*)> handle)
        : name_(QString::fromLatin1(name)), handle_(std::move(handle)) {
        connect(&timer_, &QTimer::timeout, this, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog != nullptr && dialog->objectName() == name_ && !busy_) {
                busy_ = true;
                ++seen;
                handle_(dialog);
                busy_ = false;
            }
        });
        timer_.start(10);
    }
    int seen = 0;

private:
    QString name_;
    std::function<void(QDialog*)> handle_;
    QTimer timer_;
    bool busy_ = false;
};

// Fills "Waive..." with `reason` and the scope; a refused reason ends in Cancel.
struct WaiverAnswers : DialogHandler {
    WaiverAnswers(const QString& reason, bool net_pair)
        : DialogHandler("m_pWaiverDialog", [this, reason, net_pair](QDialog* dialog) {
              offered = child<QRadioButton>(*dialog, "m_pNetPairRB")->isVisibleTo(dialog);
              child<QPlainTextEdit>(*dialog, "m_pReasonTE")->setPlainText(reason);
              child<QRadioButton>(*dialog, net_pair ? "m_pNetPairRB" : "m_pThisHitRB")
                  ->setChecked(true);
              dialog->accept();
              kept_open = dialog->isVisible();
              if (kept_open) {
                  dialog->reject();
              }
          }) {}
    bool offered = false;
    bool kept_open = false;  // the reason was refused
};

std::vector<analysis_waiver> stored() {
    std::vector<analysis_waiver> waivers;
    std::string error;
    getAnalysisWaivers(kScope.kind, kScope.job, kScope.step, waivers, error);
    return waivers;
}

}  // namespace

class tst_ResultsViewerTriage : public QObject {
    Q_OBJECT
private slots:
    void init() { working_ = std::make_unique<wctest::TemporaryWorkingDirectory>(); }
    void cleanup() { working_.reset(); }

    // Waiving the current hit, or the table's selected rows: they leave the counts, "Waived"
    // lists them with their reason and history, and the next run of the same hits is waived
    // too. Between two nets is offered when every hit lies between two.
    void waiveHits_data() {
        wctest::columns<QList<int>, QString, bool, bool, QString, QStringList, QString>(
            "rows", "reason", "offered", "netPair", "lines", "waived", "box");
        const QList<int> current;
        row("this hit", current, "harmless", true, false, "Line Width (2)",
            QStringList{"waived: harmless"}, "");
        row("every hit between its nets", current, "one net really", true, true, "Line Width (1)",
            QStringList{"waived: one net really", "waived: one net really"}, "");
        row("no reason", current, "  ", true, false, "Line Width (3)", QStringList(),
            "A waiver needs a reason.");
        row("selected rows", QList<int>{0, 2}, "reviewed", false, false, "Line Width (1)",
            QStringList{"waived: reviewed", "waived: reviewed"}, "");
    }

    void waiveHits() {
        QFETCH(QList<int>, rows);
        QFETCH(QString, reason);
        QFETCH(bool, offered);
        QFETCH(bool, netPair);
        QFETCH(QString, lines);
        QFETCH(QStringList, waived);
        QFETCH(QString, box);
        QWidget host;
        auto viewer = viewerOf(&host, result(kShown), contextWith());
        QCOMPARE(categoryLines(*viewer).first(), "Line Width (3)");
        {
            WaiverAnswers answers(reason, netPair);
            wctest::MessageBoxAnswerer boxes;
            if (rows.isEmpty()) {
                wctest::click(*viewer, "m_pWaivePB");
            } else {
                auto* table = child<QTableView>(*viewer, "m_pHitTable");
                for (int row : rows) {
                    table->selectionModel()->select(
                        table->model()->index(row, 0),
                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
                }
                child<QAction>(*viewer, "m_pWaiveRowsAction")->trigger();
            }
            QCOMPARE(answers.offered, offered);
            QCOMPARE(boxes.texts(), box.isEmpty() ? QStringList() : QStringList{box});
            QCOMPARE(answers.kept_open, !box.isEmpty());
        }
        QCOMPARE(categoryLines(*viewer).first(), lines);
        chooseView(*viewer, wc::TriageView::Waived);
        QCOMPARE(column(*viewer, wc::StateColumn), waived);
        if (!waived.isEmpty()) {
            const QAbstractItemModel* table = child<QTableView>(*viewer, "m_pHitTable")->model();
            const QString tip = table->index(0, wc::StateColumn).data(Qt::ToolTipRole).toString();
            QVERIFY2(tip.startsWith(reason + " (" + qEnvironmentVariable("USER")), qPrintable(tip));
        }
        // The next run of the same hits.
        auto next = viewerOf(&host, result(kShown), contextWith());
        QCOMPARE(categoryLines(*next).first(), lines);
        chooseView(*next, wc::TriageView::Waived);
        QCOMPARE(column(*next, wc::StateColumn), waived);
    }

    // "Stale waivers..." lists the waivers no hit of the shown run matches and removes the
    // ticked ones from the database.
    void staleWaiversAreListedAndRemoved() {
        QWidget host;
        {
            auto first = viewerOf(&host, result(kShown), contextWith());
            WaiverAnswers answers("checked by hand", false);
            wctest::click(*first, "m_pWaivePB");
        }
        QCOMPARE(int(stored().size()), 1);
        // The next run has that hit moved far away.
        auto viewer = viewerOf(&host, result("L@900:3/GND,VCC L@100:2/GND,VCC"), contextWith());
        QCOMPARE(categoryLines(*viewer), QStringList{"Line Width (2)"});
        QStringList listed;
        DialogHandler remove("m_pStaleWaiversDialog", [&listed](QDialog* dialog) {
            auto* list = child<QListWidget>(*dialog, "m_pStaleList");
            for (int i = 0; i < list->count(); ++i) {
                listed << list->item(i)->text();
                list->item(i)->setCheckState(Qt::Checked);
            }
            wctest::click(*dialog, "m_pRemovePB");
        });
        wctest::MessageBoxAnswerer boxes;
        child<QAction>(*viewer, "m_pStaleAction")->trigger();
        QCOMPARE(boxes.texts(), QStringList());
        QCOMPARE(listed.size(), 1);
        QVERIFY2(listed[0].startsWith("Line Width on top: checked by hand ("),
                 qPrintable(listed[0]));
        QVERIFY(stored().empty());
        QCOMPARE(wctest::labelText(*viewer, "m_pTriageStatus"), "0 waived, 0 waivers stale");
    }

    // Against the earlier run: moved by half a mil is the same hit, a hit the earlier run lacks
    // is new, one the shown run lacks is fixed and listed where it was.
    void comparisonMarksAndViews_data() {
        wctest::columns<int, QStringList, QStringList, QString>("view", "lines", "states",
                                                                "location");
        row("open", int(wc::TriageView::Open),
            QStringList{"Line Width (3, 1 new)", "Pad Size (1, 0 new)"},
            QStringList{"unchanged", "unchanged", "new"}, "1.000, 0.000");
        row("new only", int(wc::TriageView::NewOnly), QStringList{"Line Width (1, 1 new)"},
            QStringList{"new"}, "401.000, 0.000");
        row("fixed", int(wc::TriageView::Fixed), QStringList{"Line Width (1)"},
            QStringList{"fixed"}, "202.000, 0.000");
    }

    void comparisonMarksAndViews() {
        QFETCH(int, view);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, states);
        QFETCH(QString, location);
        QWidget host;
        auto viewer =
            viewerOf(&host, result("L@-0.5:3/GND,VCC L@100:2/GND,VCC L@400:2/GND,VCC P@300:5"),
                     contextWith(result(kShown)));
        QCOMPARE(wctest::labelText(*viewer, "m_pTriageStatus"),
                 "0 waived, 0 waivers stale; 1 new, 3 unchanged, 1 fixed");
        chooseView(*viewer, wc::TriageView(view));
        QCOMPARE(categoryLines(*viewer), lines);
        QCOMPARE(column(*viewer, wc::StateColumn), states);
        QCOMPARE(column(*viewer, wc::LocationColumn).first(), location);
        chooseView(*viewer, wc::TriageView::Open);
        QCOMPARE(categoryLines(*viewer).first(), "Line Width (3, 1 new)");
    }

    // "Compare with:" lists the stored runs of the scope; one that loads is compared with, one
    // that does not is named and changes nothing.
    void compareWithAStoredRun_data() {
        wctest::columns<bool, QString, QStringList>("loads", "box", "lines");
        row("loads", true, "", QStringList{"Line Width (3, 0 new)", "Pad Size (1, 0 new)"});
        row("does not load", false, "Run %1 is not stored.",
            QStringList{"Line Width (3, 3 new)", "Pad Size (1, 1 new)"});
    }

    void compareWithAStoredRun() {
        QFETCH(bool, loads);
        QFETCH(QString, box);
        QFETCH(QStringList, lines);
        dms_signal_check_params params;
        params.job = kScope.job;
        params.step = kScope.step;
        const int id = insertSignalLayerAnalysisResult(params, *result(kShown)).id;
        QVERIFY(id >= 0);
        wc::TriageContext context = contextWith(result("L@900:1"));
        if (!loads) {
            context.load_run = [](int id, wc::ResultsModel&, QString* error) {
                *error = QStringLiteral("Run %1 is not stored.").arg(id);
                return false;
            };
        }
        QWidget host;
        auto viewer = viewerOf(&host, result(kShown), context);
        auto* compare = child<QComboBox>(*viewer, "m_pCompareCB");
        QCOMPARE(compare->count(), 3);  // none, the earlier run, the stored one
        QCOMPARE(compare->itemText(1), "the run before");
        wctest::MessageBoxAnswerer boxes;
        compare->setCurrentIndex(2);
        emit compare->activated(2);
        QCOMPARE(boxes.texts(), box.isEmpty() ? QStringList() : QStringList{box.arg(id)});
        QCOMPARE(compare->currentIndex(), loads ? 2 : 1);
        QCOMPARE(categoryLines(*viewer), lines);
    }

    // Without the database the panel says why and every hit stays shown.
    void unavailableDatabaseShowsEveryHit_data() {
        wctest::columns<QString, bool, QString>("unavailable", "failing", "status");
        row("the context says so", "no server configured", false,
            "Waivers and stored runs are not available: no server configured");
        row("the call fails", "", true,
            "Waivers and stored runs are not available: connection refused");
    }

    void unavailableDatabaseShowsEveryHit() {
        QFETCH(QString, unavailable);
        QFETCH(bool, failing);
        QFETCH(QString, status);
        wctest::ScopedEngineHook hook(
            &wcref::EngineHooks::getAnalysisWaivers,
            [failing](const std::string&, const std::string&, const std::string&,
                      std::vector<analysis_waiver>& waivers, std::string& error) {
                waivers = {wc::waiverForHit(wc::TriageRun(*modelOf(result(kShown))), 0, kScope,
                                            "ignored", "nobody")};
                error = "connection refused";
                return !failing;
            });
        wc::TriageContext context = contextWith();
        context.unavailable = unavailable;
        QWidget host;
        auto viewer = viewerOf(&host, result(kShown), context);
        QCOMPARE(wctest::labelText(*viewer, "m_pTriageStatus"), status);
        QCOMPARE(categoryLines(*viewer), (QStringList{"Line Width (3)", "Pad Size (1)"}));
        QVERIFY(!child<QPushButton>(*viewer, "m_pWaivePB")->isEnabled());
    }

    // Exported waivers come back by import; a file that is not a waiver file is named and
    // changes nothing.
    void waiverFileRoundTrip() {
        QWidget host;
        auto viewer = viewerOf(&host, result(kShown), contextWith());
        {
            WaiverAnswers answers("reviewed", true);
            wctest::click(*viewer, "m_pWaivePB");
        }
        auto* panel = child<wc::TriagePanel>(*viewer, "m_pTriage");
        const QString path = working_->filePath("waivers.json");
        QVERIFY(panel->exportWaivers(path));
        std::string error;
        QVERIFY(deleteAnalysisWaiver(stored().front().id, error));

        auto next = viewerOf(&host, result(kShown), contextWith());
        QCOMPARE(categoryLines(*next).first(), "Line Width (3)");
        QVERIFY(wctest::writeFile(working_->filePath("broken.json"), "{ not json"));
        {
            wctest::MessageBoxAnswerer boxes;
            QVERIFY(!panel->importWaivers(working_->filePath("broken.json")));
            QCOMPARE(boxes.count(), 1);
            QVERIFY2(boxes.last().text.contains("broken.json"), qPrintable(boxes.last().text));
        }
        QVERIFY(stored().empty());
        auto* imported = child<wc::TriagePanel>(*next, "m_pTriage");
        QVERIFY(imported->importWaivers(path));
        QCOMPARE(categoryLines(*next).first(), "Line Width (1)");
        QCOMPARE(int(stored().size()), 1);
        QCOMPARE(stored().front().history.size(), std::size_t(1));
    }

    // ---- the hit table ------------------------------------------------------------------------

    // Grouped, the table lists every category's hits under a heading per group; a click on a
    // heading folds it, and a picked hit of another category makes that category current.
    void groupingByEachKey_data() {
        wctest::columns<int, QStringList>("key", "groups");
        row("none", 0, QStringList());
        row("item", 1, QStringList{"Line Width (3)", "Pad Size (1)"});
        row("layer", 2, QStringList{"top (4)"});
        row("net", 3, QStringList{"GND (1)", "GND / VCC (2)", "(no net) (1)"});
    }

    void groupingByEachKey() {
        QFETCH(int, key);
        QFETCH(QStringList, groups);
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, result(kShown));
        auto* group = child<QComboBox>(viewer, "m_pGroupCB");
        group->setCurrentIndex(key);
        viewer.on_Group_changed(group->currentText());
        QCOMPARE(headings(viewer), groups);
        QCOMPARE(column(viewer, wc::ValueColumn).size(), key == 0 ? 3 : 4);
        if (key == 0) {
            return;
        }
        auto* table = child<QTableView>(viewer, "m_pHitTable");
        const int rows = table->model()->rowCount();
        emit table->clicked(table->model()->index(0, 0));  // folds the first group
        QCOMPARE(table->model()->rowCount(),
                 rows - groups.first().section('(', -1).chopped(1).toInt());
        emit table->clicked(table->model()->index(0, 0));
        QCOMPARE(table->model()->rowCount(), rows);
        // The Pad Size hit, last in every grouping.
        table->selectRow(rows - 1);
        QCOMPARE(child<QListWidget>(viewer, "m_pCategoriesList")->currentItem()->text(),
                 "Pad Size (1)");
        QCOMPARE(viewer.drawingData().value_text, std::string("5.000 mil"));
    }

    // The text filter keeps the hits any column of which matches; an invalid expression is
    // named and filters nothing.
    void textFilter_data() {
        wctest::columns<QString, int, QString>("pattern", "hits", "status");
        row("nets, any case", "vcc", 2, "");
        row("a value", "^2\\.000$", 1, "");
        row("a layer", "top", 3, "");
        row("nothing", "", 3, "");
        row("invalid", "(", 3, "Invalid expression: missing closing parenthesis");
    }

    void textFilter() {
        QFETCH(QString, pattern);
        QFETCH(int, hits);
        QFETCH(QString, status);
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, result(kShown));
        auto* find = child<QLineEdit>(viewer, "m_pFindLE");
        find->setText(pattern);
        QTest::keyClick(find, Qt::Key_Return);
        QCOMPARE(int(viewer.currentCount()), hits);
        QCOMPARE(child<QTableView>(viewer, "m_pHitTable")->model()->rowCount(), hits);
        QCOMPARE(child<QLabel>(viewer, "m_pFindStatus")->isVisibleTo(&viewer), !status.isEmpty());
        if (!status.isEmpty()) {
            QCOMPARE(wctest::labelText(viewer, "m_pFindStatus"), status);
        }
    }

    // Value, required value, difference and location in the display unit; no required value
    // or difference where nothing is required.
    void valueColumnsFollowTheUnit_data() {
        wctest::columns<int, QString, QStringList>("unit", "header", "cells");
        row("mil", 0, "Required (mil)",
            QStringList{"3.000", "4.000", "-1.000", "1.500, 0.000", "", ""});
        row("mm", 1, "Required (mm)",
            QStringList{"0.076", "0.102", "-0.025", "0.038, 0.000", "", ""});
    }

    void valueColumnsFollowTheUnit() {
        QFETCH(int, unit);
        QFETCH(QString, header);
        QFETCH(QStringList, cells);
        Result run = result("L@0:3 L@100:2");
        (*run)["top"][sli_line_width].red[1].required = 0;
        QWidget host;
        wctest::UnitScope scope(&host, 0);
        Widget_ResultsViewer viewer(0, &host, run);
        scope.change(unit);
        viewer.change_unit();
        const QAbstractItemModel* table = child<QTableView>(viewer, "m_pHitTable")->model();
        QCOMPARE(table->headerData(wc::RequiredColumn, Qt::Horizontal).toString(), header);
        QStringList shown;
        for (const auto& [row, column] : {std::pair(0, wc::ValueColumn),
                                          {0, wc::RequiredColumn},
                                          {0, wc::DifferenceColumn},
                                          {0, wc::LocationColumn},
                                          {1, wc::RequiredColumn},
                                          {1, wc::DifferenceColumn}}) {
            shown << table->index(row, column).data().toString();
        }
        QCOMPARE(shown, cells);
    }

    // A point picked in the graphic view selects the nearest listed hit within the radius.
    void pickSelectsTheNearestRow_data() {
        wctest::columns<double, double, int>("x", "radius", "index");
        row("on the second hit", 101.0, 0.5, 2);
        row("between two, nearer the first", 50.0, 60.0, 1);
        row("too far", 50.0, 10.0, 0);
    }

    void pickSelectsTheNearestRow() {
        QFETCH(double, x);
        QFETCH(double, radius);
        QFETCH(int, index);
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, result(kShown));
        viewer.on_Last_clicked();
        QCOMPARE(viewer.pickHitAt({x * 25400.0, 0.0}, radius * 25400.0), index != 0);
        QCOMPARE(int(viewer.currentIndex()), index == 0 ? 3 : index);
        auto* table = child<QTableView>(viewer, "m_pHitTable");
        QCOMPARE(table->currentIndex().row() + 1, index == 0 ? 3 : index);
    }

private:
    std::unique_ptr<wctest::TemporaryWorkingDirectory> working_;
};

QTEST_MAIN(tst_ResultsViewerTriage)
#include "tst_ResultsViewerTriage.moc"
