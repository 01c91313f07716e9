#include "SymbolListEntries.h"

#include <glog/logging.h>

#include <map>
#include <string>
#include <vector>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"

namespace wc {

SymbolEntries symbolEntries(const void* handle, const QString& job, const QString& step,
                            const QStringList& layers) {
    std::map<std::string, int> counts;
    for (const QString& layer : layers) {
        std::vector<Korvo::API::featureInfo> features;
        if (!Korvo::API::get_all_feature_info(job.toStdString(), step.toStdString(),
                                              layer.toStdString(), features,
                                              Korvo::API::FT_All & ~Korvo::API::FT_Text)) {
            LOG(ERROR) << "no features of layer " << layer.toStdString();
            continue;
        }
        for (const Korvo::API::featureInfo& feature : features) {
            if (!feature.symbol.empty()) {
                ++counts[feature.symbol];
            }
        }
    }
    SymbolEntries entries;
    for (const auto& entry : counts) {
        QString name = QString::fromStdString(entry.first);
        entries.engine << name;
        Korvo::UIAPI::setSymbolUIData(handle, name);
        entries.shown << QStringLiteral("%1 (%2)").arg(name).arg(entry.second);
    }
    return entries;
}

}  // namespace wc
