#include "WaiverFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <algorithm>

#include <glog/logging.h>

namespace wc {

namespace api = Korvo::API;

namespace {

constexpr int kVersion = 1;

const char* const kNotText = QT_TRANSLATE_NOOP(
    "Waivers", "The file %1 is not a waiver file: \"%2\" is missing or not a text.");
const char* const kNotWhole = QT_TRANSLATE_NOOP(
    "Waivers", "The file %1 is not a waiver file: \"%2\" is missing or not a whole number.");
const char* const kNotList = QT_TRANSLATE_NOOP(
    "Waivers", "The file %1 is not a waiver file: \"%2\" is missing or not a list.");
const char* const kNotObject =
    QT_TRANSLATE_NOOP("Waivers", "The file %1 is not a waiver file: \"%2\" is not an object.");
const char* const kNotScope = QT_TRANSLATE_NOOP(
    "Waivers", "The file %1 is not a waiver file: \"%2\" is neither \"hit\" nor \"net pair\".");

QString translated(const char* source) {
    return QCoreApplication::translate("Waivers", source);
}

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

const char* scopeName(api::waiver_scope scope) {
    return scope == api::waive_net_pair ? "net pair" : "hit";
}

QJsonArray textList(const std::vector<std::string>& texts) {
    QJsonArray list;
    for (const std::string& text : texts) {
        list.append(qt(text));
    }
    return list;
}

QJsonObject toJson(const api::analysis_waiver& waiver) {
    QJsonArray history;
    for (const api::waiver_reason& entry : waiver.history) {
        history.append(QJsonObject{
            {"reason", qt(entry.reason)}, {"user", qt(entry.user)}, {"time", qt(entry.time)}});
    }
    return QJsonObject{
        {"id", waiver.id},
        {"kind", qt(waiver.kind)},
        {"job", qt(waiver.job)},
        {"step", qt(waiver.step)},
        {"scope", scopeName(waiver.scope)},
        {"item", waiver.item},
        {"layer", qt(waiver.layer)},
        {"nets", textList(waiver.nets)},
        {"identity", qt(waiver.identity)},
        {"reason", qt(waiver.reason)},
        {"user", qt(waiver.user)},
        {"time", qt(waiver.time)},
        {"history", history},
    };
}

// Reads the members of the file's objects. The first member that is missing or of the wrong
// kind is named in `problem`; later reads then change nothing.
class Reader {
public:
    explicit Reader(const QString& path) : path_(path) {}

    const QString& problem() const { return problem_; }
    bool ok() const { return problem_.isEmpty(); }

