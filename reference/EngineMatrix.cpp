// Korvo::API edits of the layer matrix on the in-memory jobs of the reference engine
// (change_matrix, move_layer_poi) and their recorder twins. An edit is made on a copy of the
// matrix, the copy checked as a whole, and only a sound copy replaces the job's matrix.

#include <glog/logging.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "EngineCallText.h"
#include "EngineStore.h"
#include "Korvo_API.h"
#include "Korvo_DB.h"
#include "Recorder.h"

namespace ct = wcref::calltext;
using Korvo::API::layer_info;
using wcref::EngineJob;
using wcref::EngineStep;
using wcref::store;

namespace {

bool isCopper(const std::string& type) {
    return type == "signal" || type == "power_ground" || type == "mixed";
}

// The sides a layer of `type` may have; empty for an unknown type.
std::set<std::string> sidesOf(const std::string& type) {
    if (isCopper(type)) {
        return {"top", "inner", "bottom"};
    }
    if (type == "solder_mask" || type == "silk_screen" || type == "solder_paste") {
        return {"top", "bottom"};
    }
    if (type == "drill" || type == "rout") {
        return {"none"};
    }
    if (type == "document") {
        return {"top", "inner", "bottom", "none"};
    }
    return {};
}

// What is wrong with a matrix, or "" when it is sound.
std::string problemOf(const std::vector<layer_info>& matrix) {
    std::set<std::string> names;
    std::set<int> rows;
    for (const layer_info& l : matrix) {
        if (l.name.empty() || std::any_of(l.name.begin(), l.name.end(), [](char c) {
                return std::isspace(static_cast<unsigned char>(c)) != 0;
            })) {
            return "layer name \"" + l.name + "\" is empty or holds white space";
        }
        if (!names.insert(l.name).second) {
            return "two layers are named " + l.name;
        }
        if (!rows.insert(l.row).second) {
            return "two layers are in row " + std::to_string(l.row);
        }
        if (l.context != "board" && l.context != "misc") {
            return "layer " + l.name + ": unknown context \"" + l.context + "\"";
        }
        const std::set<std::string> sides = sidesOf(l.type);
        if (sides.empty()) {
            return "layer " + l.name + ": unknown type \"" + l.type + "\"";
        }
        if (l.polarity != "positive" && l.polarity != "negative") {
            return "layer " + l.name + ": unknown polarity \"" + l.polarity + "\"";
        }
        if (sides.count(l.side) == 0) {
            return "layer " + l.name + ": a " + l.type + " layer cannot have side \"" + l.side +
                   "\"";
        }
    }
    for (const layer_info& l : matrix) {
        const bool spans = !l.drill_start.empty() || !l.drill_end.empty();
        if (!spans) {
            continue;
        }
        if (l.type != "drill") {
            return "layer " + l.name + " is a " + l.type + " layer and cannot span layers";
        }
        for (const std::string& end : {l.drill_start, l.drill_end}) {
            const auto it = std::find_if(matrix.begin(), matrix.end(),
                                         [&](const layer_info& m) { return m.name == end; });
            if (end.empty()) {
                return "drill layer " + l.name + " spans from \"" + l.drill_start + "\" to \"" +
                       l.drill_end + "\": both ends are needed";
            }
            if (it == matrix.end()) {
                return "drill layer " + l.name + " spans layer " + end + ", which does not exist";
            }
            if (!isCopper(it->type)) {
                return "drill layer " + l.name + " spans layer " + end + ", which is a " +
                       it->type + " layer, not copper";
            }
        }
    }
    return {};
}

// Renumbers the rows 1..n in vector order.
void renumber(std::vector<layer_info>& matrix) {
    for (size_t k = 0; k < matrix.size(); ++k) {
        matrix[k].row = static_cast<int>(k) + 1;
    }
}

void moveRow(std::vector<layer_info>& matrix, int from, int to) {
    layer_info moved = matrix[from - 1];
    matrix.erase(matrix.begin() + (from - 1));
    matrix.insert(matrix.begin() + (to - 1), std::move(moved));
    renumber(matrix);
}

std::string rowText(int row, size_t count) {
    return "row " + std::to_string(row) + " is outside 1.." + std::to_string(count);
}

void countEdit(EngineJob& job) {
    for (EngineStep& s : job.steps) {
        ++s.editops;
    }
}

// Moves the features of `from` to `to` in every step, with their marks.
void renameData(EngineJob& job, const std::string& from, const std::string& to) {
    for (EngineStep& s : job.steps) {
        auto it = s.layers.find(from);
        if (it == s.layers.end()) {
            continue;
        }
        wcref::EngineLayerData data = std::move(it->second);
        s.layers.erase(it);
        for (Korvo::API::featureInfo& f : data.features) {
            f.layer = to;
        }
        s.layers[to] = std::move(data);
    }
    if (job.displayed.erase(from) != 0) {
        job.displayed.insert(to);
    }
}

std::string infoText(const layer_info& info) {
    return ct::record("layer_info", {{"name", info.name},
                                     {"context", info.context},
                                     {"type", info.type},
                                     {"polarity", info.polarity},
                                     {"side", info.side},
                                     {"drill_start", info.drill_start},
                                     {"drill_end", info.drill_end}});
}

}  // namespace

