#pragma once
// Saving and loading the whole form of a dialog as a named parameter set: the widget values
// plus the dialog kind's result ranges under "rangesList".

#include <QJsonObject>
#include <QList>
#include <QString>

class QObject;
class QWidget;

namespace wc {

// The "rangesList" array of `key`'s range records: {"name", "RedLv", "YellowLv", "GreenLv"}.
QJsonObject withRanges(const QString& key, QJsonObject object);

// Empty when `object` may be put back into a form: "rangesList", when present, must be an array
// of objects each naming its range and giving numeric levels.
QString rangesShapeProblem(const QJsonObject& object);

// Puts the levels of `object`'s "rangesList" into the range store of `key`, all in one batch
// (the store writes its file once). Entries that do not match the shape above are skipped.
void applyRangesList(const QString& key, const QJsonObject& object);

// Refuses a bad name or an existing set with a warning on top of `dialog`; otherwise writes
// the values of `widgets` and the ranges of `key`. True when the set was written.
bool saveParameterSet(QWidget* dialog, const QString& key, const QString& name,
                      const QList<QObject*>& widgets);

// Puts a saved set back into `widgets` and the ranges of `key`. A set that is missing or cannot
// be read leaves the form as it was, is logged, and gives false with the reason in `error`.
bool loadParameterSet(QWidget* dialog, const QString& key, const QString& name,
                      QList<QObject*>& widgets, QString* error = nullptr);

}  // namespace wc
