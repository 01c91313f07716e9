#pragma once
// Teardrop creation on the signal layers of one step: the teardrop shape and the pads and traces
// it applies to, one engine run behind the progress window, and the result in the viewer.
// "Work Mode" = "Report" sets the record's report_only: the engine grades where teardrops are
// missing and changes nothing.

#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "frame/ChoiceGroup.h"
#include "frame/FieldTable.h"
#include "frame/WidgetCommonExport.h"

class Widget_ResultsViewer;

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace wc {
class DialogShell;
class ResultWindows;
class RunControls;

// The range check before a run: the value (display unit) from 0 up to the limit in mil, compared
// in the display unit (wc::withinZeroTo). Empty when it passes, else the message naming the text
// and the limit.
QString teardropRangeProblem(const void* handle, const QString& text, double limit_mil);
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_Teardrops : public QWidget {
    Q_OBJECT
public:
    Widget_Teardrops(const QString& job, const QString& step, QWidget* parent);
    ~Widget_Teardrops() override;

    bool isErfFileExist(const QString& name) const;
    // Names of the saved parameter sets.
    QStringList get_Teardrops_ERF() const;
    // The board's signal layers.
    QStringList getDefaultLayerList() const;

    const Korvo::API::teardrop_result_map& result() const { return *result_; }
    bool hasResults() const { return has_results_; }
    // The layers of the last run.
    const std::vector<std::string>& processedLayers() const { return processed_layers_; }
    Widget_ResultsViewer* resultsViewer() const;

public slots:
    // The buttons' slots, as the host and its scripts know them.
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
    // The name the host uses for the other dialogs.
    void change_unit() { change_units(); }
    // A parameter changed: the shown result no longer matches the form.
    void change_viewbtn_stylesheet();

signals:
    void send_Sel_Template_Name(QString name);
    void unit_changed();

protected:
    // Commits length edits left without Return when the pointer leaves the first field.
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void initTeardrops();
    void layOut();
    void wireUp();
    void RunonRanges(int scope);
    bool islineEditsValid();
    bool Judge_Lineedit_Legality();
    void getData(Korvo::API::teardrop_create_DFM_op_params& params, int scope) const;
    QList<QObject*> parameterWidgets() const;
    void fitLoadedUnit();
    void showResultsViewer(bool open);
    void information(const QString& text);

    wc::DialogShell* shell_;
    wc::RunControls* controls_;
    std::unique_ptr<wc::ResultWindows> windows_;
    std::shared_ptr<const Korvo::API::teardrop_result_map> result_;
    std::vector<std::string> processed_layers_;
    bool has_results_ = false;

    std::unique_ptr<wc::FieldTable<Korvo::API::teardrop_create_DFM_op_params>> lengths_;
    QLabel* ratio_label_ = nullptr;
    QLineEdit* ratio_ = nullptr;
    QLabel* type_label_ = nullptr;
    QComboBox* type_ = nullptr;
    QLabel* arc_label_ = nullptr;
    QLineEdit* arc_angle_ = nullptr;
    QLabel* arc_hint_ = nullptr;
    QLabel* operate_label_ = nullptr;
    QCheckBox* drilled_ = nullptr;
    QCheckBox* undrilled_ = nullptr;
    wc::ChoiceGroup delete_old_;
    wc::ChoiceGroup apply_to_;
    wc::ChoiceGroup work_mode_;
    wc::ChoiceGroup solder_mask_;
    // Hidden: the unit a parameter set's lengths were written in.
    QLabel* set_unit_ = nullptr;
};
