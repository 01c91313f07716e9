#pragma once
// The demo host's answer to the feature filter popup: like the host's job list and view, it
// selects, unselects, highlights or turns off the features of the displayed layers that pass
// the filter record, and shows them so in the graphic view.

#include <QObject>
#include <QPointer>
#include <functional>
#include <set>
#include <string>
#include <utility>

#include "DialogCatalogue.h"
#include "FeatureFilterSettings.h"
#include "Korvo_API_types.h"
#include "PluginMetaData.h"

class JobView;
namespace demo {

class FeatureFilterHost : public QObject {
public:
    FeatureFilterHost(JobView* view, std::function<DemoContext()> context, QObject* parent);
    ~FeatureFilterHost() override;

private:
    using FeatureKey = std::pair<std::string, int>;  // layer, feature id

    void receive(const PluginMetaData& message);
    void apply(int code, const FeatureFilterSettings& filter);
    QColor colourOf(const Korvo::API::featureInfo& feature) const;

    QPointer<JobView> view_;  // the window may delete the view first
    std::function<DemoContext()> context_;
    int subscription_ = -1;
    std::set<FeatureKey> selected_;
    std::set<FeatureKey> highlighted_;
    std::set<FeatureKey> hidden_;
    // The job list's own copy of the last filter, for the histogram.
    FeatureFilterSettings last_;
};

}  // namespace demo
