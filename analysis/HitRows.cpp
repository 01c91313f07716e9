#include "HitRows.h"

#include <QHash>
#include <algorithm>
#include <map>

#include "HitColumns.h"

namespace wc {

HitIndex::HitIndex(const ResultsModel& model) {
    const std::vector<ResultLayer>& layers = model.layers();
    for (std::size_t l = 0; l < layers.size(); ++l) {
        for (const ResultCategory& category : layers[l].categories) {
            for (const ResultRecord& record : category.records) {
                for (int level = 0; level < kSeverityCount; ++level) {
                    if (record.lists[level].size() != 0) {
                        parts_.push_back({record.first[level], record.lists[level], int(l),
                                          category.item, level});
                    }
                }
            }
        }
    }
}

const HitIndex::Part* HitIndex::partOf(std::size_t number) const {
    auto part = std::upper_bound(parts_.begin(), parts_.end(), number,
                                 [](std::size_t n, const Part& p) { return n < p.first; });
    if (part == parts_.begin()) {
        return nullptr;
    }
    --part;
    return number - part->first < part->list.size() ? &*part : nullptr;
}

HitRef HitIndex::at(std::size_t number) const {
    const Part* part = partOf(number);
    if (part == nullptr) {
        return {};
    }
    return {&part->list[number - part->first], part->layer, part->level, number};
}

int HitIndex::itemOf(std::size_t number) const {
    const Part* part = partOf(number);
    return part != nullptr ? part->item : -1;
}

namespace {

// Each hit's group as a rank in the order the groups are listed, and the groups' labels in
// that order.
struct Ranks {
    std::vector<std::uint32_t> of_hit;
    QStringList labels;
};

Ranks itemRanks(const std::vector<TableHit>& hits, const ResultsModel& model) {
    std::map<int, QString> names;
    for (const TableHit& hit : hits) {
        names.emplace(hit.item, QString());
    }
    for (const ResultLayer& layer : model.layers()) {
        for (const ResultCategory& category : layer.categories) {
            auto found = names.find(category.item);
            if (found != names.end() && found->second.isEmpty()) {
                found->second = QString::fromStdString(category.name);
            }
        }
    }
    Ranks ranks;
    std::map<int, std::uint32_t> rank;
    for (const auto& [item, name] : names) {
        rank[item] = std::uint32_t(ranks.labels.size());
        ranks.labels << name;
    }
    ranks.of_hit.reserve(hits.size());
    for (const TableHit& hit : hits) {
        ranks.of_hit.push_back(rank[hit.item]);
    }
    return ranks;
}

Ranks layerRanks(const std::vector<TableHit>& hits, const ResultsModel& model,
                 const HitIndex& index) {
    std::vector<std::uint32_t> layer_of;
    layer_of.reserve(hits.size());
    std::vector<char> used(model.layers().size(), 0);
    for (const TableHit& hit : hits) {
        layer_of.push_back(std::uint32_t(index.at(hit.number).layer));
        used[layer_of.back()] = 1;
    }
    Ranks ranks;
    std::vector<std::uint32_t> rank(used.size(), 0);
    for (std::size_t l = 0; l < used.size(); ++l) {
        if (used[l]) {
            rank[l] = std::uint32_t(ranks.labels.size());
            ranks.labels << QString::fromStdString(model.layers()[l].name);
        }
    }
    for (std::uint32_t& layer : layer_of) {
        layer = rank[layer];
    }
    ranks.of_hit = std::move(layer_of);
    return ranks;
}

Ranks netRanks(const std::vector<TableHit>& hits, const HitIndex& index, const QString& no_net) {
    QHash<QString, std::uint32_t> ids;
    QStringList texts;
    std::vector<std::uint32_t> id_of;
    id_of.reserve(hits.size());
    for (const TableHit& hit : hits) {
        const QString text = netsText(*index.at(hit.number).hit);
        auto found = ids.constFind(text);
        if (found == ids.constEnd()) {
            found = ids.insert(text, std::uint32_t(texts.size()));
            texts << text;
        }
        id_of.push_back(*found);
    }
    std::vector<std::uint32_t> order(texts.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::sort(order.begin(), order.end(), [&texts](std::uint32_t a, std::uint32_t b) {
        if (texts[a].isEmpty() != texts[b].isEmpty()) {
            return texts[b].isEmpty();
        }
        return texts[a] < texts[b];
    });
    Ranks ranks;
    std::vector<std::uint32_t> rank(order.size());
    for (std::uint32_t r = 0; r < order.size(); ++r) {
        rank[order[r]] = r;
        ranks.labels << (texts[order[r]].isEmpty() ? no_net : texts[order[r]]);
    }
    for (std::uint32_t& id : id_of) {
        id = rank[id];
    }
    ranks.of_hit = std::move(id_of);
    return ranks;
}

}  // namespace

std::vector<HitGroup> groupHits(std::vector<TableHit>& hits, GroupKey key,
                                const ResultsModel& model, const HitIndex& index,
                                const QString& no_net) {
    if (key == GroupKey::None || hits.empty()) {
        return {};
    }
    const Ranks ranks = key == GroupKey::Item    ? itemRanks(hits, model)
                        : key == GroupKey::Layer ? layerRanks(hits, model, index)
                                                 : netRanks(hits, index, no_net);
    // A counting sort by rank keeps the order within a group.
    std::vector<HitGroup> groups(std::size_t(ranks.labels.size()));
    for (std::uint32_t rank : ranks.of_hit) {
        ++groups[rank].end;
    }
    std::size_t begin = 0;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        groups[g].label = ranks.labels[int(g)];
        groups[g].begin = begin;
        begin += groups[g].end;
        groups[g].end = groups[g].begin;
    }
    std::vector<TableHit> sorted(hits.size());
    for (std::size_t i = 0; i < hits.size(); ++i) {
        sorted[groups[ranks.of_hit[i]].end++] = hits[i];
    }
    hits = std::move(sorted);
    return groups;
}

}  // namespace wc
