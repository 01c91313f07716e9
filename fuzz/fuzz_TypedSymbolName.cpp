// libFuzzer entry point: any text typed into a symbol field converts without crashing, and the
// conversion touches only the numbers in it.

#include <cstddef>
#include <cstdint>
#include <string>

#include "toolbar/SymbolNameConversion.h"

namespace {

bool isNumberChar(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

std::string withoutNumbers(const std::string& text) {
    std::string rest;
    for (char c : text) {
        if (!isNumberChar(c)) {
            rest += c;
        }
    }
    return rest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string typed(reinterpret_cast<const char*>(data), size);
    const std::string engine = wc::typedSymbolToEngine(typed);
    if (withoutNumbers(engine) != withoutNumbers(typed)) {
        __builtin_trap();  // text between the numbers must stay as typed
    }
    // A fraction grows to at most four digits ("1000"); nothing else grows.
    if (engine.size() > typed.size() * 4 + 4) {
        __builtin_trap();
    }
    return 0;
}
