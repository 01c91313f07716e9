#include "SolderMaskOptForm.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ZeLineEdit.h"
#include "dfm/RangeTableBox.h"
#include "frame/DialogTexts.h"

namespace wc {
namespace {

using Params = SolderMaskOptForm::Params;

// Fields the run checks in engine units are not limited when typed.
constexpr double kNoLimit = 1000000.0;

enum Row {
    BridgeSize,
    ClearanceMin,
    ClearanceOpt,
    CoverageMin,
    CoverageOpt,
    MaxOversizeClearance,
    IntersectWidth,
    CutSurplusCoverage,
    CutSurplusClearance,
    SmdSurplusCoverage,
    SmdSurplusClearance,
    BgaSurplusCoverage,
    BgaSurplusClearance,
    FlowAdd,
    FlowDel,
    GasNoDrill,
    GasHasDrill,
    PartialGasResize,
    PartialClearance,
    PadInSurfaceClearance,
};

// Defaults and limits in mil; the upper limit is the one the run checks before it starts.
const std::vector<FieldRow<Params>>& fieldRows() {
    static const std::vector<FieldRow<Params>> rows = {
        {"Bridge Size :", "bridge_size", "BridgeSize", 4.0, 0.0, 20.0, "4", &Params::bridge_size},
        {"Clearance Min :", "clearance_min", "ClearanceMin", 3.0, 0.0, 100.0, "3",
         &Params::clearance_min},
        {"Clearance Opt", "clearance_opt", "ClearanceOpt", 5.0, 0.0, 200.0, "5",
         &Params::clearance_opt},
        {"Coverage Min:", "coverage_min", "CoverageMin", 3.0, 0.0, 20.0, "3",
         &Params::coverage_min},
        {"Coverage Opt", "coverage_opt", "CoverageOpt", 5.0, 0.0, 270.0, "5",
         &Params::coverage_opt},
        {"Max Oversize Clearance :", "max_oversize_clearance", "MaxOversizeClearance", 6.0, 0.0,
         kNoLimit, "6", &Params::max_oversize_clearance},
        {"Intersect Width :", "intersect_width", "IntersectWidth", 8.0, 0.0, kNoLimit, "8",
         &Params::intersect_width},
        {"Cut Surplus Coverage :", "cut_surplus_coverage", "CutSurplusCoverage", 0.5, 0.0, kNoLimit,
         "0.5", &Params::cut_surplus_coverage},
        {"Cut Surplus Clearance :", "cut_surplus_clearance", "CutSurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::cut_surplus_clearance},
        {"SMD Surplus Coverage  :", "smd_surplus_coverage", "SMDSurplusCoverage", 0.5, 0.0,
         kNoLimit, "0.5", &Params::smd_surplus_coverage},
        {"SMD Surplus Clearance :", "smd_surplus_clearance", "SMDSurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::smd_surplus_clearance},
        {"BGA Surplus Coverage  :", "bga_surplus_coverage", "BGASurplusCoverage", 0.5, 0.0,
         kNoLimit, "0.5", &Params::bga_surplus_coverage},
        {"BGA Surplus Clearance :", "bga_surplus_clearance", "BGASurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::bga_surplus_clearance},
        {"Prevent Vertical Flow Add :", "prevent_vertical_flow_add", "PreventVerticalFlowAdd", 0.0,
         -kNoLimit, kNoLimit, "0", &Params::prevent_vertical_flow_add},
        {"Prevent Vertical Flow Del :", "prevent_vertical_flow_del", "PreventVerticalFlowDel", 0.0,
         0.0, kNoLimit, "0", &Params::prevent_vertical_flow_delete},
        {"Gas Resize(No Drill) :", "gas_resize_no_drill", "GasResizeNoDrill", 0.0, 0.0, kNoLimit,
         "0", &Params::gas_resize_without_drill},
        {"Gas Resize(Has Drill) :", "gas_resize_has_drill", "GasResizeHasDrill", 0.0, 0.0, kNoLimit,
         "0", &Params::gas_resize_with_drill},
        {"Partial&Gas Resize :", "partial_gas_resize", "PartialGasResize", 0.0, 0.0, kNoLimit, "0",
         &Params::partial_and_gas_resize},
        {"Partial Clearance :", "partial_clearance", "PartialClearance", 0.0, 0.0, kNoLimit, "0",
         &Params::partial_clearance},
        {"Pad in Surface Clearance:", "pad_in_surface_clearance", "PadInSurfaceClearance", 5.0, 0.0,
         270.0, "5", &Params::pad_in_surface_clearance},
    };
    return rows;
}

// The first round of checks, in the order the run makes them.
const Row kDisplayChecked[] = {BridgeSize,   ClearanceMin, CoverageMin,
                               ClearanceOpt, CoverageOpt,  PadInSurfaceClearance};

enum Choice { UseExistingMask, IsRound, ApplyTo, FanShave, Pth, DoResize, UseShaves };

struct ChoiceSpec {
    const char* label;
    const char* key;
    const char* first;
    const char* second;
};

const char* const kYes = QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes");
const char* const kNo = QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No");

// Every choice starts on its first answer.
const ChoiceSpec kChoices[] = {
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Use Existing Mask"), "UseExistingMask", kYes, kNo},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Is Round"), "IsRound", kYes, kNo},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Apply to"), "ApplyTo",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "All"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Selected")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Fan Shave:"), "FanShave", kYes, kNo},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "PTH:"), "PTH", kYes, kNo},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Do Resize"), "DoResize", kYes, kNo},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Use Shaves"), "UseShaves", kYes, kNo},
};

