#include "TriageTour.h"

#include <QComboBox>
#include <QTemporaryDir>
#include <memory>

#include "DemoWindow.h"
#include "FeatureMoveHost.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "ResultDatabase.h"
#include "analysis/HitTriage.h"
#include "analysis/ResultAdapters.h"
#include "analysis/SignalCheckTriage.h"
#include "analysis/Widget_ResultsViewer.h"
#include "analysis/Widget_SignalLayerChecks.h"

namespace demo {

void tourTriage(DemoWindow& window, QWidget* dialog,
                const std::function<void(QWidget*, const QString&)>& snap) {
    auto* check = qobject_cast<Widget_SignalLayerChecks*>(dialog);
    QTemporaryDir folder;
    if (check == nullptr || !folder.isValid()) {
        return;
    }
    const wcref::ResultDatabaseSettings users = wcref::resultDatabase();
    wcref::ResultDatabaseSettings own;
    own.driver = QStringLiteral("QSQLITE");
    own.name = folder.filePath(QStringLiteral("results.sqlite"));
    wcref::setResultDatabase(own);

    const auto result = std::make_shared<const wc::SignalLayerResult>(check->result());
    const wc::ResultsModel model = wc::modelOf(result, {"SignalLayerRanges", {}, {}});
    const wc::TriageRun run(model);
    if (run.size() >= 4) {
        const GraphicView* view = window.view();
        const wc::TriageScope scope{wc::SignalCheckTriage::kKind, view->job(), view->step()};
        const char* const reasons[] = {"clearance agreed with the customer",
                                       "connector pins, as designed", "mounting hole keep-out"};
        for (std::size_t number = 0; number < 3; ++number) {
            Korvo::API::insertAnalysisWaiver(
                wc::waiverForHit(run, number, scope, reasons[number], "tour"));
        }
        // The last hit's first feature moves by 5 mil: its hits become new, the old ones fixed.
        const wc::TriageHit& moved = run[run.size() - 1];
        if (!moved.hit->features.empty()) {
            window.featureMove()->move(run.layerName(moved), moved.hit->features.front().id,
                                       5 * 25400.0, 0.0);
        }
    }
    check->on_RunGlobally_clicked();
    const auto viewers = dialog->parentWidget()->findChildren<Widget_ResultsViewer*>();
    if (!viewers.isEmpty()) {
        if (auto* group = viewers.last()->findChild<QComboBox*>(QStringLiteral("m_pGroupCB"))) {
            // As a user picks "Net".
            group->setCurrentIndex(group->count() - 1);
            emit group->textActivated(group->currentText());
        }
        snap(viewers.last(), QStringLiteral("Signal_Layer_Checks_triage"));
        snap(&window, QStringLiteral("Signal_Layer_Checks_triage_hit"));
    }
    wcref::setResultDatabase(users);
}

}  // namespace demo
