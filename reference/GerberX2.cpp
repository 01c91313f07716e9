#include "GerberX2.h"

#include <glog/logging.h>

#include <QFile>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <map>

namespace wcref {

namespace {

// The coordinate format of %FS and the unit of %MO: how a coordinate's digits become nanometres.
struct Format {
    bool omit_trailing = false;  // "T": trailing zeros omitted, the digits are left-aligned
    int x_int = 2;
    int x_dec = 4;
    int y_int = 2;
    int y_dec = 4;
    double nm_per_unit = 25400000.0;  // inch until %MOMM

    double value(const std::string& digits, bool y) const {
        if (digits.find('.') != std::string::npos) {
            return std::strtod(digits.c_str(), nullptr) * nm_per_unit;
        }
        std::string d = digits;
        bool negative = false;
        if (!d.empty() && (d[0] == '+' || d[0] == '-')) {
            negative = d[0] == '-';
            d.erase(0, 1);
        }
        const int integers = y ? y_int : x_int;
        const int decimals = y ? y_dec : x_dec;
        if (omit_trailing) {
            while (static_cast<int>(d.size()) < integers + decimals) {
                d.push_back('0');
            }
        }
        const double v = std::strtod(d.c_str(), nullptr) / std::pow(10.0, decimals);
        return (negative ? -v : v) * nm_per_unit;
    }
};

// Splits "%TF.FileFunction,Copper,L1,Top" (without % and *) into name and fields.
std::vector<std::string> fields(const std::string& body) {
    std::vector<std::string> out;
    std::string current;
    for (char c : body) {
        if (c == ',') {
            out.push_back(current);
            current.clear();
        } else {
            current.push_back(c);
        }
    }
    out.push_back(current);
    return out;
}

std::string joined(const std::vector<std::string>& parts, size_t from) {
    std::string out;
    for (size_t k = from; k < parts.size(); ++k) {
        out += (k > from ? "," : "") + parts[k];
    }
    return out;
}

class Reader {
public:
    Reader(const std::string& origin, X2Attributes& out) : origin_(origin), out_(out) {}

    // One extended command's body, such as "FSLAX36Y36" or "TO.N,GND".
    void extended(const std::string& body) {
        if (body.rfind("FS", 0) == 0) {
            formatSpec(body);
        } else if (body == "MOMM") {
            format_.nm_per_unit = 1000000.0;
        } else if (body == "MOIN") {
            format_.nm_per_unit = 25400000.0;
        } else if (body.rfind("TF", 0) == 0 || body.rfind("TO", 0) == 0 ||
                   body.rfind("TD", 0) == 0 || body.rfind("TA", 0) == 0) {
            attribute(body);
        }
    }

    // One word statement, such as "X100Y200D01" or "G36".
    void word(const std::string& text) {
        if (text.rfind("G04", 0) == 0) {
            // Attributes written in comments by writers that predate the extended commands.
            const size_t mark = text.find("#@!");
            if (mark != std::string::npos) {
                std::string body = text.substr(mark + 3);
                body.erase(0, body.find_first_not_of(' '));
                attribute(body);
            }
            return;
        }
        if (text == "G36") {
            in_region_ = true;
            region_started_ = false;
            return;
        }
        if (text == "G37") {
            in_region_ = false;
            return;
        }
        bool moved = false;
        int d = -1;
        for (size_t k = 0; k < text.size();) {
            const char letter = text[k];
            size_t end = k + 1;
            while (end < text.size() && !std::isalpha(static_cast<unsigned char>(text[end]))) {
                ++end;
            }
            const std::string digits = text.substr(k + 1, end - k - 1);
            if (letter == 'X' && !digits.empty()) {
                x_ = format_.value(digits, false);
                moved = true;
            } else if (letter == 'Y' && !digits.empty()) {
                y_ = format_.value(digits, true);
                moved = true;
            } else if (letter == 'D' && !digits.empty()) {
                d = std::atoi(digits.c_str());
            }
            k = end;
        }
        if (d >= 10) {
            return;  // aperture selection
        }
        if (d < 0 && moved) {
            d = last_d_;  // modal operation code
        }
        if (d < 1 || d > 3) {
            return;
        }
        last_d_ = d;
        if (net_.empty()) {
            if (d == 2 && in_region_) {
                region_started_ = false;
            }
            return;
        }
        if (in_region_) {
            // A region's net is given once, at its first vertex.
            if (!region_started_) {
                out_.objects.push_back({{x_, y_}, net_, X2Object::region});
                region_started_ = true;
            }
            return;
        }
        if (d == 3) {
            out_.objects.push_back({{x_, y_}, net_, X2Object::flash});
        } else if (d == 1) {
            out_.objects.push_back({{x_, y_}, net_, X2Object::draw});
        }
    }

    void setLine(int line) { line_ = line; }

private:
    void formatSpec(const std::string& body) {
        // FS[L|T][A|I]X<i><d>Y<i><d>
        size_t k = 2;
        bool absolute = true;
        for (; k < body.size() && body[k] != 'X'; ++k) {
            if (body[k] == 'T') {
                format_.omit_trailing = true;
            } else if (body[k] == 'L') {
                format_.omit_trailing = false;
            } else if (body[k] == 'I') {
                absolute = false;
            }
        }
        const size_t x = body.find('X');
        const size_t y = body.find('Y');
        if (x == std::string::npos || y == std::string::npos || y < x + 3 || body.size() < y + 3) {
            LOG(ERROR) << origin_ << ":" << line_ << ": unreadable format " << body;
            return;
        }
        format_.x_int = body[x + 1] - '0';
        format_.x_dec = body[x + 2] - '0';
        format_.y_int = body[y + 1] - '0';
        format_.y_dec = body[y + 2] - '0';
        if (!absolute) {
            LOG(WARNING) << origin_ << ": incremental coordinates; nets are not read";
            incremental_ = true;
        }
    }

