#include "Widget_SR_Edit.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QRegExpValidator>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "QTpluginsManger4CAM.h"
#include "frame/EngineInt.h"
#include "frame/ExceptionGuard.h"
#include "frame/PluginMessages.h"
#include "frame/UnitChange.h"
#include "frame/Validators.h"

using Korvo::API::reply_box;
using wc::panel::Outcome;
using wc::panel::PanelFrame;
using wc::panel::Refusal;
using wc::panel::Rows;

namespace {

constexpr double kNanometresPerMil = 25400.0;
constexpr int kFieldWidth = 110;

// The length fields: object name, label, default in mil.
struct LengthField {
    const char* name;
    const char* label;
    double default_mil;
};
const LengthField kLengthFields[] = {
    {"lineEdit_OffsetX", "Offset X:", 0.0},   {"lineEdit_OffsetY", "Offset Y:", 0.0},
    {"lineEdit_HorizGap", "Horiz gap:", 0.0}, {"lineEdit_VertGap", "Vert gap:", 0.0},
    {"lineEdit_EntryX", "X:", 0.0},           {"lineEdit_EntryY", "Y:", 0.0},
    {"lineEdit_EntryDX", "DX:", 0.0},         {"lineEdit_EntryDY", "DY:", 0.0},
    {"lineEdit_PanelWidth", "Width:", 0.0},   {"lineEdit_PanelHeight", "Height:", 0.0},
    {"lineEdit_MarginLeft", "Left:", 0.0},    {"lineEdit_MarginRight", "Right:", 0.0},
    {"lineEdit_MarginTop", "Top:", 0.0},      {"lineEdit_MarginBottom", "Bottom:", 0.0},
};

const char* const kMarginKeys[4] = {".panel_margin_left", ".panel_margin_right",
                                    ".panel_margin_top", ".panel_margin_bottom"};

QString stepsQuestion(const char* words) {
    return QStringLiteral(
               "The %1 operation requires at least 1 step(s),while you have 0 step(s) "
               "selected, The operation will be performed on all steps,continue?")
        .arg(QString::fromLatin1(words));
}

// A button shows "S&R" as written rather than taking the "&" for a shortcut mark.
QString buttonText(QString text) {
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

std::vector<Korvo::API::point> toPoints(const QVector<QPointF>& points) {
    std::vector<Korvo::API::point> out;
    out.reserve(points.size());
    for (const QPointF& p : points) {
        out.push_back({p.x(), p.y()});
    }
    return out;
}

}  // namespace

Widget_SR_Edit::Widget_SR_Edit(const std::string& job, const std::string& step, QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(parent), job_(job), step_(step) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initSR_Edit();
    All_Refresh();
}

void Widget_SR_Edit::setJobStep(const std::string& job, const std::string& step) {
    WC_GUARDED({
        job_ = job;
        step_ = step;
        align_pending_ = false;
        setPickMode(Pick::Single);
        All_Refresh();
    });
}

QPushButton* Widget_SR_Edit::makeButton(const char* name, const char* text, bool checkable) {
    auto* button = new QPushButton(buttonText(tr(text)), this);
    button->setObjectName(QString::fromLatin1(name));
    button->setCheckable(checkable);
    if (checkable) {
        buttons_.push_back(button);
    }
    texts_.emplace_back(button, text);
    return button;
}

QLabel* Widget_SR_Edit::makeLabel(const char* name, const char* text) {
    auto* label = new QLabel(tr(text), this);
    label->setObjectName(QString::fromLatin1(name));
    label_texts_.emplace_back(label, text);
    return label;
}

QLineEdit* Widget_SR_Edit::makeField(const char* name, double default_mil) {
    auto* field = new QLineEdit(Korvo::UIAPI::getUnitJudgeString(handle_, default_mil, 2), this);
    field->setObjectName(QString::fromLatin1(name));
    field->setValidator(wc::makeFloatValidator(field));
    field->setMaximumWidth(kFieldWidth);
    lengths_[name] = field;
    return field;
}

void Widget_SR_Edit::initSR_Edit() {
    wc::makeNameValidator(this)->setObjectName(QStringLiteral("nameValidator"));
    auto* integer = new QRegExpValidator(QRegExp(QStringLiteral("-?[0-9]{0,6}")), this);

    title_ = makeLabel("label_Title", "Step and Repeat Edit");
    QFont bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("label_Status"));
    status_->setFrameShape(QFrame::StyledPanel);
    selected_ = new QLabel(tr("Selected Steps : 0"), this);
    selected_->setObjectName(QStringLiteral("label_SelectedSteps"));

    // Selection.
    auto* selection = new QGroupBox(this);
    auto* selection_row = new QHBoxLayout(selection);
    for (auto [name, text, slot] :
         {std::make_tuple("pushButton_SingleSelect", "Single Select",
                          &Widget_SR_Edit::on_SingleSelect_clicked),
          std::make_tuple("pushButton_RectangleSelect", "Rectangle Select",
                          &Widget_SR_Edit::on_RectangleSelect_clicked),
          std::make_tuple("pushButton_PolygonSelect", "Polygon Select",
                          &Widget_SR_Edit::on_PolygonSelect_clicked)}) {
        QPushButton* b = makeButton(name, text);
        selection_row->addWidget(b);
        connect(b, &QPushButton::clicked, this, slot);
    }
    selection_row->addWidget(selected_);

    using Slot = void (Widget_SR_Edit::*)();
    struct Op {
        const char* name;
        const char* text;
        Slot slot;
    };
    const auto grid = [this](QGroupBox* box, std::initializer_list<Op> ops, int columns) {
        auto* layout = new QGridLayout;
        int k = 0;
        for (const Op& op : ops) {
            QPushButton* b = makeButton(op.name, op.text);
            connect(b, &QPushButton::clicked, this, op.slot);
            layout->addWidget(b, k / columns, k % columns);
            ++k;
        }
        static_cast<QVBoxLayout*>(box->layout())->addLayout(layout);
    };