    std::string text(const QJsonValue& value, const QString& key) {
        if (!value.isString()) {
            refuse(kNotText, key);
            return {};
        }
        return value.toString().toStdString();
    }
    std::string text(const QJsonObject& object, const QString& prefix, const char* key) {
        return text(object.value(QLatin1String(key)), prefix + QLatin1String(key));
    }
    int whole(const QJsonObject& object, const QString& prefix, const char* key) {
        const QJsonValue value = object.value(QLatin1String(key));
        // toInt() answers its default for a fraction or a number beyond int.
        if (!value.isDouble() || double(value.toInt(0)) != value.toDouble()) {
            refuse(kNotWhole, prefix + QLatin1String(key));
            return 0;
        }
        return value.toInt();
    }
    QJsonArray list(const QJsonObject& object, const QString& prefix, const char* key) {
        const QJsonValue value = object.value(QLatin1String(key));
        if (!value.isArray()) {
            refuse(kNotList, prefix + QLatin1String(key));
        }
        return value.toArray();
    }
    QJsonObject object(const QJsonValue& value, const QString& key) {
        if (!value.isObject()) {
            refuse(kNotObject, key);
        }
        return value.toObject();
    }
    void refuse(const char* message, const QString& key) {
        if (problem_.isEmpty()) {
            problem_ = translated(message).arg(path_, key);
        }
    }

private:
    QString path_;
    QString problem_;
};

api::analysis_waiver waiverOf(Reader& read, const QJsonValue& value, const QString& at) {
    const QJsonObject object = read.object(value, at);
    const QString prefix = at + QLatin1Char('.');
    api::analysis_waiver waiver;
    waiver.kind = read.text(object, prefix, "kind");
    waiver.job = read.text(object, prefix, "job");
    waiver.step = read.text(object, prefix, "step");
    const std::string scope = read.text(object, prefix, "scope");
    if (scope == scopeName(api::waive_net_pair)) {
        waiver.scope = api::waive_net_pair;
    } else if (read.ok() && scope != scopeName(api::waive_hit)) {
        read.refuse(kNotScope, prefix + QStringLiteral("scope"));
    }
    waiver.item = read.whole(object, prefix, "item");
    waiver.layer = read.text(object, prefix, "layer");
    const QJsonArray nets = read.list(object, prefix, "nets");
    for (int i = 0; i < nets.size(); ++i) {
        waiver.nets.push_back(read.text(nets[i], prefix + QStringLiteral("nets[%1]").arg(i)));
    }
    std::sort(waiver.nets.begin(), waiver.nets.end());
    waiver.identity = read.text(object, prefix, "identity");
    waiver.reason = read.text(object, prefix, "reason");
    waiver.user = read.text(object, prefix, "user");
    waiver.time = read.text(object, prefix, "time");
    const QJsonArray history = read.list(object, prefix, "history");
    for (int i = 0; i < history.size(); ++i) {
        const QString entry_at = prefix + QStringLiteral("history[%1]").arg(i);
        const QJsonObject entry = read.object(history[i], entry_at);
        const QString entry_prefix = entry_at + QLatin1Char('.');
        waiver.history.push_back({read.text(entry, entry_prefix, "reason"),
                                  read.text(entry, entry_prefix, "user"),
                                  read.text(entry, entry_prefix, "time")});
    }
    return waiver;
}

// Empty when the file's (or a waiver's) kind, job and step are the scope's.
QString otherScope(const QString& path, const TriageScope& found, const TriageScope& scope) {
    if (found.kind != scope.kind) {
        return QCoreApplication::translate(
                   "Waivers",
                   "The waiver file %1 holds waivers of the %2 analysis, not of the %3 analysis.")
            .arg(path, qt(found.kind), qt(scope.kind));
    }
    if (found.job != scope.job || found.step != scope.step) {
        return QCoreApplication::translate(
                   "Waivers", "The waiver file %1 is for job %2, step %3, not for job %4, step %5.")
            .arg(path, qt(found.job), qt(found.step), qt(scope.job), qt(scope.step));
    }
    return {};
}

// The waivers of a parsed file, or the reason it is refused. Texts are filled in with one arg()
// call each, so that a "%1" in a file or job name is not taken for a place of its own.
QString readDocument(const QString& path, const QJsonDocument& document, const TriageScope& scope,
                     std::vector<api::analysis_waiver>& out) {
    if (!document.isObject()) {
        return QCoreApplication::translate(
                   "Waivers", "The file %1 is not a waiver file: it holds no JSON object.")
            .arg(path);
    }
    const QJsonObject root = document.object();
    Reader read(path);
    if (read.text(root, {}, "format") != "waivers") {
        return read.ok() ? QCoreApplication::translate(
                               "Waivers",
                               "The file %1 is not a waiver file: \"format\" is not \"waivers\".")
                               .arg(path)
                         : read.problem();
    }
    const int version = read.whole(root, {}, "version");
    if (!read.ok() || version != kVersion) {
        return read.ok() ? QCoreApplication::translate(
                               "Waivers",
                               "The waiver file %1 is of version %2; this program "
                               "reads version %3.")
                               .arg(path, QString::number(version), QString::number(kVersion))
                         : read.problem();
    }
    const TriageScope found{read.text(root, {}, "kind"), read.text(root, {}, "job"),
                            read.text(root, {}, "step")};
    const QJsonArray list = read.list(root, {}, "waivers");
    if (!read.ok()) {
        return read.problem();
    }
    if (const QString other = otherScope(path, found, scope); !other.isEmpty()) {
        return other;
    }
    for (int i = 0; i < list.size() && read.ok(); ++i) {
        api::analysis_waiver waiver = waiverOf(read, list[i], QStringLiteral("waivers[%1]").arg(i));
        const QString other = otherScope(path, {waiver.kind, waiver.job, waiver.step}, scope);
        if (read.ok() && !other.isEmpty()) {
            return other;
        }
        waiver.id = -1;  // the database that reads the file gives its own
        out.push_back(std::move(waiver));
    }
    return read.problem();
}

void setError(QString* error, const QString& text) {
    LOG(ERROR) << text.toStdString();
    if (error != nullptr) {
        *error = text;
    }
}

}  // namespace

bool writeWaiverFile(const QString& path, const TriageScope& scope,
                     const std::vector<api::analysis_waiver>& waivers, QString* error) {
    QJsonArray list;
    for (const api::analysis_waiver& waiver : waivers) {
        list.append(toJson(waiver));
    }
    const QJsonObject root{{"format", "waivers"},    {"version", kVersion},
                           {"kind", qt(scope.kind)}, {"job", qt(scope.job)},
                           {"step", qt(scope.step)}, {"waivers", list}};
    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Indented);
    QSaveFile file(path);
    // A full disk shows only when the buffer is flushed; commit() alone would put an empty file
    // in place of the old one.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        !file.commit()) {
        setError(error,
                 QCoreApplication::translate("Waivers", "The waiver file %1 cannot be written: %2.")
                     .arg(path, file.errorString()));
        return false;
    }
    LOG(INFO) << waivers.size() << " waivers written to " << path.toStdString();
    return true;
}

bool readWaiverFile(const QString& path, const TriageScope& scope,
                    std::vector<api::analysis_waiver>& waivers, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        setError(error,
                 QCoreApplication::translate("Waivers", "The waiver file %1 cannot be read: %2.")
                     .arg(path, file.errorString()));
        return false;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parse);
    if (parse.error != QJsonParseError::NoError) {
        setError(error, QCoreApplication::translate("Waivers",
                                                    "The waiver file %1 is not JSON: %2 at "
                                                    "offset %3.")
                            .arg(path, parse.errorString(), QString::number(parse.offset)));
        return false;
    }
    std::vector<api::analysis_waiver> read;
    const QString problem = readDocument(path, document, scope, read);
    if (!problem.isEmpty()) {
        setError(error, problem);
        return false;
    }
    waivers = std::move(read);
    LOG(INFO) << waivers.size() << " waivers read from " << path.toStdString();
    return true;
}

}  // namespace wc
