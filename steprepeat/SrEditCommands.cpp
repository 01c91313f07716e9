// The command table of the step-and-repeat editor and the operations that take more than a line
// of it.

#include "SrEditCommands.h"
#include "Widget_SR_Edit.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "Korvo_API.h"
#include "QTpluginsManger4CAM.h"
#include "frame/EngineInt.h"
#include "frame/ExceptionGuard.h"
#include "frame/FieldTable.h"
#include "frame/PluginMessages.h"

using Korvo::API::reply_box;
using wc::panel::Outcome;
using wc::panel::PanelFrame;
using wc::panel::Refusal;
using wc::panel::Rows;
using wc::sredit::Command;
using wc::sredit::Lengths;

const char* const wc::sredit::kMarginAttributes[4] = {".panel_margin_left", ".panel_margin_right",
                                                      ".panel_margin_top", ".panel_margin_bottom"};

// Rows in layout order. The question words: "Align Steps" for align, pack and space, and
// "Reduce nesting" for align to grid too, as the system always asked: kept on purpose.
const std::vector<Command>& Widget_SR_Edit::commands() {
    using namespace wc::panel;
    using wc::sredit::Gap;
    using wc::sredit::Place;
    using wc::sredit::Start;
    using W = Widget_SR_Edit;
    using F = const PanelFrame&;
    static const std::vector<Command> table = {
        {"pushButton_SingleSelect", QT_TR_NOOP("Single Select"), QT_TR_NOOP("Single Select"),
         Start::None, nullptr, Gap::None, Place::Selection,
         [](W& d, F) { d.setPickMode(Pick::Single); }},
        {"pushButton_RectangleSelect", QT_TR_NOOP("Rectangle Select"),
         QT_TR_NOOP("Rectangle Select"), Start::None, nullptr, Gap::None, Place::Selection,
         [](W& d, F) { d.setPickMode(Pick::Rectangle); }},
        {"pushButton_PolygonSelect", QT_TR_NOOP("Polygon Select"), QT_TR_NOOP("Polygon Select"),
         Start::None, nullptr, Gap::None, Place::Selection,
         [](W& d, F) { d.setPickMode(Pick::Polygon); }},

        {"pushButton_Add", QT_TR_NOOP("Add step"), QT_TR_NOOP("Add step"), Start::Read, nullptr,
         Gap::None, Place::Edit, [](W& d, F) { d.apply(d.addedStep()); }},
        {"pushButton_Copy", QT_TR_NOOP("Copy Select Step"), QT_TR_NOOP("Copy Select Step"),
         Start::AskSteps, "copy steps", Gap::None, Place::Edit,
         [](W& d, F) {
             const Lengths l = d.lengths();
             d.apply(copyInstances(d.rows_, l.offset_x, l.offset_y, d.panelFrame(true)));
         }},
        {"pushButton_Move", QT_TR_NOOP("Move Select Step"), QT_TR_NOOP("Move Select Step"),
         Start::AskSteps, "move steps", Gap::None, Place::Edit,
         [](W& d, F) {
             const Lengths l = d.lengths();
             d.apply(moveInstances(d.rows_, l.offset_x, l.offset_y));
         }},
        {"pushButton_Delete", QT_TR_NOOP("Delete Select Step"), QT_TR_NOOP("Delete Select Step"),
         Start::AskSteps, "delete steps", Gap::None, Place::Edit,
         [](W& d, F) { d.apply(deleteInstances(d.rows_)); }},
        {"pushButton_Rotate", QT_TR_NOOP("Rotate Select Step"), QT_TR_NOOP("Rotate Select Step"),
         Start::AskSteps, "rotate steps", Gap::None, Place::Edit,
         [](W& d, F) { d.apply(d.rotated()); }},
        {"pushButton_Replace", QT_TR_NOOP("Replace Select Step"), QT_TR_NOOP("Replace Select Step"),
         Start::AskSteps, "replace steps", Gap::None, Place::Edit,
         [](W& d, F) { d.apply(d.replaced()); }},
        {"pushButton_MirrorHorizontal", QT_TR_NOOP("Mirror Select Step Horizontally"),
         QT_TR_NOOP("Mirror Select Step Horizontally"), Start::AskSteps, "horizontal mirror steps",
         Gap::None, Place::Edit, [](W& d, F) { d.apply(d.mirrored(MirrorKind::Horizontal)); }},
        {"pushButton_MirrorVertical", QT_TR_NOOP("Mirror Select Step Vertically"),
         QT_TR_NOOP("Mirror Select Step Vertically"), Start::AskSteps, "vertical mirror steps",
         Gap::None, Place::Edit, [](W& d, F) { d.apply(d.mirrored(MirrorKind::Vertical)); }},
        {"pushButton_MirrorFlip", QT_TR_NOOP("Mirror Select Step Flippedly"),
         QT_TR_NOOP("Mirror Select Step Flippedly"), Start::AskSteps, "flip mirror steps",
         Gap::None, Place::Edit, [](W& d, F) { d.apply(d.mirrored(MirrorKind::Flip)); }},
        {"pushButton_ModifyEntry", QT_TR_NOOP("Modify Entry"), QT_TR_NOOP("Modify Entry"),
         Start::Read, nullptr, Gap::None, Place::Edit,
         [](W& d, F) { d.apply(modifyEntry(d.rows_, d.entryFromFields())); }},
        {"pushButton_ReduceNesting", QT_TR_NOOP("Reduce S&&R nesting"),
         QT_TR_NOOP("Reduce S&R nesting"), Start::AskSteps, "Reduce nesting", Gap::None,
         Place::Edit, [](W& d, F) { d.apply(d.reduced(false)); }},
        {"pushButton_ReduceHighestLevel", QT_TR_NOOP("Reduce S&&R highest level only"),
         QT_TR_NOOP("Reduce S&R highest level only"), Start::AskSteps, "Reduce nesting", Gap::None,
         Place::Edit, [](W& d, F) { d.apply(d.reduced(true)); }},

        {"pushButton_AlignLeft", QT_TR_NOOP("Align Left"), QT_TR_NOOP("Align Left"),
         Start::AskSteps, "Align Steps", Gap::None, Place::Align,
         [](W& d, F) { d.awaitReference(AlignKind::Left); }},
        {"pushButton_AlignRight", QT_TR_NOOP("Align Right"), QT_TR_NOOP("Align Right"),
         Start::AskSteps, "Align Steps", Gap::None, Place::Align,
         [](W& d, F) { d.awaitReference(AlignKind::Right); }},
        {"pushButton_AlignTop", QT_TR_NOOP("Align Top"), QT_TR_NOOP("Align Top"), Start::AskSteps,
         "Align Steps", Gap::None, Place::Align, [](W& d, F) { d.awaitReference(AlignKind::Top); }},
        {"pushButton_AlignBottom", QT_TR_NOOP("Align Bottom"), QT_TR_NOOP("Align Bottom"),
         Start::AskSteps, "Align Steps", Gap::None, Place::Align,
         [](W& d, F) { d.awaitReference(AlignKind::Bottom); }},
        {"pushButton_CenterX", QT_TR_NOOP("Center on X Axis"), QT_TR_NOOP("Center on X Axis"),
         Start::AskSteps, "Align Steps", Gap::None, Place::Align,
         [](W& d, F) { d.awaitReference(AlignKind::CenterX); }},
        {"pushButton_CenterY", QT_TR_NOOP("Center on Y Axis"), QT_TR_NOOP("Center on Y Axis"),
         Start::AskSteps, "Align Steps", Gap::None, Place::Align,
         [](W& d, F) { d.awaitReference(AlignKind::CenterY); }},
        {"pushButton_PackLeft", QT_TR_NOOP("Pack Left"), QT_TR_NOOP("Pack Left"), Start::AskSteps,
         "Align Steps", Gap::Horizontal, Place::Align,
         [](W& d, F f) { d.apply(do_align(d.rows_, PackEdge::Left, f, d.outlineTest())); }},
        {"pushButton_PackRight", QT_TR_NOOP("Pack Right"), QT_TR_NOOP("Pack Right"),
         Start::AskSteps, "Align Steps", Gap::Horizontal, Place::Align,
         [](W& d, F f) { d.apply(do_align(d.rows_, PackEdge::Right, f, d.outlineTest())); }},
        {"pushButton_PackTop", QT_TR_NOOP("Pack Top"), QT_TR_NOOP("Pack Top"), Start::AskSteps,
         "Align Steps", Gap::Vertical, Place::Align,
         [](W& d, F f) { d.apply(do_align(d.rows_, PackEdge::Top, f, d.outlineTest())); }},
        {"pushButton_PackBottom", QT_TR_NOOP("Pack Bottom"), QT_TR_NOOP("Pack Bottom"),
         Start::AskSteps, "Align Steps", Gap::Vertical, Place::Align,
         [](W& d, F f) { d.apply(do_align(d.rows_, PackEdge::Bottom, f, d.outlineTest())); }},
        {"pushButton_PackLeftRight", QT_TR_NOOP("Pack left and right"),
         QT_TR_NOOP("Pack left and right"), Start::AskSteps, "Align Steps", Gap::Horizontal,
         Place::Align,
         [](W& d, F f) { d.apply(packBothWays(d.rows_, Axis::Horizontal, f, d.outlineTest())); }},
        {"pushButton_PackTopBottom", QT_TR_NOOP("Pack top and bottom"),
         QT_TR_NOOP("Pack top and bottom"), Start::AskSteps, "Align Steps", Gap::Vertical,
         Place::Align,
         [](W& d, F f) { d.apply(packBothWays(d.rows_, Axis::Vertical, f, d.outlineTest())); }},
        // "horisontally" is the system's own spelling: kept on purpose.
        {"pushButton_PackCenterH", QT_TR_NOOP("Pack to center horisontally"),
         QT_TR_NOOP("Pack to center horisontally"), Start::AskAll, nullptr, Gap::Horizontal,
         Place::Align,
         [](W& d, F f) { d.apply(packToCentre(d.rows_, Axis::Horizontal, f, d.outlineTest())); }},
        {"pushButton_PackCenterV", QT_TR_NOOP("Pack to center vertically"),
         QT_TR_NOOP("Pack to center vertically"), Start::AskAll, nullptr, Gap::Vertical,
         Place::Align,
         [](W& d, F f) { d.apply(packToCentre(d.rows_, Axis::Vertical, f, d.outlineTest())); }},
        {"pushButton_SpaceEvenlyH", QT_TR_NOOP("Space evenly horizontal"),
         QT_TR_NOOP("Space evenly horizontal"), Start::AskSteps, "Align Steps", Gap::Horizontal,
         Place::Align,
         [](W& d, F f) { d.apply(arrange_selected_steps(d.rows_, Axis::Horizontal, f)); }},
        {"pushButton_SpaceEvenlyV", QT_TR_NOOP("Space evenly vertical"),
         QT_TR_NOOP("Space evenly vertical"), Start::AskSteps, "Align Steps", Gap::Vertical,
         Place::Align,
         [](W& d, F f) { d.apply(arrange_selected_steps(d.rows_, Axis::Vertical, f)); }},
        {"pushButton_AlignToGrid", QT_TR_NOOP("Align to grid"), QT_TR_NOOP("Align to grid"),
         Start::AskSteps, "Reduce nesting", Gap::Horizontal, Place::Align,
         [](W& d, F f) { d.apply(alignToGrid(d.rows_, f)); }},

        {"pushButton_PanelSize", QT_TR_NOOP("Set Size"), QT_TR_NOOP("Panel Size"), Start::Read,
         nullptr, Gap::None, Place::Panel, [](W& d, F) { d.setPanelSize(); }},
        {"pushButton_Margins", QT_TR_NOOP("Set Margins"), QT_TR_NOOP("Margins"), Start::Status,
         nullptr, Gap::None, Place::Panel, [](W& d, F) { d.setMargins(); }},
        {"pushButton_Close", QT_TR_NOOP("Close"), nullptr, Start::None, nullptr, Gap::None,
         Place::Close, [](W& d, F) { d.close(); }},
    };
    return table;
}

