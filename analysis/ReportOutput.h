#pragma once
// What the report writers share: a buffer that goes to the device in large pieces, numbers in
// the report's unit, and texts escaped for JSON, XML and CSV. Texts of a result come from files
// and may hold bytes that are not UTF-8; they are written with U+FFFD in their place, so every
// report is valid UTF-8 whatever the result holds.

#include <QString>
#include <string>
#include <string_view>
#include <vector>

#include "Report.h"
#include "frame/WidgetCommonExport.h"

class QIODevice;

namespace wc {

// A report under way: writers append to `out`, and call `spill()` now and then (after each
// hit), which writes the text to the device once it is large. The first refused write is kept
// and ends the writing.
class WIDGET_COMMON_EXPORT ReportSink {
public:
    explicit ReportSink(QIODevice& device);
    std::string out;

    void spill();
    // Writes what is left; false with the device's reason in `error`.
    bool finish(QString* error);
    bool failed() const { return failed_; }

private:
    void write();
    QIODevice& device_;
    bool failed_ = false;
};

// `value` rounded to `decimals` places, in the fewest digits that say it, never in exponent
// form and never "-0". Not finite: "".
WIDGET_COMMON_EXPORT void appendNumber(std::string& out, double value, int decimals);
// A length in engine units written in the report's unit at its resolution.
WIDGET_COMMON_EXPORT void appendLength(std::string& out, const ReportModel& report, double engine);
WIDGET_COMMON_EXPORT void appendCount(std::string& out, std::size_t value);

// A JSON string, quotes included.
WIDGET_COMMON_EXPORT void appendJsonString(std::string& out, std::string_view utf8);
// A JSON array of strings, and `"name": ` before a member's value.
WIDGET_COMMON_EXPORT void appendJsonStrings(std::string& out,
                                            const std::vector<std::string>& texts);
WIDGET_COMMON_EXPORT void appendJsonKey(std::string& out, std::string_view name);
// `"name": "value"`, and `, "name": <length in the report's unit>` (null when not `known`).
WIDGET_COMMON_EXPORT void appendJsonText(std::string& out, std::string_view name,
                                         std::string_view value);
WIDGET_COMMON_EXPORT void appendJsonLength(std::string& out, std::string_view name,
                                           const ReportModel& report, double engine,
                                           bool known = true);
// Text for an XML element or attribute value (quotes not included). Characters XML 1.0 cannot
// hold become U+FFFD; tab and line breaks are written as references, so that attribute values
// keep them.
WIDGET_COMMON_EXPORT void appendXmlText(std::string& out, std::string_view utf8);
// A CSV field (RFC 4180): quoted when it holds a comma, a quote, a line break or starts or ends
// with a blank, quotes doubled.
WIDGET_COMMON_EXPORT void appendCsvField(std::string& out, std::string_view utf8);

// Net names joined by "; ".
WIDGET_COMMON_EXPORT std::string joinedNets(const Korvo::API::check_info& hit);
// "Line Width on top: 3.2 mil, required 4 mil (difference -0.8 mil), at (1.5, -2) mil, nets GND;
// VCC": the one-line account of a hit that JUnit failures and SARIF results give.
WIDGET_COMMON_EXPORT std::string hitMessage(const ReportModel& report, const ReportHit& hit);
// "(1.5, -2) mil"
WIDGET_COMMON_EXPORT std::string locationText(const ReportModel& report, const ReportHit& hit);

inline std::string utf8(const QString& text) {
    return text.toStdString();
}

}  // namespace wc
