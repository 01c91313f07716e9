#include "HitTriage.h"

#include <QDateTime>
#include <QString>
#include <algorithm>
#include <functional>
#include <stdexcept>
#include <unordered_map>

namespace wc {

namespace api = Korvo::API;

namespace {

// The two nets of a hit between two nets, ascending; nothing for one net, none, or more.
std::optional<std::pair<const std::string*, const std::string*>> netPair(
    const std::vector<std::string>& nets) {
    if (nets.size() != 2 || nets[0] == nets[1]) {
        return std::nullopt;
    }
    const bool swap = nets[1] < nets[0];
    return std::make_pair(&nets[swap ? 1 : 0], &nets[swap ? 0 : 1]);
}

// Only for the lookup table of one applyWaivers call, so std::hash serves.
std::size_t netPairKey(int item, const std::string& low, const std::string& high) {
    const std::hash<std::string> text;
    std::size_t key = std::hash<int>()(item);
    key = key * 1000003u ^ text(low);
    return key * 1000003u ^ text(high);
}

std::string now() {
    return QDateTime::currentDateTime()
        .toString(QStringLiteral("yyyy.MM.dd hh:mm:ss"))
        .toStdString();
}

api::analysis_waiver waiverOf(const TriageRun& run, std::size_t number, const TriageScope& scope,
                              const std::string& reason, const std::string& user) {
    if (number >= run.size()) {
        throw std::out_of_range("no hit numbered " + std::to_string(number) + " among " +
                                std::to_string(run.size()));
    }
    const TriageHit& hit = run[number];
    api::analysis_waiver waiver;
    waiver.kind = scope.kind;
    waiver.job = scope.job;
    waiver.step = scope.step;
    waiver.item = hit.item;
    waiver.nets = hit.hit->nets;
    std::sort(waiver.nets.begin(), waiver.nets.end());
    waiver.reason = reason;
    waiver.user = user;
    waiver.time = now();
    return waiver;
}

// Every hit of a net-pair waiver's item between its two nets, on any layer. Where several
// waivers cover a hit the first of them is its waiver.
void applyNetPairs(const TriageRun& run, const std::vector<api::analysis_waiver>& waivers,
                   WaiverMatch& match, std::vector<char>& matched) {
    std::unordered_map<std::size_t, std::vector<std::int32_t>> by_key;
    for (std::size_t i = 0; i < waivers.size(); ++i) {
        const api::analysis_waiver& waiver = waivers[i];
        const auto pair = netPair(waiver.nets);
        if (waiver.scope == api::waive_net_pair && pair) {
            by_key[netPairKey(waiver.item, *pair->first, *pair->second)].push_back(std::int32_t(i));
        }
    }
    if (by_key.empty()) {
        return;
    }
    for (std::size_t number = 0; number < run.size(); ++number) {
        const TriageHit& hit = run[number];
        const auto pair = netPair(hit.hit->nets);
        if (!pair) {
            continue;
        }
        const auto found = by_key.find(netPairKey(hit.item, *pair->first, *pair->second));
        if (found == by_key.end()) {
            continue;
        }
        for (std::int32_t i : found->second) {
            const auto wanted = netPair(waivers[i].nets);
            if (waivers[i].item == hit.item && *wanted->first == *pair->first &&
                *wanted->second == *pair->second) {
                matched[i] = 1;
                if (match.waiver[number] < 0) {
                    match.waiver[number] = i;
                }
            }
        }
    }
}

// Each one-hit waiver takes the nearest hit of its identity, item and layer that no earlier
// one-hit waiver took, over a net-pair waiver that covers it.
void applyOneHit(const TriageRun& run, const std::vector<api::analysis_waiver>& waivers,
                 WaiverMatch& match, std::vector<char>& matched) {
    std::vector<char> taken(run.size(), 0);
    for (std::size_t i = 0; i < waivers.size(); ++i) {
        const api::analysis_waiver& waiver = waivers[i];
        const auto identity = HitIdentity::fromText(waiver.identity);
        if (waiver.scope != api::waive_hit || !identity) {
            continue;
        }
        for (std::size_t number : run.index().matches(*identity)) {
            const TriageHit& hit = run[number];
            if (taken[number] || hit.item != waiver.item || run.layerName(hit) != waiver.layer) {
                continue;
            }
            taken[number] = 1;
            matched[i] = 1;
            match.waiver[number] = std::int32_t(i);
            break;
        }
    }
}

}  // namespace

TriageRun::TriageRun(const ResultsModel& model) : model_(&model) {
    hits_.reserve(model.total());
    std::vector<HitIdentity> identities;
    identities.reserve(model.total());
    const std::vector<ResultLayer>& layers = model.layers();
    for (std::size_t l = 0; l < layers.size(); ++l) {
        for (const ResultCategory& category : layers[l].categories) {
            for (const ResultRecord& record : category.records) {
                for (int level = 0; level < kSeverityCount; ++level) {
                    const HitList& list = record.lists[level];
                    for (std::size_t k = 0; k < list.size(); ++k) {
                        const api::check_info& hit = list[k];
                        identities.push_back(identityOf(category.item, layers[l].name, hit));
                        hits_.push_back({&hit, int(l), category.item, level, identities.back()});
                    }
                }
            }
        }
    }
    index_ = IdentityIndex(identities);
}

const std::string& TriageRun::layerName(const TriageHit& hit) const {
    return model_->layers()[hit.layer].name;
}

std::size_t RunComparison::count(RunState wanted) const {
    return std::size_t(std::count(state.begin(), state.end(), wanted));
}

RunComparison compareRuns(const TriageRun& shown, const TriageRun& earlier) {
    RunComparison comparison;
    comparison.state.assign(shown.size(), RunState::New);
    std::vector<char> paired(earlier.size(), 0);
    // In number order, so that the same two runs always pair alike.
    for (std::size_t number = 0; number < shown.size(); ++number) {
        for (std::size_t partner : earlier.index().matches(shown[number].identity)) {
            if (!paired[partner]) {
                paired[partner] = 1;
                comparison.state[number] = RunState::Unchanged;
                break;
            }
        }
    }
    for (std::size_t number = 0; number < earlier.size(); ++number) {
        if (!paired[number]) {
            comparison.fixed.push_back(number);
        }
    }
    return comparison;
}

WaiverMatch applyWaivers(const TriageRun& run, const std::vector<api::analysis_waiver>& waivers) {
    WaiverMatch match;
    match.waiver.assign(run.size(), -1);
    std::vector<char> matched(waivers.size(), 0);
    applyNetPairs(run, waivers, match, matched);
    applyOneHit(run, waivers, match, matched);
    for (std::size_t i = 0; i < waivers.size(); ++i) {
        if (!matched[i]) {
            match.stale.push_back(i);
        }
    }
    match.waived =
        run.size() - std::size_t(std::count(match.waiver.begin(), match.waiver.end(), -1));
    return match;
}

api::analysis_waiver waiverForHit(const TriageRun& run, std::size_t number,
                                  const TriageScope& scope, const std::string& reason,
                                  const std::string& user) {
    api::analysis_waiver waiver = waiverOf(run, number, scope, reason, user);
    waiver.scope = api::waive_hit;
    waiver.layer = run.layerName(run[number]);
    waiver.identity = run[number].identity.text();
    return waiver;
}

std::optional<api::analysis_waiver> waiverForNets(const TriageRun& run, std::size_t number,
                                                  const TriageScope& scope,
                                                  const std::string& reason,
                                                  const std::string& user) {
    if (number >= run.size() || !netPair(run[number].hit->nets)) {
        return std::nullopt;
    }
    api::analysis_waiver waiver = waiverOf(run, number, scope, reason, user);
    waiver.scope = api::waive_net_pair;
    return waiver;
}

}  // namespace wc
