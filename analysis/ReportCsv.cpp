// The report as CSV (RFC 4180): a header row, then one row per hit of the run and one per fixed
// hit of the earlier run, lines ended by CR LF. Lengths are written in the report's unit, which
// the headers name.

#include <array>

#include "Report.h"
#include "ReportOutput.h"

namespace wc {

namespace {

void row(std::string& out, const ReportModel& report, const ReportHit& hit) {
    appendCsvField(out, hit.row->layer);
    out += ',';
    appendCsvField(out, hit.row->item);
    out += ',';
    appendCsvField(out, joinedNets(*hit.hit));
    const double required = hit.hit->required;
    const std::array<double, 5> lengths{hit.hit->value, required, hit.hit->value - required,
                                        hit.at.x, hit.at.y};
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        out += ',';
        // Required and difference are empty for an item without a single required value.
        if (hit.hasRequired() || (i != 1 && i != 2)) {
            appendLength(out, report, lengths[i]);
        }
    }
    out += ',';
    appendCsvField(out, levelSymbol(hit.level));
    out += ',';
    out += levelName(hit.level);
    out += ',';
    out += stateName(hit.state);
    out += ',';
    if (hit.baseline) {
        out += *hit.baseline == RunState::Unchanged ? "unchanged" : "new";
    }
    out += ',';
    appendCsvField(out, hit.identity->text());
    out += ',';
    if (hit.waiver != nullptr) {
        appendCsvField(out, hit.waiver->reason);
    }
    out += "\r\n";
}

}  // namespace

bool writeCsv(const ReportModel& report, QIODevice& device, QString* error) {
    ReportSink sink(device);
    std::string& out = sink.out;
    const std::string unit = std::string(" (") + report.unitName() + ')';
    out += "Layer,Item,Nets";
    for (const char* length : {"Value", "Required", "Difference", "X", "Y"}) {
        out += ',';
        out += length + unit;
    }
    out += ",Severity,Level,State,Baseline,Identity,Waiver reason\r\n";
    for (const ReportSpan& span : report.spans) {
        for (std::size_t i = 0; i < span.hits.size() && !sink.failed(); ++i) {
            row(out, report, report.hit(span, i));
            sink.spill();
        }
    }
    for (std::size_t i = 0; i < report.fixed.size() && !sink.failed(); ++i) {
        row(out, report, report.fixedHit(report.fixed[i]));
        sink.spill();
    }
    return sink.finish(error);
}

}  // namespace wc
