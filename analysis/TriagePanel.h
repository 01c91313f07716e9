#pragma once
// The results viewer's triage controls, shown only when a dialog hands the viewer a
// TriageContext: "View:" (the open hits, the new ones only, the waived ones, the earlier run's
// fixed ones), "Compare with:" (the context's earlier run, any stored run of the same kind, job
// and step, or none), "Waive...", and the waiver list's "Stale waivers...", "Export waivers..."
// and "Import waivers...". It talks to the result database; a call that fails shows its message
// and changes nothing, and when the database is unavailable the panel says why and every hit
// stays shown.
//
// Its texts are the viewer's, translated in the viewer's context.

#include <QWidget>
#include <memory>
#include <vector>

#include "Korvo_Triage_types.h"
#include "TriageContext.h"
#include "ViewerTriage.h"
#include "frame/WidgetCommonExport.h"

class QAction;
class QComboBox;
class QLabel;
class QPushButton;

namespace wc {

class WIDGET_COMMON_EXPORT TriagePanel : public QWidget {
    Q_OBJECT
public:
    explicit TriagePanel(QWidget* viewer);

    // Identifies the hits of `shown`, loads and applies the waivers of the context's scope,
    // compares with the context's earlier run and lists the stored runs to compare with.
    void start(const TriageContext& context, std::shared_ptr<const ResultsModel> shown);
    void stop();
    bool active() const { return triage_.active(); }
    const ViewerTriage& triage() const { return triage_; }
    // The table's "Waive..." on its selected rows.
    QAction* waiveRowsAction() const { return m_pWaiveRowsAction; }

    // Asks why and stores a waiver for each hit of the shown run; false when nothing was stored.
    bool waive(const std::vector<std::size_t>& numbers);
    bool removeStale();
    bool exportWaivers(const QString& path);
    bool importWaivers(const QString& path);

    // The state column of a hit of the viewed run, and its tool tip (a waiver's history).
    QString stateText(std::size_t number) const;
    QString stateTip(std::size_t number) const;

signals:
    void waiveAsked();      // "Waive...": the viewer names the current hit
    void waiveRowsAsked();  // the table's "Waive...": the viewer names the selected rows
    // What is in view changed; `other_run` when the view now browses another run.
    void changed(bool other_run);

private:
    void build();
    void wire();
    void loadFromDatabase();
    void fillCompare();
    void compareWith(int entry);
    void chooseView(int entry);
    bool store(const std::vector<Korvo::API::analysis_waiver>& waivers);
    bool conclude(bool done, const QString& refusal);
    void refreshControls();
    void information(const QString& text) const;
    QString itemName(int item) const;
    QString describe(const Korvo::API::analysis_waiver& waiver) const;

    QWidget* viewer_;
    TriageContext context_;
    ViewerTriage triage_;
    std::vector<int> compare_ids_;  // per "Compare with:" entry: a run id, or kNone / kEarlier
    int compare_entry_ = 0;
    bool waivers_usable_ = false;
    QString problem_;       // why the waivers are not usable; empty when they are
    QString runs_problem_;  // why the stored runs could not be listed

    QLabel* m_pViewLabel = nullptr;
    QComboBox* m_pViewCB = nullptr;
    QLabel* m_pCompareLabel = nullptr;
    QComboBox* m_pCompareCB = nullptr;
    QPushButton* m_pWaivePB = nullptr;
    QPushButton* m_pWaiversPB = nullptr;
    QAction* m_pStaleAction = nullptr;
    QAction* m_pExportAction = nullptr;
    QAction* m_pImportAction = nullptr;
    QAction* m_pWaiveRowsAction = nullptr;
    QLabel* m_pTriageStatus = nullptr;
};

}  // namespace wc
