#pragma once
// One result as a report: what was run (analysis, job, step, time, unit, parameters, the
// severity levels reported, the checks not run), every reported hit with its state (new,
// unchanged or waived), the hits of an earlier run that are gone (fixed), and counts per layer
// and check item. Every report format (JSON, CSV, JUnit XML, SARIF) is written from this one
// model, so they hold the same content.
//
// The model refers to the hits through the ResultsModel and TriageRun it is built from, which
// must outlive it (as must the waivers and the earlier run); it copies no hit. It keeps the
// reported hits as runs of the result's severity lists and makes a ReportHit on demand, so a
// report of 10^6 hits costs a few small vectors beside the result.

#include <QDateTime>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HitTriage.h"
#include "Korvo_Triage_types.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

class QIODevice;

namespace wc {

enum class ReportUnit { Mil, Millimetre };

// What a reported hit is in this run. Fixed hits are hits of the earlier run that have no
// partner in this one; they are listed apart from the hits of the run.
enum class ReportState : std::uint8_t { New = 0, Unchanged = 1, Waived = 2, Fixed = 3 };
constexpr int kReportStateCount = 4;

struct WIDGET_COMMON_EXPORT ReportParameter {
    QString name;
    QString value;
};

struct WIDGET_COMMON_EXPORT ReportSkippedCheck {
    QString name;
    QString reason;
};

// What a report is made of; the caller fills it. Pointers are borrowed and must outlive the
// report.
struct WIDGET_COMMON_EXPORT ReportInput {
    QString kind;     // the analysis, as waivers name it: "SignalLayer", ...
    QString caption;  // as the viewer names it: "Signal Layer Checks", ...
    QString job;
    QString step;
    QDateTime time;  // when the run was made
    ReportUnit unit = ReportUnit::Mil;
    std::vector<ReportParameter> parameters;  // in the order they are shown
    // The severity lists reported (red, yellow, green, other); hits of the others are left out
    // of the hits, the fixed hits and the counts.
    std::array<bool, kSeverityCount> levels{{true, true, true, true}};
    std::vector<ReportSkippedCheck> not_run;
    // The result and its run: both required.
    const ResultsModel* model = nullptr;
    const TriageRun* run = nullptr;
    // The waivers applied to `run`: both or neither.
    const std::vector<Korvo::API::analysis_waiver>* waivers = nullptr;
    const WaiverMatch* waiver_match = nullptr;
    // The earlier run compared with: all three or none.
    const ResultsModel* earlier_model = nullptr;
    const TriageRun* earlier = nullptr;
    const RunComparison* comparison = nullptr;
    QString earlier_label;  // how the earlier run is named, e.g. its time
};

// Counts per severity level and state.
struct WIDGET_COMMON_EXPORT ReportCounts {
    std::array<std::array<std::size_t, kReportStateCount>, kSeverityCount> n{};
    std::size_t level(int level) const;
    std::size_t state(ReportState state) const;
    // The hits of this run (new, unchanged and waived), every level.
    std::size_t hits() const;
    void add(const ReportCounts& other);
};

// One check item on one layer.
struct WIDGET_COMMON_EXPORT ReportRow {
    std::string layer;
    std::string item;
    ReportCounts counts;
};

// Reported hits of one severity list, numbered in the run from `first` on.
struct WIDGET_COMMON_EXPORT ReportSpan {
    HitList hits;
    int row = 0;
    int level = 0;
    std::size_t first = 0;
};

// A reported hit, made on demand. Lengths are engine units; ReportModel::inUnit converts.
struct WIDGET_COMMON_EXPORT ReportHit {
    const Korvo::API::check_info* hit = nullptr;
    const ReportRow* row = nullptr;  // its layer and item
    int level = 0;
    ReportState state = ReportState::New;
    // New or unchanged against the earlier run; nothing without an earlier run, and for
    // fixed hits.
    std::optional<RunState> baseline;
    const HitIdentity* identity = nullptr;
    const Korvo::API::analysis_waiver* waiver = nullptr;  // the waiver of a waived hit
    Korvo::API::point at;                                 // the middle of the measurement
    bool hasRequired() const { return hit->required != 0.0; }
};

struct WIDGET_COMMON_EXPORT ReportFixedHit {
    std::size_t number = 0;  // in the earlier run
    int row = 0;
};

struct WIDGET_COMMON_EXPORT ReportModel {
    ReportInput input;
    std::vector<ReportRow> rows;           // layer by layer in the result's order, then fixed-only
    std::vector<ReportSpan> spans;         // the reported hits, in the run's order
    std::vector<ReportFixedHit> fixed;     // in the earlier run's order
    std::vector<std::size_t> waiver_hits;  // per waiver: the reported hits it covers
    ReportCounts total;

    bool compared() const { return input.comparison != nullptr; }
    bool waived() const { return input.waivers != nullptr; }
    ReportHit hit(const ReportSpan& span, std::size_t offset) const;
    ReportHit fixedHit(const ReportFixedHit& fixed) const;
    // A length in the report's unit, and the unit's name ("mil" or "mm").
    double inUnit(double engine) const;
    const char* unitName() const;
    // The name of a waiver's item in the result (or the earlier run), else its number.
    std::string waiverItem(const Korvo::API::analysis_waiver& waiver) const;
};

// "red", "yellow", "green", "other"; the symbols "!!", "!", "  " and "" of the same levels;
// "new", "unchanged", "waived", "fixed".
WIDGET_COMMON_EXPORT const char* levelName(int level);
WIDGET_COMMON_EXPORT const char* levelSymbol(int level);
WIDGET_COMMON_EXPORT const char* stateName(ReportState state);

// Builds the report of `input`: false with the reason in `error` when the input does not hold
// together (no result, or a run, waiver match or comparison of another result).
WIDGET_COMMON_EXPORT bool buildReport(ReportInput input, ReportModel& report, QString* error);

enum class ReportFormat { Json, Csv, JUnit, Sarif };

// "json", "csv", "junit", "sarif" (any case); nothing for another name.
WIDGET_COMMON_EXPORT std::optional<ReportFormat> reportFormat(const QString& name);
WIDGET_COMMON_EXPORT QString reportFormatName(ReportFormat format);

// Each writer writes the whole report to `device`, open for writing; false with the reason in
// `error` when the device refuses a write.
WIDGET_COMMON_EXPORT bool writeJson(const ReportModel& report, QIODevice& device, QString* error);
WIDGET_COMMON_EXPORT bool writeCsv(const ReportModel& report, QIODevice& device, QString* error);
WIDGET_COMMON_EXPORT bool writeJUnit(const ReportModel& report, QIODevice& device, QString* error);
WIDGET_COMMON_EXPORT bool writeSarif(const ReportModel& report, QIODevice& device, QString* error);
WIDGET_COMMON_EXPORT bool writeReport(const ReportModel& report, ReportFormat format,
                                      QIODevice& device, QString* error);

// Writes the report to `path` through a temporary file that replaces it only when the whole
// report is written, so a failed write leaves nothing behind and an old file as it was. An
// existing file is refused unless `force`. False with the reason in `error`, naming the path.
WIDGET_COMMON_EXPORT bool saveReport(const ReportModel& report, ReportFormat format,
                                     const QString& path, bool force, QString* error);

}  // namespace wc
