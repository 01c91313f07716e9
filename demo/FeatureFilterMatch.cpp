#include "FeatureFilterMatch.h"

#include <QRegularExpression>
#include <QString>

namespace demo {
namespace {

bool symbolListed(const FeatureFilterSettings& filter, const std::string& symbol) {
    const QString name = QString::fromStdString(symbol);
    for (const std::string& listed : filter.symbols) {
        const QRegularExpression pattern(
            QRegularExpression::wildcardToRegularExpression(QString::fromStdString(listed)),
            QRegularExpression::CaseInsensitiveOption);
        if (pattern.match(name).hasMatch()) {
            return true;
        }
    }
    return false;
}

bool conditionHolds(const Korvo::API::featureInfo& feature, const std::string& name,
                    const std::string& value) {
    auto it = feature.attributes.find(name);
    return it != feature.attributes.end() && (value.empty() || it->second == value);
}

bool attributesPass(const FeatureFilterSettings& filter, const Korvo::API::featureInfo& feature) {
    if (filter.attribute_logic < 0 || filter.attributes.empty()) {
        return true;
    }
    int holding = 0;
    for (const auto& condition : filter.attributes) {
        holding += conditionHolds(feature, condition.first, condition.second) ? 1 : 0;
    }
    switch (filter.attribute_logic) {
        case 1:
            return holding > 0;
        case 2:
            return holding == 0;
        default:
            return holding == int(filter.attributes.size());
    }
}

bool inside(const Korvo::API::point& p, const std::vector<Korvo::API::point>& outline) {
    bool in = false;
    for (size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const auto& a = outline[i];
        const auto& b = outline[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            in = !in;
        }
    }
    return in;
}

}  // namespace

bool matchesFilter(const FeatureFilterSettings& filter, const Korvo::API::featureInfo& feature,
                   const std::vector<Korvo::API::point>& profile) {
    if ((filter.feature_type & feature.type) == 0) {
        return false;
    }
    if ((filter.feature_type &
         (feature.positive ? Korvo::API::FT_Positive : Korvo::API::FT_Negative)) == 0) {
        return false;
    }
    if (!filter.symbols.empty() &&
        symbolListed(filter, feature.symbol) != (filter.symbol_mode == 1)) {
        return false;
    }
    if (!attributesPass(filter, feature)) {
        return false;
    }
    if (filter.profile != 0 && !profile.empty()) {
        return inside(feature.start, profile) == (filter.profile == 1);
    }
    return true;
}

}  // namespace demo
