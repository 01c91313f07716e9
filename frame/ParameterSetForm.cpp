#include "ParameterSetForm.h"

#include <glog/logging.h>

#include <QJsonArray>
#include <QMessageBox>
#include <QWidget>

#include "Korvo_UIAPI.h"
#include "ParameterSetStore.h"
#include "Translate.h"

namespace wc {
namespace {

const QString kRangesList = QStringLiteral("rangesList");
const char* const kLevels[] = {"RedLv", "YellowLv", "GreenLv"};

void warn(QWidget* dialog, const QString& text) {
    QMessageBox::warning(
        dialog, translateFor(dialog, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Warning"))),
        text);
}

}  // namespace

QJsonObject withRanges(const QString& key, QJsonObject object) {
    QJsonArray ranges;
    for (const Korvo::UIAPI::Analysis_Ranges_Record& record :
         Korvo::UIAPI::getRanges(key.toStdString())) {
        QJsonObject entry;
        entry.insert(QStringLiteral("name"), QString::fromStdString(record.name));
        entry.insert(QStringLiteral("RedLv"), record.RedLv);
        entry.insert(QStringLiteral("YellowLv"), record.YellowLv);
        entry.insert(QStringLiteral("GreenLv"), record.GreenLv);
        ranges.append(entry);
    }
    object.insert(kRangesList, ranges);
    return object;
}

QString rangesShapeProblem(const QJsonObject& object) {
    if (!object.contains(kRangesList)) {
        return QString();
    }
    if (!object.value(kRangesList).isArray()) {
        return QStringLiteral("\"rangesList\" is not an array");
    }
    const QJsonArray ranges = object.value(kRangesList).toArray();
    for (int i = 0; i < ranges.size(); ++i) {
        const QJsonObject entry = ranges.at(i).toObject();
        if (!ranges.at(i).isObject() || !entry.value(QStringLiteral("name")).isString()) {
            return QStringLiteral("\"rangesList\" entry %1 has no name").arg(i);
        }
        for (const char* level : kLevels) {
            const QJsonValue value = entry.value(QLatin1String(level));
            if (!value.isUndefined() && !value.isDouble()) {
                return QStringLiteral("\"rangesList\" entry %1 has a non-numeric %2")
                    .arg(i)
                    .arg(QLatin1String(level));
            }
        }
    }
    return QString();
}

void applyRangesList(const QString& key, const QJsonObject& object) {
    std::vector<Korvo::UIAPI::Ranges_Level_Change> changes;
    for (const QJsonValue& value : object.value(kRangesList).toArray()) {
        const QJsonObject entry = value.toObject();
        const std::string range = entry.value(QStringLiteral("name")).toString().toStdString();
        for (const char* level : kLevels) {
            const QJsonValue level_value = entry.value(QLatin1String(level));
            if (level_value.isDouble()) {
                changes.push_back({range, level, level_value.toDouble()});
            }
        }
    }
    if (!changes.empty()) {
        Korvo::UIAPI::changeRangesValues(key.toStdString(), changes);
    }
}

bool saveParameterSet(QWidget* dialog, const QString& key, const QString& name,
                      const QList<QObject*>& widgets) {
    const QString problem = ParameterSetStore::nameProblem(name);
    if (!problem.isEmpty()) {
        warn(dialog, translateFor(dialog, problem));
        return false;
    }
    ParameterSetStore store(key);
    if (store.exists(name)) {
        warn(dialog, name + translateFor(dialog, QString::fromUtf8(QT_TRANSLATE_NOOP(
                                                     "Shared", " have a same name file!"))));
        return false;
    }
    QJsonObject object;
    Korvo::UIAPI::readListToJson(widgets, object);
    QString error;
    if (store.save(name, withRanges(key, object), &error) != ParameterSetStore::SaveResult::Saved) {
        LOG(ERROR) << error.toStdString();
        warn(dialog, error);
        return false;
    }
    return true;
}

bool loadParameterSet(QWidget* dialog, const QString& key, const QString& name,
                      QList<QObject*>& widgets, QString* error) {
    Q_UNUSED(dialog);
    QJsonObject object;
    QString why;
    if (ParameterSetStore(key).load(name, object, &why) != ParameterSetStore::LoadResult::Loaded) {
        LOG(ERROR) << "parameter set not loaded: " << why.toStdString();
        if (error != nullptr) {
            *error = why;
        }
        return false;
    }
    why = rangesShapeProblem(object);
    if (!why.isEmpty()) {
        LOG(ERROR) << "parameter set " << name.toStdString()
                   << " not loaded: " << why.toStdString();
        if (error != nullptr) {
            *error = why;
        }
        return false;
    }
    Korvo::UIAPI::writeJsonToList(object, widgets);
    applyRangesList(key, object);
    LOG(INFO) << "parameter set " << name.toStdString() << " loaded";
    return true;
}

}  // namespace wc
