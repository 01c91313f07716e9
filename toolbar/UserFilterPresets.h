#pragma once
// The predefined user filters of the feature filter: what each one sets after the reset, and
// what it runs afterwards.

#include <QList>
#include <QString>
#include <QStringList>
#include <map>
#include <optional>
#include <string>

namespace wc {

enum class UserFilterFollowUp { None, Select, Highlight };

struct UserFilterPreset {
    // Unset members leave the reset filter as it is.
    std::optional<int> feature_type;
    std::optional<int> attribute_logic;
    std::optional<std::map<std::string, std::string>> attributes;
    // Known names that are not offered only reset the filter.
    bool reset_only = false;
};

// The entries of the "User filter ..." list, in their order; the names also key the presets.
QList<const char*> offeredUserFilterSources();
QStringList offeredUserFilters();

// The preset of `name`; unset for a name the filter does not know.
std::optional<UserFilterPreset> userFilterPreset(const QString& name);

// Select when the name says "Select", else Highlight when it says "Highlight".
UserFilterFollowUp userFilterFollowUp(const QString& name);

}  // namespace wc
