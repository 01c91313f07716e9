#include "ParameterSetStore.h"

#include <glog/logging.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSaveFile>

namespace wc {
namespace {

constexpr int kMaxNameLength = 128;
const QString kSuffix = QStringLiteral(".json");

void setError(QString* error, const QString& text) {
    if (error != nullptr) {
        *error = text;
    }
}

}  // namespace

ParameterSetStore::ParameterSetStore(const QString& key) : key_(key) {}

QString ParameterSetStore::folder() const {
    return QDir::current().absoluteFilePath(QStringLiteral("ERFconfig/") + key_) + QLatin1Char('/');
}

QString ParameterSetStore::filePath(const QString& name) const {
    return folder() + name + kSuffix;
}

QString ParameterSetStore::nameProblem(const QString& name) {
    const QString prefix = QStringLiteral("Illegal template name: ");
    if (name.trimmed().isEmpty()) {
        return prefix + QStringLiteral("the name is empty");
    }
    if (name.size() > kMaxNameLength) {
        return prefix + QStringLiteral("the name is longer than %1 characters").arg(kMaxNameLength);
    }
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\'))) {
        return prefix + QStringLiteral("\"%1\" contains a path separator").arg(name);
    }
    if (name.contains(QLatin1Char(':'))) {
        return prefix + QStringLiteral("\"%1\" contains a drive letter or ':'").arg(name);
    }
    if (name.startsWith(QLatin1Char('.'))) {
        return prefix + QStringLiteral("\"%1\" begins with '.'").arg(name);
    }
    for (const QChar c : name) {
        if (c.category() == QChar::Other_Control) {
            return prefix + QStringLiteral("the name contains a control character");
        }
        if (QStringLiteral("<>\"|?*").contains(c)) {
            return prefix + QStringLiteral("\"%1\" contains '%2'").arg(name, QString(c));
        }
    }
    return QString();
}

bool ParameterSetStore::exists(const QString& name) const {
    return nameProblem(name).isEmpty() && QFileInfo::exists(filePath(name));
}

QStringList ParameterSetStore::names() const {
    QStringList result;
    const QFileInfoList files = QDir(folder()).entryInfoList(
        QStringList{QStringLiteral("*") + kSuffix}, QDir::Files, QDir::Name);
    for (const QFileInfo& file : files) {
        const QString name = file.completeBaseName();
        if (nameProblem(name).isEmpty()) {
            result.append(name);
        }
    }
    return result;
}

ParameterSetStore::SaveResult ParameterSetStore::save(const QString& name,
                                                      const QJsonObject& object, QString* error) {
    const QString problem = nameProblem(name);
    if (!problem.isEmpty()) {
        setError(error, problem);
        return SaveResult::BadName;
    }
    if (exists(name)) {
        setError(error, name + QStringLiteral(" have a same name file!"));
        return SaveResult::Exists;
    }
    if (!QDir().mkpath(folder())) {
        setError(error, QStringLiteral("Cannot create the folder ") + folder());
        LOG(ERROR) << "cannot create " << folder().toStdString();
        return SaveResult::WriteFailed;
    }
    QSaveFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly)) {
        setError(error, QStringLiteral("Cannot write ") + file.fileName() + QStringLiteral(": ") +
                            file.errorString());
        LOG(ERROR) << "cannot open " << file.fileName().toStdString() << ": "
                   << file.errorString().toStdString();
        return SaveResult::WriteFailed;
    }
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Indented);
    // A full disk shows only when the buffer is flushed; commit() alone would still put an
    // empty file in place of the old one.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        setError(error, QStringLiteral("Cannot write ") + file.fileName() + QStringLiteral(": ") +
                            file.errorString());
        LOG(ERROR) << "cannot write " << file.fileName().toStdString() << ": "
                   << file.errorString().toStdString();
        return SaveResult::WriteFailed;
    }
    LOG(INFO) << "parameter set saved to " << file.fileName().toStdString();
    return SaveResult::Saved;
}

ParameterSetStore::LoadResult ParameterSetStore::load(const QString& name, QJsonObject& out,
                                                      QString* error) const {
    const QString problem = nameProblem(name);
    if (!problem.isEmpty()) {
        setError(error, problem);
        return LoadResult::BadName;
    }
    if (!exists(name)) {
        setError(error, QStringLiteral("No template named ") + name);
        return LoadResult::Missing;
    }
    QFile file(filePath(name));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        setError(error, QStringLiteral("Cannot read ") + file.fileName() + QStringLiteral(": ") +
                            file.errorString());
        return LoadResult::Unreadable;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parse);
    if (parse.error != QJsonParseError::NoError) {
        setError(error, file.fileName() + QStringLiteral(" is not JSON: ") + parse.errorString() +
                            QStringLiteral(" at offset ") + QString::number(parse.offset));
        return LoadResult::NotJson;
    }
    if (!document.isObject()) {
        setError(error, file.fileName() + QStringLiteral(" does not hold a JSON object"));
        return LoadResult::WrongShape;
    }
    out = document.object();
    return LoadResult::Loaded;
}

bool ParameterSetStore::remove(const QString& name) {
    if (!nameProblem(name).isEmpty()) {
        return false;
    }
    return QFile::remove(filePath(name));
}

}  // namespace wc
