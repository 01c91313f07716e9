#include "UserFilterPresets.h"

#include <QCoreApplication>
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
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight All Pads"), true, types(97)},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight All Lines"), true, types(98)},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight All Surfaces"), true, types(104)},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Negative Features"), true,
         types(63)},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Smd Pads"), true,
         attribute(97, ".smd", "")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Select Smd Pads"), true,
         attribute(97, ".smd", "")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Tear Drops"), true,
         attribute(std::nullopt, ".tear_drop", "")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Non Plated Holes"), true,
         attribute(std::nullopt, ".drill", "non_plated")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Select Non Plated Holes"), true,
         attribute(std::nullopt, ".drill", "non_plated")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Plated Holes"), true,
         attribute(std::nullopt, ".drill", "plated")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Select Plated Holes"), true,
         attribute(std::nullopt, ".drill", "plated")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Highlight Via Holes"), true,
         attribute(std::nullopt, ".drill", "via")},
        {QT_TRANSLATE_NOOP("Widget_UserFilterList", "Select Via Holes"), true,
         attribute(std::nullopt, ".drill", "via")},
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

QList<const char*> offeredUserFilterSources() {
    QList<const char*> names;
    for (const Row& row : rows()) {
        if (row.offered) {
            names << row.name;
        }
    }
    return names;
}

QStringList offeredUserFilters() {
    QStringList names;
    for (const char* name : offeredUserFilterSources()) {
        names << QString::fromLatin1(name);
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
