#pragma once
// Helpers shared by several dialogs translate texts they did not write themselves (messages built
// at run time, unit names from the UI services). They translate in the context of the dialog's
// class, as the dialog's own tr() would.

#include <QString>

class QObject;

namespace wc {

// tr(text) as called from inside `owner`'s class; QObject's context when owner is null.
QString translateFor(const QObject* owner, const QString& text);
// The same with a count: "%n" in the text stands for `n`, and a catalogue may give each plural
// form a wording of its own.
QString translateFor(const QObject* owner, const char* text, int n);

}  // namespace wc