    // Edit operations with their angle, anchor and offsets.
    auto* edits = new QGroupBox(tr("Edit"), this);
    edits->setObjectName(QStringLiteral("groupBox_Edit"));
    new QVBoxLayout(edits);
    grid(edits,
         {{"pushButton_Add", "Add step", &Widget_SR_Edit::on_Add_clicked},
          {"pushButton_Copy", "Copy Select Step", &Widget_SR_Edit::on_Copy_clicked},
          {"pushButton_Move", "Move Select Step", &Widget_SR_Edit::on_Move_clicked},
          {"pushButton_Delete", "Delete Select Step", &Widget_SR_Edit::on_Delete_clicked},
          {"pushButton_Rotate", "Rotate Select Step", &Widget_SR_Edit::on_Rotate_clicked},
          {"pushButton_Replace", "Replace Select Step", &Widget_SR_Edit::on_Replace_clicked},
          {"pushButton_MirrorHorizontal", "Mirror Select Step Horizontally",
           &Widget_SR_Edit::on_MirrorHorizontal_clicked},
          {"pushButton_MirrorVertical", "Mirror Select Step Vertically",
           &Widget_SR_Edit::on_MirrorVertical_clicked},
          {"pushButton_MirrorFlip", "Mirror Select Step Flippedly",
           &Widget_SR_Edit::on_MirrorFlip_clicked},
          {"pushButton_ModifyEntry", "Modify Entry", &Widget_SR_Edit::on_ModifyEntry_clicked},
          {"pushButton_ReduceNesting", "Reduce S&R nesting",
           &Widget_SR_Edit::on_ReduceNesting_clicked},
          {"pushButton_ReduceHighestLevel", "Reduce S&R highest level only",
           &Widget_SR_Edit::on_ReduceHighestLevel_clicked}},
         3);
    auto* edit_fields = new QGridLayout;
    steps_ = new QComboBox(this);
    steps_->setObjectName(QStringLiteral("comboBox_Step"));
    angle_ = new QLineEdit(QStringLiteral("90"), this);
    angle_->setObjectName(QStringLiteral("lineEdit_Angle"));
    angle_->setValidator(integer);
    angle_->setMaximumWidth(kFieldWidth);
    edit_fields->addWidget(makeLabel("label_Step", "Step:"), 0, 0);
    edit_fields->addWidget(steps_, 0, 1);
    edit_fields->addWidget(makeLabel("label_Angle", "Angle:"), 0, 2);
    edit_fields->addWidget(angle_, 0, 3);
    edit_fields->addWidget(makeLabel("label_Axis", "Axis:"), 1, 0);
    anchors_ = new QButtonGroup(this);
    auto* anchor_row = new QHBoxLayout;
    int anchor_id = 0;
    for (auto [name, text] : {std::make_pair("radioButton_StepDatum", "Step Datum"),
                              std::make_pair("radioButton_StepCenter", "Step Center"),
                              std::make_pair("radioButton_CenterOfSet", "Center of Set")}) {
        auto* radio = new QRadioButton(tr(text), this);
        radio->setObjectName(QString::fromLatin1(name));
        texts_.emplace_back(radio, text);
        anchors_->addButton(radio, anchor_id++);
        anchor_row->addWidget(radio);
    }
    anchors_->button(0)->setChecked(true);
    edit_fields->addLayout(anchor_row, 1, 1, 1, 3);
    int row = 2;
    for (int k = 0; k < 2; ++k, ++row) {
        const LengthField& f = kLengthFields[k];
        edit_fields->addWidget(makeLabel((std::string("label_") + (f.name + 9)).c_str(), f.label),
                               row, 0);
        edit_fields->addWidget(makeField(f.name, f.default_mil), row, 1);
        auto* unit = new QLabel(this);
        unit_labels_.push_back(unit);
        edit_fields->addWidget(unit, row, 2);
    }
    edit_fields->setColumnStretch(4, 1);
    static_cast<QVBoxLayout*>(edits->layout())->addLayout(edit_fields);

    // Align, pack and space.
    auto* align = new QGroupBox(tr("Align"), this);
    align->setObjectName(QStringLiteral("groupBox_Align"));
    new QVBoxLayout(align);
    grid(align,
         {{"pushButton_AlignLeft", "Align Left", &Widget_SR_Edit::on_AlignLeft_clicked},
          {"pushButton_AlignRight", "Align Right", &Widget_SR_Edit::on_AlignRight_clicked},
          {"pushButton_AlignTop", "Align Top", &Widget_SR_Edit::on_AlignTop_clicked},
          {"pushButton_AlignBottom", "Align Bottom", &Widget_SR_Edit::on_AlignBottom_clicked},
          {"pushButton_CenterX", "Center on X Axis", &Widget_SR_Edit::on_CenterX_clicked},
          {"pushButton_CenterY", "Center on Y Axis", &Widget_SR_Edit::on_CenterY_clicked},
          {"pushButton_PackLeft", "Pack Left", &Widget_SR_Edit::on_PackLeft_clicked},
          {"pushButton_PackRight", "Pack Right", &Widget_SR_Edit::on_PackRight_clicked},
          {"pushButton_PackTop", "Pack Top", &Widget_SR_Edit::on_PackTop_clicked},
          {"pushButton_PackBottom", "Pack Bottom", &Widget_SR_Edit::on_PackBottom_clicked},
          {"pushButton_PackLeftRight", "Pack left and right",
           &Widget_SR_Edit::on_PackLeftRight_clicked},
          {"pushButton_PackTopBottom", "Pack top and bottom",
           &Widget_SR_Edit::on_PackTopBottom_clicked},
          // "horisontally" is the system's own spelling: kept on purpose.
          {"pushButton_PackCenterH", "Pack to center horisontally",
           &Widget_SR_Edit::on_PackCenterH_clicked},
          {"pushButton_PackCenterV", "Pack to center vertically",
           &Widget_SR_Edit::on_PackCenterV_clicked},
          {"pushButton_SpaceEvenlyH", "Space evenly horizontal",
           &Widget_SR_Edit::on_SpaceEvenlyH_clicked},
          {"pushButton_SpaceEvenlyV", "Space evenly vertical",
           &Widget_SR_Edit::on_SpaceEvenlyV_clicked},
          {"pushButton_AlignToGrid", "Align to grid", &Widget_SR_Edit::on_AlignToGrid_clicked}},
         4);
    auto* gaps = new QGridLayout;
    for (int k = 2; k < 4; ++k) {
        const LengthField& f = kLengthFields[k];
        gaps->addWidget(makeLabel((std::string("label_") + (f.name + 9)).c_str(), f.label), 0,
                        (k - 2) * 3);
        gaps->addWidget(makeField(f.name, f.default_mil), 0, (k - 2) * 3 + 1);
        auto* unit = new QLabel(this);
        unit_labels_.push_back(unit);
        gaps->addWidget(unit, 0, (k - 2) * 3 + 2);
    }
    // "Keep Gap :" ticked packs with the typed gaps; unticked packs edge to edge.
    keep_gap_ = new QCheckBox(this);
    keep_gap_->setObjectName(QStringLiteral("checkBox_KeepGap"));
    keep_gap_->setChecked(true);
    gaps->addWidget(makeLabel("label_KeepGap", "Keep Gap :"), 0, 6);
    gaps->addWidget(keep_gap_, 0, 7);
    gaps->setColumnStretch(8, 1);
    static_cast<QVBoxLayout*>(align->layout())->addLayout(gaps);

