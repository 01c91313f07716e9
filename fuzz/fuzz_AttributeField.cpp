// libFuzzer entry point: any text typed into an attribute field parses into conditions with
// names, writes back to a field text that parses to the same map, and builds a filter.

#include <cstddef>
#include <cstdint>
#include <string>

#include "toolbar/AttributeConditions.h"

namespace {

wc::AttributeMap toMap(const std::vector<wc::AttributeCondition>& conditions) {
    wc::AttributeMap map;
    for (const wc::AttributeCondition& condition : conditions) {
        if (condition.name.empty() || condition.name.find(';') != std::string::npos ||
            condition.name.find('=') != std::string::npos ||
            condition.value.find(';') != std::string::npos) {
            __builtin_trap();
        }
        map[condition.name] = condition.value;
    }
    return map;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const wc::AttributeMap map = toMap(wc::parseAttributeField(text));
    if (toMap(wc::parseAttributeField(wc::attributeFieldText(map))) != map) {
        __builtin_trap();  // the field text of a map must read back as that map
    }

    // The first byte picks the popup's state, the rest splits into include and exclude fields.
    const int flags = size > 0 ? data[0] : 0;
    const std::string rest = size > 0 ? text.substr(1) : std::string();
    const size_t half = rest.size() / 2;
    wc::AttributeFilterInput input;
    input.include_text = rest.substr(0, half);
    input.exclude_text = rest.substr(half);
    input.popup_logic = flags & 1;
    input.popup_has_conditions = (flags & 2) != 0;
    input.current = {{".popup", ""}};
    const wc::AttributeFilter filter = wc::buildAttributeFilter(input);
    if (filter.logic != input.popup_logic && filter.logic != wc::kAttributesExclude) {
        __builtin_trap();
    }
    if (input.popup_has_conditions && filter.logic == wc::kAttributesExclude &&
        filter.attributes.count(".popup") == 0) {
        __builtin_trap();  // an exclude field adds to the popup's conditions
    }
    return 0;
}
