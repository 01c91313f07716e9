#pragma once
// What the solder mask optimisation decides without a window: the two rounds of checks before a
// run (display values against their limits, then engine values), the range tables as the
// record's maps, and the summary of a result.

#include <QPair>
#include <QString>
#include <QVector>
#include <cstdint>
#include <map>
#include <vector>

#include "Korvo_DFM_types.h"

namespace wc {

// A field of the first round: its text and its upper limit in mil (the lower limit is 0).
struct LimitedText {
    QString text;
    double upper_mil = 0.0;
};

// The message of the first field that is empty, negative or above its limit in the display
// unit; empty when every field passes.
QString solderMaskDisplayProblem(const std::vector<LimitedText>& fields, const void* handle);

// The texts of the fields whose engine values are checked, as the user typed them.
struct EngineCheckedTexts {
    QString flow_add;
    QString flow_del;
    QString partial_clearance;
    QString gas_no_drill;
    QString gas_has_drill;
    QString partial_gas;
};

// Largest engine value of the checks in engine units (8 mil).
constexpr int32_t kSolderMaskEngineLimit = 203200;

// The message of the first engine value out of range, in the order add, del, partial clearance,
// gas without drill, gas with drill, partial and gas; empty when all pass.
QString solderMaskEngineProblem(const Korvo::API::solder_mask_DFM_params& params,
                                const EngineCheckedTexts& texts, const void* handle);

// A range table as typed: (range, value) per row.
using RangeRows = QVector<QPair<QString, QString>>;

// Rows whose two cells hold numbers, both in engine units; a later row with the same range
// replaces an earlier one.
std::map<int32_t, int32_t> rangeTableMap(const RangeRows& rows, const void* handle);

// Hits of a result by severity; every hit is a change the engine made or reports.
struct OptSummary {
    int red = 0;
    int yellow = 0;
    int green = 0;
    int other = 0;
    int total() const { return red + yellow + green + other; }
};
OptSummary summariseSolderMaskOpt(const Korvo::API::solder_mask_DFM_result_map& result);

}  // namespace wc
