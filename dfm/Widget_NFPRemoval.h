#pragma once
// Removal (or marking) of non-functional pads on the signal layers of one step: which pad kinds,
// which drills, one engine run behind the progress window, and the result in the viewer.
// "Work On" and the drill kinds "PTH - Pressfit", "Via - Laser" and "Via - Photo" are shown and
// kept in parameter sets only: the engine's record has no field for them.

#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "frame/ChoiceGroup.h"
#include "frame/WidgetCommonExport.h"

class Widget_ResultsViewer;

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace wc {
class DialogShell;
class ResultWindows;
class RunControls;

// The pad kinds the record asks for, in the order of the "Delete" boxes; the codes are the
// engine's (isolated 1, drilled over 3, duplicate 2, covered 4), not the display order.
std::vector<int32_t> nfpPadKinds(bool isolated, bool drilled_over, bool duplicate, bool covered);

// Severity of the worst hit of a result, for the result label.
enum class NfpSeverity { NoHit, Red, Yellow, Green };
NfpSeverity worstSeverity(const Korvo::API::NFP_removal_result_map& result);
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_NFPRemoval : public QWidget {
    Q_OBJECT
public:
    Widget_NFPRemoval(const QString& job, const QString& step, QWidget* parent);
    ~Widget_NFPRemoval() override;

    bool isErfFileExist(const QString& name) const;
    // The board's inner signal and mixed layers.
    QStringList getInnerLayers() const;

    const Korvo::API::NFP_removal_result_map& result() const { return *result_; }
    bool hasResults() const { return has_results_; }
    const std::vector<std::string>& processedLayers() const { return processed_layers_; }
    Widget_ResultsViewer* resultsViewer() const;

public slots:
    void on_m_pRunGlobalPB_clicked();
    void on_m_pScreenOnlyPB_clicked();
    void on_m_pInsideProfilePB_clicked();
    void on_m_pViewResultPB_clicked();
    void on_m_pLayerPB_clicked();
    void on_ERF_clicked();
    void on_m_pSaveAsPB_clicked();
    void on_m_pRangesPB_clicked();
    void on_m_pClosePB_clicked();
    void UpdateJobStep(const QString& job, const QString& step);
    void setAffectedLayers(const QStringList& layers);
    void setErfValues(const QString& name);
    void change_language();
    void change_units();
    void change_unit() { change_units(); }
    // A parameter changed: the shown result no longer matches the form.
    void change_viewbtn_stylesheet();

signals:
    void send_Sel_Template_Name(QString name);
    void unit_changed();

private:
    void initNFPRemoval();
    void wireUp();
    void run(int scope);
    bool getCfgData(Korvo::API::NFP_removal_DFM_op_params& params, int scope,
                    std::vector<std::string>& layers);
    bool layercheck(const std::vector<std::string>& layers, const QStringList& missing) const;
    void setResultLBColor();
    void Refresh_View();
    void showResultsViewer(bool open);
    QList<QObject*> parameterWidgets() const;

    wc::DialogShell* shell_;
    wc::RunControls* controls_;
    std::unique_ptr<wc::ResultWindows> windows_;
    std::shared_ptr<const Korvo::API::NFP_removal_result_map> result_;
    std::vector<std::string> processed_layers_;
    bool has_results_ = false;

    QGroupBox* delete_box_ = nullptr;
    QCheckBox* isolated_ = nullptr;
    QCheckBox* drilled_over_ = nullptr;
    QCheckBox* duplicate_ = nullptr;
    QCheckBox* covered_ = nullptr;
    QGroupBox* drills_box_ = nullptr;
    QList<QCheckBox*> drills_;  // PTH, PTH - Pressfit, NPTH, Via - Laser, Via, Via - Photo
    wc::ChoiceGroup work_on_;
    wc::ChoiceGroup undrilled_;
    wc::ChoiceGroup apply_to_;
    wc::ChoiceGroup action_;
};
