#include "RangeStore.h"

#include <glog/logging.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <cmath>

#include "Common.h"
#include "HostSettings.h"
#include "UnitService.h"

namespace wcref {
namespace {

using Korvo::UIAPI::Analysis_Ranges_Record;

const char* const kLevels[] = {"RedLv", "YellowLv", "GreenLv"};

double* levelField(Analysis_Ranges_Record& record, const std::string& level) {
    if (level == "RedLv")
        return &record.RedLv;
    if (level == "YellowLv")
        return &record.YellowLv;
    if (level == "GreenLv")
        return &record.GreenLv;
    return nullptr;
}

int rowOfName(const std::vector<Analysis_Ranges_Record>& records, const std::string& name) {
    for (size_t row = 0; row < records.size(); ++row) {
        if (records[row].name == name)
            return static_cast<int>(row);
    }
    return -1;
}

}  // namespace

RangeStore& RangeStore::instance() {
    static RangeStore store;
    return store;
}

QString RangeStore::filePath() {
    return Common::getPath() + QStringLiteral("/config/ranges.json");
}

RangeStore::Table RangeStore::defaultTable() {
    Table table;
    for (const auto& [key, rows] : defaults()) {
        auto& records = table[key];
        for (const RangeDefault& row : rows) {
            Analysis_Ranges_Record record;
            record.name = row.name;
            record.RedLv = row.red * UnitService::kNmPerMil;
            record.YellowLv = row.yellow * UnitService::kNmPerMil;
            record.GreenLv = row.green * UnitService::kNmPerMil;
            records.push_back(record);
        }
    }
    return table;
}

bool RangeStore::parse(const QByteArray& bytes, Table& table, QString& error) {
    QJsonParseError parse_error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parse_error);
    if (document.isNull()) {
        error = QStringLiteral("not JSON: ") + parse_error.errorString();
        return false;
    }
    if (!document.isObject() || !document.object().value(QStringLiteral("ranges")).isObject()) {
        error = QStringLiteral("no \"ranges\" object");
        return false;
    }
    const QJsonObject ranges = document.object().value(QStringLiteral("ranges")).toObject();
    for (auto key = ranges.begin(); key != ranges.end(); ++key) {
        auto records = table.find(key.key().toStdString());
        if (records == table.end()) {
            error = QStringLiteral("unknown range key \"%1\"").arg(key.key());
            return false;
        }
        if (!key.value().isArray()) {
            error = QStringLiteral("\"%1\" is not an array").arg(key.key());
            return false;
        }
        for (const QJsonValue& entry : key.value().toArray()) {
            const QJsonObject object = entry.toObject();
            const int row = rowOfName(
                records->second, object.value(QStringLiteral("name")).toString().toStdString());
            if (!entry.isObject() || row < 0) {
                error = QStringLiteral("\"%1\" holds an entry without a known name").arg(key.key());
                return false;
            }
            for (const char* level : kLevels) {
                const QJsonValue value = object.value(QLatin1String(level));
                if (!value.isDouble() || !std::isfinite(value.toDouble())) {
                    error = QStringLiteral("\"%1\" row %2 has no number \"%3\"")
                                .arg(key.key())
                                .arg(row)
                                .arg(QLatin1String(level));
                    return false;
                }
                *levelField(records->second[row], level) = value.toDouble();
            }
        }
    }
    return true;
}

void RangeStore::ensureLoaded() {
    const QString path = filePath();
    if (loaded_ && path == loaded_from_)
        return;
    loaded_ = true;
    loaded_from_ = path;
    table_ = defaultTable();
    QFile file(path);
    if (!file.exists()) {
        LOG(INFO) << "no range file " << path.toStdString() << ", using the default ranges";
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        LOG(ERROR) << "cannot read " << path.toStdString() << ": "
                   << file.errorString().toStdString() << "; using the default ranges";
        return;
    }
    Table table = defaultTable();
    QString error;
    if (!parse(file.readAll(), table, error)) {
        LOG(ERROR) << "range file " << path.toStdString() << " ignored (" << error.toStdString()
                   << "); using the default ranges";
        return;
    }
    table_ = std::move(table);
}