    // The entry of one table row, for Add step and Modify Entry.
    auto* table = new QGroupBox(this);
    table->setObjectName(QStringLiteral("groupBox_Table"));
    auto* table_layout = new QGridLayout(table);
    table_layout->addWidget(makeLabel("label_Table", "Table"), 0, 0);
    for (int k = 4; k < 8; ++k) {
        const LengthField& f = kLengthFields[k];
        const int column = ((k - 4) % 2) * 3;
        const int line = 1 + (k - 4) / 2;
        table_layout->addWidget(makeLabel((std::string("label_") + (f.name + 9)).c_str(), f.label),
                                line, column);
        table_layout->addWidget(makeField(f.name, f.default_mil), line, column + 1);
        auto* unit = new QLabel(this);
        unit_labels_.push_back(unit);
        table_layout->addWidget(unit, line, column + 2);
    }
    entry_nx_ = new QLineEdit(QStringLiteral("1"), this);
    entry_nx_->setObjectName(QStringLiteral("lineEdit_EntryNX"));
    entry_nx_->setValidator(integer);
    entry_ny_ = new QLineEdit(QStringLiteral("1"), this);
    entry_ny_->setObjectName(QStringLiteral("lineEdit_EntryNY"));
    entry_ny_->setValidator(integer);
    entry_angle_ = new QLineEdit(QStringLiteral("0"), this);
    entry_angle_->setObjectName(QStringLiteral("lineEdit_EntryAngle"));
    entry_angle_->setValidator(integer);
    mirror_ = new QCheckBox(tr("Mirror"), this);
    mirror_->setObjectName(QStringLiteral("checkBox_EntryMirror"));
    texts_.emplace_back(mirror_, "Mirror");
    table_layout->addWidget(makeLabel("label_EntryNX", "NX:"), 3, 0);
    table_layout->addWidget(entry_nx_, 3, 1);
    table_layout->addWidget(makeLabel("label_EntryNY", "NY:"), 3, 3);
    table_layout->addWidget(entry_ny_, 3, 4);
    table_layout->addWidget(makeLabel("label_EntryAngle", "Angle:"), 4, 0);
    table_layout->addWidget(entry_angle_, 4, 1);
    table_layout->addWidget(mirror_, 4, 3, 1, 2);

    // Panel size and margins.
    auto* panel = new QGroupBox(this);
    panel->setObjectName(QStringLiteral("groupBox_Panel"));
    auto* panel_layout = new QGridLayout(panel);
    panel_layout->addWidget(makeLabel("label_PanelSize", "Panel Size"), 0, 0);
    for (int k = 8; k < 10; ++k) {
        const LengthField& f = kLengthFields[k];
        panel_layout->addWidget(makeLabel((std::string("label_") + (f.name + 9)).c_str(), f.label),
                                1 + k - 8, 0);
        panel_layout->addWidget(makeField(f.name, f.default_mil), 1 + k - 8, 1);
        auto* unit = new QLabel(this);
        unit_labels_.push_back(unit);
        panel_layout->addWidget(unit, 1 + k - 8, 2);
    }
    // A new panel size keeps the instances where they are ("Keep S&R :") or moves them with the
    // panel's centre, and keeps the margins ("Keep Margin :") or clears them.
    keep_sr_ = new QCheckBox(this);
    keep_sr_->setObjectName(QStringLiteral("checkBox_KeepSR"));
    keep_sr_->setChecked(true);
    keep_margin_ = new QCheckBox(this);
    keep_margin_->setObjectName(QStringLiteral("checkBox_KeepMargin"));
    keep_margin_->setChecked(true);
    panel_layout->addWidget(makeLabel("label_KeepSR", "Keep S&R :"), 3, 0);
    panel_layout->addWidget(keep_sr_, 3, 1);
    panel_layout->addWidget(makeLabel("label_KeepMargin", "Keep Margin :"), 4, 0);
    panel_layout->addWidget(keep_margin_, 4, 1);
    QPushButton* size = makeButton("pushButton_PanelSize", "Set Size", false);
    connect(size, &QPushButton::clicked, this, &Widget_SR_Edit::on_PanelSize_clicked);
    panel_layout->addWidget(size, 5, 1);
    panel_layout->addWidget(makeLabel("label_Margins", "Margins"), 0, 3);
    for (int k = 10; k < 14; ++k) {
        const LengthField& f = kLengthFields[k];
        panel_layout->addWidget(makeLabel((std::string("label_") + (f.name + 9)).c_str(), f.label),
                                1 + k - 10, 3);
        panel_layout->addWidget(makeField(f.name, f.default_mil), 1 + k - 10, 4);
        auto* unit = new QLabel(this);
        unit_labels_.push_back(unit);
        panel_layout->addWidget(unit, 1 + k - 10, 5);
    }
    QPushButton* margins = makeButton("pushButton_Margins", "Set Margins", false);
    connect(margins, &QPushButton::clicked, this, &Widget_SR_Edit::on_Margins_clicked);
    panel_layout->addWidget(margins, 5, 4);

