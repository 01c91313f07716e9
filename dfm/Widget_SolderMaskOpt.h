#pragma once
// Optimisation of the solder mask layers of one step: clearance, coverage, bridge, surplus, gas
// and vertical-flow parameters on a "Main" and an "Advanced" page, the SMD compensation and gas
// range tables, one engine run behind the progress window, and its result in the viewer.

#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "dfm/SolderMaskOptChecks.h"
#include "dfm/SolderMaskOptForm.h"
#include "frame/WidgetCommonExport.h"

class QLabel;

namespace wc {
class DialogShell;
class ResultWindows;
class RunControls;
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_SolderMaskOpt : public QWidget {
    Q_OBJECT
public:
    using Result = Korvo::API::solder_mask_DFM_result_map;

    Widget_SolderMaskOpt(const QString& job, const QString& step, QWidget* parent);
    ~Widget_SolderMaskOpt() override;

    void setAffectedLayers(const QStringList& layers);
    void setLayerText(const QString& text);
    // Puts the parameter set `name` back into the form.
    void setErfValues(const QString& name);
    void Widget_raise();
    void closeDialog();

    // The range tables as typed, and replacing their rows.
    wc::RangeRows smdCompensateRows() const;
    wc::RangeRows gasRows() const;
    void setTableRow(const wc::RangeRows& rows);
    void setgastablerow(const wc::RangeRows& rows);

    // The last run's result (empty before the first run) and whether a run completed.
    const Result& result() const { return *result_; }
    bool hasResults() const { return has_results_; }

    // The widgets a parameter set holds, in their fixed order.
    QList<QObject*> parameterWidgets() const;

public slots:
    void UpdateJobStep(const QString& job, const QString& step);
    void on_m_pLayerPB_clicked();
    void on_ERF_clicked();
    void on_m_pSaveAsPB_clicked();
    void on_m_pAdvancedSurplusCB_stateChanged(int state);
    void on_AddTableRowPB_Clicked();
    void on_DeleteTableRowPB_Clicked();
    void on_addgastablerowpb_clicked();
    void on_deletegastablerowpb_clicked();
    void on_m_pRangesPB_clicked();
    void on_m_pRunGlobalPB_clicked();
    void on_m_pScreenOnlyPB_clicked();
    void on_m_pInsideProfilePB_clicked();
    void on_m_pViewResultPB_clicked();
    void on_m_pClosePB_clicked();
    void change_viewbtn_stylesheet();
    void change_language();
    void change_units();
    // The name the host uses for the other dialogs.
    void change_unit() { change_units(); }

signals:
    void unit_changed();
    // The name a parameter set was saved under.
    void send_Sel_Template_Name(QString name);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void initSolderMaskOpt();
    void wireUp();

    void solderMaskOpt(int scope);
    bool Judge_Lineedit_Legality();
    std::vector<std::string> getCheckLayerList();
    void set_sm_dfm_params(Korvo::API::solder_mask_DFM_params& params, int scope) const;
    bool judgeEngineValues(const Korvo::API::solder_mask_DFM_params& params);
    void setColor();
    void setMeasureValue();
    void showViewer(bool open);

    void information(const QString& text);

    wc::DialogShell* shell_;
    wc::RunControls* controls_;
    std::unique_ptr<wc::ResultWindows> windows_;
    std::shared_ptr<const Result> result_;
    bool has_results_ = false;

    wc::SolderMaskOptForm form_;
    QLabel* summary_ = nullptr;
    QLabel* changes_ = nullptr;
};
