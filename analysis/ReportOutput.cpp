#include "ReportOutput.h"

#include <QCoreApplication>
#include <QIODevice>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace wc {

namespace {

// The device is written in pieces of about this size.
constexpr std::size_t kSpillSize = std::size_t(1) << 20;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// The length of the well-formed UTF-8 sequence at `p` (0 when there is none): no overlong
// forms, no surrogates, nothing above U+10FFFF.
std::size_t sequenceLength(const unsigned char* p, std::size_t left) {
    const unsigned char c = p[0];
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) {
        length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
        length = 3;
        low = c == 0xE0 ? 0xA0 : 0x80;
        high = c == 0xED ? 0x9F : 0xBF;
    } else if (c >= 0xF0 && c <= 0xF4) {
        length = 4;
        low = c == 0xF0 ? 0x90 : 0x80;
        high = c == 0xF4 ? 0x8F : 0xBF;
    }
    if (length == 0 || length > left || p[1] < low || p[1] > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (p[i] < 0x80 || p[i] > 0xBF) {
            return 0;
        }
    }
    return length;
}

// Appends `text`, each ASCII character for which `special` holds passed through `escape`
// (which appends it as the format needs), and every byte that starts no well-formed sequence as
// U+FFFD. Runs of plain characters are appended whole.
template <typename Special, typename Escape>
void appendEscaped(std::string& out, std::string_view text, Special special, Escape escape) {
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size;) {
        std::size_t plain = i;
        while (plain < size && p[plain] < 0x80 && !special(char(p[plain]))) {
            ++plain;
        }
        out.append(text.data() + i, plain - i);
        i = plain;
        if (i == size) {
            break;
        }
        if (p[i] < 0x80) {
            escape(out, char(p[i]));
            ++i;
            continue;
        }
        const std::size_t length = sequenceLength(p + i, size - i);
        out.append(length == 0 ? kReplacement : text.substr(i, length));
        i += length == 0 ? 1 : length;
    }
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20;
}

int decimalsOf(const ReportModel& report) {
    // A hundred-thousandth of a mil is a quarter of the engine's nanometre; a millionth of a
    // millimetre is one.
    return report.input.unit == ReportUnit::Mil ? 5 : 6;
}

}  // namespace

ReportSink::ReportSink(QIODevice& device) : device_(device) {
    out.reserve(kSpillSize + kSpillSize / 4);
}

void ReportSink::spill() {
    if (out.size() >= kSpillSize) {
        write();
    }
}

void ReportSink::write() {
    if (!failed_ && !out.empty()) {
        failed_ = device_.write(out.data(), qint64(out.size())) != qint64(out.size());
    }
    out.clear();
}

bool ReportSink::finish(QString* error) {
    write();
    if (failed_ && error != nullptr) {
        *error = device_.errorString();
        if (error->isEmpty()) {
            *error = QCoreApplication::translate("Reports", "the device refused the data");
        }
    }
    return !failed_;
}

void appendNumber(std::string& out, double value, int decimals) {
    static constexpr std::int64_t kScales[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};
    decimals = std::clamp(decimals, 0, 7);
    const std::int64_t scale = kScales[decimals];
    const double scaled = std::round(value * double(scale));
    if (!std::isfinite(scaled)) {
        return;
    }
    if (std::abs(scaled) >= 9.0e18) {  // beyond 64-bit integers: no fraction to write
        char text[400];
        out.append(text,
                   std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr);
        return;
    }
    // Whole and fraction as integers: faster than formatting the double, and never "-0".
    std::int64_t n = std::int64_t(scaled);
    if (n < 0) {
        out += '-';
        n = -n;
    }
    appendCount(out, std::size_t(n / scale));
    std::int64_t fraction = n % scale;
    if (fraction != 0) {
        char digits[8];
        for (int d = decimals - 1; d >= 0; --d, fraction /= 10) {
            digits[d] = char('0' + fraction % 10);
        }
        int count = decimals;
        while (digits[count - 1] == '0') {
            --count;
        }
        out += '.';
        out.append(digits, std::size_t(count));
    }
}

void appendLength(std::string& out, const ReportModel& report, double engine) {
    appendNumber(out, report.inUnit(engine), decimalsOf(report));
}

