#pragma once
// Optimisation of the solder mask layers of one step: clearance, coverage, bridge, surplus, gas
// and vertical-flow parameters on a "Main" and an "Advanced" page, the SMD compensation and gas
// range tables, one engine run behind the progress window, and its result in the viewer.

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "dfm/SolderMaskOptChecks.h"
#include "frame/FieldTable.h"

class Widget_Ranges;
class Widget_ResultsViewer;

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QTabWidget;
class QTableWidget;

namespace wc {
class ParameterSetActions;
class RunControls;
}  // namespace wc

class Widget_SolderMaskOpt : public QWidget {
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
    QWidget* makeMainPage();
    QWidget* makeAdvancedPage();
    QGroupBox* makeTableBox(const QString& key, const QString& button_key, QTableWidget*& table,
                            QPushButton*& add, QPushButton*& remove);
    void applyTexts();

    void solderMaskOpt(int scope);
    bool Judge_Lineedit_Legality();
    std::vector<std::string> getCheckLayerList();
    void set_sm_dfm_params(Korvo::API::solder_mask_DFM_params& params, int scope) const;
    bool judgeEngineValues(const Korvo::API::solder_mask_DFM_params& params);
    void setColor();
    void setMeasureValue();
    void showViewer(bool open);

    // Range tables: each cell is a numeric line edit over an item that mirrors its text, so the
    // table's values can be saved with the form.
    void InitTableItem(QTableWidget* table, int row, const QString& range, const QString& value);
    void setTableItem(QTableWidget* table, int row, int column, const QString& text);
    void setRows(QTableWidget* table, const wc::RangeRows& rows);
    wc::RangeRows rowsOf(const QTableWidget* table) const;
    void addRow(QTableWidget* table);
    void deleteRow(QTableWidget* table);
    // Rebuilds the cell editors from the items after a parameter set was loaded.
    void restoreTableEditors(QTableWidget* table);
    void changeTableData();

    void information(const QString& text);

    const void* handle_;
    QWidget* host_;
    QString job_;
    QString step_;
    std::shared_ptr<const Result> result_;
    bool has_results_ = false;
    QPointer<Widget_ResultsViewer> viewer_;
    QPointer<Widget_Ranges> ranges_;

    wc::RunControls* controls_ = nullptr;
    wc::ParameterSetActions* actions_ = nullptr;
    std::unique_ptr<wc::FieldTable<Korvo::API::solder_mask_DFM_params>> fields_;
    QTabWidget* pages_ = nullptr;
    QCheckBox* advance_ = nullptr;
    QGroupBox* advanced_group_ = nullptr;
    QList<QLabel*> choice_labels_;
    QList<QButtonGroup*> choices_;
    QLabel* opt_header_ = nullptr;
    QTableWidget* smd_table_ = nullptr;
    QTableWidget* gas_table_ = nullptr;
    QGroupBox* smd_box_ = nullptr;
    QGroupBox* gas_box_ = nullptr;
    QPushButton* add_smd_ = nullptr;
    QPushButton* delete_smd_ = nullptr;
    QPushButton* add_gas_ = nullptr;
    QPushButton* delete_gas_ = nullptr;
    QLabel* summary_ = nullptr;
    QLabel* changes_ = nullptr;
    QPushButton* close_ = nullptr;
};
