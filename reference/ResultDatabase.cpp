#include "ResultDatabase.h"

#include <glog/logging.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QVariant>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>

#include "Common.h"
#include "Korvo_UIAPI.h"
#include "ResultRecord.h"

namespace wcref {
namespace {

using Korvo::API::dms_signal_check_params;
using Korvo::API::signal_check_result_map;

std::mutex& settingsLock() {
    static std::mutex lock;
    return lock;
}

ResultDatabaseSettings& settings() {
    static ResultDatabaseSettings value;
    return value;
}

ResultDatabaseSettings effectiveSettings() {
    ResultDatabaseSettings chosen;
    {
        std::lock_guard<std::mutex> guard(settingsLock());
        chosen = settings();
    }
    if (chosen.driver.isEmpty()) {
        chosen.driver = QStringLiteral("QSQLITE");
        chosen.name = Common::getPath_database() + QStringLiteral("/results.sqlite");
    }
    return chosen;
}

const QString kTimeFormat = QStringLiteral("yyyy.MM.dd hh:mm:ss");

QString now() {
    return QDateTime::currentDateTime().toString(kTimeFormat);
}

// The SQLite files this process has opened. One of them missing later was removed while in
// use: making it anew would hide that every stored check and waiver is gone.
std::mutex& seenLock() {
    static std::mutex lock;
    return lock;
}

std::set<QString>& seenFiles() {
    static std::set<QString> files;
    return files;
}

bool wasSeen(const QString& path) {
    std::lock_guard<std::mutex> guard(seenLock());
    return seenFiles().count(QFileInfo(path).absoluteFilePath()) > 0;
}

void markSeen(const QString& path) {
    std::lock_guard<std::mutex> guard(seenLock());
    seenFiles().insert(QFileInfo(path).absoluteFilePath());
}

QString removedText(const QString& path) {
    return QStringLiteral("The result database %1 is no longer there.")
        .arg(QDir::toNativeSeparators(path));
}

QString unusableText(const QString& path, const QString& why) {
    return QStringLiteral("The result database %1 cannot be used: %2.")
        .arg(QDir::toNativeSeparators(path), why);
}

quint32 bigEndian32(const QByteArray& bytes, int at) {
    quint32 value = 0;
    for (int k = 0; k < 4; ++k) {
        value = value << 8 | static_cast<quint8>(bytes[at + k]);
    }
    return value;
}

bool hasBytes(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.size() > 0;
}

// Why the existing SQLite file `path` is no database of ours to write to, from its header
// alone (a full check would read every page of a large database on every call); empty when it
// is one or is still empty. A file shorter than its header says was cut off: SQLite would read
// the missing pages as damage only when it reaches them, after new rows went in.
QString sqliteDamage(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QStringLiteral("it cannot be read (%1)").arg(file.errorString());
    }
    const qint64 size = file.size();
    if (size == 0) {
        return QString();
    }
    const QByteArray header = file.read(100);
    if (header.size() < 100 || !header.startsWith(QByteArray("SQLite format 3\0", 16))) {
        return QStringLiteral("it is not an SQLite database");
    }
    const quint32 raw = static_cast<quint8>(header[16]) << 8 | static_cast<quint8>(header[17]);
    const qint64 page = raw == 1 ? 65536 : raw;
    if (page < 512 || (page & (page - 1)) != 0) {
        return QStringLiteral("its header is damaged");
    }
    // A hot journal or a write-ahead log next to the file holds pages SQLite puts back or in
    // when it opens the file; the size may then differ for a good reason.
    if (hasBytes(path + QStringLiteral("-journal")) || hasBytes(path + QStringLiteral("-wal"))) {
        return QString();
    }
    // The page count in the header is trusted by SQLite only while its change counter matches.
    const quint32 pages = bigEndian32(header, 28);
    const bool counted = pages > 0 && bigEndian32(header, 92) == bigEndian32(header, 24);
    if (size % page != 0 || (counted && size < page * pages)) {
        return QStringLiteral("it was cut off (%1 bytes)").arg(size);
    }
    return QString();
}

int hostTimeoutMs() {
    const int timeout = Korvo::UIAPI::getTimeout();
    return timeout > 0 ? timeout : 0;
}

// One connection for the length of one operation, on the calling thread. It is open only on a
// database of ours, with every table in place.
class Connection {
public:
    Connection() : name_(QStringLiteral("wc_results_%1").arg(++counter())) {
        const ResultDatabaseSettings chosen = effectiveSettings();
        sqlite_ = chosen.driver == QLatin1String("QSQLITE");
        if (sqlite_ ? openFile(chosen.name) : openServer(chosen)) {
            open_ = ensureTables();
        }
    }
    ~Connection() {
        { QSqlDatabase::database(name_, false).close(); }
        QSqlDatabase::removeDatabase(name_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return open_; }
    bool isSqlite() const { return sqlite_; }
    const QString& error() const { return error_; }
    QSqlDatabase db() const { return QSqlDatabase::database(name_, false); }

private:
    static std::atomic<int>& counter() {
        static std::atomic<int> value{0};
        return value;
    }

    bool fail(const QString& text) {
        error_ = text;
        return false;
    }

    bool openFile(const QString& path);
    bool openServer(const ResultDatabaseSettings& chosen);
    bool ensureTables();

    QString name_;
    bool open_ = false;
    bool sqlite_ = true;
    QString error_;
    QStringList tables_;  // SQLite: the tables the file holds
};

bool Connection::openFile(const QString& path) {
    const bool existed = QFileInfo::exists(path);
    if (!existed && wasSeen(path)) {
        return fail(removedText(path));
    }
    if (existed) {
        const QString damage = sqliteDamage(path);
        if (!damage.isEmpty()) {
            return fail(unusableText(path, damage));
        }
    } else if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        return fail(QStringLiteral("cannot create the folder of ") + path);
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
    QString options =
        QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(hostTimeoutMs() > 0 ? hostTimeoutMs() : 5000);
    if (existed) {
        // "mode=rw" opens without creating: a file removed since the check stays missing.
        options += QStringLiteral(";QSQLITE_OPEN_URI");
        db.setDatabaseName(
            QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded) +
            QStringLiteral("?mode=rw"));
    } else {
        db.setDatabaseName(path);
    }
    db.setConnectOptions(options);
    if (!db.open()) {
        return fail(existed && !QFileInfo::exists(path)
                        ? removedText(path)
                        : unusableText(path, db.lastError().text()));
    }
    QSqlQuery tables(db);
    if (!tables.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))) {
        return fail(unusableText(path, tables.lastError().text()));
    }
    while (tables.next()) {
        tables_.append(tables.value(0).toString());
    }
    if (!tables_.isEmpty() && !tables_.contains(QStringLiteral("check_results"))) {
        return fail(unusableText(path, QStringLiteral("it holds other data than stored checks")));
    }
    markSeen(path);
    return true;
}

