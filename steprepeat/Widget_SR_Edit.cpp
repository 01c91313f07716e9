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
#include <cstring>
#include <limits>
#include <stdexcept>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "QTpluginsManger4CAM.h"
#include "ZeLineEdit.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/FieldTable.h"
#include "frame/PluginMessages.h"
#include "frame/Translate.h"
#include "frame/Validators.h"

using Korvo::API::reply_box;
using wc::panel::Outcome;
using wc::panel::PanelFrame;
using wc::panel::Refusal;
using wc::panel::Rows;
using wc::sredit::Lengths;
using wc::sredit::Place;
using wc::sredit::Start;

namespace {

constexpr double kNanometresPerMil = 25400.0;
constexpr int kFieldWidth = 110;
// Lengths beyond this many mil do not fit the engine's int32 nanometres.
constexpr double kReachMil = std::numeric_limits<int32_t>::max() / kNanometresPerMil;

// Rows of the field table, in the order of lengthRows().
enum Length {
    OffsetX,
    OffsetY,
    HorizGap,
    VertGap,
    EntryX,
    EntryY,
    EntryDX,
    EntryDY,
    PanelWidth,
    PanelHeight,
    MarginLeft,
    MarginRight,
    MarginTop,
    MarginBottom
};

// Defaults in mil. The fields have no commit on Return: a value is read when an operation
// runs, and the panel size is checked there.
const std::vector<wc::FieldRow<Lengths>>& lengthRows() {
    using L = Lengths;
    static const std::vector<wc::FieldRow<L>> rows = {
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Offset X:"), "offset_x", "OffsetX", 0.0, -kReachMil,
         kReachMil, "", &L::offset_x},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Offset Y:"), "offset_y", "OffsetY", 0.0, -kReachMil,
         kReachMil, "", &L::offset_y},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Horiz gap:"), "horizontal_gap", "HorizGap", 0.0, 0.0,
         kReachMil, "", &L::horizontal_gap},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Vert gap:"), "vertical_gap", "VertGap", 0.0, 0.0,
         kReachMil, "", &L::vertical_gap},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "X:"), "x", "EntryX", 0.0, -kReachMil, kReachMil, "",
         &L::entry_x},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Y:"), "y", "EntryY", 0.0, -kReachMil, kReachMil, "",
         &L::entry_y},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "DX:"), "dx", "EntryDX", 0.0, -kReachMil, kReachMil,
         "", &L::entry_dx},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "DY:"), "dy", "EntryDY", 0.0, -kReachMil, kReachMil,
         "", &L::entry_dy},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Width:"), "panel_width", "PanelWidth", 0.0, 0.0,
         kReachMil, "", &L::panel_width},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Height:"), "panel_height", "PanelHeight", 0.0, 0.0,
         kReachMil, "", &L::panel_height},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Left:"), "margin_left", "MarginLeft", 0.0, 0.0,
         kReachMil, "", &L::margin_left},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Right:"), "margin_right", "MarginRight", 0.0, 0.0,
         kReachMil, "", &L::margin_right},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Top:"), "margin_top", "MarginTop", 0.0, 0.0,
         kReachMil, "", &L::margin_top},
        {QT_TRANSLATE_NOOP("Widget_SR_Edit", "Bottom:"), "margin_bottom", "MarginBottom", 0.0, 0.0,
         kReachMil, "", &L::margin_bottom},
    };
    return rows;
}

