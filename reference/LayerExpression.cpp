#include "LayerExpression.h"

#include <algorithm>

namespace wcref {

namespace {

const char* const kKeys[] = {"type", "context", "side", "polarity", "name"};

std::string trimmed(const std::string& text) {
    const char* blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (true) {
        const size_t end = text.find(separator, start);
        parts.push_back(text.substr(start, end == std::string::npos ? end : end - start));
        if (end == std::string::npos) {
            return parts;
        }
        start = end + 1;
    }
}

LayerExpression failed(const std::string& error) {
    LayerExpression expression;
    expression.ok = false;
    expression.is_filter = true;
    expression.error = error;
    return expression;
}

LayerExpression parseFilter(const std::string& body) {
    LayerExpression expression;
    expression.is_filter = true;
    if (trimmed(body).empty()) {
        return failed("layer filter has no terms");
    }
    const std::vector<std::string> terms = split(body, '&');
    for (size_t k = 0; k < terms.size(); ++k) {
        const std::string term = trimmed(terms[k]);
        const std::string position = "term " + std::to_string(k + 1);
        if (term.empty()) {
            return failed("layer filter " + position + " is empty");
        }
        const size_t equals = term.find('=');
        if (equals == std::string::npos) {
            return failed("layer filter " + position + " \"" + term + "\" has no '='");
        }
        LayerExpression::Term parsed;
        parsed.key = trimmed(term.substr(0, equals));
        if (std::find(std::begin(kKeys), std::end(kKeys), parsed.key) == std::end(kKeys)) {
            return failed("layer filter " + position + " has unknown key \"" + parsed.key +
                          "\" (type, context, side, polarity or name)");
        }
        const std::string values = term.substr(equals + 1);
        if (values.find('=') != std::string::npos) {
            return failed("layer filter " + position + " \"" + term + "\" has more than one '='");
        }
        for (const std::string& value : split(values, '|')) {
            const std::string alternative = trimmed(value);
            if (alternative.empty()) {
                return failed("layer filter " + position + " \"" + term + "\" has an empty value");
            }
            parsed.values.push_back(alternative);
        }
        expression.terms.push_back(std::move(parsed));
    }
    expression.ok = true;
    return expression;
}

const std::string& field(const Korvo::API::layer_info& layer, const std::string& key) {
    if (key == "type") {
        return layer.type;
    }
    if (key == "context") {
        return layer.context;
    }
    if (key == "side") {
        return layer.side;
    }
    if (key == "polarity") {
        return layer.polarity;
    }
    return layer.name;
}

bool passes(const Korvo::API::layer_info& layer, const LayerExpression::Term& term) {
    const std::string& value = field(layer, term.key);
    for (const std::string& alternative : term.values) {
        if (term.key == "name" ? wildcardMatch(alternative, value) : alternative == value) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool wildcardMatch(const std::string& pattern, const std::string& text) {
    // Greedy matching with one backtrack point per "*": linear in practice, never exponential.
    size_t p = 0;
    size_t t = 0;
    size_t star = std::string::npos;
    size_t resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string::npos) {
            p = star + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') {
        ++p;
    }
    return p == pattern.size();
}

LayerExpression parseLayerExpression(const std::string& text) {
    const std::string expression_text = trimmed(text);
    if (!expression_text.empty() && expression_text.front() == '.') {
        return parseFilter(expression_text.substr(1));
    }
    LayerExpression expression;
    expression.ok = true;
    for (const std::string& part : split(expression_text, ';')) {
        const std::string name = trimmed(part);
        if (!name.empty() && std::find(expression.names.begin(), expression.names.end(), name) ==
                                 expression.names.end()) {
            expression.names.push_back(name);
        }
    }
    return expression;
}

std::vector<std::string> resolveLayerExpression(const LayerExpression& expression,
                                                const std::vector<Korvo::API::layer_info>& matrix,
                                                std::vector<std::string>* unknown) {
    std::vector<std::string> layers;
    if (!expression.ok) {
        return layers;
    }
    if (!expression.is_filter) {
        for (const std::string& name : expression.names) {
            const bool known =
                std::any_of(matrix.begin(), matrix.end(),
                            [&name](const Korvo::API::layer_info& l) { return l.name == name; });
            if (known) {
                layers.push_back(name);
            } else if (unknown != nullptr) {
                unknown->push_back(name);
            }
        }
        return layers;
    }
    std::vector<const Korvo::API::layer_info*> ordered;
    for (const Korvo::API::layer_info& layer : matrix) {
        ordered.push_back(&layer);
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Korvo::API::layer_info* a, const Korvo::API::layer_info* b) {
                         return a->row < b->row;
                     });
    for (const Korvo::API::layer_info* layer : ordered) {
        const bool all = std::all_of(
            expression.terms.begin(), expression.terms.end(),
            [layer](const LayerExpression::Term& term) { return passes(*layer, term); });
        if (all) {
            layers.push_back(layer->name);
        }
    }
    return layers;
}

}  // namespace wcref