    void attribute(const std::string& body) {
        const std::vector<std::string> parts = fields(body);
        const std::string& head = parts.front();
        if (head.size() < 2 || head[0] != 'T' ||
            (head.size() > 2 && head[2] != '.' && head[2] != '\0')) {
            LOG(ERROR) << origin_ << ":" << line_ << ": malformed attribute \"" << body
                       << "\" ignored";
            return;
        }
        const char kind = head[1];
        const std::string name = head.substr(2);
        if (kind == 'D') {
            if (name.empty() || name == ".N") {
                net_.clear();
            }
            return;
        }
        if ((kind == 'F' || kind == 'O' || kind == 'A') && name.empty()) {
            LOG(ERROR) << origin_ << ":" << line_ << ": attribute without a name \"" << body
                       << "\" ignored";
            return;
        }
        if (kind == 'F' && name == ".FileFunction") {
            if (parts.size() < 2 || parts[1].empty()) {
                LOG(ERROR) << origin_ << ":" << line_ << ": .FileFunction without a value ignored";
                return;
            }
            out_.file_function = joined(parts, 1);
        } else if (kind == 'F' && name == ".FilePolarity") {
            if (parts.size() != 2 || (parts[1] != "Positive" && parts[1] != "Negative")) {
                LOG(ERROR) << origin_ << ":" << line_ << ": .FilePolarity \"" << body
                           << "\" ignored";
                return;
            }
            out_.file_polarity = parts[1];
        } else if (kind == 'O' && name == ".N") {
            if (parts.size() < 2) {
                LOG(ERROR) << origin_ << ":" << line_ << ": .N without a net name ignored";
                return;
            }
            // A net name may itself hold commas; an empty name is an object of no net.
            net_ = incremental_ ? std::string() : joined(parts, 1);
        }
    }

    const std::string origin_;
    X2Attributes& out_;
    Format format_;
    std::string net_;
    double x_ = 0;
    double y_ = 0;
    int last_d_ = 0;
    int line_ = 1;
    bool in_region_ = false;
    bool region_started_ = false;
    bool incremental_ = false;
};

}  // namespace

X2Attributes GerberX2::parse(const std::string& text, const std::string& origin) {
    X2Attributes out;
    Reader reader(origin, out);
    int line = 1;
    bool extended = false;
    std::string statement;
    for (char c : text) {
        if (c == '\n') {
            ++line;
            continue;
        }
        if (c == '\r') {
            continue;
        }
        if (c == '%') {
            extended = !extended;
            statement.clear();
            continue;
        }
        if (c != '*') {
            statement.push_back(c);
            continue;
        }
        reader.setLine(line);
        // Blanks are not part of Gerber words, but comments and attribute values keep them.
        if (extended) {
            reader.extended(statement);
        } else {
            size_t first = statement.find_first_not_of(" \t");
            reader.word(first == std::string::npos ? std::string() : statement.substr(first));
        }
        statement.clear();
    }
    return out;
}

size_t GerberX2::nameFeatures(const X2Attributes& attributes,
                              std::vector<Korvo::API::featureInfo>& features) {
    if (attributes.objects.empty()) {
        return 0;
    }
    // Both readers turn the same digits into nanometres; they agree far below a micrometre.
    using Key = std::pair<long long, long long>;
    const auto keyOf = [](const Korvo::API::point& p, X2Object::Kind kind) {
        return std::make_pair(Key(std::llround(p.x / 1000.0), std::llround(p.y / 1000.0)),
                              static_cast<int>(kind));
    };
    std::map<std::pair<Key, int>, const std::string*> at;
    for (const X2Object& o : attributes.objects) {
        at.emplace(keyOf(o.at, o.kind), &o.net);
    }
    size_t named = 0;
    for (Korvo::API::featureInfo& f : features) {
        X2Object::Kind kind = X2Object::flash;
        Korvo::API::point p = f.start;
        if (f.type == Korvo::API::feature_line || f.type == Korvo::API::feature_arc) {
            kind = X2Object::draw;
            p = f.end;
        } else if (f.type == Korvo::API::feature_surface) {
            kind = X2Object::region;
            p = f.contour.empty() ? f.start : f.contour.front();
        } else if (f.type != Korvo::API::feature_pad) {
            continue;
        }
        const auto [key, k] = keyOf(p, kind);
        for (long long dx = -1; dx <= 1; ++dx) {
            for (long long dy = -1; dy <= 1; ++dy) {
                const auto found = at.find({Key(key.first + dx, key.second + dy), k});
                if (found != at.end()) {
                    f.attributes[".net"] = *found->second;
                    ++named;
                    dx = dy = 2;
                }
            }
        }
    }
    return named;
}

X2Attributes GerberX2::read(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    return parse(std::string(bytes.constData(), static_cast<size_t>(bytes.size())), path);
}

}  // namespace wcref
