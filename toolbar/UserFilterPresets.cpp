#include "UserFilterPresets.h"

#include <vector>

namespace wc {
namespace {

struct Row {
    const char* name;
    bool offered;
    UserFilterPreset preset;
};

UserFilterPreset types(int mask) {
    UserFilterPreset preset;
    preset.feature_type = mask;
    return preset;
}

UserFilterPreset attribute(std::optional<int> mask, const char* name, const char* value) {
    UserFilterPreset preset;
    preset.feature_type = mask;
    preset.attribute_logic = 1;
    preset.attributes = std::map<std::string, std::string>{{name, value}};
    return preset;
}

UserFilterPreset resetOnly() {
    UserFilterPreset preset;
    preset.reset_only = true;
    return preset;
}

const std::vector<Row>& rows() {
    static const std::vector<Row> table = {
        {"Highlight All Pads", true, types(97)},
        {"Highlight All Lines", true, types(98)},
        {"Highlight All Surfaces", true, types(104)},
        {"Highlight Negative Features", true, types(63)},
        {"Highlight Smd Pads", true, attribute(97, ".smd", "")},
        {"Select Smd Pads", true, attribute(97, ".smd", "")},
        {"Highlight Tear Drops", true, attribute(std::nullopt, ".tear_drop", "")},
        {"Highlight Non Plated Holes", true, attribute(std::nullopt, ".drill", "non_plated")},
        {"Select Non Plated Holes", true, attribute(std::nullopt, ".drill", "non_plated")},
        {"Highlight Plated Holes", true, attribute(std::nullopt, ".drill", "plated")},
        {"Select Plated Holes", true, attribute(std::nullopt, ".drill", "plated")},
        {"Highlight Via Holes", true, attribute(std::nullopt, ".drill", "via")},
        {"Select Via Holes", true, attribute(std::nullopt, ".drill", "via")},
        {"Highlight All Rectangles", false, resetOnly()},
        {"Select All Rectangles", false, resetOnly()},
        {"Highlight Gold Connectors", false, resetOnly()},
        {"Select Gold Connectors", false, resetOnly()},
        {"Highlight Non-Electric Features", false, resetOnly()},
        {"Highlight Nomenclature", false, resetOnly()},
        {"Select Nomenclature", false, resetOnly()},
        {"Select Pads Touching Non-Pth Holes (Signal Layers)", false, resetOnly()},
        {"Select Pads Touching Pth Holes (Signal Layers)", false, resetOnly()},
        {"Select Pads Touching Via Holes (Signal Layers)", false, resetOnly()},
    };
    return table;
}

}  // namespace

QStringList offeredUserFilters() {
    QStringList names;
    for (const Row& row : rows()) {
        if (row.offered) {
            names << QString::fromLatin1(row.name);
        }
    }
    return names;
}

std::optional<UserFilterPreset> userFilterPreset(const QString& name) {
    for (const Row& row : rows()) {
        if (name == QLatin1String(row.name)) {
            return row.preset;
        }
    }
    return std::nullopt;
}

UserFilterFollowUp userFilterFollowUp(const QString& name) {
    if (name.contains(QLatin1String("Select"))) {
        return UserFilterFollowUp::Select;
    }
    if (name.contains(QLatin1String("Highlight"))) {
        return UserFilterFollowUp::Highlight;
    }
    return UserFilterFollowUp::None;
}

}  // namespace wc
