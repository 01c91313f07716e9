#pragma once
// The attribute fields of the feature filter ("name" or "name=value", separated by ";") and the
// attribute map and logic they give the filter record.

#include <map>
#include <string>
#include <vector>

namespace wc {

using AttributeMap = std::map<std::string, std::string>;

// Attribute logic of the filter record besides the popup's own choices (0 all, 1 any).
constexpr int kAttributesExclude = 2;
constexpr int kAttributesOff = -1;

struct AttributeCondition {
    std::string name;
    std::string value;
    bool has_value = false;  // written as name=value (the value may still be empty)
};

// Parts split at ";", blanks around names and values dropped, empty parts and parts without a
// name skipped.
std::vector<AttributeCondition> parseAttributeField(const std::string& text);

// The map written back as field text: "name" for an empty value, else "name=value".
std::string attributeFieldText(const AttributeMap& attributes);

struct AttributeFilterInput {
    std::string include_text;
    std::string exclude_text;
    int popup_logic = 0;  // the last logic chosen in the attribute popup
    bool popup_has_conditions = false;
    AttributeMap current;  // the record's map, holding the popup's conditions
};

struct AttributeFilter {
    int logic = 0;
    AttributeMap attributes;
};

// Include conditions minus the excluded ones under the popup's logic; an exclude field alone
// gives logic 2 with its conditions. The popup's conditions stay when it holds any.
AttributeFilter buildAttributeFilter(const AttributeFilterInput& input);

}  // namespace wc