bool Connection::openServer(const ResultDatabaseSettings& chosen) {
    QSqlDatabase db = QSqlDatabase::addDatabase(chosen.driver, name_);
    db.setDatabaseName(chosen.name);
    if (!chosen.host.isEmpty()) {
        db.setHostName(chosen.host);
    }
    if (chosen.port > 0) {
        db.setPort(chosen.port);
    }
    if (!chosen.user.isEmpty()) {
        db.setUserName(chosen.user);
    }
    if (!chosen.password.isEmpty()) {
        db.setPassword(chosen.password);
    }
    // Without it the client waits for a silent server as long as the system lets a socket
    // wait; the server's client library takes no less than 2 s.
    if (hostTimeoutMs() > 0 && chosen.driver == QLatin1String("QPSQL")) {
        db.setConnectOptions(
            QStringLiteral("connect_timeout=%1").arg(std::max(2, (hostTimeoutMs() + 999) / 1000)));
    }
    if (!db.open()) {
        return fail(QStringLiteral("The result database on %1 cannot be reached: %2")
                        .arg(chosen.host, db.lastError().text()));
    }
    return true;
}

// A write transaction: SQLite takes its write lock at the start ("IMMEDIATE"), so that two
// connections never both read and then wait for each other to write. What is not committed is
// rolled back.
class Transaction {
public:
    explicit Transaction(const Connection& connection) : db_(connection.db()) {
        QSqlQuery begin(db_);
        open_ = begin.exec(connection.isSqlite() ? QStringLiteral("BEGIN IMMEDIATE")
                                                 : QStringLiteral("BEGIN"));
        error_ = open_ ? QString() : begin.lastError().text();
    }
    ~Transaction() {
        if (open_) {
            QSqlQuery(db_).exec(QStringLiteral("ROLLBACK"));
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool begun() const { return open_; }
    bool commit() {
        QSqlQuery end(db_);
        if (!end.exec(QStringLiteral("COMMIT"))) {
            error_ = end.lastError().text();
            return false;
        }
        open_ = false;
        return true;
    }
    const QString& error() const { return error_; }

private:
    QSqlDatabase db_;
    bool open_ = false;
    QString error_;
};

bool Connection::ensureTables() {
    const QStringList ours{QStringLiteral("check_results"), QStringLiteral("waivers"),
                           QStringLiteral("waiver_reasons")};
    QSqlQuery query(db());
    if (sqlite_) {
        if (std::all_of(ours.begin(), ours.end(),
                        [this](const QString& table) { return tables_.contains(table); })) {
            return true;
        }
    } else if (query.exec(QStringLiteral("SELECT count(*) FROM information_schema.tables WHERE "
                                         "table_schema = current_schema() AND table_name IN "
                                         "('check_results', 'waivers', 'waiver_reasons')")) &&
               query.next() && query.value(0).toInt() == ours.size()) {
        return true;
    }
    const QString id = sqlite_ ? QStringLiteral("id INTEGER PRIMARY KEY AUTOINCREMENT")
                               : QStringLiteral("id SERIAL PRIMARY KEY");
    QStringList statements{
        QStringLiteral("CREATE TABLE IF NOT EXISTS check_results (%1, kind TEXT NOT NULL, job "
                       "TEXT, step TEXT, created TEXT, description TEXT, params TEXT, result "
                       "TEXT)"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS waivers (%1, kind TEXT NOT NULL, job TEXT NOT "
                       "NULL, step TEXT NOT NULL, scope INTEGER NOT NULL, item INTEGER NOT NULL, "
                       "layer TEXT NOT NULL, nets TEXT NOT NULL, identity TEXT NOT NULL, covers "
                       "TEXT NOT NULL UNIQUE)"),
        QStringLiteral("CREATE INDEX IF NOT EXISTS waivers_of ON waivers (kind, job, step)"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS waiver_reasons (%1, waiver_id INTEGER NOT NULL "
                       "REFERENCES waivers (id), reason TEXT NOT NULL, user_name TEXT NOT NULL, "
                       "created TEXT NOT NULL)"),
        QStringLiteral(
            "CREATE INDEX IF NOT EXISTS waiver_reasons_of ON waiver_reasons (waiver_id)")};
    // PostgreSQL lets two sessions that create the same table at once collide on its type;
    // a lock held to the end of the transaction queues them.
    if (!sqlite_) {
        statements.prepend(QStringLiteral("SELECT pg_advisory_xact_lock(20240611)"));
    }
    Transaction transaction(*this);
    if (!transaction.begun()) {
        return fail(transaction.error());
    }
    for (QString& statement : statements) {
        if (!query.exec(statement.replace(QLatin1String("%1"), id))) {
            return fail(query.lastError().text());
        }
    }
    return transaction.commit() || fail(transaction.error());
}

// Prepares `sql`, binds `values` in order and runs it; false with the reason in `error`.
bool run(QSqlQuery& query, const QString& sql, const QVariantList& values, QString& error) {
    query.setForwardOnly(true);
    if (!query.prepare(sql)) {
        error = query.lastError().text();
        return false;
    }
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        error = query.lastError().text();
        return false;
    }
    return true;
}

QString text(const std::string& value) {
    return QString::fromStdString(value);
}

bool failed(std::string& error, const QString& why) {
    error = why.toStdString();
    LOG(ERROR) << "result database: " << error;
    return false;
}

// Why a waiver cannot be stored; empty when it can.
QString waiverRefusal(const Korvo::API::analysis_waiver& waiver) {
    if (QString::fromStdString(waiver.reason).trimmed().isEmpty()) {
        return QStringLiteral("A waiver needs a reason.");
    }
    if (waiver.kind.empty() || waiver.job.empty() || waiver.step.empty()) {
        return QStringLiteral("A waiver needs an analysis, a job and a step.");
    }
    switch (waiver.scope) {
        case Korvo::API::waive_hit:
            return waiver.identity.empty()
                       ? QStringLiteral("A waiver of one hit needs the hit's identity.")
                       : QString();
        case Korvo::API::waive_net_pair:
            return waiver.nets.size() != 2
                       ? QStringLiteral("A waiver of a net pair needs two nets.")
                       : QString();
    }
    return QStringLiteral("A waiver covers one hit or one net pair.");
}

// The waiver as it is kept: nets ascending; a net pair without layer or identity, since it
// covers the pair on every layer.
Korvo::API::analysis_waiver kept(Korvo::API::analysis_waiver waiver) {
    std::sort(waiver.nets.begin(), waiver.nets.end());
    if (waiver.scope == Korvo::API::waive_net_pair) {
        waiver.layer.clear();
        waiver.identity.clear();
    }
    return waiver;
}

QString netsText(const std::vector<std::string>& nets) {
    QJsonArray array;
    for (const std::string& net : nets) {
        array.append(text(net));
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

bool netsFromText(const QString& stored, std::vector<std::string>& nets) {
    const QJsonDocument document = QJsonDocument::fromJson(stored.toUtf8());
    for (const QJsonValue& net : document.array()) {
        if (!net.isString()) {
            return false;
        }
        nets.push_back(net.toString().toStdString());
    }
    return document.isArray();
}

// What a waiver covers as one key of fixed length: the SHA-256 of its kind, job, step, scope,
// item, layer, nets and identity written as a JSON array, which no two different waivers share
// whatever their texts hold, and which fits any unique index however long the identity.
QString coversKey(const Korvo::API::analysis_waiver& waiver) {
    const QJsonArray fields{text(waiver.kind),     text(waiver.job),     text(waiver.step),
                            waiver.scope,          waiver.item,          text(waiver.layer),
                            netsText(waiver.nets), text(waiver.identity)};
    return QString::fromLatin1(
        QCryptographicHash::hash(QJsonDocument(fields).toJson(QJsonDocument::Compact),
                                 QCryptographicHash::Sha256)
            .toHex());
}

// Stores the waiver, or adds its reason to the one that covers the same hits, in one
// transaction; the waiver's id, or -1 with the reason in `why`. `added` tells a new waiver.
int storeWaiver(const Connection& connection, const Korvo::API::analysis_waiver& waiver,
                bool& added, QString& why) {
    Transaction transaction(connection);
    if (!transaction.begun()) {
        why = transaction.error();
        return -1;
    }
    const QString covers = coversKey(waiver);
    QSqlQuery query(connection.db());
    if (!run(
            query,
            QStringLiteral("INSERT INTO waivers (kind, job, step, scope, item, layer, nets, "
                           "identity, covers) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT "
                           "(covers) DO NOTHING"),
            {text(waiver.kind), text(waiver.job), text(waiver.step), static_cast<int>(waiver.scope),
             waiver.item, text(waiver.layer), netsText(waiver.nets), text(waiver.identity), covers},
            why)) {
        return -1;
    }
    added = query.numRowsAffected() == 1;
    if (!run(query, QStringLiteral("SELECT id FROM waivers WHERE covers = ?"), {covers}, why)) {
        return -1;
    }
    const int id = query.next() ? query.value(0).toInt() : -1;
    query.finish();
    if (id <= 0) {
        why = QStringLiteral("the database gave no id");
        return -1;
    }
    if (!run(query,
             QStringLiteral("INSERT INTO waiver_reasons (waiver_id, reason, user_name, created) "
                            "VALUES (?, ?, ?, ?)"),
             {id, text(waiver.reason), text(waiver.user), now()}, why)) {
        return -1;
    }
    if (!transaction.commit()) {
        why = transaction.error();
        return -1;
    }
    return id;
}

}  // namespace

void setResultDatabase(const ResultDatabaseSettings& chosen) {
    std::lock_guard<std::mutex> guard(settingsLock());
    settings() = chosen;
}

ResultDatabaseSettings resultDatabase() {
    return effectiveSettings();
}

bool clearResultDatabase() {
    Connection connection;
    if (!connection.isOpen()) {
        LOG(ERROR) << "result database: " << connection.error().toStdString();
        return false;
    }
    Transaction transaction(connection);
    if (!transaction.begun()) {
        LOG(ERROR) << "result database: " << transaction.error().toStdString();
        return false;
    }
    QSqlQuery query(connection.db());
    for (const char* table : {"waiver_reasons", "waivers", "check_results"}) {
        if (!query.exec(QStringLiteral("DELETE FROM ") + QLatin1String(table))) {
            LOG(ERROR) << "result database: " << query.lastError().text().toStdString();
            return false;
        }
    }
    if (!transaction.commit()) {
        LOG(ERROR) << "result database: " << transaction.error().toStdString();
        return false;
    }
    return true;
}

namespace resultdb {

Quorin::DBS_API::CreateSesult insertSignalCheck(const dms_signal_check_params& params,
                                                const signal_check_result_map& result) {
    Quorin::DBS_API::CreateSesult answer;
    Connection connection;
    if (!connection.isOpen()) {
        answer.message = connection.error().toStdString();
        LOG(ERROR) << "result database: " << answer.message;
        return answer;
    }
    QSqlQuery query(connection.db());
    const QString insert = QStringLiteral(
        "INSERT INTO check_results (kind, job, step, created, description, params, result) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)");
    query.prepare(connection.isSqlite() ? insert : insert + QStringLiteral(" RETURNING id"));
    query.addBindValue(QStringLiteral("SignalLayer"));
    query.addBindValue(QString::fromStdString(params.job));
    query.addBindValue(QString::fromStdString(params.step));
    query.addBindValue(now());
    query.addBindValue(QStringLiteral("layers ") + QString::fromStdString(params.params.layers));
    query.addBindValue(resultrecord::paramsToJson(params));
    query.addBindValue(resultrecord::resultToJson(result));
    if (!query.exec()) {
        answer.message = query.lastError().text().toStdString();
        LOG(ERROR) << "result database: " << answer.message;
        return answer;
    }
    answer.id = connection.isSqlite() ? query.lastInsertId().toInt()
                                      : (query.next() ? query.value(0).toInt() : -1);
    answer.success = answer.id > 0;
    answer.message = answer.success ? "stored as " + std::to_string(answer.id)
                                    : std::string("the database gave no id");
    return answer;
}

bool loadSignalCheck(int id, dms_signal_check_params* params, signal_check_result_map& result) {
    Connection connection;
    if (!connection.isOpen()) {
        LOG(ERROR) << "result database: " << connection.error().toStdString();
        return false;
    }
    QSqlQuery query(connection.db());
    query.prepare(QStringLiteral(
        "SELECT params, result FROM check_results WHERE id = ? AND kind = 'SignalLayer'"));
    query.addBindValue(id);
    if (!query.exec() || !query.next()) {
        LOG(ERROR) << "no stored signal layer check with id " << id;
        return false;
    }
    dms_signal_check_params record;
    signal_check_result_map read;
    if (!resultrecord::paramsFromJson(query.value(0).toString(), record) ||
        !resultrecord::resultFromJson(query.value(1).toString(), read)) {
        LOG(ERROR) << "stored signal layer check " << id << " cannot be read";
        return false;
    }
    if (params != nullptr) {
        *params = std::move(record);
    }
    result = std::move(read);
    return true;
}

std::map<int, std::vector<std::string>> master() {
    std::map<int, std::vector<std::string>> rows;
    Connection connection;
    if (!connection.isOpen()) {
        LOG(ERROR) << "result database: " << connection.error().toStdString();
        return rows;
    }
    QSqlQuery query(connection.db());
    if (!query.exec(QStringLiteral(
            "SELECT id, kind, job, step, created, description FROM check_results ORDER BY id"))) {
        LOG(ERROR) << "result database: " << query.lastError().text().toStdString();
        return rows;
    }
    while (query.next()) {
        std::vector<std::string>& fields = rows[query.value(0).toInt()];
        for (int column = 1; column <= 5; ++column) {
            fields.push_back(query.value(column).toString().toStdString());
        }
    }
    return rows;
}

Quorin::DBS_API::CreateSesult insertWaiver(const Korvo::API::analysis_waiver& given) {
    Quorin::DBS_API::CreateSesult answer;
    QString why = waiverRefusal(given);
    if (!why.isEmpty()) {
        failed(answer.message, why);
        return answer;
    }
    Connection connection;
    if (!connection.isOpen()) {
        failed(answer.message, connection.error());
        return answer;
    }
    bool added = false;
    answer.id = storeWaiver(connection, kept(given), added, why);
    answer.success = answer.id > 0;
    if (!answer.success) {
        failed(answer.message, why);
        return answer;
    }
    answer.message = (added ? "stored as " : "reason added to waiver ") + std::to_string(answer.id);
    return answer;
}

bool loadWaivers(const std::string& kind, const std::string& job, const std::string& step,
                 std::vector<Korvo::API::analysis_waiver>& waivers, std::string& error) {
    Connection connection;
    if (!connection.isOpen()) {
        return failed(error, connection.error());
    }
    QSqlQuery query(connection.db());
    QString why;
    if (!run(query,
             QStringLiteral("SELECT w.id, w.scope, w.item, w.layer, w.nets, w.identity, r.reason, "
                            "r.user_name, r.created FROM waivers w LEFT JOIN waiver_reasons r ON "
                            "r.waiver_id = w.id WHERE w.kind = ? AND w.job = ? AND w.step = ? "
                            "ORDER BY w.id, r.id"),
             {text(kind), text(job), text(step)}, why)) {
        return failed(error, why);
    }
    std::vector<Korvo::API::analysis_waiver> read;
    while (query.next()) {
        const int id = query.value(0).toInt();
        if (read.empty() || read.back().id != id) {
            Korvo::API::analysis_waiver waiver;
            waiver.id = id;
            waiver.kind = kind;
            waiver.job = job;
            waiver.step = step;
            waiver.scope = static_cast<Korvo::API::waiver_scope>(query.value(1).toInt());
            waiver.item = query.value(2).toInt();
            waiver.layer = query.value(3).toString().toStdString();
            waiver.identity = query.value(5).toString().toStdString();
            if (!netsFromText(query.value(4).toString(), waiver.nets)) {
                return failed(error,
                              QStringLiteral("The stored waiver %1 cannot be read.").arg(id));
            }
            read.push_back(std::move(waiver));
        }
        if (!query.isNull(6)) {
            Korvo::API::analysis_waiver& waiver = read.back();
            waiver.history.push_back({query.value(6).toString().toStdString(),
                                      query.value(7).toString().toStdString(),
                                      query.value(8).toString().toStdString()});
            waiver.reason = waiver.history.back().reason;
            waiver.user = waiver.history.back().user;
            waiver.time = waiver.history.back().time;
        }
    }
    waivers = std::move(read);
    return true;
}

bool deleteWaiver(int id, std::string& error) {
    Connection connection;
    if (!connection.isOpen()) {
        return failed(error, connection.error());
    }
    Transaction transaction(connection);
    if (!transaction.begun()) {
        return failed(error, transaction.error());
    }
    QSqlQuery query(connection.db());
    QString why;
    if (!run(query, QStringLiteral("DELETE FROM waiver_reasons WHERE waiver_id = ?"), {id}, why) ||
        !run(query, QStringLiteral("DELETE FROM waivers WHERE id = ?"), {id}, why)) {
        return failed(error, why);
    }
    if (query.numRowsAffected() != 1) {
        return failed(error, QStringLiteral("No waiver %1 is stored.").arg(id));
    }
    return transaction.commit() || failed(error, transaction.error());
}

bool listRuns(const std::string& kind, const std::string& job, const std::string& step,
              std::vector<Korvo::API::analysis_run_info>& runs, std::string& error) {
    Connection connection;
    if (!connection.isOpen()) {
        return failed(error, connection.error());
    }
    QSqlQuery query(connection.db());
    QString why;
    // Times are "yyyy.MM.dd hh:mm:ss", which sort as text in time order.
    if (!run(query,
             QStringLiteral("SELECT id, created, description FROM check_results WHERE kind = ? "
                            "AND job = ? AND step = ? ORDER BY created DESC, id DESC"),
             {text(kind), text(job), text(step)}, why)) {
        return failed(error, why);
    }
    std::vector<Korvo::API::analysis_run_info> read;
    while (query.next()) {
        read.push_back({query.value(0).toInt(), kind, job, step,
                        query.value(1).toString().toStdString(),
                        query.value(2).toString().toStdString()});
    }
    runs = std::move(read);
    return true;
}

}  // namespace resultdb
}  // namespace wcref
