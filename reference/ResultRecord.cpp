#include "ResultRecord.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>

namespace wcref {
namespace resultrecord {
namespace {

using namespace Korvo::API;

// A signature as 16 lower-case hex digits: a JSON number holds only 53 bits.
QString signatureText(std::uint64_t signature) {
    return QStringLiteral("%1").arg(signature, 16, 16, QLatin1Char('0'));
}

bool readSignature(const QJsonValue& value, std::uint64_t& out) {
    const QString text = value.toString();
    const bool hex = text.size() == 16 && std::all_of(text.begin(), text.end(), [](QChar c) {
                         return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
                     });
    out = hex ? text.toULongLong(nullptr, 16) : 0;
    return value.isString() && hex;
}

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
        QJsonObject object{{QStringLiteral("v"), hit.value},
                           {QStringLiteral("k"), static_cast<int>(hit.shape.kind)},
                           {QStringLiteral("p"), points},
                           {QStringLiteral("f"), features}};
        // Each written only when it holds something, as the nets are: a row without it reads 0.
        if (hit.required != 0.0) {
            object.insert(QStringLiteral("r"), hit.required);
        }
        if (hit.signature != 0) {
            object.insert(QStringLiteral("s"), signatureText(hit.signature));
        }
        if (!hit.nets.empty()) {
            QJsonArray nets;
            for (const std::string& net : hit.nets) {
                nets.append(QString::fromStdString(net));
            }
            object.insert(QStringLiteral("n"), nets);
        }
        array.append(object);
    }
    return array;
}

// The writers store enum values and ints as whole JSON numbers and doubles as finite ones; a row
// holding anything else (a fraction, a value out of range, text, null) was damaged or edited.
bool readInt(const QJsonValue& value, int low, int high, int& out) {
    const double number = value.toDouble();
    if (!value.isDouble() || !(number >= low && number <= high) || number != std::trunc(number)) {
        return false;
    }
    out = static_cast<int>(number);
    return true;
}

bool readDouble(const QJsonValue& value, double& out) {
    out = value.toDouble();
    return value.isDouble() && std::isfinite(out);
}

bool readString(const QJsonValue& value, std::string& out) {
    out = value.toString().toStdString();
    return value.isString();
}

bool readBool(const QJsonValue& value, bool& out) {
    out = value.toBool();
    return value.isBool();
}

bool hitsFromJson(const QJsonValue& value, std::vector<check_info>& hits) {
    // No reserve for the array's size: a long array of anything but hits is refused before it
    // costs more than the text's own parse.
    for (const QJsonValue& entry : value.toArray()) {
        const QJsonObject object = entry.toObject();
        const QJsonArray points = object.value(QStringLiteral("p")).toArray();
        const QJsonArray features = object.value(QStringLiteral("f")).toArray();
        check_info hit;
        int kind = 0;
        if (!entry.isObject() || !readDouble(object.value(QStringLiteral("v")), hit.value) ||
            !readInt(object.value(QStringLiteral("k")), check_points::line, check_points::polygon,
                     kind) ||
            !object.value(QStringLiteral("p")).isArray() || points.size() % 2 != 0 ||
            !object.value(QStringLiteral("f")).isArray() || features.size() % 2 != 0) {
            return false;
        }
        hit.shape.kind = static_cast<check_points::kind_t>(kind);
        hit.shape.points.resize(static_cast<size_t>(points.size() / 2));
        for (int i = 0; i < points.size(); i += 2) {
            Korvo::API::point& p = hit.shape.points[static_cast<size_t>(i / 2)];
            if (!readDouble(points[i], p.x) || !readDouble(points[i + 1], p.y)) {
                return false;
            }
        }
        hit.features.resize(static_cast<size_t>(features.size() / 2));
        for (int i = 0; i < features.size(); i += 2) {
            Korvo::API::feature_ref& f = hit.features[static_cast<size_t>(i / 2)];
            if (!readInt(features[i], INT32_MIN, INT32_MAX, f.layer_row) ||
                !readInt(features[i + 1], INT32_MIN, INT32_MAX, f.id)) {
                return false;
            }
        }
        // Required values and signatures came later: rows written before carry neither.
        const QJsonValue required = object.value(QStringLiteral("r"));
        const QJsonValue signature = object.value(QStringLiteral("s"));
        if ((!required.isUndefined() && !readDouble(required, hit.required)) ||
            (!signature.isUndefined() && !readSignature(signature, hit.signature))) {
            return false;
        }
        // Nets came with the job's connectivity; rows written before carry none.
        const QJsonValue nets = object.value(QStringLiteral("n"));
        if (!nets.isUndefined()) {
            if (!nets.isArray()) {
                return false;
            }
            for (const QJsonValue& net : nets.toArray()) {
                std::string name;
                if (!readString(net, name)) {
                    return false;
                }
                hit.nets.push_back(std::move(name));
            }
        }
        hits.push_back(std::move(hit));
    }
    return value.isArray();
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
        // Two keys may name one layer in UTF-8: a lone surrogate and "?" both become "?".
        const std::string name = layer.key().toStdString();
        if (!layer.value().isArray() || read.count(name) != 0) {
            return false;
        }
        auto& items = read[name];
        for (const QJsonValue& value : layer.value().toArray()) {
            const QJsonObject object = value.toObject();
            int item = 0;
            // A layer's items are a map when written: a repeated item would replace the first.
            if (!readInt(object.value(QStringLiteral("item")), sli_pad_to_pad_spacing,
                         sli_netlist_short, item) ||
                items.count(static_cast<signal_layers_checks_items>(item)) != 0) {
                return false;
            }
            signal_check_result& record = items[static_cast<signal_layers_checks_items>(item)];
            record.item = static_cast<signal_layers_checks_items>(item);
            for (int level = 0; level < 4; ++level) {
                if (!hitsFromJson(object.value(QLatin1String(kLevels[level])),
                                  record.*levelMember(level))) {
                    return false;
                }
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
    const QJsonObject o = document.object();
    const auto value = [&o](const char* key) { return o.value(QLatin1String(key)); };
    dms_signal_check_params read;
    signal_check_params& p = read.params;
    // Scope 3 is the run on the selected features, the last of the run scopes.
    if (!document.isObject() || !readString(value("job"), read.job) ||
        !readString(value("step"), read.step) || !readInt(value("scope"), 0, 3, read.scope) ||
        !value("tests").isArray() || !readString(value("layers"), p.layers) ||
        !readDouble(value("spacing"), p.spacing) ||
        !readDouble(value("drill_to_copper"), p.drill_to_copper) ||
        !readDouble(value("rout_to_copper"), p.rout_to_copper) ||
        !readDouble(value("sliver_min"), p.sliver_min) ||
        !readDouble(value("min_pad_overlap"), p.min_pad_overlap) ||
        !readString(value("apply_to"), p.apply_to) ||
        !readBool(value("check_missing_pads_for_drills"), p.check_missing_pads_for_drills) ||
        !readBool(value("use_compensated_rout"), p.use_compensated_rout) ||
        !readBool(value("sort_spacing_by_solder_mask"), p.sort_spacing_by_solder_mask) ||
        !readBool(value("always_on"), p.always_on) ||
        !readInt(value("mode"), INT_MIN, INT_MAX, p.mode) || !value("thresholds").isArray() ||
        !value("threshold_enabled").isArray()) {
        return false;
    }
    for (const QJsonValue& entry : value("tests").toArray()) {
        int test = 0;
        if (!readInt(entry, sl_spacing, sl_pad_connection, test)) {
            return false;
        }
        read.tests.push_back(static_cast<signal_layers_checks_list>(test));
    }
    for (const QJsonValue& entry : value("thresholds").toArray()) {
        if (!readDouble(entry, p.thresholds.emplace_back())) {
            return false;
        }
    }
    for (const QJsonValue& entry : value("threshold_enabled").toArray()) {
        bool enabled = false;
        if (!readBool(entry, enabled)) {
            return false;
        }
        p.threshold_enabled.push_back(enabled);
    }
    record = std::move(read);
    return true;
}

}  // namespace resultrecord
}  // namespace wcref
