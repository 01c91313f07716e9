#pragma once
// The step-and-repeat editor ("S&R Edit Popup"): selects, adds, copies, moves, deletes, turns,
// mirrors and replaces the instances placed in the current step, aligns them to a reference,
// packs and spaces them, aligns them to a grid, reduces nesting, and sets the panel size and
// margins. The arithmetic is in PanelGeometry; the buttons and what they do are the rows of
// commands() (SrEditCommands.cpp); the lengths are a wc::FieldTable. This class reads the table
// and the fields, asks the user, calls the geometry and writes the answer back.

#include <QPointF>
#include <QVector>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/WidgetCommonExport.h"
#include "steprepeat/PanelGeometry.h"
#include "steprepeat/SrEditCommands.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace wc {
template <class Record>
class FieldTable;

namespace sredit {
// The editor's lengths in engine units, as its field table fills them.
struct Lengths {
    int32_t offset_x = 0;
    int32_t offset_y = 0;
    int32_t horizontal_gap = 0;
    int32_t vertical_gap = 0;
    int32_t entry_x = 0;
    int32_t entry_y = 0;
    int32_t entry_dx = 0;
    int32_t entry_dy = 0;
    double panel_width = 0.0;  // checked against the engine's reach before it is used
    double panel_height = 0.0;
    int32_t margin_left = 0;
    int32_t margin_right = 0;
    int32_t margin_top = 0;
    int32_t margin_bottom = 0;
};
}  // namespace sredit
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_SR_Edit : public QWidget {
    Q_OBJECT
public:
    Widget_SR_Edit(const std::string& job, const std::string& step, QWidget* parent);
    ~Widget_SR_Edit() override;

    // The step whose table is edited; the host calls it when the user opens another step.
    void setJobStep(const std::string& job, const std::string& step);
    const std::string& job() const { return job_; }
    const std::string& step() const { return step_; }

public slots:
    // Picks from the graphic view, in engine units: one point in "Single Select", two opposite
    // corners in "Rectangle Select".
    void receive_SR_Select_point(const QVector<QPointF>& points);
    // The pick of the reference instance of an align operation.
    void receive_SR_second_Select_point(const QPointF& point);
    // The closed polygon of "Polygon Select".
    void receive_SR_PolygonSelect_point(const QVector<QPointF>& vertices);

    // Re-reads the table and the panel, refreshes the fields and tells the view.
    void All_Refresh();
    void change_language();
    void change_unit();

    // Each button's slot does what its command row says.
    void on_Close_clicked() { dispatch("pushButton_Close"); }
    void on_SingleSelect_clicked() { dispatch("pushButton_SingleSelect"); }
    void on_RectangleSelect_clicked() { dispatch("pushButton_RectangleSelect"); }
    void on_PolygonSelect_clicked() { dispatch("pushButton_PolygonSelect"); }

    void on_Add_clicked() { dispatch("pushButton_Add"); }
    void on_Copy_clicked() { dispatch("pushButton_Copy"); }
    void on_Move_clicked() { dispatch("pushButton_Move"); }
    void on_Delete_clicked() { dispatch("pushButton_Delete"); }
    void on_Rotate_clicked() { dispatch("pushButton_Rotate"); }
    void on_Replace_clicked() { dispatch("pushButton_Replace"); }
    void on_MirrorHorizontal_clicked() { dispatch("pushButton_MirrorHorizontal"); }
    void on_MirrorVertical_clicked() { dispatch("pushButton_MirrorVertical"); }
    void on_MirrorFlip_clicked() { dispatch("pushButton_MirrorFlip"); }
    void on_ModifyEntry_clicked() { dispatch("pushButton_ModifyEntry"); }
    void on_ReduceNesting_clicked() { dispatch("pushButton_ReduceNesting"); }
    void on_ReduceHighestLevel_clicked() { dispatch("pushButton_ReduceHighestLevel"); }

    void on_AlignLeft_clicked() { dispatch("pushButton_AlignLeft"); }
    void on_AlignRight_clicked() { dispatch("pushButton_AlignRight"); }
    void on_AlignTop_clicked() { dispatch("pushButton_AlignTop"); }
    void on_AlignBottom_clicked() { dispatch("pushButton_AlignBottom"); }
    void on_CenterX_clicked() { dispatch("pushButton_CenterX"); }
    void on_CenterY_clicked() { dispatch("pushButton_CenterY"); }

    void on_PackLeft_clicked() { dispatch("pushButton_PackLeft"); }
    void on_PackRight_clicked() { dispatch("pushButton_PackRight"); }
    void on_PackTop_clicked() { dispatch("pushButton_PackTop"); }
    void on_PackBottom_clicked() { dispatch("pushButton_PackBottom"); }
    void on_PackLeftRight_clicked() { dispatch("pushButton_PackLeftRight"); }
    void on_PackTopBottom_clicked() { dispatch("pushButton_PackTopBottom"); }
    void on_PackCenterH_clicked() { dispatch("pushButton_PackCenterH"); }
    void on_PackCenterV_clicked() { dispatch("pushButton_PackCenterV"); }
    void on_SpaceEvenlyH_clicked() { dispatch("pushButton_SpaceEvenlyH"); }
    void on_SpaceEvenlyV_clicked() { dispatch("pushButton_SpaceEvenlyV"); }
    void on_AlignToGrid_clicked() { dispatch("pushButton_AlignToGrid"); }

    void on_PanelSize_clicked() { dispatch("pushButton_PanelSize"); }
    void on_Margins_clicked() { dispatch("pushButton_Margins"); }

signals:
    // After every change written to the table (the host's table view refreshes from it).
    void send_SR_Changed();

private:
    using Command = wc::sredit::Command;
    enum class Pick { Single, Rectangle, Polygon };

    // The operation buttons, one row each, in the order they are laid out (SrEditCommands.cpp).
    static const std::vector<Command>& commands();
    static const Command& command(const char* name);

    void initSR_Edit();
    QGroupBox* buildSelection();
    QGroupBox* buildEdit();
    QGroupBox* buildAlign();
    QGroupBox* buildTable();
    QGroupBox* buildPanel();
    QGridLayout* commandGrid(wc::sredit::Place place, int columns);
    void placeLengths(QGridLayout* grid, int first, int count, int row, int column);
    QGroupBox* makeGroup(const char* name, const char* title = nullptr);
    QLabel* makeLabel(const char* name, const char* text);
    QLineEdit* makeInteger(const char* name, const char* text);
    QCheckBox* makeCheck(const char* name, const char* text = nullptr);
    QPushButton* button(const Command& command) const;

    // A press of the command's button: the start its row asks for, then its operation.
    void dispatch(const char* name);
    void dispatch(const Command& command);
    // The start: status, re-read, question. False when the user said No or the table could not
    // be read; `rows_` then holds the table, with all selected on Yes.
    bool start(const Command& command);
    // A new table is written, a refusal is shown.
    void apply(const wc::panel::Outcome& outcome);
    // Writes `rows` as one edit, returns to single select and refreshes.
    void finish(const wc::panel::Rows& rows);
    // Shows the message of a refused operation and returns to single select.
    void refuse(wc::panel::Refusal why);
    void inform(const QString& text);
    void setPickMode(Pick mode);
    void uncheckAll();
    void setStatus(const char* status);
    void showSelectedCount();

    // The operations that take more than one line of the table.
    wc::panel::Outcome addedStep();
    wc::panel::Outcome rotated();
    wc::panel::Outcome replaced();
    wc::panel::Outcome reduced(bool highest_only);
    wc::panel::Outcome mirrored(wc::panel::MirrorKind kind);
    void awaitReference(wc::panel::AlignKind kind);
    void setPanelSize();
    void setMargins();

    wc::sredit::Lengths lengths() const;
    wc::panel::PanelFrame panelFrame(bool horizontal_gap);
    bool readChildBoxes(wc::panel::ChildBoxes& boxes);
    wc::panel::ChildBoxes childBoxes();
    wc::panel::OutlinesOverlap outlineTest();
    bool legalNesting(const std::string& child);
    void showEngineValue(int length, double engine) const;
    Korvo::API::step_repeat_op entryFromFields() const;
    wc::panel::Anchor anchor() const;

    const void* handle_;
    std::string job_;
    std::string step_;
    wc::panel::Rows rows_;
    Pick pick_ = Pick::Single;
    QString operation_;
    // Align to a reference: the kind waiting for its pick and the selection noted at the start.
    // Any other operation ends the wait.
    bool align_pending_ = false;
    wc::panel::AlignKind align_kind_ = wc::panel::AlignKind::Left;
    wc::panel::Rows align_rows_;

    std::unique_ptr<wc::FieldTable<wc::sredit::Lengths>> lengths_;
    std::vector<QPushButton*> buttons_;  // the button of each command, in table order
    QLabel* status_ = nullptr;
    QLabel* selected_ = nullptr;
    QButtonGroup* anchors_ = nullptr;
    QComboBox* steps_ = nullptr;
    QCheckBox* keep_sr_ = nullptr;
    QCheckBox* keep_margin_ = nullptr;
    QCheckBox* keep_gap_ = nullptr;
    QCheckBox* mirror_ = nullptr;
    QLineEdit* angle_ = nullptr;
    QLineEdit* entry_nx_ = nullptr;
    QLineEdit* entry_ny_ = nullptr;
    QLineEdit* entry_angle_ = nullptr;
};
