#include "ResultDatabase.h"

#include <glog/logging.h>

#include <QDateTime>
#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <atomic>
#include <mutex>

#include "Common.h"
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

// One connection for the length of one operation, on the calling thread.
class Connection {
public:
    Connection() : name_(QStringLiteral("wc_results_%1").arg(++counter())) {
        const ResultDatabaseSettings chosen = effectiveSettings();
        sqlite_ = chosen.driver == QLatin1String("QSQLITE");
        if (sqlite_ && !QDir().mkpath(QFileInfo(chosen.name).absolutePath())) {
            error_ = QStringLiteral("cannot create the folder of ") + chosen.name;
            return;
        }
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
        if (!db.open()) {
            error_ = db.lastError().text();
            return;
        }
        const QString id = sqlite_ ? QStringLiteral("id INTEGER PRIMARY KEY AUTOINCREMENT")
                                   : QStringLiteral("id SERIAL PRIMARY KEY");
        QSqlQuery create(db);
        if (!create.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS check_results (") + id +
                         QStringLiteral(", kind TEXT NOT NULL, job TEXT, step TEXT, created TEXT, "
                                        "description TEXT, params TEXT, result TEXT)"))) {
            error_ = create.lastError().text();
            return;
        }
        open_ = true;
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

    QString name_;
    bool open_ = false;
    bool sqlite_ = true;
    QString error_;
};

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
    QSqlQuery query(connection.db());
    if (!query.exec(QStringLiteral("DELETE FROM check_results"))) {
        LOG(ERROR) << "result database: " << query.lastError().text().toStdString();
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
    query.addBindValue(
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd hh:mm:ss")));
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

}  // namespace resultdb
}  // namespace wcref
