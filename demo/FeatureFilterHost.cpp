#include "FeatureFilterHost.h"

#include <algorithm>
#include <map>

#include "DemoWindow.h"
#include "FeatureFilterMatch.h"
#include "FeatureFilterSettings.h"
#include "FeaturePick.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "frame/PluginMessages.h"
#include "toolbar/Grc_Tbv_featuresfilter.h"

namespace demo {
namespace {

using namespace wc::code;

}  // namespace

FeatureFilterHost::FeatureFilterHost(DemoWindow* window) : QObject(window), window_(window) {
    for (int code :
         {FilterSelect, FilterUnselect, FilterHighlight, FilterTurnOff, FilterHistogramOrClose}) {
        window->onMessage(code, [this](const PluginMetaData& message) { receive(message); });
    }
    for (int code :
         {PickIncludeSymbol, PickAddIncludeSymbol, PickExcludeSymbol, PickAddExcludeSymbol}) {
        window->onMessage(code, [this](const PluginMetaData& message) {
            if (message.receiver == wc::module::GraphicView) {
                pending_pick_ = message.code;
                window_->log(QObject::tr("view: pick a pad or line for its symbol"));
            }
        });
    }
    connect(window->view(), &GraphicView::pointPicked, this,
            [this](const Korvo::API::point& at, bool) { pickSymbolAt(at); });
}

void FeatureFilterHost::pickSymbolAt(const Korvo::API::point& at) {
    if (pending_pick_ == 0) {
        return;
    }
    const int code = pending_pick_;
    pending_pick_ = 0;
    // The nearest pad centre or line within 50 mil of the click, on the displayed layers.
    const std::optional<PickedFeature> picked = nearestFeature(*window_->view(), at, 50 * 25400.0);
    const std::string symbol = picked ? picked->feature.symbol : std::string();
    if (symbol.empty()) {
        window_->log(QObject::tr("view: no pad or line near the pick"));
        return;
    }
    const bool replace = code == PickIncludeSymbol || code == PickExcludeSymbol;
    const bool include = code == PickIncludeSymbol || code == PickAddIncludeSymbol;
    for (auto* popup : window_->findChildren<Grc_Tbv_featuresfilter*>()) {
        popup->update_symbol_text(QString::fromStdString(symbol), replace, include);
    }
    window_->log(QObject::tr("view: picked symbol %1").arg(QString::fromStdString(symbol)));
}

void FeatureFilterHost::receive(const PluginMetaData& message) {
    if (message.receiver != wc::module::JobList) {
        return;
    }
    if (message.code >= FilterSelect && message.code <= FilterTurnOff &&
        message.payload != nullptr) {
        // The record lives in the popup: read during the call, copied for the histogram.
        last_ = *static_cast<const FeatureFilterSettings*>(message.payload);
        apply(message.code, last_);
    } else if (message.code == FilterHistogramOrClose &&
               message.values.value(QStringLiteral("type")) == QLatin1String("histogram")) {
        apply(message.code, last_);
    } else if (message.code == FilterHistogramOrClose &&
               message.values.value(QStringLiteral("type")) == QLatin1String("close")) {
        highlighted_.clear();
        hidden_.clear();
        showMarks();
    }
}

void FeatureFilterHost::apply(int code, const FeatureFilterSettings& filter) {
    GraphicView* view = window_->view();
    const std::string job = view->job();
    const std::string step = view->step();
    const std::vector<std::string>& layers = view->displayedLayers();
    std::vector<Korvo::API::point> profile;
    Korvo::API::get_profile(job, step, profile);

    int matched = 0;
    std::map<std::string, int> by_symbol;
    for (const std::string& layer : layers) {
        std::vector<Korvo::API::featureInfo> features;
        Korvo::API::get_all_feature_info(job, step, layer, features, Korvo::API::FT_All);
        for (const Korvo::API::featureInfo& feature : features) {
            if (!matchesFilter(filter, feature, profile)) {
                continue;
            }
            ++matched;
            ++by_symbol[feature.symbol.empty() ? "(surface)" : feature.symbol];
            const FeatureKey key(layer, feature.id);
            if (code == FilterSelect) {
                Korvo::API::select_feature_by_info(job, step, layer, feature);
                selected_.insert(key);
            } else if (code == FilterUnselect) {
                selected_.erase(key);
            } else if (code == FilterHighlight) {
                Korvo::API::highlight_feature_by_info(job, step, layer, feature);
                highlighted_.insert(key);
            } else if (code == FilterTurnOff) {
                hidden_.insert(key);
            }
        }
        if (code == FilterUnselect) {
            // The engine unselects a layer at once; the features still selected are put back.
            Korvo::API::clear_selected_features(job, step, layer);
            for (const Korvo::API::featureInfo& feature : features) {
                if (selected_.count({layer, feature.id}) != 0) {
                    Korvo::API::select_feature_by_info(job, step, layer, feature);
                }
            }
        }
    }
    const char* verb = code == FilterSelect      ? "selected"
                       : code == FilterUnselect  ? "unselected"
                       : code == FilterHighlight ? "highlighted"
                       : code == FilterTurnOff   ? "turned off"
                                                 : "counted";
    QStringList symbols;
    for (const auto& entry : by_symbol) {
        symbols
            << QStringLiteral("%1 x%2").arg(QString::fromStdString(entry.first)).arg(entry.second);
    }
    window_->log(QStringLiteral("job list: %1 %2 features on %3 displayed layers (%4)")
                     .arg(QString::fromLatin1(verb))
                     .arg(matched)
                     .arg(layers.size())
                     .arg(symbols.join(QStringLiteral(", "))));
    showMarks();
}

void FeatureFilterHost::showMarks() {
    GraphicView* view = window_->view();
    for (GraphicView::Mark mark :
         {GraphicView::Mark::Selected, GraphicView::Mark::Highlighted, GraphicView::Mark::Hidden}) {
        view->clearFeatureMarks(mark);
    }
    std::map<std::string, std::set<int>> byLayer[3];
    for (const FeatureKey& key : selected_)
        byLayer[0][key.first].insert(key.second);
    for (const FeatureKey& key : highlighted_)
        byLayer[1][key.first].insert(key.second);
    for (const FeatureKey& key : hidden_)
        byLayer[2][key.first].insert(key.second);
    const GraphicView::Mark marks[] = {GraphicView::Mark::Selected, GraphicView::Mark::Highlighted,
                                       GraphicView::Mark::Hidden};
    for (int k = 0; k < 3; ++k) {
        for (const auto& entry : byLayer[k]) {
            view->setFeatureMarks(entry.first, entry.second, marks[k]);
        }
    }
}

}  // namespace demo
