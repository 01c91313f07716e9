// libFuzzer entry point: any text given to the layer field must parse to an answer or an
// error, and resolve against a matrix, without crashing or hanging.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "LayerExpression.h"

namespace {

std::vector<Korvo::API::layer_info> fuzzMatrix() {
    const char* rows[][5] = {
        {"top", "board", "signal", "positive", "top"},
        {"l2", "board", "power_ground", "negative", "inner"},
        {"l3", "board", "mixed", "positive", "inner"},
        {"bottom", "board", "signal", "positive", "bottom"},
        {"drill", "board", "drill", "positive", "none"},
        {"doc", "misc", "document", "positive", "none"},
    };
    std::vector<Korvo::API::layer_info> matrix;
    int row = 0;
    for (const auto& r : rows) {
        Korvo::API::layer_info info;
        info.name = r[0];
        info.context = r[1];
        info.type = r[2];
        info.polarity = r[3];
        info.side = r[4];
        info.row = ++row;
        matrix.push_back(info);
    }
    return matrix;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<Korvo::API::layer_info> matrix = fuzzMatrix();
    const std::string text(reinterpret_cast<const char*>(data), size);
    const wcref::LayerExpression parsed = wcref::parseLayerExpression(text);
    if (!parsed.ok && parsed.error.empty()) {
        __builtin_trap();  // every refusal must say why
    }
    std::vector<std::string> unknown;
    const std::vector<std::string> layers = wcref::resolveLayerExpression(parsed, matrix, &unknown);
    if (!parsed.ok && !layers.empty()) {
        __builtin_trap();
    }
    if (parsed.is_filter && layers.size() > matrix.size()) {
        __builtin_trap();
    }
    // Name patterns are matched against the text itself too, to stress the wildcard matcher.
    const size_t half = size / 2;
    wcref::wildcardMatch(text.substr(0, half), text.substr(half));
    return 0;
}