// Label, edit and unit of each of `rows` on lines of their own from the grid's top.
void placeRows(const FieldTableWidgets& fields, QGridLayout* grid,
               std::initializer_list<int> rows) {
    int line = 0;
    for (int row : rows) {
        grid->addWidget(fields.label(row), line, 0);
        grid->addWidget(fields.edit(row), line, 1);
        grid->addWidget(fields.unitLabel(row), line, 2);
        ++line;
    }
}

}  // namespace

void SolderMaskOptForm::setupUi(QWidget* dialog, const void* handle) {
    fields = std::make_unique<FieldTable<Params>>(dialog, handle, fieldRows());
    setSourceToolTip(dialog, fields->edit(ClearanceOpt),
                     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Clearance Opt"));
    setSourceToolTip(dialog, fields->edit(CoverageOpt),
                     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Coverage Opt"));

    pages = new QTabWidget(dialog);
    pages->setObjectName(QStringLiteral("tabWidget_Pages"));
    pages->addTab(makeMainPage(dialog), QString());
    pages->addTab(makeAdvancedPage(dialog), QString());
    setSourceItems(dialog, pages,
                   {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Main"),
                    QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Advanced")});
}

QWidget* SolderMaskOptForm::makeMainPage(QWidget* dialog) {
    auto* page = new QWidget(dialog);
    page->setObjectName(QStringLiteral("page_Main"));
    auto* grid = new QGridLayout;
    auto* opt_header = new QLabel(page);
    opt_header->setObjectName(QStringLiteral("label_OptHeader"));
    setSourceText(dialog, opt_header, QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Opt :"));
    grid->addWidget(opt_header, 0, 3);
    int line = 1;
    auto place = [&](int row, int column) {
        grid->addWidget(fields->label(row), line, column);
        grid->addWidget(fields->edit(row), line, column + 1);
        grid->addWidget(fields->unitLabel(row), line, column + 2);
    };
    auto single = [&](int row) {
        place(row, 0);
        ++line;
    };
    // The optimum sits in the second column under "Opt :"; its own label names it only in the
    // tool tip.
    auto pair = [&](int min_row, int opt_row) {
        place(min_row, 0);
        grid->addWidget(fields->edit(opt_row), line, 3);
        grid->addWidget(fields->unitLabel(opt_row), line, 4);
        fields->label(opt_row)->setParent(page);
        fields->label(opt_row)->hide();
        ++line;
    };
    single(BridgeSize);
    pair(ClearanceMin, ClearanceOpt);
    pair(CoverageMin, CoverageOpt);
    for (int row : {MaxOversizeClearance, IntersectWidth, CutSurplusCoverage, CutSurplusClearance,
                    PadInSurfaceClearance}) {
        single(row);
    }

    QGridLayout* choice_grid = makeChoiceRows(dialog, page);
    grid->setColumnStretch(5, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(grid);
    layout->addLayout(choice_grid);
    layout->addStretch();
    return page;
}

// One row per choice: its label and a radio button for each answer, in a button group.
QGridLayout* SolderMaskOptForm::makeChoiceRows(QWidget* dialog, QWidget* page) {
    auto* choice_grid = new QGridLayout;
    int position = 0;
    for (const ChoiceSpec& spec : kChoices) {
        const QString key = QString::fromLatin1(spec.key);
        auto* label = new QLabel(page);
        label->setObjectName(QStringLiteral("label_") + key);
        setSourceText(dialog, label, spec.label);
        auto* group = new QButtonGroup(dialog);
        group->setObjectName(QStringLiteral("buttonGroup_") + key);
        auto* first = new QRadioButton(page);
        first->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.first));
        auto* second = new QRadioButton(page);
        second->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.second));
        setSourceText(dialog, first, spec.first);
        setSourceText(dialog, second, spec.second);
        group->addButton(first, 0);
        group->addButton(second, 1);
        first->setChecked(true);
        choice_grid->addWidget(label, position, 0);
        choice_grid->addWidget(first, position, 1);
        choice_grid->addWidget(second, position, 2);
        choices.append(group);
        ++position;
    }
    choice_grid->setColumnStretch(3, 1);
    return choice_grid;
}

QWidget* SolderMaskOptForm::makeAdvancedPage(QWidget* dialog) {
    auto* page = new QWidget(dialog);
    page->setObjectName(QStringLiteral("page_Advanced"));
    advance = new QCheckBox(page);
    advance->setObjectName(QStringLiteral("checkBox_Advance"));
    setSourceText(dialog, advance, QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Advance"));
    advanced_group = new QGroupBox(page);
    advanced_group->setObjectName(QStringLiteral("groupBox_AdvancedSurplus"));
    setSourceText(dialog, advanced_group,
                  QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Advanced Surplus"));
    auto* surplus = new QGridLayout(advanced_group);
    placeRows(*fields, surplus,
              {SmdSurplusCoverage, SmdSurplusClearance, BgaSurplusCoverage, BgaSurplusClearance});
    advanced_group->setEnabled(false);

    auto* grid = new QGridLayout;
    placeRows(*fields, grid,
              {FlowAdd, FlowDel, GasNoDrill, GasHasDrill, PartialGasResize, PartialClearance});

    smd = new RangeTableBox(dialog, QStringLiteral("SMDCompensateRange"), QStringLiteral("SMD"),
                            QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "SMD Compensate Range"));
    gas = new RangeTableBox(dialog, QStringLiteral("GasRange"), QStringLiteral("Gas"),
                            QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Gas Range"));
    auto* tables = new QHBoxLayout;
    tables->addWidget(smd->box());
    tables->addWidget(gas->box());

    surplus->setColumnStretch(3, 1);
    grid->setColumnStretch(3, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(advance);
    layout->addWidget(advanced_group);
    layout->addLayout(grid);
    layout->addLayout(tables);
    return page;
}

QList<QObject*> SolderMaskOptForm::changeSources() const {
    QList<QObject*> widgets = fields->editObjects();
    for (QButtonGroup* group : choices) {
        widgets.append(group);
    }
    widgets.append(advance);
    return widgets;
}

QList<QObject*> SolderMaskOptForm::parameterWidgets() const {
    return changeSources() << smd->table() << gas->table();
}

bool SolderMaskOptForm::appliesToAll() const {
    return choices[ApplyTo]->checkedId() == 0;
}

void SolderMaskOptForm::fill(Params& params, const void* handle) const {
    fields->fill(params);
    auto yes = [this](Choice choice) { return choices[choice]->checkedId() == 0; };
    params.advanced_surplus = advance->isChecked();
    params.is_round = yes(IsRound);
    params.apply_to_all = yes(ApplyTo);
    params.use_existing_mask = yes(UseExistingMask);
    params.use_shaves = yes(UseShaves);
    params.do_resize = yes(DoResize);
    params.fan_shave = yes(FanShave);
    params.pth = yes(Pth);
    params.smd_compensate_ranges = rangeTableMap(smd->rows(), handle);
    params.gas_ranges = rangeTableMap(gas->rows(), handle);
}

std::vector<LimitedText> SolderMaskOptForm::displayChecked() const {
    std::vector<LimitedText> checked;
    for (Row row : kDisplayChecked) {
        checked.push_back({fields->edit(row)->text(), fields->spec(row).upper_mil});
    }
    return checked;
}

EngineCheckedTexts SolderMaskOptForm::engineChecked() const {
    EngineCheckedTexts texts;
    texts.flow_add = fields->edit(FlowAdd)->text();
    texts.flow_del = fields->edit(FlowDel)->text();
    texts.partial_clearance = fields->edit(PartialClearance)->text();
    texts.gas_no_drill = fields->edit(GasNoDrill)->text();
    texts.gas_has_drill = fields->edit(GasHasDrill)->text();
    texts.partial_gas = fields->edit(PartialGasResize)->text();
    return texts;
}

}  // namespace wc
