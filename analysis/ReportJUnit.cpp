// The report as JUnit XML, as CI servers read test results: one test case per check item and
// layer, failed by each of its open hits (one <failure> per hit), passed when it has none; the
// checks not run are skipped cases. Waived hits and the earlier run's fixed hits are listed in
// the case's output, so that nothing of the report is lost. No time is measured per check: every
// time is 0.

#include "Report.h"
#include "ReportOutput.h"

namespace wc {

namespace {

// The spans and fixed hits of each row.
struct RowHits {
    std::vector<const ReportSpan*> spans;
    std::vector<const ReportFixedHit*> fixed;
};

std::vector<RowHits> hitsByRow(const ReportModel& report) {
    std::vector<RowHits> rows(report.rows.size());
    for (const ReportSpan& span : report.spans) {
        rows[span.row].spans.push_back(&span);
    }
    for (const ReportFixedHit& fixed : report.fixed) {
        rows[fixed.row].fixed.push_back(&fixed);
    }
    return rows;
}

bool isOpen(const ReportHit& hit) {
    return hit.state == ReportState::New || hit.state == ReportState::Unchanged;
}

void attribute(std::string& out, const char* name, std::string_view value) {
    out += ' ';
    out += name;
    out += "=\"";
    appendXmlText(out, value);
    out += '"';
}

void counts(std::string& out, std::size_t tests, std::size_t failures, std::size_t skipped) {
    out += " tests=\"";
    appendCount(out, tests);
    out += "\" failures=\"";
    appendCount(out, failures);
    out += "\" errors=\"0\" skipped=\"";
    appendCount(out, skipped);
    out += "\" time=\"0\"";
}

void property(std::string& out, const std::string& name, const std::string& value) {
    out += "      <property";
    attribute(out, "name", name);
    attribute(out, "value", value);
    out += "/>\n";
}

void properties(std::string& out, const ReportModel& report) {
    const ReportInput& in = report.input;
    out += "    <properties>\n";
    property(out, "kind", utf8(in.kind));
    property(out, "job", utf8(in.job));
    property(out, "step", utf8(in.step));
    property(out, "unit", report.unitName());
    std::string levels;
    for (int level = 0; level < kSeverityCount; ++level) {
        if (in.levels[level]) {
            levels += levels.empty() ? "" : ", ";
            levels += levelName(level);
        }
    }
    property(out, "levels", levels);
    if (report.compared()) {
        property(out, "earlier run", utf8(in.earlier_label));
    }
    for (const ReportParameter& parameter : in.parameters) {
        property(out, "parameter: " + utf8(parameter.name), utf8(parameter.value));
    }
    out += "    </properties>\n";
}

void failure(std::string& out, const ReportModel& report, const ReportHit& hit) {
    out += "      <failure";
    attribute(out, "type", levelName(hit.level));
    attribute(out, "message", hitMessage(report, hit));
    out += ">Severity: ";
    appendXmlText(out, levelSymbol(hit.level));
    out += "&#10;State: ";
    out += stateName(hit.state);
    out += "&#10;Identity: ";
    out += hit.identity->text();
    out += "</failure>\n";
}

// "waived (reason): message" or "fixed: message", one line each.
void otherLine(std::string& out, const ReportModel& report, const ReportHit& hit) {
    out += stateName(hit.state);
    if (hit.waiver != nullptr) {
        out += " (";
        appendXmlText(out, hit.waiver->reason);
        out += ')';
    }
    out += ": ";
    appendXmlText(out, hitMessage(report, hit));
    out += '\n';
}

void testCase(ReportSink& sink, const ReportModel& report, const ReportRow& row,
              const RowHits& hits) {
    std::string& out = sink.out;
    out += "    <testcase";
    attribute(out, "name", row.item);
    attribute(out, "classname", utf8(report.input.kind) + '.' + row.layer);
    out += " time=\"0\">\n";
    std::string other;
    for (const ReportSpan* span : hits.spans) {
        for (std::size_t i = 0; i < span->hits.size() && !sink.failed(); ++i) {
            const ReportHit hit = report.hit(*span, i);
            if (isOpen(hit)) {
                failure(out, report, hit);
            } else {
                otherLine(other, report, hit);
            }
            sink.spill();
        }
    }
    for (const ReportFixedHit* fixed : hits.fixed) {
        otherLine(other, report, report.fixedHit(*fixed));
    }
    if (!other.empty()) {
        out += "      <system-out>";
        out += other;
        out += "</system-out>\n";
    }
    out += "    </testcase>\n";
}

}  // namespace

bool writeJUnit(const ReportModel& report, QIODevice& device, QString* error) {
    const ReportInput& in = report.input;
    std::size_t failed = 0;
    for (const ReportRow& row : report.rows) {
        failed += row.counts.state(ReportState::New) + row.counts.state(ReportState::Unchanged) > 0;
    }
    const std::size_t tests = report.rows.size() + in.not_run.size();
    ReportSink sink(device);
    std::string& out = sink.out;
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites";
    attribute(out, "name", utf8(in.caption));
    counts(out, tests, failed, in.not_run.size());
    out += ">\n  <testsuite";
    attribute(out, "name", utf8(in.caption));
    counts(out, tests, failed, in.not_run.size());
    if (in.time.isValid()) {
        attribute(out, "timestamp",
                  utf8(in.time.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"))));
    }
    out += ">\n";
    properties(out, report);
    const std::vector<RowHits> hits = hitsByRow(report);
    for (std::size_t i = 0; i < report.rows.size() && !sink.failed(); ++i) {
        testCase(sink, report, report.rows[i], hits[i]);
    }
    for (const ReportSkippedCheck& check : in.not_run) {
        out += "    <testcase";
        attribute(out, "name", utf8(check.name));
        attribute(out, "classname", utf8(in.kind));
        out += " time=\"0\">\n      <skipped";
        attribute(out, "message", utf8(check.reason));
        out += "/>\n    </testcase>\n";
    }
    out += "  </testsuite>\n</testsuites>\n";
    return sink.finish(error);
}

}  // namespace wc
