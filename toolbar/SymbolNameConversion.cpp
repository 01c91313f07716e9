#include "SymbolNameConversion.h"

#include <cmath>
#include <cstdlib>

namespace wc {
namespace {

bool isNumberChar(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

std::string convertNumber(const std::string& run) {
    const std::string::size_type point = run.find('.');
    // No fraction ("10", "10."), or not a number at all ("1.2.3", "."): kept as typed.
    if (point == std::string::npos || point + 1 == run.size() ||
        run.find('.', point + 1) != std::string::npos) {
        return run;
    }
    const std::string fraction = "0" + run.substr(point);
    const double thousandths = std::round(std::strtod(fraction.c_str(), nullptr) * 1000.0);
    return run.substr(0, point + 1) + std::to_string(static_cast<long>(thousandths));
}

}  // namespace

std::string typedSymbolToEngine(const std::string& typed) {
    std::string out;
    out.reserve(typed.size() + 4);
    std::string::size_type begin = 0;
    while (begin < typed.size()) {
        const bool number = isNumberChar(typed[begin]);
        std::string::size_type end = begin;
        while (end < typed.size() && isNumberChar(typed[end]) == number) {
            ++end;
        }
        const std::string run = typed.substr(begin, end - begin);
        out += number ? convertNumber(run) : run;
        begin = end;
    }
    return out;
}

}  // namespace wc