void appendCount(std::string& out, std::size_t value) {
    char text[24];
    const auto result = std::to_chars(text, text + sizeof text, value);
    out.append(text, result.ptr);
}

void appendJsonString(std::string& out, std::string_view utf8) {
    out += '"';
    const auto special = [](char c) { return c == '"' || c == '\\' || isControl(c); };
    appendEscaped(out, utf8, special, [](std::string& to, char c) {
        switch (c) {
            case '"':
                to += "\\\"";
                return;
            case '\\':
                to += "\\\\";
                return;
            case '\n':
                to += "\\n";
                return;
            case '\r':
                to += "\\r";
                return;
            case '\t':
                to += "\\t";
                return;
            default:
                break;
        }
        static const char hex[] = "0123456789abcdef";
        to += "\\u00";
        to += hex[(c >> 4) & 0xF];
        to += hex[c & 0xF];
    });
    out += '"';
}

void appendJsonStrings(std::string& out, const std::vector<std::string>& texts) {
    out += '[';
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0) {
            out += ", ";
        }
        appendJsonString(out, texts[i]);
    }
    out += ']';
}

void appendJsonKey(std::string& out, std::string_view name) {
    appendJsonString(out, name);
    out += ": ";
}

void appendJsonText(std::string& out, std::string_view name, std::string_view value) {
    appendJsonKey(out, name);
    appendJsonString(out, value);
}

void appendJsonLength(std::string& out, std::string_view name, const ReportModel& report,
                      double engine, bool known) {
    out += ", ";
    appendJsonKey(out, name);
    if (known && std::isfinite(engine)) {
        appendLength(out, report, engine);
    } else {
        out += "null";
    }
}

void appendXmlText(std::string& out, std::string_view utf8) {
    const auto special = [](char c) {
        return c == '&' || c == '<' || c == '>' || c == '"' || isControl(c);
    };
    appendEscaped(out, utf8, special, [](std::string& to, char c) {
        switch (c) {
            case '&':
                to += "&amp;";
                return;
            case '<':
                to += "&lt;";
                return;
            case '>':
                to += "&gt;";
                return;
            case '"':
                to += "&quot;";
                return;
            case '\t':
                to += "&#9;";
                return;
            case '\n':
                to += "&#10;";
                return;
            case '\r':
                to += "&#13;";
                return;
            default:
                break;
        }
        to.append(kReplacement);  // XML 1.0 holds no other control character
    });
}

void appendCsvField(std::string& out, std::string_view utf8) {
    bool quoted = !utf8.empty() && (utf8.front() == ' ' || utf8.back() == ' ');
    for (std::size_t i = 0; i < utf8.size() && !quoted; ++i) {
        quoted = utf8[i] == ',' || utf8[i] == '"' || utf8[i] == '\r' || utf8[i] == '\n';
    }
    if (quoted) {
        out += '"';
    }
    appendEscaped(
        out, utf8, [](char c) { return c == '"'; }, [](std::string& to, char) { to += "\"\""; });
    if (quoted) {
        out += '"';
    }
}

std::string joinedNets(const Korvo::API::check_info& hit) {
    std::string out;
    for (const std::string& net : hit.nets) {
        if (!out.empty()) {
            out += "; ";
        }
        out += net;
    }
    return out;
}

std::string locationText(const ReportModel& report, const ReportHit& hit) {
    std::string out = "(";
    appendLength(out, report, hit.at.x);
    out += ", ";
    appendLength(out, report, hit.at.y);
    out += ") ";
    out += report.unitName();
    return out;
}

std::string hitMessage(const ReportModel& report, const ReportHit& hit) {
    const auto length = [&report](std::string& out, double engine) {
        appendLength(out, report, engine);
        out += ' ';
        out += report.unitName();
    };
    std::string out = hit.row->item + " on " + hit.row->layer + ": ";
    length(out, hit.hit->value);
    if (hit.hasRequired()) {
        out += ", required ";
        length(out, hit.hit->required);
        out += " (difference ";
        length(out, hit.hit->value - hit.hit->required);
        out += ')';
    }
    out += ", at ";
    out += locationText(report, hit);
    if (!hit.hit->nets.empty()) {
        out += hit.hit->nets.size() == 1 ? ", net " : ", nets ";
        out += joinedNets(*hit.hit);
    }
    return out;
}

}  // namespace wc
