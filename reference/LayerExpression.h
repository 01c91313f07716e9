#pragma once
// Layer expressions of the analysis and DFM dialogs, parsed without touching any job.
//
// Two forms:
// - a list of layer names separated by ";" ("top; bottom"): blanks around names and empty
//   parts are dropped; a name given twice counts once;
// - a filter: a leading "." followed by key=value terms joined by "&"; a term holds
//   alternatives joined by "|" (".type=signal|mixed&side=top|bottom&context=board"). Keys:
//   type, context, side, polarity and name; name values may hold "*" wildcards. A layer passes
//   when every term has an alternative equal to its field (case-sensitive, spelled as in the
//   matrix). Blanks around keys and values are dropped.
// An empty expression is valid and names no layer.

#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

struct LayerExpression {
    struct Term {
        std::string key;
        std::vector<std::string> values;
    };

    bool ok = false;
    std::string error;       // what is wrong, when not ok
    bool is_filter = false;  // filter form (terms) or name list (names)
    std::vector<std::string> names;
    std::vector<Term> terms;
};

LayerExpression parseLayerExpression(const std::string& text);

// Layers of `matrix` named by the expression: a name list keeps its order and skips names the
// matrix lacks (reported in `unknown`); a filter answers in matrix row order. A malformed
// expression answers nothing.
std::vector<std::string> resolveLayerExpression(const LayerExpression& expression,
                                                const std::vector<Korvo::API::layer_info>& matrix,
                                                std::vector<std::string>* unknown = nullptr);

// "*" matches any run of characters, everything else itself.
bool wildcardMatch(const std::string& pattern, const std::string& text);

}  // namespace wcref
