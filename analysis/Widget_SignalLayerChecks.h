#pragma once
// Design-rule checks of the signal layers of one step: distances and tests, a run per layer on
// the engine (or whole on the check-list service), the result per layer with its summary, named
// templates, and the result database.

#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>
#include <memory>

#include "DBS_API.h"
#include "Korvo_Analysis_types.h"
#include "Korvo_UIAPI.h"
#include "analysis/SignalCheckForm.h"
#include "analysis/SignalCheckTriage.h"
#include "frame/ChoiceGroup.h"
#include "frame/FieldTable.h"
#include "frame/WidgetCommonExport.h"

class QCheckBox;
class QDateTime;
class QGroupBox;
class QLabel;
class QPushButton;

namespace Korvo {
namespace CheckList {
struct signal_check_request;
}  // namespace CheckList
}  // namespace Korvo

namespace wc {
class DialogShell;
class ResultWindows;
class RunControls;
class SignalCheckDatabase;
class SignalCheckTemplates;
enum class SignalRunEnd;
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_SignalLayerChecks : public QWidget {
    Q_OBJECT
public:
    Widget_SignalLayerChecks(const QString& job, const QString& step, QWidget* parent,
                             Korvo::UIAPI::Check_Type type);
    ~Widget_SignalLayerChecks() override;

    void changeJobAndStep(const QString& new_job, const QString& new_step);
    void setAffectedLayers(const QStringList& layers);
    void setErfValues(const QString& name);
    // The host shows the last result of the shared cache.
    void viewSetShowResult();
    void Widget_raise();
    void closeDialog();

    // The form as plain values, and back.
    wc::SignalCheckForm form() const;
    void setForm(const wc::SignalCheckForm& form);
    const Korvo::API::signal_check_result_map& result() const { return result_; }
    // Layers of the last result that carry results (setLayerWithinCheckInfo).
    const QStringList& layersWithinCheck() const { return layers_within_check_; }
    int rememberedScope() const;

    // getSignalLayerParams on the current form.
    QString getSignalLayerParams() const;
    int getTestListCnt() const;
    bool isErfFileExist(const QString& name) const;

public slots:
    void on_Layer_clicked();
    void on_Ranges_clicked();
    void on_RunGlobally_clicked();
    void on_RunScreen_clicked();
    void on_RunProfile_clicked();
    void on_SaveToDb_clicked();
    void on_LoadFromDb_clicked();
    void on_ViewResult_clicked();
    void on_Close_clicked();
    void on_m_pERFPB_clicked();
    void on_m_pSaveAsPB_clicked();
    // The name given to "Save as": writes the template (asks before replacing one).
    void get_ERF_Name(QString name);
    // A name picked in the "ERF:" list: loads the template.
    void get_ERF_text(QString name);
    void get_analysis_result_from_db(QString& id);
    void get_tq_analysis_result_from_db(QString& id);
    void refresh_load_result(int index);
    void on_check_result_2_db_end(const Quorin::DBS_API::CreateSesult& answer);
    void on_db_connected(bool connected);
    void change_viewbtn_stylesheet();
    void change_viewbtn_stylesheet(int);
    void change_language();
    void change_units();
    // The name the host uses for the other dialogs.
    void change_unit() { change_units(); }

signals:
    void Signal_check_raise();
    void unit_changed();
    // The template name the user typed in "Save as".
    void send_Sel_Template_Name(QString name);

private:
    void initSignalLayerChecks();
    void layOut();
    void wireUp();
    std::array<const wc::ChoiceGroup*, 4> choiceGroups() const;
    void signalLayerChecks(int scope);
    void runPerLayer(const Korvo::CheckList::signal_check_request& request,
                     const std::vector<std::string>& layers);
    void runOnService(const Korvo::CheckList::signal_check_request& request);
    bool showRunEnd(wc::SignalRunEnd end, const QDateTime& start, qint64 elapsed_ms);
    std::vector<std::string> checkLayer();
    bool islineEditsValid() const;
    void setSignalCheckParams(Korvo::API::signal_check_params& params) const;
    void setLayerWithinCheckInfo();
    void setColor();
    void readConfigJson();
    void showLoadedResult(const Korvo::API::signal_check_result_map& result);
    void showResultsViewer(bool open);
    void publishResult();
    void triageResult(int stored_id);
    void information(const QString& text);

    wc::DialogShell* shell_;
    wc::RunControls* controls_;
    std::unique_ptr<wc::ResultWindows> windows_;
    // "Save as" and the "ERF:" pick; "Save" and "Load".
    wc::SignalCheckTemplates* templates_ = nullptr;
    wc::SignalCheckDatabase* database_ = nullptr;
    Korvo::UIAPI::Check_Type type_;
    Korvo::API::signal_check_result_map result_;
    // The last result as the cache and the viewer share it: one immutable copy per run.
    std::shared_ptr<const Korvo::API::signal_check_result_map> published_;
    int processed_layers_ = 0;
    wc::SignalCheckTriage triage_;
    QString told_unavailable_;  // the last reason shown why waivers and history are missing
    QStringList layers_within_check_;

    std::unique_ptr<wc::FieldTable<Korvo::API::signal_check_params>> distances_;
    QCheckBox* tests_[wc::kSignalTestCount] = {};
    QGroupBox* test_group_ = nullptr;
    wc::ChoiceGroup apply_to_;
    wc::ChoiceGroup missing_pads_;
    wc::ChoiceGroup compensated_rout_;
    wc::ChoiceGroup sm_spacing_;
    QLabel* summary_ = nullptr;
    QPushButton* save_db_ = nullptr;
    QPushButton* load_db_ = nullptr;
};