    QPushButton* close = makeButton("pushButton_Close", "Close", false);
    connect(close, &QPushButton::clicked, this, &Widget_SR_Edit::on_Close_clicked);
    auto* close_row = new QHBoxLayout;
    close_row->addStretch();
    close_row->addWidget(close);

    auto* lower = new QHBoxLayout;
    lower->addWidget(table);
    lower->addWidget(panel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title_);
    layout->addWidget(status_);
    layout->addWidget(selection);
    layout->addWidget(edits);
    layout->addWidget(align);
    layout->addLayout(lower);
    layout->addLayout(close_row);

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MouseTracking);
    wc::refreshUnitLabels(handle_, {unit_labels_.begin(), unit_labels_.end()});
    setPickMode(Pick::Single);
    setWindowTitle(tr("S&R Edit Popup"));
}

void Widget_SR_Edit::applyTexts() {
    for (auto& [button, text] : texts_) {
        button->setText(buttonText(tr(text)));
    }
    for (auto& [label, text] : label_texts_) {
        label->setText(tr(text));
    }
    status_->setText(tr(operation_.toLatin1().constData()));
    selected_->setText(tr("Selected Steps : ") + QString::number(wc::panel::selectedCount(rows_)));
    wc::refreshUnitLabels(handle_, {unit_labels_.begin(), unit_labels_.end()});
    setWindowTitle(tr("S&R Edit Popup"));
}

// ---- picks and selection ----------------------------------------------------------------------

void Widget_SR_Edit::receive_SR_Select_point(const QVector<QPointF>& points) {
    WC_GUARDED({
        if (pick_ == Pick::Polygon) {
            receive_SR_PolygonSelect_point(points);
            return;
        }
        const bool area = pick_ == Pick::Rectangle;
        if (points.isEmpty() || (area && points.size() < 2)) {
            LOG(ERROR) << "S&R select: " << points.size() << " points in this mode";
            return;
        }
        // Shift adds to the selection.
        if (!Korvo::UIAPI::getShiftEnpress(handle_)) {
            Korvo::API::clear_select_step_repeat(job_, step_);
        }
        Rows rows;
        const std::vector<Korvo::API::point> picked =
            toPoints(area ? points.mid(0, 2) : points.mid(0, 1));
        if (!Korvo::API::select_step_repeat(job_, step_, rows, picked, area ? 1 : 0)) {
            LOG(ERROR) << "select_step_repeat failed on " << job_ << "/" << step_;
        }
        All_Refresh();
    });
}

void Widget_SR_Edit::receive_SR_PolygonSelect_point(const QVector<QPointF>& vertices) {
    WC_GUARDED({
        if (vertices.size() < 3) {
            LOG(ERROR) << "S&R polygon select with " << vertices.size() << " vertices";
            return;
        }
        Korvo::API::clear_select_step_repeat(job_, step_);
        Rows rows;
        if (!Korvo::API::select_step_repeat(job_, step_, rows, toPoints(vertices), 1)) {
            LOG(ERROR) << "select_step_repeat failed on " << job_ << "/" << step_;
        }
        All_Refresh();
    });
}

void Widget_SR_Edit::on_SingleSelect_clicked() {
    WC_GUARDED({ setPickMode(Pick::Single); });
}

void Widget_SR_Edit::on_RectangleSelect_clicked() {
    WC_GUARDED({ setPickMode(Pick::Rectangle); });
}

void Widget_SR_Edit::on_PolygonSelect_clicked() {
    WC_GUARDED({ setPickMode(Pick::Polygon); });
}

// ---- edits -----------------------------------------------------------------------------------

void Widget_SR_Edit::on_Add_clicked() {
    WC_GUARDED({
        uncheckAll();
        setStatus("Add step");
        if (!Korvo::API::get_step_repeat(job_, step_, rows_)) {
            LOG(ERROR) << "get_step_repeat failed on " << job_ << "/" << step_;
            return;
        }
        Korvo::API::step_repeat_op row = entryFromFields();
        row.step_name = steps_->currentText().toStdString();
        if (row.step_name.empty() || !legalNesting(row.step_name)) {
            inform(tr("illegal step & repeat nesting "));
            setPickMode(Pick::Single);
            return;
        }
        if (row.nx < 1 || row.ny < 1) {
            refuse(Refusal::BadEntry);
            return;
        }
        Rows rows = wc::panel::withNoneSelected(rows_);
        for (int k = 0; k < row.nx * row.ny; ++k) {
            row.selection.insert(k);
        }
        rows.push_back(row);
        finish(rows);
    });
}

void Widget_SR_Edit::on_Copy_clicked() {
    WC_GUARDED({
        runEdit("Copy Select Step", "copy steps", [this] {
            return wc::panel::copyInstances(
                rows_, wc::toEngineInt(engineValue(lengths_["lineEdit_OffsetX"])),
                wc::toEngineInt(engineValue(lengths_["lineEdit_OffsetY"])), panelFrame(true));
        });
    });
}

void Widget_SR_Edit::on_Move_clicked() {
    WC_GUARDED({
        runEdit("Move Select Step", "move steps", [this] {
            return wc::panel::moveInstances(
                rows_, wc::toEngineInt(engineValue(lengths_["lineEdit_OffsetX"])),
                wc::toEngineInt(engineValue(lengths_["lineEdit_OffsetY"])));
        });
    });
}

void Widget_SR_Edit::on_Delete_clicked() {
    WC_GUARDED({
        runEdit("Delete Select Step", "delete steps",
                [this] { return wc::panel::deleteInstances(rows_); });
    });
}

void Widget_SR_Edit::on_Rotate_clicked() {
    WC_GUARDED({
        runEdit("Rotate Select Step", "rotate steps", [this] {
            bool ok = false;
            const int angle = angle_->text().toInt(&ok, 10);
            if (!ok) {
                return Outcome{Refusal::AngleRange, rows_};
            }
            wc::panel::ChildBoxes boxes;
            readChildBoxes(boxes);
            return wc::panel::rotateInstances(rows_, angle, anchor(), boxes);
        });
    });
}

