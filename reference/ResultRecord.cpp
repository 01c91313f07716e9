#include "ResultRecord.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace wcref {
namespace resultrecord {
namespace {

using Korvo::API::check_info;
using Korvo::API::dms_signal_check_params;
using Korvo::API::signal_check_result_map;

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

}  // namespace

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

}  // namespace resultrecord
}  // namespace wcref
