#pragma once
// The feature filter of the graphic view's toolbar, as the job-list module receives it: the
// payload of the filter messages 20000017..20000021. The receiver reads the record in place
// during the call; the popup that sends it owns it.

#include <map>
#include <string>
#include <vector>

// The host's toolbars. Popups only keep the pointer and pass it on as their host handle.
class Graphic_Toolbar_Move;
class Graphic_Toolbar_Edit;

struct FeatureFilterSettings {
    // Korvo::API::FeatureTypeMask bits; 127 lets every type and polarity through.
    int feature_type = 127;
    // 1: `symbols` is an include list; 0: an exclude list (no symbol filter when empty).
    int symbol_mode = 0;
    // Symbol names in the engine's spelling.
    std::vector<std::string> symbols;
    // 0: every condition must hold; 1: any one of them; 2: features with a listed attribute
    // are excluded; -1: the conditions are switched off.
    int attribute_logic = 0;
    // Attribute name -> required value; an empty value asks only for the attribute's presence.
    std::map<std::string, std::string> attributes;
    // 0 all features, 1 inside the profile, 2 outside it.
    int profile = 0;
};