void Widget_SR_Edit::on_Replace_clicked() {
    WC_GUARDED({
        runEdit("Replace Select Step", "replace steps", [this] {
            const std::string child = steps_->currentText().toStdString();
            if (child.empty() || !legalNesting(child)) {
                return Outcome{Refusal::Nesting, rows_};
            }
            wc::panel::ChildBoxes boxes;
            readChildBoxes(boxes);
            reply_box box;
            if (Korvo::API::profile_box(job_, child, box)) {
                boxes[child] = box;
            }
            return wc::panel::replaceInstances(rows_, child, boxes);
        });
    });
}

void Widget_SR_Edit::on_MirrorHorizontal_clicked() {
    WC_GUARDED({
        runMirror("Mirror Select Step Horizontally", "horizontal mirror steps",
                  wc::panel::MirrorKind::Horizontal);
    });
}

void Widget_SR_Edit::on_MirrorVertical_clicked() {
    WC_GUARDED({
        runMirror("Mirror Select Step Vertically", "vertical mirror steps",
                  wc::panel::MirrorKind::Vertical);
    });
}

void Widget_SR_Edit::on_MirrorFlip_clicked() {
    WC_GUARDED({
        runMirror("Mirror Select Step Flippedly", "flip mirror steps", wc::panel::MirrorKind::Flip);
    });
}

void Widget_SR_Edit::on_ModifyEntry_clicked() {
    WC_GUARDED({
        uncheckAll();
        setStatus("Modify Entry");
        if (!Korvo::API::get_step_repeat(job_, step_, rows_)) {
            LOG(ERROR) << "get_step_repeat failed on " << job_ << "/" << step_;
            return;
        }
        const Outcome out = wc::panel::modifyEntry(rows_, entryFromFields());
        if (!out.ok()) {
            refuse(out.refusal);
            return;
        }
        finish(out.rows);
    });
}

void Widget_SR_Edit::on_ReduceNesting_clicked() {
    WC_GUARDED({ runReduce("Reduce S&R nesting", false); });
}

void Widget_SR_Edit::on_ReduceHighestLevel_clicked() {
    WC_GUARDED({ runReduce("Reduce S&R highest level only", true); });
}

// ---- align to a reference --------------------------------------------------------------------

void Widget_SR_Edit::on_AlignLeft_clicked() {
    WC_GUARDED({ runAlign("Align Left", wc::panel::AlignKind::Left); });
}

void Widget_SR_Edit::on_AlignRight_clicked() {
    WC_GUARDED({ runAlign("Align Right", wc::panel::AlignKind::Right); });
}

void Widget_SR_Edit::on_AlignTop_clicked() {
    WC_GUARDED({ runAlign("Align Top", wc::panel::AlignKind::Top); });
}

void Widget_SR_Edit::on_AlignBottom_clicked() {
    WC_GUARDED({ runAlign("Align Bottom", wc::panel::AlignKind::Bottom); });
}

void Widget_SR_Edit::on_CenterX_clicked() {
    WC_GUARDED({ runAlign("Center on X Axis", wc::panel::AlignKind::CenterX); });
}

void Widget_SR_Edit::on_CenterY_clicked() {
    WC_GUARDED({ runAlign("Center on Y Axis", wc::panel::AlignKind::CenterY); });
}

void Widget_SR_Edit::receive_SR_second_Select_point(const QPointF& point) {
    WC_GUARDED({
        if (!align_pending_) {
            LOG(INFO) << "reference pick without an align operation";
            return;
        }
        align_pending_ = false;
        const int before = Korvo::API::get_editop_count(job_, step_);
        Korvo::API::clear_select_step_repeat(job_, step_);
        Rows picked;
        Korvo::API::select_step_repeat(job_, step_, picked, {{point.x(), point.y()}}, 0);
        wc::panel::ChildBoxes boxes;
        const bool known = readChildBoxes(boxes);
        const wc::panel::Expansion reference = wc::panel::expandInstances(picked);
        // On overlapping instances the engine marks the upper one alone, yet the pick names
        // none of them for sure: it must hit exactly one instance.
        const std::vector<reply_box> placed = wc::panel::instanceBoxes(picked, boxes);
        const auto under = std::count_if(placed.begin(), placed.end(), [&](const reply_box& b) {
            return point.x() >= b.xmin && point.x() <= b.xmax && point.y() >= b.ymin &&
                   point.y() <= b.ymax;
        });
        if (!known || reference.selected.size() != 1 || under != 1) {
            // The noted selection goes back and the pick counts as no edit.
            Korvo::API::set_step_repeat(job_, step_, align_rows_);
            Korvo::API::bind_editop_count(job_, step_, before);
            inform(tr("Illegal step specified"));
            setPickMode(Pick::Single);
            All_Refresh();
            return;
        }
        const Korvo::API::step_repeat_op& ref = reference.rows[reference.selected.front()];
        const Outcome out = wc::panel::alignToReference(
            align_rows_, wc::panel::instanceBox(boxes.at(ref.step_name), ref), align_kind_, boxes);
        if (!out.ok()) {
            refuse(out.refusal);
            return;
        }
        finish(out.rows);
    });
}

// ---- pack, space, grid -----------------------------------------------------------------------

