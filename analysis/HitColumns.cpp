#include "HitColumns.h"

#include "HitIdentity.h"

namespace wc {

QString netsText(const Korvo::API::check_info& hit) {
    QStringList names;
    for (const std::string& net : hit.nets) {
        names << QString::fromStdString(net);
    }
    return names.join(QStringLiteral(" / "));
}

bool HitColumns::numeric(int column) {
    return column == ValueColumn || column == RequiredColumn || column == DifferenceColumn ||
           column == LocationColumn;
}

double HitColumns::number(int column, const HitRef& hit) const {
    const Korvo::API::check_info& info = *hit.hit;
    switch (column) {
        case ValueColumn:
            return info.value;
        case RequiredColumn:
            return info.required;
        case DifferenceColumn:
            return info.required != 0.0 ? info.value - info.required : 0.0;
        case LocationColumn:
            return hitLocation(info.shape).x;
        default:
            return 0.0;
    }
}

QString HitColumns::text(int column, const HitRef& hit, std::size_t position) const {
    const Korvo::API::check_info& info = *hit.hit;
    const auto length = [this](double engine) {
        return QString::number(engine * display_per_engine, 'f', decimals);
    };
    switch (column) {
        case IndexColumn:
            return QString::number(qulonglong(position + 1));
        case ValueColumn:
            return length(info.value);
        case RequiredColumn:
            return info.required != 0.0 ? length(info.required) : QString();
        case DifferenceColumn:
            return info.required != 0.0 ? length(info.value - info.required) : QString();
        case LayerColumn:
            return hit.layer >= 0 && hit.layer < layer_names.size() ? layer_names[hit.layer]
                                                                    : QString();
        case LocationColumn: {
            const Korvo::API::point at = hitLocation(info.shape);
            return length(at.x) + QStringLiteral(", ") + length(at.y);
        }
        case NetsColumn:
            return netsText(info);
        case StateColumn:
            return state ? state(hit.number) : QString();
        default:
            return {};
    }
}

bool HitColumns::matches(const QRegularExpression& expression, const HitRef& hit) const {
    for (int column = IndexColumn + 1; column < HitColumnCount; ++column) {
        if (expression.match(text(column, hit, 0)).hasMatch()) {
            return true;
        }
    }
    return false;
}

}  // namespace wc
