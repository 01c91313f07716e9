#pragma once
// Named parameter sets of one dialog kind: one indented JSON file per name in
// "./ERFconfig/<key>/" below the working directory. Names are checked so that no set can be
// written outside its folder; an existing set is never overwritten; writes are atomic; a file
// that cannot be read as a JSON object is reported, never half-used.

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT ParameterSetStore {
public:
    enum class SaveResult { Saved, Exists, BadName, WriteFailed };
    enum class LoadResult { Loaded, Missing, BadName, Unreadable, NotJson, WrongShape };

    // `key` is the dialog kind's range key, such as "TeardropsRanges".
    explicit ParameterSetStore(const QString& key);

    const QString& key() const { return key_; }
    // Absolute path of the folder, ending in "/", below the current working directory.
    QString folder() const;
    // Path of the file of `name` (not checked).
    QString filePath(const QString& name) const;

    // Empty when `name` may be used; otherwise the message to show.
    static QString nameProblem(const QString& name);

    bool exists(const QString& name) const;
    // Names of the saved sets, sorted, without ".json".
    QStringList names() const;

    SaveResult save(const QString& name, const QJsonObject& object, QString* error = nullptr);
    // `out` is changed only when the result is Loaded.
    LoadResult load(const QString& name, QJsonObject& out, QString* error = nullptr) const;
    // For a dialog that asked the user before replacing a set.
    bool remove(const QString& name);

private:
    QString key_;
};

}  // namespace wc
