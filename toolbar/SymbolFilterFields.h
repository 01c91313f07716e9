#pragma once
// The symbol fields of the feature filter: the symbol list they give the filter record, adding
// a picked symbol to a field, and the test whether the filter is at its default.

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace wc {

// What the symbol fields accept: lower-case names, digits, "_", "*" for wildcards and the
// characters from "+" to "/". The ";" between names comes only from picks: kept on purpose.
QString symbolFieldPattern();

// Display text of a symbol in a field -> the engine's name of it.
using SymbolNameMap = std::map<QString, std::string>;

struct SymbolField {
    QString text;
    SymbolNameMap names;
    // Expands a "*...*" pattern into list entries "name (remark)"; unset while the field has no
    // symbol list popup.
    std::function<QStringList(const QString&)> expand;
};

struct SymbolList {
    int mode = 0;  // 1 include, 0 exclude (or no symbol filter when `symbols` is empty)
    std::vector<std::string> symbols;
};

// The include field wins when it holds anything; each name comes from the field's map, else
// from `host_convert` when set (the host's unit flag is non-zero), else from the popup's own
// typed-name conversion.
SymbolList buildSymbolList(const SymbolField& include, const SymbolField& exclude,
                           const std::function<QString(const QString&)>& host_convert);

// The field's text after adding `symbol`: the symbol alone in an empty field, else appended
// after ";" unless the text already contains it, whatever the case.
QString addSymbolToField(const QString& field, const QString& symbol);

// A typed name after a unit change: each number in it passed through `convert` and printed
// with at most six significant digits ("r10" in mil is "r0.254" in mm).
QString reexpressSymbolNumbers(const QString& name, const std::function<double(double)>& convert);

// A symbol field after a unit change: names picked from the view or a list (those in `names`)
// are shown again from their engine names through `show`, typed ones have their numbers passed
// through `convert`. `names` then holds the picked names as they are shown now.
QString reexpressSymbolField(const QString& text, SymbolNameMap& names,
                             const std::function<QString(const std::string&)>& show,
                             const std::function<double(double)>& convert);

struct FilterFace {
    int feature_type = 127;
    QString include_symbols;
    QString exclude_symbols;
    int profile = 0;
    QString include_attributes;
    QString exclude_attributes;
};

// Everything passes: all types and polarities, no symbol or attribute text, all profile.
bool isDefaultFilter(const FilterFace& face);

}  // namespace wc
