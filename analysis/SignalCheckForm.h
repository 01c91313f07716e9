#pragma once
// The signal layer check form as plain values, and what is computed from it without a window:
// the engine record, the test list, the check-list parameter string, the template JSON and the
// summary of a result.

#include <QJsonObject>
#include <QString>
#include <array>
#include <vector>

#include "Korvo_Analysis_types.h"

namespace wc {

// The range editor's key of the check, also the folder of its templates.
constexpr const char kSignalRangeKey[] = "SignalLayerRanges";

// Distances in the order of the form's rows.
enum SignalDistance : int {
    DistSpacing = 0,
    DistRoutToCu = 1,
    DistDrillToCu = 2,
    DistSliverMin = 3,
    DistMinPadOverlap = 4,
    kSignalDistanceCount = 5,
};

constexpr int kSignalTestCount = 10;

struct SignalCheckForm {
    QString layers;
    std::array<QString, kSignalDistanceCount> distances;  // as typed, display unit
    std::array<bool, kSignalTestCount> tests{};           // by signal_layers_checks_list value
    int apply_to = 0;                                     // 0 "All", 1 "Selected"
    int missing_pads = 0;                                 // 0 "Yes", 1 "No"
    int compensated_rout = 1;                             // 0 "Yes", 1 "No", 2 "Skeleton"
    int sm_spacing = 1;                                   // 0 "Yes", 1 "No"
};

// The tests in the on-screen order of the two columns (and of the template's "Test list").
const std::array<Korvo::API::signal_layers_checks_list, kSignalTestCount>& signalTestScreenOrder();
// Check box label and template key of a test ("Smd" for SMD).
QString signalTestLabel(Korvo::API::signal_layers_checks_list test);
// Token of a test in the parameter string ("SMD" for SMD: the difference is kept on purpose).
QString signalTestToken(Korvo::API::signal_layers_checks_list test);
// Template keys of the distances, in row order.
QString signalDistanceKey(int distance);

// The internal thresholds sent unchanged on every run, engine units.
const std::vector<double>& signalCheckThresholds();

// Checked tests in value order (0 to 9).
std::vector<Korvo::API::signal_layers_checks_list> checkedSignalTests(const SignalCheckForm& form);
int checkedSignalTestCount(const SignalCheckForm& form);

// The first empty distance in the order Spacing, Drill to Cu, Rout to Cu, Sliver min, Minimum
// pad overlap, or -1.
int firstEmptySignalDistance(const SignalCheckForm& form);

// setSignalCheckParams: distances through getUnitAPIData(handle, 1, value).
Korvo::API::signal_check_params signalCheckParams(const SignalCheckForm& form, const void* handle);

// getSignalLayerParams: "((pp_layer=...)...(pp_sm_spacing=...)),mode=regular".
QString signalLayerParams(const SignalCheckForm& form);

// writeConfigJson: {"signalLayerChecks": [ {"Spacing": text}, ... ]} in the fixed order.
QJsonObject signalCheckTemplate(const SignalCheckForm& form);
// Puts a template's "signalLayerChecks" entries into `form` (the layer text is not part of a
// template). A template of the wrong shape leaves `form` as it was and says why in `error`.
bool readSignalCheckTemplate(const QJsonObject& root, SignalCheckForm& form, QString* error);

// params2ui: distances in mil ('g', 6), flags to "Yes"/"No" ("Skeleton" is never restored: kept
// on purpose), the tests of the list (values above 9 skipped). The layer text is kept.
void showSignalCheckParams(const Korvo::API::signal_check_params& params,
                           const std::vector<Korvo::API::signal_layers_checks_list>& tests,
                           SignalCheckForm& form);

// The worst level that has a hit anywhere in the result.
enum class ResultSummary { NoHit, Red, Yellow, Green };
ResultSummary summariseSignalResult(const Korvo::API::signal_check_result_map& result);

}  // namespace wc
