#pragma once
// The step-and-repeat editor ("S&R Edit Popup"): selects, adds, copies, moves, deletes, turns,
// mirrors and replaces the instances placed in the current step, aligns them to a reference,
// packs and spaces them, aligns them to a grid, reduces nesting, and sets the panel size and
// margins. The arithmetic is in PanelGeometry; this class reads the table and the fields, asks
// the user, calls it and writes the answer back.

#include <QPointF>
#include <QVector>
#include <QWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "steprepeat/PanelGeometry.h"

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class Widget_SR_Edit : public QWidget {
    Q_OBJECT
public:
    Widget_SR_Edit(const std::string& job, const std::string& step, QWidget* parent);

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
    void on_Close_clicked();

    void on_SingleSelect_clicked();
    void on_RectangleSelect_clicked();
    void on_PolygonSelect_clicked();

    void on_Add_clicked();
    void on_Copy_clicked();
    void on_Move_clicked();
    void on_Delete_clicked();
    void on_Rotate_clicked();
    void on_Replace_clicked();
    void on_MirrorHorizontal_clicked();
    void on_MirrorVertical_clicked();
    void on_MirrorFlip_clicked();
    void on_ModifyEntry_clicked();
    void on_ReduceNesting_clicked();
    void on_ReduceHighestLevel_clicked();

    void on_AlignLeft_clicked();
    void on_AlignRight_clicked();
    void on_AlignTop_clicked();
    void on_AlignBottom_clicked();
    void on_CenterX_clicked();
    void on_CenterY_clicked();

    void on_PackLeft_clicked();
    void on_PackRight_clicked();
    void on_PackTop_clicked();
    void on_PackBottom_clicked();
    void on_PackLeftRight_clicked();
    void on_PackTopBottom_clicked();
    void on_PackCenterH_clicked();
    void on_PackCenterV_clicked();
    void on_SpaceEvenlyH_clicked();
    void on_SpaceEvenlyV_clicked();
    void on_AlignToGrid_clicked();

    void on_PanelSize_clicked();
    void on_Margins_clicked();

signals:
    // After every change written to the table (the host's table view refreshes from it).
    void send_SR_Changed();

private:
    enum class Pick { Single, Rectangle, Polygon };
    // Which question the common start asks when nothing is selected.
    enum class Ask { Steps, AllSteps };

    void initSR_Edit();
    void applyTexts();
    QPushButton* makeButton(const char* name, const char* text, bool checkable = true);
    QLineEdit* makeField(const char* name, double default_mil);
    QLabel* makeLabel(const char* name, const char* text);

    // The common start: re-read, uncheck, status, question. False when the user said No or
    // the table could not be read; `rows_` then holds the table with all selected on Yes.
    bool commonStart(const char* status, const char* words, Ask ask = Ask::Steps);
    // Writes `rows` as one edit, returns to single select and refreshes.
    void finish(const wc::panel::Rows& rows);
    // Shows the message of a refused operation and returns to single select.
    void refuse(wc::panel::Refusal why);
    void inform(const QString& text);
    void setPickMode(Pick mode);
    void uncheckAll();
    void setStatus(const char* status);

    wc::panel::PanelFrame panelFrame(bool horizontal_gap);
    bool readChildBoxes(wc::panel::ChildBoxes& boxes);
    wc::panel::OutlinesOverlap outlineTest();
    bool legalNesting(const std::string& child);
    double engineValue(const QLineEdit* field) const;
    void showEngineValue(QLineEdit* field, double engine) const;
    Korvo::API::step_repeat_op entryFromFields() const;
    void runAlign(const char* status, wc::panel::AlignKind kind);
    void runPack(const char* status, bool horizontal,
                 const std::function<wc::panel::Outcome(const wc::panel::PanelFrame&)>& pack,
                 const char* words = "Align Steps", Ask ask = Ask::Steps);
    void runEdit(const char* status, const char* words,
                 const std::function<wc::panel::Outcome()>& edit);
    void runReduce(const char* status, bool highest_only);
    void runMirror(const char* status, const char* words, wc::panel::MirrorKind kind);
    wc::panel::Anchor anchor() const;

    const void* handle_;
    std::string job_;
    std::string step_;
    wc::panel::Rows rows_;
    Pick pick_ = Pick::Single;
    QString operation_;
    // Align to a reference: the kind waiting for its pick and the selection noted at the start.
    bool align_pending_ = false;
    wc::panel::AlignKind align_kind_ = wc::panel::AlignKind::Left;
    wc::panel::Rows align_rows_;

    QLabel* title_ = nullptr;
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
    std::map<std::string, QLineEdit*> lengths_;  // length fields by object name
    std::vector<QPushButton*> buttons_;          // every checkable operation button
    std::vector<std::pair<QAbstractButton*, const char*>> texts_;  // for change_language
    std::vector<std::pair<QLabel*, const char*>> label_texts_;
    std::vector<QLabel*> unit_labels_;
};