namespace Korvo {
namespace API {

bool change_matrix(const std::string& job, int row, int new_row, const std::string& layer,
                   const layer_info& info) {
    std::lock_guard<std::mutex> guard(store().mutex);
    store().recordLocked("change_matrix",
                         {job, ct::number(row), ct::number(new_row), layer, infoText(info)});
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return false;
    }
    const size_t count = j->matrix.size();
    std::string why;
    if (row < 1 || row > static_cast<int>(count)) {
        why = rowText(row, count);
    } else if (new_row < 1 || new_row > static_cast<int>(count)) {
        why = "new " + rowText(new_row, count);
    } else if (j->matrix[row - 1].name != layer) {
        why = "row " + std::to_string(row) + " holds layer " + j->matrix[row - 1].name + ", not " +
              layer;
    }
    std::vector<layer_info> changed = j->matrix;
    if (why.empty()) {
        layer_info& edited = changed[row - 1];
        const std::string old_name = edited.name;
        edited = info;
        edited.row = row;
        if (info.name != old_name) {
            for (layer_info& l : changed) {
                if (l.drill_start == old_name) {
                    l.drill_start = info.name;
                }
                if (l.drill_end == old_name) {
                    l.drill_end = info.name;
                }
            }
        }
        moveRow(changed, row, new_row);
        why = problemOf(changed);
    }
    if (!why.empty()) {
        LOG(ERROR) << "change_matrix of job " << job << " refused: " << why;
        return false;
    }
    if (info.name != layer) {
        renameData(*j, layer, info.name);
    }
    j->matrix = std::move(changed);
    countEdit(*j);
    return true;
}

bool move_layer_poi(const std::string& job, int from, int to) {
    std::lock_guard<std::mutex> guard(store().mutex);
    store().recordLocked("move_layer_poi", {job, ct::number(from), ct::number(to)});
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return false;
    }
    const size_t count = j->matrix.size();
    const bool fromOk = from >= 1 && from <= static_cast<int>(count);
    if (!fromOk || to < 1 || to > static_cast<int>(count)) {
        LOG(ERROR) << "move_layer_poi of job " << job
                   << " refused: " << rowText(fromOk ? to : from, count);
        return false;
    }
    if (from == to) {
        return true;
    }
    moveRow(j->matrix, from, to);
    countEdit(*j);
    return true;
}

}  // namespace API

namespace DB {

void change_matrix_db_save(const std::string& job, int row, int new_row, const std::string& layer,
                           const API::layer_info& info) {
    wcref::Recorder::instance().record("change_matrix_db_save(" + job + ", " + std::to_string(row) +
                                       ", " + std::to_string(new_row) + ", " + layer + ", " +
                                       infoText(info) + ")");
}

void move_layer_poi_db_save(const std::string& job, int from, int to) {
    wcref::Recorder::instance().record("move_layer_poi_db_save(" + job + ", " +
                                       std::to_string(from) + ", " + std::to_string(to) + ")");
}

}  // namespace DB
}  // namespace Korvo
