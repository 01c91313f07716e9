// The report as SARIF 2.1.0, as code-scanning services read it: one run of the tool
// "widget_common_check" with one rule per check item, one result per hit, the layer as the
// artifact of each result. SARIF places results in text; a board has none, so each region is
// the layer as a whole (line 1) and carries the board coordinates in its property bag
// (docs/reports.md).

#include <QUrl>
#include <map>

#include "Report.h"
#include "ReportOutput.h"

namespace wc {

namespace {

const char* const kTool = "widget_common_check";
const char* const kLayersBase = "LAYERS";

// Rules by item and artifacts by layer, numbered in the order the rows name them, with the rule
// id and artifact address of each row worked out once.
struct Tables {
    explicit Tables(const ReportModel& report) {
        std::map<std::string, int> rule_index;
        std::map<std::string, int> layer_index;
        for (const ReportRow& row : report.rows) {
            const auto rule = rule_index.try_emplace(row.item, int(rules.size()));
            if (rule.second) {
                rules.push_back({row.item, ruleId(report, row.item)});
            }
            const auto layer = layer_index.try_emplace(row.layer, int(layers.size()));
            if (layer.second) {
                const QByteArray uri = QUrl::toPercentEncoding(QString::fromStdString(row.layer));
                layers.push_back({row.layer, uri.toStdString()});
            }
            rule_of_row.push_back(rule.first->second);
            layer_of_row.push_back(layer.first->second);
        }
    }
    static std::string ruleId(const ReportModel& report, const std::string& item) {
        return report.input.kind.isEmpty() ? item : utf8(report.input.kind) + '/' + item;
    }
    struct Named {
        std::string name;
        std::string id;  // the rule's id, the layer's address
    };
    std::vector<Named> rules;
    std::vector<Named> layers;
    std::vector<int> rule_of_row;
    std::vector<int> layer_of_row;
};

void message(std::string& out, std::string_view value) {
    out += "\"message\": {";
    appendJsonText(out, "text", value);
    out += '}';
}

const char* sarifLevel(int level) {
    static const char* const levels[] = {"error", "warning", "note", "none"};
    return levels[level];
}

const char* baselineState(const ReportHit& hit) {
    if (hit.state == ReportState::Fixed) {
        return "absent";
    }
    if (!hit.baseline) {
        return nullptr;
    }
    return *hit.baseline == RunState::Unchanged ? "unchanged" : "new";
}

void location(std::string& out, const ReportModel& report, const ReportHit& hit,
              const Tables& tables, int artifact) {
    out += "\"locations\": [{\"physicalLocation\": {\"artifactLocation\": {";
    appendJsonText(out, "uri", tables.layers[artifact].id);
    out += ", ";
    appendJsonText(out, "uriBaseId", kLayersBase);
    out += ", \"index\": ";
    appendCount(out, std::size_t(artifact));
    out += "}, \"region\": {\"startLine\": 1, ";
    message(out, locationText(report, hit));
    out += ", \"properties\": {";
    appendJsonText(out, "unit", report.unitName());
    appendJsonLength(out, "x", report, hit.at.x);
    appendJsonLength(out, "y", report, hit.at.y);
    out += "}}}}]";
}

void properties(std::string& out, const ReportModel& report, const ReportHit& hit) {
    out += "\"properties\": {";
    appendJsonText(out, "layer", hit.row->layer);
    out += ", ";
    appendJsonText(out, "item", hit.row->item);
    out += ", \"nets\": ";
    appendJsonStrings(out, hit.hit->nets);
    out += ", ";
    appendJsonText(out, "unit", report.unitName());
    appendJsonLength(out, "value", report, hit.hit->value);
    appendJsonLength(out, "required", report, hit.hit->required, hit.hasRequired());
    appendJsonLength(out, "difference", report, hit.hit->value - hit.hit->required,
                     hit.hasRequired());
    out += ", ";
    appendJsonText(out, "severity", levelSymbol(hit.level));
    out += ", ";
    appendJsonText(out, "state", stateName(hit.state));
    out += '}';
}

void result(std::string& out, const ReportModel& report, const Tables& tables,
            const ReportHit& hit) {
    const std::size_t row = std::size_t(hit.row - report.rows.data());
    out += "        {";
    const int rule = tables.rule_of_row[row];
    appendJsonText(out, "ruleId", tables.rules[rule].id);
    out += ", \"ruleIndex\": ";
    appendCount(out, std::size_t(rule));
    out += ", ";
    appendJsonText(out, "level", sarifLevel(hit.level));
    if (hit.level == SevAll) {
        out += ", \"kind\": \"informational\"";  // the fourth list: no fault
    }
    out += ", ";
    message(out, hitMessage(report, hit));
    out += ", ";
    location(out, report, hit, tables, tables.layer_of_row[row]);
    out += ", \"partialFingerprints\": {";
    appendJsonText(out, "hitIdentity/v1", hit.identity->text());
    out += '}';
    if (const char* state = baselineState(hit)) {
        out += ", ";
        appendJsonText(out, "baselineState", state);
    }
    if (hit.waiver != nullptr) {
        out += ", \"suppressions\": [{\"kind\": \"external\", \"status\": \"accepted\", ";
        appendJsonText(out, "justification", hit.waiver->reason);
        out += ", \"properties\": {";
        appendJsonText(out, "user", hit.waiver->user);
        out += ", ";
        appendJsonText(out, "time", hit.waiver->time);
        out += "}}]";
    }
    out += ", ";
    properties(out, report, hit);
    out += '}';
}

void driver(std::string& out, const Tables& tables) {
    out += "      \"tool\": {\"driver\": {";
    appendJsonText(out, "name", kTool);
    out += ", \"rules\": [";
    const auto& rules = tables.rules;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        out += i == 0 ? "\n          {" : ",\n          {";
        appendJsonText(out, "id", rules[i].id);
        out += ", \"shortDescription\": {";
        appendJsonText(out, "text", rules[i].name);
        out += "}}";
    }
    out += rules.empty() ? "]}},\n" : "\n        ]}},\n";
}

void invocation(std::string& out, const ReportModel& report) {
    const ReportInput& in = report.input;
    out += "      \"invocations\": [{\"executionSuccessful\": true";
    if (in.time.isValid()) {
        out += ", ";
        appendJsonText(out, "startTimeUtc", utf8(in.time.toUTC().toString(Qt::ISODate)));
    }
    out += ", \"toolExecutionNotifications\": [";
    for (std::size_t i = 0; i < in.not_run.size(); ++i) {
        out += i == 0 ? "\n          {" : ",\n          {";
        appendJsonText(out, "level", "note");
        out += ", ";
        message(out, utf8(in.not_run[i].name) + " was not run: " + utf8(in.not_run[i].reason));
        out += ", \"descriptor\": {";
        appendJsonText(out, "id", utf8(in.not_run[i].name));
        out += "}}";
    }
    out += in.not_run.empty() ? "]}],\n" : "\n        ]}],\n";
}

void artifacts(std::string& out, const ReportModel& report, const Tables& tables) {
    out += "      \"originalUriBaseIds\": {\"LAYERS\": {\"description\": {";
    appendJsonText(
        out, "text",
        "The layers of job " + utf8(report.input.job) + ", step " + utf8(report.input.step));
    out += "}}},\n      \"artifacts\": [";
    const auto& layers = tables.layers;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        out += i == 0 ? "\n        {\"location\": {" : ",\n        {\"location\": {";
        appendJsonText(out, "uri", layers[i].id);
        out += ", ";
        appendJsonText(out, "uriBaseId", kLayersBase);
        out += "}, \"description\": {";
        appendJsonText(out, "text", "Layer " + layers[i].name);
        out += "}}";
    }
    out += layers.empty() ? "],\n" : "\n      ],\n";
}

