#pragma once
// What the symbol list popups of the feature filter offer: every symbol used by the non-text
// features of the work layers, with the number of features that use it.

#include <QString>
#include <QStringList>

namespace wc {

struct SymbolEntries {
    QStringList shown;   // "name (count)", the name in the display unit of the handle
    QStringList engine;  // the engine's name of each, in the same order
};

// Symbols in the engine's order of names; a layer the engine cannot read is logged and skipped.
SymbolEntries symbolEntries(const void* handle, const QString& job, const QString& step,
                            const QStringList& layers);

}  // namespace wc
