#pragma once
// Repairs the signal layers of one step through the engine's signal layer optimisation:
// annular-ring and spacing targets ("Min:"/"Opt:"), what the engine may change, the layers by
// expression, one run on a worker, the result per layer in the results viewer.

#include <QString>
#include <QStringList>
#include <QWidget>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "Korvo_UIAPI.h"
#include "frame/ChoiceGroup.h"
#include "frame/FieldTable.h"
#include "frame/WidgetCommonExport.h"

class QCheckBox;
class Widget_ResultsViewer;

namespace wc {
class DialogShell;
class ResultWindows;
class RunControls;
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_SignalLayerOpt : public QWidget {
    Q_OBJECT
public:
    using Params = Korvo::API::signal_layer_DFM_op_params;
    using Result = Korvo::API::signal_layer_DFM_result_map;

    Widget_SignalLayerOpt(const QString& job, const QString& step, QWidget* parent);
    ~Widget_SignalLayerOpt() override;

    void UpdateJobStep(const QString& job, const QString& step);
    void setAffectedLayers(const QStringList& layers);
    // Puts the saved parameter set `name` into the form.
    void setErfValues(const QString& name);
    void Widget_raise();
    void closeDialog();

    // Validates the form (IsTextEmpty, then Judge_LineEdit) and fills the record; false, after
    // telling the user, when the run may not start.
    bool getOptData(Params& params);
    // Resolves the "Layer:" expression; false when it names no layer.
    bool getCheckLayerList(std::vector<std::string>& layers);
    // Signal layers of the board, and every layer (for the layer popup).
    QStringList getLayerList() const;
    QStringList getAllLayerList() const;

    const Result& result() const { return *result_; }
    int resultLayerCount() const { return result_layer_count_; }
    bool hasResults() const { return has_results_; }

public slots:
    void on_unGlobally_clicked();
    void on_RunScreen_clicked();
    void on_RunProfile_clicked();
    void on_Layer_clicked();
    void get_Layer_TEXT(QString text);
    void on_ERF_clicked();
    void get_ERF_Name(QString name);
    void on_m_pSaveAsPB_clicked();
    void on_Range_clicked();
    void on_Check_clicked();
    void on_Shave_clicked();
    void change_viewbtn_stylesheet();
    void on_parent_closed();
    void change_language();
    void change_units();
    void change_unit() { change_units(); }

signals:
    void send_Sel_Template_Name(QString name);
    void unit_changed();
    void SignalLayerOpt_raise();

private:
    void initSignalLayerOpt();
    void wireUp();
    void showResultsViewer(bool open);
    void initRanges();
    void SignalLayerDFM(int scope);
    bool IsTextEmpty();
    bool Judge_LineEdit();
    bool Judge_zero2Twenty(const QString& text);
    bool Judge_zero2Thirty(const QString& text);
    void outOfRange(const QString& text, double limit_mil);
    QList<QObject*> formWidgets() const;

    wc::DialogShell* shell_;
    wc::RunControls* controls_;
    std::unique_ptr<wc::ResultWindows> windows_;
    // The last run's result, shared with the viewer; replaced whole by each run.
    std::shared_ptr<const Result> result_ = std::make_shared<const Result>();
    int result_layer_count_ = 0;
    bool has_results_ = false;
    std::vector<Korvo::UIAPI::Analysis_Ranges_Record> range_table_;
    std::map<Korvo::API::signal_layer_DFM_op_items, Korvo::API::dfm_range_value> range_map_;

    std::unique_ptr<wc::FieldTable<Params>> fields_;
    QCheckBox* via_expand_ = nullptr;
    wc::ChoiceGroup apply_to_;
    QList<QCheckBox*> work_on_;
    QList<QCheckBox*> modifications_;
};