void Widget_SR_Edit::on_PackLeft_clicked() {
    WC_GUARDED({
        runPack("Pack Left", true, [this](const PanelFrame& f) {
            return wc::panel::do_align(rows_, wc::panel::PackEdge::Left, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackRight_clicked() {
    WC_GUARDED({
        runPack("Pack Right", true, [this](const PanelFrame& f) {
            return wc::panel::do_align(rows_, wc::panel::PackEdge::Right, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackTop_clicked() {
    WC_GUARDED({
        runPack("Pack Top", false, [this](const PanelFrame& f) {
            return wc::panel::do_align(rows_, wc::panel::PackEdge::Top, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackBottom_clicked() {
    WC_GUARDED({
        runPack("Pack Bottom", false, [this](const PanelFrame& f) {
            return wc::panel::do_align(rows_, wc::panel::PackEdge::Bottom, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackLeftRight_clicked() {
    WC_GUARDED({
        runPack("Pack left and right", true, [this](const PanelFrame& f) {
            return wc::panel::packBothWays(rows_, wc::panel::Axis::Horizontal, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackTopBottom_clicked() {
    WC_GUARDED({
        runPack("Pack top and bottom", false, [this](const PanelFrame& f) {
            return wc::panel::packBothWays(rows_, wc::panel::Axis::Vertical, f, outlineTest());
        });
    });
}

void Widget_SR_Edit::on_PackCenterH_clicked() {
    WC_GUARDED({
        runPack(
            "Pack to center horisontally", true,
            [this](const PanelFrame& f) {
                return wc::panel::packToCentre(rows_, wc::panel::Axis::Horizontal, f,
                                               outlineTest());
            },
            "", Ask::AllSteps);
    });
}

void Widget_SR_Edit::on_PackCenterV_clicked() {
    WC_GUARDED({
        runPack(
            "Pack to center vertically", false,
            [this](const PanelFrame& f) {
                return wc::panel::packToCentre(rows_, wc::panel::Axis::Vertical, f, outlineTest());
            },
            "", Ask::AllSteps);
    });
}

void Widget_SR_Edit::on_SpaceEvenlyH_clicked() {
    WC_GUARDED({
        runPack("Space evenly horizontal", true, [this](const PanelFrame& f) {
            return wc::panel::arrange_selected_steps(rows_, wc::panel::Axis::Horizontal, f);
        });
    });
}

void Widget_SR_Edit::on_SpaceEvenlyV_clicked() {
    WC_GUARDED({
        runPack("Space evenly vertical", false, [this](const PanelFrame& f) {
            return wc::panel::arrange_selected_steps(rows_, wc::panel::Axis::Vertical, f);
        });
    });
}

void Widget_SR_Edit::on_AlignToGrid_clicked() {
    WC_GUARDED({
        // Asks the Reduce nesting question, as the system always has: kept on purpose.
        runPack(
            "Align to grid", true,
            [this](const PanelFrame& f) { return wc::panel::alignToGrid(rows_, f); },
            "Reduce nesting");
    });
}

// ---- panel size and margins ------------------------------------------------------------------

void Widget_SR_Edit::on_PanelSize_clicked() {
    WC_GUARDED({
        uncheckAll();
        setStatus("Panel Size");
        reply_box box;
        if (!Korvo::API::get_step_repeat(job_, step_, rows_) ||
            !Korvo::API::profile_box(job_, step_, box)) {
            LOG(ERROR) << "panel size: no table or profile on " << job_ << "/" << step_;
            return;
        }
        const double width = engineValue(lengths_["lineEdit_PanelWidth"]);
        const double height = engineValue(lengths_["lineEdit_PanelHeight"]);
        // Written so that NaN fails too; the profile's corners must stay engine coordinates.
        constexpr double kMax = std::numeric_limits<int32_t>::max();
        if (!(width > 0 && height > 0 && box.xmin + width <= kMax && box.ymin + height <= kMax)) {
            inform(tr("Illegal field value"));
            return;
        }
        const int before = Korvo::API::get_editop_count(job_, step_);
        const std::vector<Korvo::API::point> outline = {{box.xmin, box.ymin},
                                                        {box.xmin + width, box.ymin},
                                                        {box.xmin + width, box.ymin + height},
                                                        {box.xmin, box.ymin + height}};
        if (!Korvo::API::set_step_profile(job_, step_, outline)) {
            LOG(ERROR) << "set_step_profile failed on " << job_ << "/" << step_;
            return;
        }
        if (!keep_margin_->isChecked()) {
            Korvo::API::set_panel_margin(job_, step_, 0, 0, 0, 0);
        }
        if (!keep_sr_->isChecked()) {
            // The instances move with the panel's centre.
            const double dx = std::trunc((width - (box.xmax - box.xmin)) / 2);
            const double dy = std::trunc((height - (box.ymax - box.ymin)) / 2);
            Rows moved = rows_;
            for (Korvo::API::step_repeat_op& r : moved) {
                r.x = wc::toEngineInt(r.x + dx);
                r.y = wc::toEngineInt(r.y + dy);
            }
            Korvo::API::set_step_repeat(job_, step_, moved);
        }
        Korvo::API::bind_editop_count(job_, step_, before + 1);
        setPickMode(Pick::Single);
        All_Refresh();
        emit send_SR_Changed();
    });
}

void Widget_SR_Edit::on_Margins_clicked() {
    WC_GUARDED({
        uncheckAll();
        setStatus("Margins");
        const auto value = [this](const char* name) {
            return wc::toEngineInt(engineValue(lengths_[name]));
        };
        if (!Korvo::API::set_panel_margin(
                job_, step_, value("lineEdit_MarginLeft"), value("lineEdit_MarginRight"),
                value("lineEdit_MarginTop"), value("lineEdit_MarginBottom"))) {
            LOG(ERROR) << "set_panel_margin refused on " << job_ << "/" << step_;
            inform(tr("Illegal field value"));
        }
        setPickMode(Pick::Single);
        All_Refresh();
    });
}

// ---- refresh, units, language ----------------------------------------------------------------

void Widget_SR_Edit::All_Refresh() {
    WC_GUARDED({
        rows_.clear();
        Korvo::API::get_step_repeat(job_, step_, rows_);
        selected_->setText(tr("Selected Steps : ") +
                           QString::number(wc::panel::selectedCount(rows_)));
        // The one selected row is shown in the entry fields, ready for Modify Entry.
        const int entry = wc::panel::selectedEntry(rows_);
        if (entry >= 0) {
            const Korvo::API::step_repeat_op& r = rows_[entry];
            showEngineValue(lengths_["lineEdit_EntryX"], r.x);
            showEngineValue(lengths_["lineEdit_EntryY"], r.y);
            showEngineValue(lengths_["lineEdit_EntryDX"], r.dx);
            showEngineValue(lengths_["lineEdit_EntryDY"], r.dy);
            entry_nx_->setText(QString::number(r.nx));
            entry_ny_->setText(QString::number(r.ny));
            entry_angle_->setText(QString::number(r.angle));
            mirror_->setChecked(r.mirror);
            steps_->setCurrentText(QString::fromStdString(r.step_name));
        }
        std::vector<std::string> steps;
        std::vector<Korvo::API::layer_info> layers;
        Korvo::API::get_matrix(job_, steps, layers);
        const QString current = steps_->currentText();
        steps_->clear();
        for (const std::string& s : steps) {
            if (s != step_) {
                steps_->addItem(QString::fromStdString(s));
            }
        }
        if (!current.isEmpty()) {
            steps_->setCurrentText(current);
        }
        reply_box box;
        if (Korvo::API::profile_box(job_, step_, box)) {
            showEngineValue(lengths_["lineEdit_PanelWidth"], box.xmax - box.xmin);
            showEngineValue(lengths_["lineEdit_PanelHeight"], box.ymax - box.ymin);
        }
        std::map<std::string, std::string> attributes;
        Korvo::API::get_step_attributes(job_, step_, attributes);
        const char* fields[4] = {"lineEdit_MarginLeft", "lineEdit_MarginRight",
                                 "lineEdit_MarginTop", "lineEdit_MarginBottom"};
        for (int k = 0; k < 4; ++k) {
            auto it = attributes.find(kMarginKeys[k]);
            if (it != attributes.end()) {
                showEngineValue(lengths_[fields[k]], std::atof(it->second.c_str()));
            }
        }
        PluginMetaData message;
        message.sender = wc::module::StepMenu;
        message.receiver = wc::module::JobList;
        message.code = wc::code::RefreshGraphic;
        message.values.insert(QStringLiteral("DstType"), QStringLiteral("Graphic"));
        QTpluginsManger4CAM::instance()->recMegToPlugin(const_cast<void*>(handle_), message);
    });
}

void Widget_SR_Edit::change_language() {
    WC_GUARDED({ applyTexts(); });
}

void Widget_SR_Edit::change_unit() {
    WC_GUARDED({
        QList<QLineEdit*> fields;
        for (auto& entry : lengths_) {
            fields << entry.second;
        }
        wc::reexpressFields(handle_, fields);
        wc::refreshUnitLabels(handle_, {unit_labels_.begin(), unit_labels_.end()});
    });
}

void Widget_SR_Edit::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

// ---- private helpers ---------------------------------------------------------------------------

bool Widget_SR_Edit::commonStart(const char* status, const char* words, Ask ask) {
    if (!Korvo::API::get_step_repeat(job_, step_, rows_)) {
        LOG(ERROR) << "get_step_repeat failed on " << job_ << "/" << step_;
        return false;
    }
    uncheckAll();
    setStatus(status);
    if (wc::panel::selectedCount(rows_) > 0) {
        return true;
    }
    const QString question =
        ask == Ask::AllSteps ? QStringLiteral("Operation will be performed on all steps.Continue?")
                             : stepsQuestion(words);
    const auto answer =
        QMessageBox::information(this, tr("Information"), tr(question.toLatin1().constData()),
                                 QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes) {
        setPickMode(Pick::Single);
        return false;
    }
    rows_ = wc::panel::withAllSelected(rows_);
    return true;
}

void Widget_SR_Edit::finish(const Rows& rows) {
    // One operation is one edit, however many engine writes it took.
    const int before = Korvo::API::get_editop_count(job_, step_);
    if (!Korvo::API::set_step_repeat(job_, step_, rows)) {
        LOG(ERROR) << "set_step_repeat refused the table of " << job_ << "/" << step_;
        inform(tr("illegal step & repeat nesting "));
    } else {
        Korvo::API::bind_editop_count(job_, step_, before + 1);
        LOG(INFO) << operation_.toStdString() << ": wrote " << rows.size() << " rows to " << job_
                  << "/" << step_;
    }
    setPickMode(Pick::Single);
    All_Refresh();
    emit send_SR_Changed();
}

void Widget_SR_Edit::refuse(Refusal why) {
    switch (why) {
        case Refusal::None:
            return;
        case Refusal::Overlap:
            inform(tr("There are overlapping pcss selected!"));
            break;
        case Refusal::NotAligned:
            // The "/n" is part of the system's text, not a line break: kept on purpose.
            inform(
                tr("Steps are not aligned properly /n Different steps or step angle/mirror not "
                   "match"));
            break;
        case Refusal::AngleRange:
            inform(tr("angle must be in range of '0' to '360'!"));
            break;
        case Refusal::NoEntry:
            inform(tr("The Modify Entry operation requires 1 step!"));
            break;
        case Refusal::ManyEntries:
            inform(tr("The Modify Entry operation requires only 1 step!"));
            break;
        case Refusal::BadEntry:
            inform(tr("Illegal field value"));
            break;
        case Refusal::Nesting:
        case Refusal::UnknownStep:
            inform(tr("illegal step & repeat nesting "));
            break;
    }
    setPickMode(Pick::Single);
}

void Widget_SR_Edit::inform(const QString& text) {
    LOG(INFO) << "S&R edit: " << text.toStdString();
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

void Widget_SR_Edit::setPickMode(Pick mode) {
    pick_ = mode;
    uncheckAll();
    const char* names[3] = {"Single Select", "Rectangle Select", "Polygon Select"};
    const char* objects[3] = {"pushButton_SingleSelect", "pushButton_RectangleSelect",
                              "pushButton_PolygonSelect"};
    const int k = static_cast<int>(mode);
    if (auto* b = findChild<QPushButton*>(QString::fromLatin1(objects[k]))) {
        b->setChecked(true);
    }
    setStatus(names[k]);
}

void Widget_SR_Edit::uncheckAll() {
    for (QPushButton* b : buttons_) {
        b->setChecked(false);
    }
}

void Widget_SR_Edit::setStatus(const char* status) {
    operation_ = QString::fromLatin1(status);
    status_->setText(tr(status));
}

PanelFrame Widget_SR_Edit::panelFrame(bool horizontal_gap) {
    PanelFrame f;
    readChildBoxes(f.child_boxes);
    Korvo::API::profile_box(job_, step_, f.panel);
    std::map<std::string, std::string> attributes;
    Korvo::API::get_step_attributes(job_, step_, attributes);
    int* margins[4] = {&f.margins.left, &f.margins.right, &f.margins.top, &f.margins.bottom};
    for (int k = 0; k < 4; ++k) {
        auto it = attributes.find(kMarginKeys[k]);
        *margins[k] = it == attributes.end() ? 0 : std::atoi(it->second.c_str());
    }
    if (keep_gap_->isChecked()) {
        f.gap = wc::toEngineInt(
            engineValue(lengths_[horizontal_gap ? "lineEdit_HorizGap" : "lineEdit_VertGap"]));
    }
    return f;
}

bool Widget_SR_Edit::readChildBoxes(wc::panel::ChildBoxes& boxes) {
    bool all = true;
    for (const Korvo::API::step_repeat_op& row : rows_) {
        if (boxes.count(row.step_name) != 0) {
            continue;
        }
        reply_box box;
        if (Korvo::API::profile_box(job_, row.step_name, box)) {
            boxes[row.step_name] = box;
        } else {
            LOG(ERROR) << "no profile box for placed step " << row.step_name;
            all = false;
        }
    }
    return all;
}

wc::panel::OutlinesOverlap Widget_SR_Edit::outlineTest() {
    // Outlines are read once per child step and placed per pair; the engine measures them.
    auto outlines = std::make_shared<std::map<std::string, std::vector<Korvo::API::point>>>();
    const std::string job = job_;
    return
        [outlines, job](const Korvo::API::step_repeat_op& a, const Korvo::API::step_repeat_op& b) {
            const auto placed = [&](const Korvo::API::step_repeat_op& r) {
                auto it = outlines->find(r.step_name);
                if (it == outlines->end()) {
                    std::vector<Korvo::API::point> outline;
                    Korvo::API::get_profile(job, r.step_name, outline);
                    it = outlines->emplace(r.step_name, std::move(outline)).first;
                }
                std::vector<Korvo::API::point> out;
                for (const Korvo::API::point& p : it->second) {
                    const Korvo::API::point q = wc::panel::placePoint(p, r.angle, r.mirror);
                    out.push_back({q.x + r.x, q.y + r.y});
                }
                return out;
            };
            Korvo::API::point on_a;
            Korvo::API::point on_b;
            return Korvo::API::distance_of_polygon(placed(a), placed(b), on_a, on_b) == 0;
        };
}

bool Widget_SR_Edit::legalNesting(const std::string& child) {
    // PcsStepJudge: a step may not place itself or a step that places it.
    if (child == step_) {
        return false;
    }
    std::vector<std::string> inside;
    Korvo::API::get_all_step_repeat_steps(job_, child, inside);
    return std::find(inside.begin(), inside.end(), step_) == inside.end();
}

double Widget_SR_Edit::engineValue(const QLineEdit* field) const {
    return Korvo::UIAPI::getUnitAPIData(handle_, 1, field->text().toDouble());
}

void Widget_SR_Edit::showEngineValue(QLineEdit* field, double engine) const {
    const double shown = Korvo::UIAPI::getUnitJudgeDouble(handle_, engine / kNanometresPerMil);
    field->setText(QString::number(shown, 'g', 10));
}

Korvo::API::step_repeat_op Widget_SR_Edit::entryFromFields() const {
    Korvo::API::step_repeat_op r;
    const auto value = [this](const char* name) {
        return wc::toEngineInt(engineValue(lengths_.at(name)));
    };
    r.x = value("lineEdit_EntryX");
    r.y = value("lineEdit_EntryY");
    r.dx = value("lineEdit_EntryDX");
    r.dy = value("lineEdit_EntryDY");
    r.nx = entry_nx_->text().toInt();
    r.ny = entry_ny_->text().toInt();
    r.angle = entry_angle_->text().toInt();
    r.mirror = mirror_->isChecked();
    return r;
}

void Widget_SR_Edit::runAlign(const char* status, wc::panel::AlignKind kind) {
    if (!commonStart(status, "Align Steps")) {
        return;
    }
    align_pending_ = true;
    align_kind_ = kind;
    align_rows_ = rows_;
    for (QPushButton* b : buttons_) {
        if (b->text() == buttonText(tr(status))) {
            b->setChecked(true);
        }
    }
    PluginMetaData message;
    message.sender = wc::module::StepMenu;
    message.receiver = wc::module::GraphicView;
    message.code = wc::code::PickReferenceStep;
    message.values.insert(QStringLiteral("Operation"), QString::fromLatin1(status));
    QTpluginsManger4CAM::instance()->recMegToPlugin(const_cast<void*>(handle_), message);
}

void Widget_SR_Edit::runPack(const char* status, bool horizontal,
                             const std::function<Outcome(const PanelFrame&)>& pack,
                             const char* words, Ask ask) {
    if (!commonStart(status, words, ask)) {
        return;
    }
    if (!Korvo::API::has_profile(job_, step_)) {
        LOG(ERROR) << "step " << step_ << " has no profile to pack in";
        refuse(Refusal::UnknownStep);
        return;
    }
    const Outcome out = pack(panelFrame(horizontal));
    if (!out.ok()) {
        refuse(out.refusal);
        return;
    }
    finish(out.rows);
}

void Widget_SR_Edit::runEdit(const char* status, const char* words,
                             const std::function<Outcome()>& edit) {
    if (!commonStart(status, words)) {
        return;
    }
    const Outcome out = edit();
    if (!out.ok()) {
        refuse(out.refusal);
        return;
    }
    finish(out.rows);
}

void Widget_SR_Edit::runReduce(const char* status, bool highest_only) {
    runEdit(status, "Reduce nesting", [this, highest_only] {
        std::map<std::string, Rows> tables;
        std::vector<std::string> placed;
        Korvo::API::get_all_step_repeat_steps(job_, step_, placed);
        for (const std::string& s : placed) {
            Rows rows;
            if (Korvo::API::get_step_repeat(job_, s, rows) && !rows.empty()) {
                tables[s] = wc::panel::withNoneSelected(rows);
            }
        }
        return wc::panel::reduceNesting(rows_, tables, highest_only);
    });
}

void Widget_SR_Edit::runMirror(const char* status, const char* words, wc::panel::MirrorKind kind) {
    runEdit(status, words, [this, kind] {
        wc::panel::ChildBoxes boxes;
        readChildBoxes(boxes);
        return wc::panel::mirrorInstances(rows_, kind, anchor(), boxes);
    });
}

wc::panel::Anchor Widget_SR_Edit::anchor() const {
    return static_cast<wc::panel::Anchor>(std::max(0, anchors_->checkedId()));
}