bool RangeStore::save() {
    ++saves_;
    const Table defaults = defaultTable();
    QJsonObject ranges;
    for (const auto& [key, records] : table_) {
        const auto& base = defaults.at(key);
        QJsonArray changed;
        for (size_t row = 0; row < records.size(); ++row) {
            const Analysis_Ranges_Record& record = records[row];
            if (record.RedLv == base[row].RedLv && record.YellowLv == base[row].YellowLv &&
                record.GreenLv == base[row].GreenLv)
                continue;
            changed.append(
                QJsonObject{{QStringLiteral("name"), QString::fromStdString(record.name)},
                            {QStringLiteral("RedLv"), record.RedLv},
                            {QStringLiteral("YellowLv"), record.YellowLv},
                            {QStringLiteral("GreenLv"), record.GreenLv}});
        }
        if (!changed.isEmpty())
            ranges.insert(QString::fromStdString(key), changed);
    }
    const QJsonObject root{{QStringLiteral("version"), 1}, {QStringLiteral("ranges"), ranges}};

    const QString path = filePath();
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        LOG(ERROR) << "cannot create the folder of " << path.toStdString();
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    const QByteArray bytes = QJsonDocument(root).toJson();
    // A full disk shows only when the buffer is flushed; commit() alone would still replace
    // the file.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    return true;
}

bool RangeStore::records(const std::string& key, std::vector<Analysis_Ranges_Record>& out) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    auto it = table_.find(key);
    if (it == table_.end()) {
        LOG(ERROR) << "unknown range key \"" << key << "\"";
        out.clear();
        return false;
    }
    out = it->second;
    return true;
}

int RangeStore::itemOfName(const std::string& key, const std::string& name) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    auto it = table_.find(key);
    return it == table_.end() ? -1 : rowOfName(it->second, name);
}

int RangeStore::itemOfRow(const std::string& key, int row) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    auto it = table_.find(key);
    if (it == table_.end() || row < 0 || row >= static_cast<int>(it->second.size()))
        return -1;
    return row;  // rows follow the item enumeration
}

std::string RangeStore::nameOfItem(const std::string& key, int item) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    auto it = table_.find(key);
    if (it == table_.end() || item < 0 || item >= static_cast<int>(it->second.size()))
        return std::string();
    return it->second[item].name;
}

bool RangeStore::applyLocked(const std::string& key, const std::string& name,
                             const std::string& level, double value) {
    auto it = table_.find(key);
    const int row = it == table_.end() ? -1 : rowOfName(it->second, name);
    if (row < 0) {
        LOG(ERROR) << "no range \"" << name << "\" under \"" << key << "\"";
        return false;
    }
    double* field = levelField(it->second[row], level);
    if (field == nullptr || !std::isfinite(value)) {
        LOG(ERROR) << "refused range level \"" << level << "\" = " << value << " for \"" << name
                   << "\"";
        return false;
    }
    *field = value;
    return true;
}

bool RangeStore::change(const std::string& key, const std::string& name, const std::string& level,
                        double value) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    if (!applyLocked(key, name, level, value)) {
        return false;
    }
    // The change holds for this session even when the file cannot be written; save() logs why
    // and the caller learns that it was not kept.
    return save();
}

bool RangeStore::changeMany(const std::string& key,
                            const std::vector<Korvo::UIAPI::Ranges_Level_Change>& changes) {
    std::lock_guard<std::mutex> guard(lock_);
    ensureLoaded();
    bool all = true;
    bool any = false;
    for (const Korvo::UIAPI::Ranges_Level_Change& change : changes) {
        const bool applied = applyLocked(key, change.name, change.level, change.value);
        all = all && applied;
        any = any || applied;
    }
    const bool saved = !any || save();
    return all && saved;
}

void RangeStore::invalidate() {
    std::lock_guard<std::mutex> guard(lock_);
    loaded_ = false;
}

void reloadRanges() {
    RangeStore::instance().invalidate();
}

}  // namespace wcref
