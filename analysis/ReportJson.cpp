// The report as JSON, the form docs/report-schema.json describes: what was run, the counts, then
// one hit per line, so that two reports compare line by line.

#include "Report.h"
#include "ReportOutput.h"

namespace wc {

namespace api = Korvo::API;

namespace {

constexpr int kVersion = 1;

void member(std::string& out, const char* name) {
    out += ",\n  ";
    appendJsonKey(out, name);
}

void counts(std::string& out, const ReportModel& report, const ReportCounts& counts) {
    out += "{\"hits\": ";
    appendCount(out, counts.hits());
    for (int level = 0; level < kSeverityCount; ++level) {
        if (!report.input.levels[level]) {
            continue;
        }
        out += ", ";
        appendJsonKey(out, levelName(level));
        for (int state = 0; state < kReportStateCount; ++state) {
            out += state == 0 ? "{" : ", ";
            appendJsonKey(out, stateName(ReportState(state)));
            appendCount(out, counts.n[level][state]);
        }
        out += '}';
    }
    out += '}';
}

void hit(std::string& out, const ReportModel& report, const ReportHit& hit) {
    out += "    {";
    appendJsonText(out, "layer", hit.row->layer);
    out += ", ";
    appendJsonText(out, "item", hit.row->item);
    out += ", ";
    appendJsonKey(out, "nets");
    appendJsonStrings(out, hit.hit->nets);
    appendJsonLength(out, "value", report, hit.hit->value);
    appendJsonLength(out, "required", report, hit.hit->required, hit.hasRequired());
    appendJsonLength(out, "difference", report, hit.hit->value - hit.hit->required,
                     hit.hasRequired());
    appendJsonLength(out, "x", report, hit.at.x);
    appendJsonLength(out, "y", report, hit.at.y);
    out += ", ";
    appendJsonText(out, "level", levelName(hit.level));
    out += ", ";
    appendJsonText(out, "severity", levelSymbol(hit.level));
    out += ", ";
    appendJsonText(out, "state", stateName(hit.state));
    if (hit.baseline) {
        out += ", ";
        appendJsonText(out, "baseline", *hit.baseline == RunState::Unchanged ? "unchanged" : "new");
    }
    out += ", ";
    appendJsonText(out, "identity", hit.identity->text());
    if (hit.waiver != nullptr) {
        out += ", \"waiver\": {";
        appendJsonText(out, "reason", hit.waiver->reason);
        out += ", ";
        appendJsonText(out, "user", hit.waiver->user);
        out += ", ";
        appendJsonText(out, "time", hit.waiver->time);
        out += '}';
    }
    out += '}';
}

void header(std::string& out, const ReportModel& report) {
    const ReportInput& in = report.input;
    out += "{\n  ";
    appendJsonText(out, "format", "analysis report");
    member(out, "version");
    appendCount(out, kVersion);
    member(out, "analysis");
    out += '{';
    appendJsonText(out, "kind", utf8(in.kind));
    out += ", ";
    appendJsonText(out, "caption", utf8(in.caption));
    out += '}';
    member(out, "job");
    appendJsonString(out, utf8(in.job));
    member(out, "step");
    appendJsonString(out, utf8(in.step));
    member(out, "time");
    if (in.time.isValid()) {
        // With its offset from UTC, so that the time says when it was wherever it is read.
        appendJsonString(
            out, utf8(in.time.toOffsetFromUtc(in.time.offsetFromUtc()).toString(Qt::ISODate)));
    } else {
        out += "null";
    }
    member(out, "unit");
    appendJsonString(out, report.unitName());
    member(out, "parameters");
    out += '[';
    for (std::size_t i = 0; i < in.parameters.size(); ++i) {
        out += i == 0 ? "\n    {" : ",\n    {";
        appendJsonText(out, "name", utf8(in.parameters[i].name));
        out += ", ";
        appendJsonText(out, "value", utf8(in.parameters[i].value));
        out += '}';
    }
    out += in.parameters.empty() ? "]" : "\n  ]";
    member(out, "levels");
    out += '[';
    for (int level = 0; level < kSeverityCount; ++level) {
        out += level == 0 ? "\n    {" : ",\n    {";
        appendJsonText(out, "level", levelName(level));
        out += ", ";
        appendJsonText(out, "symbol", levelSymbol(level));
        out += in.levels[level] ? ", \"reported\": true}" : ", \"reported\": false}";
    }
    out += "\n  ]";
    member(out, "checksNotRun");
    out += '[';
    for (std::size_t i = 0; i < in.not_run.size(); ++i) {
        out += i == 0 ? "\n    {" : ",\n    {";
        appendJsonText(out, "name", utf8(in.not_run[i].name));
        out += ", ";
        appendJsonText(out, "reason", utf8(in.not_run[i].reason));
        out += '}';
    }
    out += in.not_run.empty() ? "]" : "\n  ]";
}

void comparison(std::string& out, const ReportModel& report) {
    member(out, "comparison");
    if (!report.compared()) {
        out += "null";
        return;
    }
    out += '{';
    appendJsonText(out, "earlierRun", utf8(report.input.earlier_label));
    for (ReportState state : {ReportState::New, ReportState::Unchanged, ReportState::Fixed}) {
        out += ", ";
        appendJsonKey(out, stateName(state));
        appendCount(out, report.total.state(state));
    }
    out += '}';
}

void waivers(std::string& out, const ReportModel& report) {
    member(out, "waivers");
    if (!report.waived()) {
        out += "null";
        return;
    }
    const std::vector<api::analysis_waiver>& list = *report.input.waivers;
    std::vector<char> stale(list.size(), 0);
    for (std::size_t index : report.input.waiver_match->stale) {
        stale[index] = 1;
    }
    out += '[';
    for (std::size_t i = 0; i < list.size(); ++i) {
        const api::analysis_waiver& waiver = list[i];
        out += i == 0 ? "\n    {" : ",\n    {";
        appendJsonText(out, "scope", waiver.scope == api::waive_net_pair ? "net pair" : "hit");
        out += ", ";
        appendJsonText(out, "item", report.waiverItem(waiver));
        out += ", ";
        appendJsonText(out, "layer", waiver.layer);
        out += ", ";
        appendJsonKey(out, "nets");
        appendJsonStrings(out, waiver.nets);
        out += ", ";
        appendJsonText(out, "identity", waiver.identity);
        out += ", ";
        appendJsonText(out, "reason", waiver.reason);
        out += ", ";
        appendJsonText(out, "user", waiver.user);
        out += ", ";
        appendJsonText(out, "time", waiver.time);
        out += ", \"hits\": ";
        appendCount(out, report.waiver_hits[i]);
        out += stale[i] ? ", \"stale\": true}" : ", \"stale\": false}";
    }
    out += list.empty() ? "]" : "\n  ]";
}

void summary(std::string& out, const ReportModel& report) {
    member(out, "summary");
    out += "{\n    \"total\": ";
    counts(out, report, report.total);
    out += ",\n    \"rows\": [";
    for (std::size_t i = 0; i < report.rows.size(); ++i) {
        const ReportRow& row = report.rows[i];
        out += i == 0 ? "\n      {" : ",\n      {";
        appendJsonText(out, "layer", row.layer);
        out += ", ";
        appendJsonText(out, "item", row.item);
        out += ", \"counts\": ";
        counts(out, report, row.counts);
        out += '}';
    }
    out += report.rows.empty() ? "]\n  }" : "\n    ]\n  }";
}

}  // namespace

bool writeJson(const ReportModel& report, QIODevice& device, QString* error) {
    ReportSink sink(device);
    std::string& out = sink.out;
    header(out, report);
    comparison(out, report);
    waivers(out, report);
    summary(out, report);
    member(out, "hits");
    out += '[';
    bool first = true;
    for (const ReportSpan& span : report.spans) {
        for (std::size_t i = 0; i < span.hits.size() && !sink.failed(); ++i) {
            out += first ? "\n" : ",\n";
            first = false;
            hit(out, report, report.hit(span, i));
            sink.spill();
        }
    }
    out += first ? "]" : "\n  ]";
    member(out, "fixed");
    out += '[';
    for (std::size_t i = 0; i < report.fixed.size() && !sink.failed(); ++i) {
        out += i == 0 ? "\n" : ",\n";
        hit(out, report, report.fixedHit(report.fixed[i]));
        sink.spill();
    }
    out += report.fixed.empty() ? "]\n}\n" : "\n  ]\n}\n";
    return sink.finish(error);
}

}  // namespace wc
