#pragma once
// What the feature filter and its small popups share: children made with an object name and a
// text that follows the language, the wildcard matching of the symbol list and the search, list
// rows that keep a key beside their text, and the bottom row of buttons.

#include <QLatin1String>
#include <QList>
#include <QRegularExpression>
#include <QStringList>

#include "frame/DialogTexts.h"

class QHBoxLayout;
class QListWidget;
class QWidget;

namespace wc {

// A child of `dialog` named `name`; its text (when given) follows the dialog's language.
template <class W>
W* makeNamed(QWidget* dialog, const char* name, const char* text = nullptr) {
    auto* widget = new W(dialog);
    widget->setObjectName(QLatin1String(name));
    if (text != nullptr) {
        setSourceText(dialog, widget, text);
    }
    return widget;
}

// "*" any run, "?" one character, whatever the case; the whole text must match.
QRegularExpression wildcardMatcher(const QString& pattern);
// What a find field looks for: its text as a wildcard pattern when it holds a "*", else the
// text anywhere.
QRegularExpression findMatcher(const QString& text);

// The rows of `list` replaced by `texts`, each keeping its key (the text itself when `keys` is
// shorter) under Qt::UserRole.
void setKeyedRows(QListWidget* list, const QStringList& texts, const QStringList& keys);

// Shows a popup window on top of the others.
void showRaised(QWidget* popup);

// Widgets side by side with a stretch between each two.
QHBoxLayout* makeButtonRow(const QList<QWidget*>& widgets);

}  // namespace wc
