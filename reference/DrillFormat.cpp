#include "DrillFormat.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <regex>
#include <sstream>

namespace wcref {

using Korvo::API::point;

namespace {

constexpr double kNmPerInch = 25400000.0;
constexpr double kNmPerMm = 1000000.0;

std::string upper(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

std::string lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

std::string trimmed(const std::string& s) {
    const auto first = s.find_first_not_of(" \t\r");
    if (first == std::string::npos) {
        return {};
    }
    return s.substr(first, s.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        out.push_back(trimmed(line));
    }
    return out;
}

bool startsWith(const std::string& s, const char* prefix) {
    return s.rfind(prefix, 0) == 0;
}

std::string percent(double share) {
    return std::to_string(std::lround(share * 100)) + "%";
}

// The number written after `axis` in `line`, empty when there is none.
std::string numberAfter(const std::string& line, char axis) {
    const auto at = line.find(axis);
    if (at == std::string::npos) {
        return {};
    }
    size_t end = at + 1;
    while (end < line.size() && (std::isdigit(static_cast<unsigned char>(line[end])) ||
                                 line[end] == '.' || line[end] == '+' || line[end] == '-')) {
        ++end;
    }
    return line.substr(at + 1, end - at - 1);
}

// Walks the body of a drill file: calls `hole` for every drilled position, with the modal
// coordinates as written. Header blocks (M48 up to % or M95), comments, tool changes, routed
// moves (G00 to G03 until G05), repeats and origin settings are passed over.
template <typename Hole>
void walkBody(const std::string& text, Hole hole) {
    bool header = false;
    bool routing = false;
    std::string x;
    std::string y;
    for (std::string line : lines(text)) {
        line = upper(line);
        if (line.empty() || line[0] == ';') {
            continue;
        }
        if (line == "M48") {
            header = true;
            continue;
        }
        if (header) {
            header = line != "%" && line != "M95";
            continue;
        }
        if (line[0] == 'T' || line[0] == 'M' || line[0] == 'R' || line[0] == '%') {
            continue;
        }
        bool origin = false;
        while (line.size() > 1 && line[0] == 'G' &&
               std::isdigit(static_cast<unsigned char>(line[1]))) {
            size_t end = 1;
            while (end < line.size() && std::isdigit(static_cast<unsigned char>(line[end]))) {
                ++end;
            }
            const int code = std::atoi(line.substr(1, end - 1).c_str());
            if (code <= 3) {
                routing = true;
            } else if (code == 5 || code == 81) {
                routing = false;
            } else if (code == 92 || code == 93) {
                origin = true;
            }
            line.erase(0, end);
        }
        if (origin) {
            continue;
        }
        const auto slot = line.find("G85");  // a slot: its start is drilled
        if (slot != std::string::npos) {
            line.erase(slot);
        }
        const std::string nx = numberAfter(line, 'X');
        const std::string ny = numberAfter(line, 'Y');
        if (nx.empty() && ny.empty()) {
            continue;
        }
        if (!nx.empty()) {
            x = nx;
        }
        if (!ny.empty()) {
            y = ny;
        }
        if (!routing) {
            hole(x, y);
        }
    }
}

// How close a reading is to the header's: the tie-break between readings that place the same
// share of holes.
int closeness(const DrillNumberFormat& f, const DrillNumberFormat& header) {
    int score = 0;
    if (f.units == header.units) {
        score += 4;
    }
    if (f.zeros == header.zeros) {
        score += 2;
    }
    if (f.integer_digits == header.integer_digits && f.decimal_digits == header.decimal_digits) {
        score += 1;
    }
    return score;
}

}  // namespace

bool operator==(const DrillNumberFormat& a, const DrillNumberFormat& b) {
    return a.units == b.units && a.zeros == b.zeros && a.integer_digits == b.integer_digits &&
           a.decimal_digits == b.decimal_digits;
}

DrillNumberFormat DrillHeader::reading() const {
    DrillNumberFormat f;
    f.units = units.empty() ? "inch" : units;
    f.zeros = zeros.empty() ? "leading" : zeros;
    f.integer_digits = integer_digits > 0 ? integer_digits : f.units == "inch" ? 2 : 3;
    f.decimal_digits = decimal_digits > 0 ? decimal_digits : f.units == "inch" ? 4 : 3;
    return f;
}

std::string DrillHeader::stated() const {
    std::string out;
    if (!units.empty()) {
        out = units == "mm" ? "METRIC" : "INCH";
    }
    if (!zeros.empty()) {
        out += std::string(out.empty() ? "" : ",") + (zeros == "trailing" ? "LZ" : "TZ");
    }
    if (!digits_from.empty()) {
        out += (out.empty() ? "" : " ") + digits_from;
    }
    if (decimal_points) {
        out += (out.empty() ? "" : " ") + std::string("decimal points");
    }
    return out.empty() ? "nothing" : out;
}

DrillHeader DrillFormat::readHeader(const std::string& text) {
    DrillHeader h;
    static const std::regex fileFormat(R"(FILE_FORMAT\s*=\s*(\d+)\s*:\s*(\d+))");
    static const std::regex digits(R"(^(0+)\.(0+)$)");
    bool body = false;  // a hole has been drilled: unit and digit statements are over
    for (const std::string& raw : lines(text)) {
        const std::string line = upper(raw);
        if (line.empty()) {
            continue;
        }
        if (line[0] == ';') {
            std::smatch m;
            if (!body && h.digits_from.empty() && std::regex_search(line, m, fileFormat)) {
                h.integer_digits = std::stoi(m[1]);
                h.decimal_digits = std::stoi(m[2]);
                h.digits_from = ";FILE_FORMAT=" + m[1].str() + ":" + m[2].str();
            }
            if (h.plating.empty()) {
                if (line.find("TYPE=NON_PLATED") != std::string::npos ||
                    line.find("TYPE=NON-PLATED") != std::string::npos ||
                    line.find("TYPE=NONPLATED") != std::string::npos ||
                    line.find("TF.FILEFUNCTION,NONPLATED") != std::string::npos) {
                    h.plating = "non_plated";
                } else if (line.find("TYPE=PLATED") != std::string::npos ||
                           line.find("TF.FILEFUNCTION,PLATED") != std::string::npos) {
                    h.plating = "plated";
                }
            }
            continue;
        }
        if (body) {
            continue;
        }
        if (startsWith(line, "METRIC") || startsWith(line, "INCH")) {
            h.units = line[0] == 'M' ? "mm" : "inch";
            std::istringstream parts(line);
            std::string part;
            std::getline(parts, part, ',');
            while (std::getline(parts, part, ',')) {
                part = trimmed(part);
                std::smatch m;
                if (part == "LZ") {
                    h.zeros = "trailing";
                } else if (part == "TZ") {
                    h.zeros = "leading";
                } else if (std::regex_match(part, m, digits)) {
                    h.integer_digits = static_cast<int>(m[1].length());
                    h.decimal_digits = static_cast<int>(m[2].length());
                    h.digits_from = line;
                }
            }
        } else if (startsWith(line, "M71")) {
            h.units = "mm";
        } else if (startsWith(line, "M72")) {
            h.units = "inch";
        } else if (startsWith(line, "FMAT,")) {
            h.fmat = std::atoi(line.c_str() + 5);
        } else if (line == "ICI,ON" || startsWith(line, "G91")) {
            h.incremental = true;
        } else if (line == "ICI,OFF" || startsWith(line, "G90")) {
            h.incremental = false;
        }
        walkBody(raw + "\n", [&](const std::string&, const std::string&) { body = true; });
    }
    for (const HoleText& hole : holes(text)) {
        if (hole.x.find('.') != std::string::npos || hole.y.find('.') != std::string::npos) {
            h.decimal_points = true;
            break;
        }
    }
    return h;
}

std::string DrillFormat::platingOfName(const std::string& file_name) {
    const std::string name = lower(file_name);
    for (const char* word : {"npth", "non-plated", "non_plated", "nonplated", "unplated"}) {
        if (name.find(word) != std::string::npos) {
            return "non_plated";
        }
    }
    for (const char* word : {"pth", "plated"}) {
        if (name.find(word) != std::string::npos) {
            return "plated";
        }
    }
    return {};
}

std::string DrillFormat::plating(const std::string& file_name, const DrillHeader& header) {
    return header.plating.empty() ? platingOfName(file_name) : header.plating;
}

std::vector<HoleText> DrillFormat::holes(const std::string& text) {
    std::vector<HoleText> out;
    walkBody(text, [&](const std::string& x, const std::string& y) { out.push_back({x, y}); });
    return out;
}

bool DrillFormat::decode(const std::string& token, const DrillNumberFormat& format, double& nm) {
    size_t k = 0;
    double sign = 1;
    if (k < token.size() && (token[k] == '+' || token[k] == '-')) {
        sign = token[k] == '-' ? -1 : 1;
        ++k;
    }
    const std::string digits = token.substr(k);
    if (digits.empty() || digits.find_first_not_of("0123456789.") != std::string::npos ||
        std::count(digits.begin(), digits.end(), '.') > 1 || digits == ".") {
        return false;
    }
    double value = 0;
    if (digits.find('.') != std::string::npos) {
        value = std::strtod(digits.c_str(), nullptr);
    } else {
        value = std::strtod(digits.c_str(), nullptr);
        const int written = static_cast<int>(digits.size());
        // Without trailing zeros the digits start at the first integer place; without leading
        // zeros (or with all of them) they end at the last decimal place.
        value *= format.zeros == "trailing" ? std::pow(10.0, format.integer_digits - written)
                                            : std::pow(10.0, -format.decimal_digits);
    }
    nm = sign * value * (format.units == "mm" ? kNmPerMm : kNmPerInch);
    return true;
}

std::vector<point> DrillFormat::place(const std::vector<HoleText>& holes,
                                      const DrillNumberFormat& format) {
    std::vector<point> out;
    out.reserve(holes.size());
    for (const HoleText& h : holes) {
        point p;
        if ((h.x.empty() || decode(h.x, format, p.x)) &&
            (h.y.empty() || decode(h.y, format, p.y))) {
            out.push_back(p);
        }
    }
    return out;
}

double DrillFormat::shareOnPads(const std::vector<point>& holes, const std::vector<PadSite>& pads) {
    if (holes.empty() || pads.empty()) {
        return 0;
    }
    std::vector<PadSite> sorted = pads;
    std::sort(sorted.begin(), sorted.end(),
              [](const PadSite& a, const PadSite& b) { return a.x < b.x; });
    double reach = 0;
    for (const PadSite& p : sorted) {
        reach = std::max(reach, p.half_width);
    }
    int on = 0;
    for (const point& h : holes) {
        auto it = std::lower_bound(sorted.begin(), sorted.end(), h.x - reach,
                                   [](const PadSite& p, double x) { return p.x < x; });
        for (; it != sorted.end() && it->x <= h.x + reach; ++it) {
            const double dx = h.x - it->x;
            const double dy = h.y - it->y;
            const bool inside =
                it->round ? dx * dx + dy * dy <= it->half_width * it->half_width
                          : std::abs(dx) <= it->half_width && std::abs(dy) <= it->half_height;
            if (inside) {
                ++on;
                break;
            }
        }
    }
    return static_cast<double>(on) / static_cast<double>(holes.size());
}

std::vector<DrillNumberFormat> DrillFormat::candidates(const DrillHeader& header) {
    const DrillNumberFormat said = header.reading();
    std::vector<DrillNumberFormat> out;
    for (const std::string units : {said.units, std::string(said.units == "mm" ? "inch" : "mm")}) {
        DrillNumberFormat f;
        f.units = units;
        f.integer_digits = header.integer_digits > 0 ? header.integer_digits
                           : units == "inch"         ? 2
                                                     : 3;
        f.decimal_digits = header.decimal_digits > 0 ? header.decimal_digits
                           : units == "inch"         ? 4
                                                     : 3;
        if (header.decimal_points) {
            f.zeros = said.zeros;
            out.push_back(f);
            continue;
        }
        // Without trailing zeros only the integer digits matter, without leading ones only the
        // decimal digits.
        for (int digits = 1; digits <= 4; ++digits) {
            DrillNumberFormat g = f;
            g.zeros = "trailing";
            g.integer_digits = digits;
            out.push_back(g);
        }
        for (int digits = 2; digits <= 5; ++digits) {
            DrillNumberFormat g = f;
            g.zeros = "leading";
            g.decimal_digits = digits;
            out.push_back(g);
        }
    }
    std::stable_sort(out.begin(), out.end(), [&](const auto& a, const auto& b) {
        return closeness(a, said) > closeness(b, said);
    });
    return out;
}

DrillChoice DrillFormat::choose(const DrillHeader& header, const std::vector<HoleText>& holes,
                                const std::vector<PadSite>& pads) {
    DrillChoice c;
    c.format = header.reading();
    c.holes = static_cast<int>(holes.size());
    const std::string said = "header said " + header.stated();
    const std::string kept =
        header.stated() == "nothing" ? "customary " + describe(c.format) : "header";
    if (pads.empty() || c.holes < kMinHoles) {
        const std::string why = pads.empty()
                                    ? std::string("no copper to register against")
                                    : "only " + std::to_string(c.holes) + " holes to register";
        c.source = kept + ", not checked: " + why;
        c.warning = "drill format " + describe(c.format) + " not checked (" + said + "): " + why;
        return c;
    }
    c.checked = true;
    const double header_share = shareOnPads(place(holes, c.format), pads);
    DrillNumberFormat best = c.format;
    double best_share = header_share;
    for (const DrillNumberFormat& f : candidates(header)) {
        const double share = shareOnPads(place(holes, f), pads);
        if (share > best_share) {
            best = f;
            best_share = share;
        }
    }
    const std::string of = " of " + std::to_string(c.holes) + " holes on pads";
    if (best_share < kMinShare) {
        c.share = header_share;
        c.source = kept + ", not confirmed: at best " + percent(best_share) + of + " (" +
                   describe(best) + ")";
        c.warning = "drill format not decided: at best " + percent(best_share) + of + " (" +
                    describe(best) + "); " + said + ", read as " + describe(c.format);
        return c;
    }
    if (header_share >= best_share - kMargin) {
        c.share = header_share;
        c.source = kept + " (" + percent(header_share) + of + ")";
        return c;
    }
    c.by_header = false;
    c.format = best;
    c.share = best_share;
    c.source = "registration (" + percent(best_share) + of + ", " + said + ": " +
               describe(header.reading()) + " puts " + percent(header_share) + " on pads)";
    return c;
}

std::string DrillFormat::describe(const DrillNumberFormat& format) {
    std::string out = format.units == "mm" ? "METRIC" : "INCH";
    if (format.zeros == "trailing") {
        out += ",LZ";
    } else if (format.zeros == "leading") {
        out += ",TZ";
    }
    return out + " " + std::to_string(format.integer_digits) + ":" +
           std::to_string(format.decimal_digits);
}

}  // namespace wcref
