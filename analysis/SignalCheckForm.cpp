#include "SignalCheckForm.h"

#include <QJsonArray>
#include <QRegExp>

#include "Korvo_UIAPI.h"
#include "frame/Validators.h"

namespace wc {
namespace {

using Korvo::API::signal_layers_checks_list;

const char* const kTestLabels[kSignalTestCount] = {
    "Spacing", "Drill",  "Rout", "Size",       "Sliver",
    "Stubs",   "Center", "Smd",  "Bottleneck", "Pad Connection Check"};

const char* const kDistanceKeys[kSignalDistanceCount] = {"Spacing", "Rout to Cu", "Drill to Cu",
                                                         "Sliver min", "Minimum Pad overlap"};

const char* const kApplyTo = "Apply to";
const char* const kMissingPads = "Check Missing Pads for Drills";
const char* const kCompensatedRout = "Use Compensated Rout";
const char* const kSmSpacing = "Sort Spacing by Solder Mask";
const char* const kTestList = "Test list";
const char* const kRoot = "signalLayerChecks";

QString yesNo(int id) {
    return id == 0 ? QStringLiteral("Yes") : QStringLiteral("No");
}

QString compensatedRoutText(int id) {
    switch (id) {
        case 0:
            return QStringLiteral("Yes");
        case 2:
            return QStringLiteral("Skeleton");
        default:
            return QStringLiteral("No");
    }
}

bool fail(QString* error, const QString& text) {
    if (error != nullptr) {
        *error = text;
    }
    return false;
}

// Group ids of a template: the key and the highest id it may hold.
struct GroupKey {
    const char* key;
    int highest;
    int SignalCheckForm::*member;
};

const GroupKey kGroups[] = {{kApplyTo, 1, &SignalCheckForm::apply_to},
                            {kMissingPads, 1, &SignalCheckForm::missing_pads},
                            {kCompensatedRout, 2, &SignalCheckForm::compensated_rout},
                            {kSmSpacing, 1, &SignalCheckForm::sm_spacing}};

}  // namespace

const std::array<signal_layers_checks_list, kSignalTestCount>& signalTestScreenOrder() {
    using namespace Korvo::API;
    static const std::array<signal_layers_checks_list, kSignalTestCount> order = {
        sl_spacing, sl_stubs, sl_drill,      sl_center, sl_rout,
        sl_smd,     sl_size,  sl_bottleneck, sl_sliver, sl_pad_connection};
    return order;
}

QString signalTestLabel(signal_layers_checks_list test) {
    return QString::fromLatin1(kTestLabels[static_cast<int>(test)]);
}

QString signalTestToken(signal_layers_checks_list test) {
    return test == Korvo::API::sl_smd ? QStringLiteral("SMD") : signalTestLabel(test);
}

QString signalDistanceKey(int distance) {
    return QString::fromLatin1(kDistanceKeys[distance]);
}

const std::vector<double>& signalCheckThresholds() {
    // Part of the design: the engine expects exactly these on every run.
    static const std::vector<double> thresholds = {
        2540,   2540,   5080,   101600, 101600, 2540,      203200, 17780000, 76200,
        304800, 609600, 101600, 203200, 254000, 127000000, 254000, 254000};
    return thresholds;
}

std::vector<signal_layers_checks_list> checkedSignalTests(const SignalCheckForm& form) {
    std::vector<signal_layers_checks_list> tests;
    for (int value = 0; value < kSignalTestCount; ++value) {
        if (form.tests[value]) {
            tests.push_back(static_cast<signal_layers_checks_list>(value));
        }
    }
    return tests;
}

int checkedSignalTestCount(const SignalCheckForm& form) {
    return static_cast<int>(checkedSignalTests(form).size());
}

int firstEmptySignalDistance(const SignalCheckForm& form) {
    for (int distance :
         {DistSpacing, DistDrillToCu, DistRoutToCu, DistSliverMin, DistMinPadOverlap}) {
        if (form.distances[distance].isEmpty()) {
            return distance;
        }
    }
    return -1;
}

Korvo::API::signal_check_params signalCheckParams(const SignalCheckForm& form, const void* handle) {
    auto engine = [&](int distance) {
        return Korvo::UIAPI::getUnitAPIData(handle, 1, form.distances[distance].toDouble());
    };
    Korvo::API::signal_check_params params;
    params.layers = form.layers.toStdString();
    params.spacing = engine(DistSpacing);
    params.drill_to_copper = engine(DistDrillToCu);
    params.rout_to_copper = engine(DistRoutToCu);
    params.sliver_min = engine(DistSliverMin);
    params.min_pad_overlap = engine(DistMinPadOverlap);
    params.apply_to = form.apply_to == 0 ? "All" : "Selected";
    params.check_missing_pads_for_drills = form.missing_pads == 0;
    params.use_compensated_rout = form.compensated_rout == 0;
    params.sort_spacing_by_solder_mask = form.sm_spacing == 0;
    params.always_on = true;
    params.mode = 3;
    params.thresholds = signalCheckThresholds();
    params.threshold_enabled.assign(params.thresholds.size(), true);
    return params;
}

QString signalLayerParams(const SignalCheckForm& form) {
    const int count = checkedSignalTestCount(form);
    QString tests;
    int written = 0;
    for (signal_layers_checks_list test : checkedSignalTests(form)) {
        ++written;
        tests += signalTestToken(test);
        // Only the last test stands without the separator.
        if (written != count) {
            tests += QStringLiteral("\\;");
        }
    }
    return QStringLiteral("((pp_layer=") + form.layers + QStringLiteral(")(pp_spacing=") +
           form.distances[DistSpacing] + QStringLiteral(")(pp_r2c=") +
           form.distances[DistRoutToCu] + QStringLiteral(")(pp_d2c=") +
           form.distances[DistDrillToCu] + QStringLiteral(")(pp_sliver=") +
           form.distances[DistSliverMin] + QStringLiteral(")(pp_min_pad_overlap=") +
           form.distances[DistMinPadOverlap] + QStringLiteral(")(pp_tests=") + tests +
           QStringLiteral(")(pp_selected=") +
           (form.apply_to == 0 ? QStringLiteral("All") : QStringLiteral("Selected")) +
           QStringLiteral(")(pp_check_missing_pads_for_drills=") + yesNo(form.missing_pads) +
           QStringLiteral(")(pp_use_compensated_rout=") +
           compensatedRoutText(form.compensated_rout) + QStringLiteral(")(pp_sm_spacing=") +
           yesNo(form.sm_spacing) + QStringLiteral(")),mode=regular");
}

QJsonObject signalCheckTemplate(const SignalCheckForm& form) {
    QJsonArray entries;
    for (int distance = 0; distance < kSignalDistanceCount; ++distance) {
        entries.append(QJsonObject{{signalDistanceKey(distance), form.distances[distance]}});
    }
    QJsonArray tests;
    for (signal_layers_checks_list test : signalTestScreenOrder()) {
        tests.append(QJsonObject{{signalTestLabel(test), form.tests[test]}});
    }
    entries.append(QJsonObject{{QLatin1String(kTestList), tests}});
    for (const GroupKey& group : kGroups) {
        entries.append(QJsonObject{{QLatin1String(group.key), form.*group.member}});
    }
    return QJsonObject{{QLatin1String(kRoot), entries}};
}

bool readSignalCheckTemplate(const QJsonObject& root, SignalCheckForm& form, QString* error) {
    const QJsonValue entries = root.value(QLatin1String(kRoot));
    if (!entries.isArray()) {
        return fail(error, QStringLiteral("no \"signalLayerChecks\" array"));
    }
    SignalCheckForm read = form;
    QRegExp number(floatPattern());
    for (const QJsonValue& entry : entries.toArray()) {
        if (!entry.isObject() || entry.toObject().size() != 1) {
            return fail(error, QStringLiteral("an entry of \"signalLayerChecks\" is not a "
                                              "single-key object"));
        }
        const QString key = entry.toObject().begin().key();
        const QJsonValue value = entry.toObject().begin().value();
        bool known = false;
        for (int distance = 0; distance < kSignalDistanceCount && !known; ++distance) {
            if (key != signalDistanceKey(distance)) {
                continue;
            }
            known = true;
            const QString text = value.toString();
            if (!value.isString() || (!text.isEmpty() && !number.exactMatch(text))) {
                return fail(error, QStringLiteral("\"%1\" is not a number").arg(key));
            }
            read.distances[distance] = text;
        }
        for (const GroupKey& group : kGroups) {
            if (known || key != QLatin1String(group.key)) {
                continue;
            }
            known = true;
            const int id = value.toInt(-1);
            if (!value.isDouble() || id < 0 || id > group.highest) {
                return fail(error, QStringLiteral("\"%1\" holds no button id").arg(key));
            }
            read.*group.member = id;
        }
        if (!known && key == QLatin1String(kTestList)) {
            known = true;
            if (!value.isArray()) {
                return fail(error, QStringLiteral("\"Test list\" is not an array"));
            }
            for (const QJsonValue& flag : value.toArray()) {
                const QJsonObject object = flag.toObject();
                bool matched = false;
                for (int test = 0; test < kSignalTestCount && object.size() == 1; ++test) {
                    const QJsonValue state = object.value(QLatin1String(kTestLabels[test]));
                    if (state.isBool()) {
                        read.tests[test] = state.toBool();
                        matched = true;
                    }
                }
                if (!matched) {
                    return fail(error, QStringLiteral("\"Test list\" holds an unknown entry"));
                }
            }
        }
        if (!known) {
            return fail(error, QStringLiteral("unknown key \"%1\"").arg(key));
        }
    }
    form = read;
    return true;
}

void showSignalCheckParams(const Korvo::API::signal_check_params& params,
                           const std::vector<signal_layers_checks_list>& tests,
                           SignalCheckForm& form) {
    auto mil = [](double engine) { return QString::number(engine / 25400.0, 'g', 6); };
    form.distances[DistSpacing] = mil(params.spacing);
    form.distances[DistDrillToCu] = mil(params.drill_to_copper);
    form.distances[DistRoutToCu] = mil(params.rout_to_copper);
    form.distances[DistSliverMin] = mil(params.sliver_min);
    form.distances[DistMinPadOverlap] = mil(params.min_pad_overlap);
    form.apply_to = params.apply_to == "All" ? 0 : 1;
    form.missing_pads = params.check_missing_pads_for_drills ? 0 : 1;
    // A record holds a flag only, so "Skeleton" comes back as "No": kept on purpose.
    form.compensated_rout = params.use_compensated_rout ? 0 : 1;
    form.sm_spacing = params.sort_spacing_by_solder_mask ? 0 : 1;
    form.tests.fill(false);
    for (signal_layers_checks_list test : tests) {
        const int value = static_cast<int>(test);
        if (value >= 0 && value < kSignalTestCount) {
            form.tests[value] = true;
        }
    }
}

ResultSummary summariseSignalResult(const Korvo::API::signal_check_result_map& result) {
    // Three passes, each stopping at its first hit.
    auto any = [&](auto list) {
        for (const auto& layer : result) {
            for (const auto& item : layer.second) {
                if (!(item.second.*list).empty()) {
                    return true;
                }
            }
        }
        return false;
    };
    using Levels = Korvo::API::check_levels;
    if (any(&Levels::red)) {
        return ResultSummary::Red;
    }
    if (any(&Levels::yellow)) {
        return ResultSummary::Yellow;
    }
    if (any(&Levels::green)) {
        return ResultSummary::Green;
    }
    return ResultSummary::NoHit;
}

}  // namespace wc
