#include "ResultDatabase.h"

#include <glog/logging.h>

#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <atomic>
#include <mutex>

#include "Common.h"

namespace wcref {
namespace {

using Korvo::API::check_info;
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

QJsonArray hitsToJson(const std::vector<check_info>& hits) {
    QJsonArray array;
    for (const check_info& hit : hits) {
        QJsonArray points;
        for (const Korvo::API::point& p : hit.shape.points) {
            points.append(p.x);
            points.append(p.y);
        }
        QJsonArray features;
        for (const Korvo::API::feature_ref& f : hit.features) {
            features.append(f.layer_row);
            features.append(f.id);
        }
        array.append(QJsonObject{{QStringLiteral("v"), hit.value},
                                 {QStringLiteral("k"), static_cast<int>(hit.shape.kind)},
                                 {QStringLiteral("p"), points},
                                 {QStringLiteral("f"), features}});
    }
    return array;
}

std::vector<check_info> hitsFromJson(const QJsonArray& array) {
    std::vector<check_info> hits;
    hits.reserve(static_cast<size_t>(array.size()));
    for (const QJsonValue& value : array) {
        const QJsonObject object = value.toObject();
        check_info hit;
        hit.value = object.value(QStringLiteral("v")).toDouble();
        hit.shape.kind = static_cast<Korvo::API::check_points::kind_t>(
            object.value(QStringLiteral("k")).toInt());
        const QJsonArray points = object.value(QStringLiteral("p")).toArray();
        for (int i = 0; i + 1 < points.size(); i += 2) {
            hit.shape.points.push_back({points[i].toDouble(), points[i + 1].toDouble()});
        }
        const QJsonArray features = object.value(QStringLiteral("f")).toArray();
        for (int i = 0; i + 1 < features.size(); i += 2) {
            hit.features.push_back({features[i].toInt(), features[i + 1].toInt()});
        }
        hits.push_back(std::move(hit));
    }
    return hits;
}

const char* const kLevels[] = {"red", "yellow", "green", "other"};

std::vector<check_info> Korvo::API::check_levels::*levelMember(int level) {
    using L = Korvo::API::check_levels;
    static std::vector<check_info> L::*const members[] = {&L::red, &L::yellow, &L::green,
                                                          &L::other};
    return members[level];
}

QString resultToJson(const signal_check_result_map& result) {
    QJsonObject layers;
    for (const auto& [layer, items] : result) {
        QJsonArray records;
        for (const auto& [item, record] : items) {
            QJsonObject object{{QStringLiteral("item"), static_cast<int>(item)}};
            for (int level = 0; level < 4; ++level) {
                object.insert(QLatin1String(kLevels[level]),
                              hitsToJson(record.*levelMember(level)));
            }
            records.append(object);
        }
        layers.insert(QString::fromStdString(layer), records);
    }
    return QString::fromUtf8(QJsonDocument(layers).toJson(QJsonDocument::Compact));
}

bool resultFromJson(const QString& text, signal_check_result_map& result) {
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isObject()) {
        return false;
    }
    signal_check_result_map read;
    const QJsonObject layers = document.object();
    for (auto layer = layers.begin(); layer != layers.end(); ++layer) {
        auto& items = read[layer.key().toStdString()];
        for (const QJsonValue& value : layer.value().toArray()) {
            const QJsonObject object = value.toObject();
            const auto item = static_cast<Korvo::API::signal_layers_checks_items>(
                object.value(QStringLiteral("item")).toInt());
            Korvo::API::signal_check_result& record = items[item];
            record.item = item;
            for (int level = 0; level < 4; ++level) {
                record.*levelMember(level) =
                    hitsFromJson(object.value(QLatin1String(kLevels[level])).toArray());
            }
        }
    }
    result = std::move(read);
    return true;
}

QString paramsToJson(const dms_signal_check_params& record) {
    const Korvo::API::signal_check_params& p = record.params;
    QJsonArray tests;
    for (auto test : record.tests) {
        tests.append(static_cast<int>(test));
    }
    QJsonArray thresholds;
    for (double value : p.thresholds) {
        thresholds.append(value);
    }
    QJsonArray enabled;
    for (bool value : p.threshold_enabled) {
        enabled.append(value);
    }
    const QJsonObject object{
        {QStringLiteral("job"), QString::fromStdString(record.job)},
        {QStringLiteral("step"), QString::fromStdString(record.step)},
        {QStringLiteral("scope"), record.scope},
        {QStringLiteral("tests"), tests},
        {QStringLiteral("layers"), QString::fromStdString(p.layers)},
        {QStringLiteral("spacing"), p.spacing},
        {QStringLiteral("drill_to_copper"), p.drill_to_copper},
        {QStringLiteral("rout_to_copper"), p.rout_to_copper},
        {QStringLiteral("sliver_min"), p.sliver_min},
        {QStringLiteral("min_pad_overlap"), p.min_pad_overlap},
        {QStringLiteral("apply_to"), QString::fromStdString(p.apply_to)},
        {QStringLiteral("check_missing_pads_for_drills"), p.check_missing_pads_for_drills},
        {QStringLiteral("use_compensated_rout"), p.use_compensated_rout},
        {QStringLiteral("sort_spacing_by_solder_mask"), p.sort_spacing_by_solder_mask},
        {QStringLiteral("always_on"), p.always_on},
        {QStringLiteral("mode"), p.mode},
        {QStringLiteral("thresholds"), thresholds},
        {QStringLiteral("threshold_enabled"), enabled}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

bool paramsFromJson(const QString& text, dms_signal_check_params& record) {
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isObject()) {
        return false;
    }
    const QJsonObject o = document.object();
    dms_signal_check_params read;
    read.job = o.value(QStringLiteral("job")).toString().toStdString();
    read.step = o.value(QStringLiteral("step")).toString().toStdString();
    read.scope = o.value(QStringLiteral("scope")).toInt();
    for (const QJsonValue& test : o.value(QStringLiteral("tests")).toArray()) {
        read.tests.push_back(static_cast<Korvo::API::signal_layers_checks_list>(test.toInt()));
    }
    Korvo::API::signal_check_params& p = read.params;
    p.layers = o.value(QStringLiteral("layers")).toString().toStdString();
    p.spacing = o.value(QStringLiteral("spacing")).toDouble();
    p.drill_to_copper = o.value(QStringLiteral("drill_to_copper")).toDouble();
    p.rout_to_copper = o.value(QStringLiteral("rout_to_copper")).toDouble();
    p.sliver_min = o.value(QStringLiteral("sliver_min")).toDouble();
    p.min_pad_overlap = o.value(QStringLiteral("min_pad_overlap")).toDouble();
    p.apply_to = o.value(QStringLiteral("apply_to")).toString().toStdString();
    p.check_missing_pads_for_drills =
        o.value(QStringLiteral("check_missing_pads_for_drills")).toBool();
    p.use_compensated_rout = o.value(QStringLiteral("use_compensated_rout")).toBool();
    p.sort_spacing_by_solder_mask = o.value(QStringLiteral("sort_spacing_by_solder_mask")).toBool();
    p.always_on = o.value(QStringLiteral("always_on")).toBool();
    p.mode = o.value(QStringLiteral("mode")).toInt();
    for (const QJsonValue& value : o.value(QStringLiteral("thresholds")).toArray()) {
        p.thresholds.push_back(value.toDouble());
    }
    for (const QJsonValue& value : o.value(QStringLiteral("threshold_enabled")).toArray()) {
        p.threshold_enabled.push_back(value.toBool());
    }
    record = std::move(read);
    return true;
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
    query.addBindValue(paramsToJson(params));
    query.addBindValue(resultToJson(result));
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
    if (!paramsFromJson(query.value(0).toString(), record) ||
        !resultFromJson(query.value(1).toString(), read)) {
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
