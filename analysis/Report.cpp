#include "Report.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <map>
#include <utility>

#include <glog/logging.h>

namespace wc {

namespace api = Korvo::API;

namespace {

constexpr double kNanometresPerMil = 25400.0;
constexpr double kNanometresPerMillimetre = 1.0e6;

QString translated(const char* text) {
    return QCoreApplication::translate("Reports", text);
}

void setError(QString* error, const QString& text) {
    LOG(ERROR) << text.toStdString();
    if (error != nullptr) {
        *error = text;
    }
}

const char* const kNoResult = QT_TRANSLATE_NOOP(
    "Reports", "The report has no result, or the result's hits are not numbered.");
const char* const kNotApplied =
    QT_TRANSLATE_NOOP("Reports", "The waivers of the report were not applied to its result.");
const char* const kNotCompared =
    QT_TRANSLATE_NOOP("Reports", "The earlier run of the report was not compared with its result.");

const char* const kCannotWrite =
    QT_TRANSLATE_NOOP("Reports", "The report %1 cannot be written: %2.");
const char* const kIsFolder = QT_TRANSLATE_NOOP("Reports", "it is a folder");
const char* const kNoFolder = QT_TRANSLATE_NOOP("Reports", "the folder %1 does not exist");
const char* const kExists =
    QT_TRANSLATE_NOOP("Reports", "The report %1 already exists and was left as it is.");

// Empty when the pieces of `input` belong together, else why they do not.
QString inputProblem(const ReportInput& in) {
    if (in.model == nullptr || in.run == nullptr || in.run->size() != in.model->total()) {
        return translated(kNoResult);
    }
    if (in.waivers != nullptr || in.waiver_match != nullptr) {
        const WaiverMatch* match = in.waiver_match;
        const std::size_t count = in.waivers ? in.waivers->size() : 0;
        const auto outside = [count](std::size_t index) { return index >= count; };
        if (!in.waivers || !match || match->waiver.size() != in.run->size() ||
            std::any_of(match->waiver.begin(), match->waiver.end(),
                        [count](std::int32_t index) { return index >= std::int32_t(count); }) ||
            std::any_of(match->stale.begin(), match->stale.end(), outside)) {
            return translated(kNotApplied);
        }
    }
    if (in.earlier_model || in.earlier || in.comparison) {
        if (!in.earlier_model || !in.earlier || !in.comparison ||
            in.comparison->state.size() != in.run->size() ||
            in.earlier->size() != in.earlier_model->total() ||
            std::any_of(in.comparison->fixed.begin(), in.comparison->fixed.end(),
                        [&in](std::size_t number) { return number >= in.earlier->size(); })) {
            return translated(kNotCompared);
        }
    }
    return {};
}

// Rows by layer and item name: item numbers of results keyed by text are positions in a table
// of names, which differ between runs.
class RowIndex {
public:
    explicit RowIndex(std::vector<ReportRow>& rows) : rows_(rows) {}
    int rowOf(const std::string& layer, const std::string& item) {
        const auto [at, added] = index_.try_emplace({layer, item}, int(rows_.size()));
        if (added) {
            rows_.push_back({layer, item, {}});
        }
        return at->second;
    }

private:
    std::vector<ReportRow>& rows_;
    std::map<std::pair<std::string, std::string>, int> index_;
};

const std::string* itemName(const ResultsModel* model, int layer, int item) {
    if (model == nullptr || layer < 0 || layer >= int(model->layers().size())) {
        return nullptr;
    }
    for (const ResultCategory& category : model->layers()[layer].categories) {
        if (category.item == item) {
            return &category.name;
        }
    }
    return nullptr;
}

void addSpans(ReportModel& report, RowIndex& rows) {
    const ReportInput& in = report.input;
    for (const ResultLayer& layer : in.model->layers()) {
        for (const ResultCategory& category : layer.categories) {
            const int row = rows.rowOf(layer.name, category.name);
            for (const ResultRecord& record : category.records) {
                for (int level = 0; level < kSeverityCount; ++level) {
                    if (in.levels[level] && record.lists[level].size() > 0) {
                        report.spans.push_back(
                            {record.lists[level], row, level, record.first[level]});
                    }
                }
            }
        }
    }
}

void addFixed(ReportModel& report, RowIndex& rows) {
    const ReportInput& in = report.input;
    if (in.comparison == nullptr) {
        return;
    }
    for (std::size_t number : in.comparison->fixed) {
        const TriageHit& hit = (*in.earlier)[number];
        if (!in.levels[hit.level]) {
            continue;
        }
        const std::string* item = itemName(in.earlier_model, hit.layer, hit.item);
        const int row =
            rows.rowOf(in.earlier->layerName(hit), item ? *item : std::to_string(hit.item));
        report.fixed.push_back({number, row});
        ++report.rows[row].counts.n[hit.level][int(ReportState::Fixed)];
    }
}

void countHits(ReportModel& report) {
    const ReportInput& in = report.input;
    if (in.waivers != nullptr) {
        report.waiver_hits.assign(in.waivers->size(), 0);
    }
    for (const ReportSpan& span : report.spans) {
        auto& counts = report.rows[span.row].counts.n[span.level];
        for (std::size_t number = span.first; number < span.first + span.hits.size(); ++number) {
            if (in.waiver_match != nullptr && in.waiver_match->isWaived(number)) {
                ++report.waiver_hits[in.waiver_match->waiver[number]];
                ++counts[int(ReportState::Waived)];
            } else if (in.comparison != nullptr &&
                       in.comparison->state[number] == RunState::Unchanged) {
                ++counts[int(ReportState::Unchanged)];
            } else {
                ++counts[int(ReportState::New)];
            }
        }
    }
}

}  // namespace

std::size_t ReportCounts::level(int level) const {
    std::size_t sum = 0;
    for (std::size_t count : n[level]) {
        sum += count;
    }
    return sum;
}

std::size_t ReportCounts::state(ReportState state) const {
    std::size_t sum = 0;
    for (const auto& level : n) {
        sum += level[int(state)];
    }
    return sum;
}

std::size_t ReportCounts::hits() const {
    return state(ReportState::New) + state(ReportState::Unchanged) + state(ReportState::Waived);
}

void ReportCounts::add(const ReportCounts& other) {
    for (int level = 0; level < kSeverityCount; ++level) {
        for (int state = 0; state < kReportStateCount; ++state) {
            n[level][state] += other.n[level][state];
        }
    }
}

ReportHit ReportModel::hit(const ReportSpan& span, std::size_t offset) const {
    const std::size_t number = span.first + offset;
    ReportHit out;
    out.hit = &span.hits[offset];
    out.row = &rows[span.row];
    out.level = span.level;
    out.identity = &(*input.run)[number].identity;
    out.at = hitLocation(out.hit->shape);
    if (input.comparison != nullptr) {
        out.baseline = input.comparison->state[number];
        out.state =
            *out.baseline == RunState::Unchanged ? ReportState::Unchanged : ReportState::New;
    }
    if (input.waiver_match != nullptr && input.waiver_match->isWaived(number)) {
        out.state = ReportState::Waived;
        out.waiver = &(*input.waivers)[input.waiver_match->waiver[number]];
    }
    return out;
}

ReportHit ReportModel::fixedHit(const ReportFixedHit& fixed) const {
    const TriageHit& earlier = (*input.earlier)[fixed.number];
    ReportHit out;
    out.hit = earlier.hit;
    out.row = &rows[fixed.row];
    out.level = earlier.level;
    out.state = ReportState::Fixed;
    out.identity = &earlier.identity;
    out.at = hitLocation(out.hit->shape);
    return out;
}

double ReportModel::inUnit(double engine) const {
    return engine / (input.unit == ReportUnit::Mil ? kNanometresPerMil : kNanometresPerMillimetre);
}

const char* ReportModel::unitName() const {
    return input.unit == ReportUnit::Mil ? "mil" : "mm";
}

std::string ReportModel::waiverItem(const api::analysis_waiver& waiver) const {
    for (const ResultsModel* model : {input.model, input.earlier_model}) {
        for (int layer = 0; model != nullptr && layer < int(model->layers().size()); ++layer) {
            if (const std::string* name = itemName(model, layer, waiver.item)) {
                return *name;
            }
        }
    }
    return std::to_string(waiver.item);
}

const char* levelName(int level) {
    static const char* const names[] = {"red", "yellow", "green", "other"};
    return level >= 0 && level < kSeverityCount ? names[level] : "";
}

const char* levelSymbol(int level) {
    static const char* const symbols[] = {"!!", "!", "  ", ""};
    return level >= 0 && level < kSeverityCount ? symbols[level] : "";
}

const char* stateName(ReportState state) {
    static const char* const names[] = {"new", "unchanged", "waived", "fixed"};
    return names[int(state)];
}

bool buildReport(ReportInput input, ReportModel& report, QString* error) {
    if (const QString problem = inputProblem(input); !problem.isEmpty()) {
        setError(error, problem);
        return false;
    }
    ReportModel built;
    built.input = std::move(input);
    built.input.caption = built.input.caption.trimmed();
    RowIndex rows(built.rows);
    addSpans(built, rows);
    addFixed(built, rows);
    countHits(built);
    for (const ReportRow& row : built.rows) {
        built.total.add(row.counts);
    }
    report = std::move(built);
    return true;
}

std::optional<ReportFormat> reportFormat(const QString& name) {
    for (ReportFormat format :
         {ReportFormat::Json, ReportFormat::Csv, ReportFormat::JUnit, ReportFormat::Sarif}) {
        if (name.compare(reportFormatName(format), Qt::CaseInsensitive) == 0) {
            return format;
        }
    }
    return std::nullopt;
}

QString reportFormatName(ReportFormat format) {
    switch (format) {
        case ReportFormat::Json:
            return QStringLiteral("json");
        case ReportFormat::Csv:
            return QStringLiteral("csv");
        case ReportFormat::JUnit:
            return QStringLiteral("junit");
        case ReportFormat::Sarif:
            break;
    }
    return QStringLiteral("sarif");
}

bool writeReport(const ReportModel& report, ReportFormat format, QIODevice& device,
                 QString* error) {
    switch (format) {
        case ReportFormat::Json:
            return writeJson(report, device, error);
        case ReportFormat::Csv:
            return writeCsv(report, device, error);
        case ReportFormat::JUnit:
            return writeJUnit(report, device, error);
        case ReportFormat::Sarif:
            break;
    }
    return writeSarif(report, device, error);
}

bool saveReport(const ReportModel& report, ReportFormat format, const QString& path, bool force,
                QString* error) {
    const QFileInfo info(path);
    const QString cannot = translated(kCannotWrite);
    if (info.isDir()) {
        setError(error, cannot.arg(path, translated(kIsFolder)));
        return false;
    }
    if (info.exists() && !force) {
        setError(error, translated(kExists).arg(path));
        return false;
    }
    if (!info.absoluteDir().exists()) {
        const QString folder = QDir::toNativeSeparators(info.absolutePath());
        setError(error, cannot.arg(path, translated(kNoFolder).arg(folder)));
        return false;
    }
    QSaveFile file(path);
    QString why;
    // A full disk shows only when the buffer is flushed; commit() alone would put an empty file
    // in place of the old one.
    if (!file.open(QIODevice::WriteOnly) || !writeReport(report, format, file, &why) ||
        !file.flush() || !file.commit()) {
        setError(error, cannot.arg(path, why.isEmpty() ? file.errorString() : why));
        return false;
    }
    LOG(INFO) << "report written to " << path.toStdString();
    return true;
}

}  // namespace wc