QString stepsQuestion(const char* words) {
    return QStringLiteral(
               "The %1 operation requires at least 1 step(s),while you have 0 step(s) "
               "selected, The operation will be performed on all steps,continue?")
        .arg(QString::fromLatin1(words));
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

Widget_SR_Edit::~Widget_SR_Edit() = default;

void Widget_SR_Edit::setJobStep(const std::string& job, const std::string& step) {
    WC_GUARDED({
        job_ = job;
        step_ = step;
        align_pending_ = false;
        setPickMode(Pick::Single);
        All_Refresh();
    });
}

// ---- building ----------------------------------------------------------------------------------

void Widget_SR_Edit::initSR_Edit() {
    wc::makeNameValidator(this)->setObjectName(QStringLiteral("nameValidator"));
    lengths_ = std::make_unique<wc::FieldTable<Lengths>>(this, handle_, lengthRows());
    for (int row = 0; row < lengths_->size(); ++row) {
        lengths_->edit(row)->setMaximumWidth(kFieldWidth);
    }
    for (const Command& c : commands()) {
        auto* b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(c.name));
        wc::setSourceText(this, b, c.text);
        b->setCheckable(c.place == Place::Selection || c.place == Place::Edit ||
                        c.place == Place::Align);
        connect(b, &QPushButton::clicked, this, [this, &c] { dispatch(c); });
        buttons_.push_back(b);
    }

    QLabel* title = makeLabel("label_Title", QT_TR_NOOP("Step and Repeat Edit"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    status_ = makeLabel("label_Status", "");
    status_->setFrameShape(QFrame::StyledPanel);
    selected_ = makeLabel("label_SelectedSteps", "");

    auto* lower = new QHBoxLayout;
    lower->addWidget(buildTable());
    lower->addWidget(buildPanel());
    auto* close_row = new QHBoxLayout;
    close_row->addStretch();
    close_row->addWidget(button(command("pushButton_Close")));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(status_);
    layout->addWidget(buildSelection());
    layout->addWidget(buildEdit());
    layout->addWidget(buildAlign());
    layout->addLayout(lower);
    layout->addLayout(close_row);

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MouseTracking);
    setPickMode(Pick::Single);
    wc::setSourceText(this, this, QT_TR_NOOP("S&R Edit Popup"));
}

QGroupBox* Widget_SR_Edit::buildSelection() {
    QGroupBox* box = makeGroup("Selection");
    auto* row = new QHBoxLayout(box);
    row->addLayout(commandGrid(Place::Selection, 3));
    row->addWidget(selected_);
    return box;
}

// Edit operations with their step, angle, anchor and offsets.
QGroupBox* Widget_SR_Edit::buildEdit() {
    QGroupBox* box = makeGroup("Edit", QT_TR_NOOP("Edit"));
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(commandGrid(Place::Edit, 3));
    auto* fields = new QGridLayout;
    steps_ = new QComboBox(this);
    steps_->setObjectName(QStringLiteral("comboBox_Step"));
    angle_ = makeInteger("lineEdit_Angle", "90");
    fields->addWidget(makeLabel("label_Step", QT_TR_NOOP("Step:")), 0, 0);
    fields->addWidget(steps_, 0, 1);
    fields->addWidget(makeLabel("label_Angle", QT_TR_NOOP("Angle:")), 0, 2);
    fields->addWidget(angle_, 0, 3);
    fields->addWidget(makeLabel("label_Axis", QT_TR_NOOP("Axis:")), 1, 0);
    anchors_ = new QButtonGroup(this);
    auto* anchor_row = new QHBoxLayout;
    const char* const anchors[3][2] = {{"radioButton_StepDatum", QT_TR_NOOP("Step Datum")},
                                       {"radioButton_StepCenter", QT_TR_NOOP("Step Center")},
                                       {"radioButton_CenterOfSet", QT_TR_NOOP("Center of Set")}};
    for (int id = 0; id < 3; ++id) {
        auto* radio = new QRadioButton(this);
        radio->setObjectName(QString::fromLatin1(anchors[id][0]));
        wc::setSourceText(this, radio, anchors[id][1]);
        anchors_->addButton(radio, id);
        anchor_row->addWidget(radio);
    }
    anchors_->button(0)->setChecked(true);
    fields->addLayout(anchor_row, 1, 1, 1, 3);
    placeLengths(fields, OffsetX, 2, 2, 0);
    fields->setColumnStretch(4, 1);
    layout->addLayout(fields);
    return box;
}

// Align, pack and space, with the gaps they keep.
QGroupBox* Widget_SR_Edit::buildAlign() {
    QGroupBox* box = makeGroup("Align", QT_TR_NOOP("Align"));
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(commandGrid(Place::Align, 4));
    auto* gaps = new QGridLayout;
    placeLengths(gaps, HorizGap, 1, 0, 0);
    placeLengths(gaps, VertGap, 1, 0, 3);
    // "Keep Gap :" ticked packs with the typed gaps; unticked packs edge to edge.
    keep_gap_ = makeCheck("checkBox_KeepGap");
    gaps->addWidget(makeLabel("label_KeepGap", QT_TR_NOOP("Keep Gap :")), 0, 6);
    gaps->addWidget(keep_gap_, 0, 7);
    gaps->setColumnStretch(8, 1);
    layout->addLayout(gaps);
    return box;
}

// The entry of one table row, for Add step and Modify Entry.
QGroupBox* Widget_SR_Edit::buildTable() {
    QGroupBox* box = makeGroup("Table");
    auto* grid = new QGridLayout(box);
    grid->addWidget(makeLabel("label_Table", QT_TR_NOOP("Table")), 0, 0);
    placeLengths(grid, EntryX, 1, 1, 0);
    placeLengths(grid, EntryY, 1, 1, 3);
    placeLengths(grid, EntryDX, 1, 2, 0);
    placeLengths(grid, EntryDY, 1, 2, 3);
    entry_nx_ = makeInteger("lineEdit_EntryNX", "1");
    entry_ny_ = makeInteger("lineEdit_EntryNY", "1");
    entry_angle_ = makeInteger("lineEdit_EntryAngle", "0");
    mirror_ = makeCheck("checkBox_EntryMirror", QT_TR_NOOP("Mirror"));
    mirror_->setChecked(false);
    grid->addWidget(makeLabel("label_EntryNX", QT_TR_NOOP("NX:")), 3, 0);
    grid->addWidget(entry_nx_, 3, 1);
    grid->addWidget(makeLabel("label_EntryNY", QT_TR_NOOP("NY:")), 3, 3);
    grid->addWidget(entry_ny_, 3, 4);
    grid->addWidget(makeLabel("label_EntryAngle", QT_TR_NOOP("Angle:")), 4, 0);
    grid->addWidget(entry_angle_, 4, 1);
    grid->addWidget(mirror_, 4, 3, 1, 2);
    return box;
}

// Panel size and margins.
QGroupBox* Widget_SR_Edit::buildPanel() {
    QGroupBox* box = makeGroup("Panel");
    auto* grid = new QGridLayout(box);
    grid->addWidget(makeLabel("label_PanelSize", QT_TR_NOOP("Panel Size")), 0, 0);
    placeLengths(grid, PanelWidth, 2, 1, 0);
    // A new panel size keeps the instances where they are ("Keep S&R :") or moves them with the
    // panel's centre, and keeps the margins ("Keep Margin :") or clears them.
    keep_sr_ = makeCheck("checkBox_KeepSR");
    keep_margin_ = makeCheck("checkBox_KeepMargin");
    grid->addWidget(makeLabel("label_KeepSR", QT_TR_NOOP("Keep S&R :")), 3, 0);
    grid->addWidget(keep_sr_, 3, 1);
    grid->addWidget(makeLabel("label_KeepMargin", QT_TR_NOOP("Keep Margin :")), 4, 0);
    grid->addWidget(keep_margin_, 4, 1);
    grid->addWidget(button(command("pushButton_PanelSize")), 5, 1);
    grid->addWidget(makeLabel("label_Margins", QT_TR_NOOP("Margins")), 0, 3);
    placeLengths(grid, MarginLeft, 4, 1, 3);
    grid->addWidget(button(command("pushButton_Margins")), 5, 4);
    return box;
}

QGridLayout* Widget_SR_Edit::commandGrid(Place place, int columns) {
    auto* grid = new QGridLayout;
    int k = 0;
    for (const Command& c : commands()) {
        if (c.place == place) {
            grid->addWidget(button(c), k / columns, k % columns);
            ++k;
        }
    }
    return grid;
}

void Widget_SR_Edit::placeLengths(QGridLayout* grid, int first, int count, int row, int column) {
    for (int k = 0; k < count; ++k) {
        grid->addWidget(lengths_->label(first + k), row + k, column);
        grid->addWidget(lengths_->edit(first + k), row + k, column + 1);
        grid->addWidget(lengths_->unitLabel(first + k), row + k, column + 2);
    }
}

QGroupBox* Widget_SR_Edit::makeGroup(const char* name, const char* title) {
    auto* box = new QGroupBox(this);
    box->setObjectName(QStringLiteral("groupBox_") + QLatin1String(name));
    if (title != nullptr) {
        wc::setSourceText(this, box, title);
    }
    return box;
}

QLabel* Widget_SR_Edit::makeLabel(const char* name, const char* text) {
    auto* label = new QLabel(this);
    label->setObjectName(QString::fromLatin1(name));
    if (*text != '\0') {
        wc::setSourceText(this, label, text);
    }
    return label;
}

QLineEdit* Widget_SR_Edit::makeInteger(const char* name, const char* text) {
    auto* field = new QLineEdit(QString::fromLatin1(text), this);
    field->setObjectName(QString::fromLatin1(name));
    field->setValidator(new QRegExpValidator(QRegExp(QStringLiteral("-?[0-9]{0,6}")), field));
    field->setMaximumWidth(kFieldWidth);
    return field;
}

QCheckBox* Widget_SR_Edit::makeCheck(const char* name, const char* text) {
    auto* box = new QCheckBox(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setChecked(true);
    if (text != nullptr) {
        wc::setSourceText(this, box, text);
    }
    return box;
}

QPushButton* Widget_SR_Edit::button(const Command& c) const {
    return buttons_.at(static_cast<size_t>(&c - commands().data()));
}

const wc::sredit::Command& Widget_SR_Edit::command(const char* name) {
    for (const Command& c : commands()) {
        if (std::strcmp(c.name, name) == 0) {
            return c;
        }
    }
    throw std::logic_error(std::string("no step-and-repeat command ") + name);
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

// ---- refresh, units, language ----------------------------------------------------------------

void Widget_SR_Edit::All_Refresh() {
    WC_GUARDED({
        rows_.clear();
        Korvo::API::get_step_repeat(job_, step_, rows_);
        showSelectedCount();
        // The one selected row is shown in the entry fields, ready for Modify Entry.
        const int entry = wc::panel::selectedEntry(rows_);
        if (entry >= 0) {
            const Korvo::API::step_repeat_op& r = rows_[entry];
            showEngineValue(EntryX, r.x);
            showEngineValue(EntryY, r.y);
            showEngineValue(EntryDX, r.dx);
            showEngineValue(EntryDY, r.dy);
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
            showEngineValue(PanelWidth, box.xmax - box.xmin);
            showEngineValue(PanelHeight, box.ymax - box.ymin);
        }
        std::map<std::string, std::string> attributes;
        Korvo::API::get_step_attributes(job_, step_, attributes);
        for (int k = 0; k < 4; ++k) {
            auto it = attributes.find(wc::sredit::kMarginAttributes[k]);
            if (it != attributes.end()) {
                showEngineValue(MarginLeft + k, std::atof(it->second.c_str()));
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
    WC_GUARDED({
        wc::retranslate(this);
        lengths_->changeLanguage();
    });
}

void Widget_SR_Edit::change_unit() {
    WC_GUARDED({ lengths_->changeUnit(); });
}

// ---- dispatch ---------------------------------------------------------------------------------

void Widget_SR_Edit::dispatch(const char* name) {
    WC_GUARDED({ dispatch(command(name)); });
}

void Widget_SR_Edit::dispatch(const Command& c) {
    WC_GUARDED({
        align_pending_ = false;
        if (!start(c)) {
            return;
        }
        PanelFrame frame;
        if (c.gap != wc::sredit::Gap::None) {
            if (!Korvo::API::has_profile(job_, step_)) {
                LOG(ERROR) << "step " << step_ << " has no profile to work in";
                refuse(Refusal::UnknownStep);
                return;
            }
            frame = panelFrame(c.gap == wc::sredit::Gap::Horizontal);
        }
        c.run(*this, frame);
        // An align waits for its reference pick with its button pressed.
        if (align_pending_) {
            button(c)->setChecked(true);
        }
    });
}

bool Widget_SR_Edit::start(const Command& c) {
    if (c.start == Start::None) {
        return true;
    }
    uncheckAll();
    setStatus(c.status);
    if (c.start == Start::Status) {
        return true;
    }
    if (!Korvo::API::get_step_repeat(job_, step_, rows_)) {
        LOG(ERROR) << "get_step_repeat failed on " << job_ << "/" << step_;
        return false;
    }
    if (c.start == Start::Read || wc::panel::selectedCount(rows_) > 0) {
        return true;
    }
    const QString question = c.start == Start::AskAll
                                 ? tr("Operation will be performed on all steps.Continue?")
                                 : wc::translateFor(this, stepsQuestion(c.words));
    const auto answer = QMessageBox::information(this, tr("Information"), question,
                                                 QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes) {
        setPickMode(Pick::Single);
        return false;
    }
    rows_ = wc::panel::withAllSelected(rows_);
    return true;
}

void Widget_SR_Edit::apply(const Outcome& outcome) {
    if (!outcome.ok()) {
        refuse(outcome.refusal);
        return;
    }
    finish(outcome.rows);
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

void Widget_SR_Edit::inform(const QString& text) {
    LOG(INFO) << "S&R edit: " << text.toStdString();
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

void Widget_SR_Edit::setPickMode(Pick mode) {
    static const char* const kPickButtons[3] = {
        "pushButton_SingleSelect", "pushButton_RectangleSelect", "pushButton_PolygonSelect"};
    pick_ = mode;
    uncheckAll();
    const Command& c = command(kPickButtons[static_cast<int>(mode)]);
    button(c)->setChecked(true);
    setStatus(c.status);
}

void Widget_SR_Edit::uncheckAll() {
    for (QPushButton* b : buttons_) {
        b->setChecked(false);
    }
}

void Widget_SR_Edit::setStatus(const char* status) {
    operation_ = QString::fromLatin1(status);
    wc::setSourceText(this, status_, status);
}

void Widget_SR_Edit::showSelectedCount() {
    wc::setSourceText(this, selected_, QT_TR_NOOP("Selected Steps : %1"),
                      {QString::number(wc::panel::selectedCount(rows_))});
}

void Widget_SR_Edit::showEngineValue(int length, double engine) const {
    const double shown = Korvo::UIAPI::getUnitJudgeDouble(handle_, engine / kNanometresPerMil);
    lengths_->edit(length)->setText(QString::number(shown, 'g', 10));
}