// ---- edits --------------------------------------------------------------------------------------

Outcome Widget_SR_Edit::addedStep() {
    Korvo::API::step_repeat_op row = entryFromFields();
    row.step_name = steps_->currentText().toStdString();
    if (row.step_name.empty() || !legalNesting(row.step_name)) {
        return Outcome{Refusal::Nesting, rows_};
    }
    if (row.nx < 1 || row.ny < 1) {
        return Outcome{Refusal::BadEntry, rows_};
    }
    Rows rows = wc::panel::withNoneSelected(rows_);
    for (int k = 0; k < row.nx * row.ny; ++k) {
        row.selection.insert(k);
    }
    rows.push_back(row);
    return Outcome{Refusal::None, rows};
}

Outcome Widget_SR_Edit::rotated() {
    bool ok = false;
    const int angle = angle_->text().toInt(&ok, 10);
    if (!ok) {
        return Outcome{Refusal::AngleRange, rows_};
    }
    return wc::panel::rotateInstances(rows_, angle, anchor(), childBoxes());
}

Outcome Widget_SR_Edit::replaced() {
    const std::string child = steps_->currentText().toStdString();
    if (child.empty() || !legalNesting(child)) {
        return Outcome{Refusal::Nesting, rows_};
    }
    wc::panel::ChildBoxes boxes = childBoxes();
    reply_box box;
    if (Korvo::API::profile_box(job_, child, box)) {
        boxes[child] = box;
    }
    return wc::panel::replaceInstances(rows_, child, boxes);
}