void runProperties(std::string& out, const ReportModel& report) {
    const ReportInput& in = report.input;
    out += "      \"properties\": {";
    appendJsonText(out, "analysis", utf8(in.kind));
    out += ", ";
    appendJsonText(out, "caption", utf8(in.caption));
    out += ", ";
    appendJsonText(out, "job", utf8(in.job));
    out += ", ";
    appendJsonText(out, "step", utf8(in.step));
    out += ", ";
    appendJsonText(out, "unit", report.unitName());
    if (report.compared()) {
        out += ", ";
        appendJsonText(out, "earlierRun", utf8(in.earlier_label));
    }
    out += ", \"levels\": [";
    bool first = true;
    for (int level = 0; level < kSeverityCount; ++level) {
        if (in.levels[level]) {
            out += first ? "" : ", ";
            first = false;
            appendJsonString(out, levelName(level));
        }
    }
    out += "], \"parameters\": [";
    for (std::size_t i = 0; i < in.parameters.size(); ++i) {
        out += i == 0 ? "{" : ", {";
        appendJsonText(out, "name", utf8(in.parameters[i].name));
        out += ", ";
        appendJsonText(out, "value", utf8(in.parameters[i].value));
        out += '}';
    }
    out += "]}\n";
}

}  // namespace

bool writeSarif(const ReportModel& report, QIODevice& device, QString* error) {
    const Tables tables(report);
    ReportSink sink(device);
    std::string& out = sink.out;
    out +=
        "{\n  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
        "  \"version\": \"2.1.0\",\n  \"runs\": [\n    {\n";
    driver(out, tables);
    invocation(out, report);
    artifacts(out, report, tables);
    out += "      \"columnKind\": \"unicodeCodePoints\",\n      \"results\": [";
    bool first = true;
    const auto next = [&]() {
        out += first ? "\n" : ",\n";
        first = false;
    };
    for (const ReportSpan& span : report.spans) {
        for (std::size_t i = 0; i < span.hits.size() && !sink.failed(); ++i) {
            next();
            result(out, report, tables, report.hit(span, i));
            sink.spill();
        }
    }
    for (std::size_t i = 0; i < report.fixed.size() && !sink.failed(); ++i) {
        next();
        result(out, report, tables, report.fixedHit(report.fixed[i]));
        sink.spill();
    }
    out += first ? "],\n" : "\n      ],\n";
    runProperties(out, report);
    out += "    }\n  ]\n}\n";
    return sink.finish(error);
}

}  // namespace wc
