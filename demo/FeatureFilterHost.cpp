#include "FeatureFilterHost.h"

#include <QColor>
#include <map>

#include "FeatureFilterMatch.h"
#include "FeatureFilterSettings.h"
#include "JobView.h"
#include "Korvo_API.h"
#include "PluginBus.h"

namespace demo {
namespace {

constexpr int kSelect = 20000018;
constexpr int kUnselect = 20000019;
constexpr int kHighlight = 20000020;
constexpr int kTurnOff = 20000021;
constexpr int kHistogramOrClose = 20000031;

}  // namespace

FeatureFilterHost::FeatureFilterHost(JobView* view, std::function<DemoContext()> context,
                                     QObject* parent)
    : QObject(parent), view_(view), context_(std::move(context)) {
    subscription_ = wcref::PluginBus::instance().subscribe(
        [this](const PluginMetaData& message) { receive(message); });
    view_->setFeatureColour([this](const Korvo::API::featureInfo& f) { return colourOf(f); });
}

FeatureFilterHost::~FeatureFilterHost() {
    wcref::PluginBus::instance().unsubscribe(subscription_);
    if (!view_.isNull()) {
        view_->setFeatureColour({});
    }
}

void FeatureFilterHost::receive(const PluginMetaData& message) {
    if (message.receiver != QLatin1String("Graphic_JobList.dll")) {
        return;
    }
    if (message.code >= kSelect && message.code <= kTurnOff && message.payload != nullptr) {
        // The record lives in the popup: read during the call, copied for the histogram.
        last_ = *static_cast<const FeatureFilterSettings*>(message.payload);
        apply(message.code, last_);
    } else if (message.code == kHistogramOrClose &&
               message.values.value(QStringLiteral("type")) == QLatin1String("histogram")) {
        apply(message.code, last_);
    } else if (message.code == kHistogramOrClose &&
               message.values.value(QStringLiteral("type")) == QLatin1String("close")) {
        highlighted_.clear();
        hidden_.clear();
        if (!view_.isNull()) {
            view_->update();
        }
    }
}

void FeatureFilterHost::apply(int code, const FeatureFilterSettings& filter) {
    const DemoContext context = context_();
    const std::string job = context.job.toStdString();
    const std::string step = context.step.toStdString();
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_graphics(job, steps, layers);
    std::vector<Korvo::API::point> profile;
    Korvo::API::get_profile(job, step, profile);

    int matched = 0;
    std::map<std::string, int> by_symbol;
    for (const Korvo::API::layer_info& layer : layers) {
        std::vector<Korvo::API::featureInfo> features;
        Korvo::API::get_all_feature_info(job, step, layer.name, features, Korvo::API::FT_All);
        for (const Korvo::API::featureInfo& feature : features) {
            if (!matchesFilter(filter, feature, profile)) {
                continue;
            }
            ++matched;
            ++by_symbol[feature.symbol.empty() ? "(surface)" : feature.symbol];
            const FeatureKey key(layer.name, feature.id);
            if (code == kSelect) {
                Korvo::API::select_feature_by_info(job, step, layer.name, feature);
                selected_.insert(key);
            } else if (code == kUnselect) {
                selected_.erase(key);
            } else if (code == kHighlight) {
                Korvo::API::highlight_feature_by_info(job, step, layer.name, feature);
                highlighted_.insert(key);
            } else if (code == kTurnOff) {
                hidden_.insert(key);
            }
        }
        if (code == kUnselect) {
            // The engine unselects a layer at once; the features still selected are put back.
            Korvo::API::clear_selected_features(job, step, layer.name);
            for (const Korvo::API::featureInfo& feature : features) {
                if (selected_.count({layer.name, feature.id}) != 0) {
                    Korvo::API::select_feature_by_info(job, step, layer.name, feature);
                }
            }
        }
    }
    const char* verb = code == kSelect      ? "selected"
                       : code == kUnselect  ? "unselected"
                       : code == kHighlight ? "highlighted"
                       : code == kTurnOff   ? "turned off"
                                            : "counted";
    QStringList symbols;
    for (const auto& entry : by_symbol) {
        symbols
            << QStringLiteral("%1 x%2").arg(QString::fromStdString(entry.first)).arg(entry.second);
    }
    context.log(QStringLiteral("job list: %1 %2 features on %3 displayed layers (%4)")
                    .arg(QString::fromLatin1(verb))
                    .arg(matched)
                    .arg(layers.size())
                    .arg(symbols.join(QStringLiteral(", "))));
    if (!view_.isNull()) {
        view_->update();
    }
}

QColor FeatureFilterHost::colourOf(const Korvo::API::featureInfo& feature) const {
    const FeatureKey key(feature.layer, feature.id);
    if (hidden_.count(key) != 0) {
        return QColor();
    }
    if (selected_.count(key) != 0) {
        return QColor(255, 255, 255);
    }
    if (highlighted_.count(key) != 0) {
        return QColor(60, 220, 90);
    }
    return QColor(220, 120, 60);
}

}  // namespace demo