Outcome Widget_SR_Edit::reduced(bool highest_only) {
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
}

Outcome Widget_SR_Edit::mirrored(wc::panel::MirrorKind kind) {
    return wc::panel::mirrorInstances(rows_, kind, anchor(), childBoxes());
}

// ---- align to a reference -----------------------------------------------------------------------

// Notes the selection and asks the view for the reference pick, which comes back through
// receive_SR_second_Select_point.
void Widget_SR_Edit::awaitReference(wc::panel::AlignKind kind) {
    align_pending_ = true;
    align_kind_ = kind;
    align_rows_ = rows_;
    PluginMetaData message;
    message.sender = wc::module::StepMenu;
    message.receiver = wc::module::GraphicView;
    message.code = wc::code::PickReferenceStep;
    message.values.insert(QStringLiteral("Operation"), operation_);
    QTpluginsManger4CAM::instance()->recMegToPlugin(const_cast<void*>(handle_), message);
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
        apply(wc::panel::alignToReference(
            align_rows_, wc::panel::instanceBox(boxes.at(ref.step_name), ref), align_kind_, boxes));
    });
}

// ---- panel size and margins ---------------------------------------------------------------------

// The profile becomes a rectangle of the typed size on its lower left corner, as one edit with
// the margins and the moved instances.
void Widget_SR_Edit::setPanelSize() {
    reply_box box;
    if (!Korvo::API::profile_box(job_, step_, box)) {
        LOG(ERROR) << "panel size: no profile on " << job_ << "/" << step_;
        return;
    }
    const Lengths values = lengths();
    const double width = values.panel_width;
    const double height = values.panel_height;
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
}

