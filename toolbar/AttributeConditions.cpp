#include "AttributeConditions.h"

namespace wc {
namespace {

std::string trimmed(const std::string& text) {
    const char* blanks = " \t\r\n";
    const std::string::size_type first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return std::string();
    }
    const std::string::size_type last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

void insertAll(AttributeMap& map, const std::vector<AttributeCondition>& conditions) {
    for (const AttributeCondition& condition : conditions) {
        map[condition.name] = condition.value;
    }
}

}  // namespace

std::vector<AttributeCondition> parseAttributeField(const std::string& text) {
    std::vector<AttributeCondition> conditions;
    std::string::size_type begin = 0;
    while (begin <= text.size()) {
        std::string::size_type end = text.find(';', begin);
        if (end == std::string::npos) {
            end = text.size();
        }
        const std::string part = text.substr(begin, end - begin);
        begin = end + 1;
        AttributeCondition condition;
        const std::string::size_type equals = part.find('=');
        if (equals == std::string::npos) {
            condition.name = trimmed(part);
        } else {
            condition.name = trimmed(part.substr(0, equals));
            condition.value = trimmed(part.substr(equals + 1));
            condition.has_value = true;
        }
        if (!condition.name.empty()) {
            conditions.push_back(std::move(condition));
        }
    }
    return conditions;
}

std::string attributeFieldText(const AttributeMap& attributes) {
    std::string text;
    for (const auto& entry : attributes) {
        if (!text.empty()) {
            text += ';';
        }
        text += entry.first;
        if (!entry.second.empty()) {
            text += '=' + entry.second;
        }
    }
    return text;
}

AttributeFilter buildAttributeFilter(const AttributeFilterInput& input) {
    AttributeFilter filter;
    filter.attributes = input.popup_has_conditions ? input.current : AttributeMap();
    const std::vector<AttributeCondition> include = parseAttributeField(input.include_text);
    const std::vector<AttributeCondition> exclude = parseAttributeField(input.exclude_text);
    const bool include_empty = trimmed(input.include_text).empty();
    if (include_empty && trimmed(input.exclude_text).empty()) {
        filter.logic = input.popup_logic;
        return filter;
    }
    if (include_empty) {
        filter.logic = kAttributesExclude;
        insertAll(filter.attributes, exclude);
        return filter;
    }
    filter.logic = input.popup_logic;
    insertAll(filter.attributes, include);
    for (const AttributeCondition& condition : exclude) {
        auto it = filter.attributes.find(condition.name);
        // A bare name only takes out a presence condition; name=value takes out any.
        if (it != filter.attributes.end() && (condition.has_value || it->second.empty())) {
            filter.attributes.erase(it);
        }
    }
    return filter;
}

}  // namespace wc