void Widget_SR_Edit::setMargins() {
    const Lengths v = lengths();
    if (!Korvo::API::set_panel_margin(job_, step_, v.margin_left, v.margin_right, v.margin_top,
                                      v.margin_bottom)) {
        LOG(ERROR) << "set_panel_margin refused on " << job_ << "/" << step_;
        inform(tr("Illegal field value"));
    }
    setPickMode(Pick::Single);
    All_Refresh();
}

// ---- refusals -----------------------------------------------------------------------------------

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

// ---- what the operations read -------------------------------------------------------------------

Lengths Widget_SR_Edit::lengths() const {
    Lengths values;
    lengths_->fill(values);
    return values;
}

PanelFrame Widget_SR_Edit::panelFrame(bool horizontal_gap) {
    PanelFrame f;
    readChildBoxes(f.child_boxes);
    Korvo::API::profile_box(job_, step_, f.panel);
    std::map<std::string, std::string> attributes;
    Korvo::API::get_step_attributes(job_, step_, attributes);
    int* margins[4] = {&f.margins.left, &f.margins.right, &f.margins.top, &f.margins.bottom};
    for (int k = 0; k < 4; ++k) {
        auto it = attributes.find(wc::sredit::kMarginAttributes[k]);
        *margins[k] = it == attributes.end() ? 0 : std::atoi(it->second.c_str());
    }
    if (keep_gap_->isChecked()) {
        const Lengths values = lengths();
        f.gap = horizontal_gap ? values.horizontal_gap : values.vertical_gap;
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

wc::panel::ChildBoxes Widget_SR_Edit::childBoxes() {
    wc::panel::ChildBoxes boxes;
    readChildBoxes(boxes);
    return boxes;
}

Korvo::API::step_repeat_op Widget_SR_Edit::entryFromFields() const {
    const Lengths values = lengths();
    Korvo::API::step_repeat_op r;
    r.x = values.entry_x;
    r.y = values.entry_y;
    r.dx = values.entry_dx;
    r.dy = values.entry_dy;
    r.nx = entry_nx_->text().toInt();
    r.ny = entry_ny_->text().toInt();
    r.angle = entry_angle_->text().toInt();
    r.mirror = mirror_->isChecked();
    return r;
}

wc::panel::Anchor Widget_SR_Edit::anchor() const {
    return static_cast<wc::panel::Anchor>(std::max(0, anchors_->checkedId()));
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
