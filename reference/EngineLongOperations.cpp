// The long operations of the reference engine (analyses, DFM operations, exports) and the
// storage calls of the result database (ResultDatabase.h).
//
// The signal layer check computes real hits (SignalChecks.h), and so do the four DFM operations,
// which also change the layers (DfmOperations.h says what each finds and changes). The exports
// write an honest text listing of the features.

#include <glog/logging.h>

#include <QDateTime>
#include <QDir>
#include <QSaveFile>
#include <QString>
#include <algorithm>
#include <sstream>
#include <thread>

#include "DfmOperations.h"
#include "EngineCallText.h"
#include "EngineStore.h"
#include "JobNets.h"
#include "Korvo_API.h"
#include "ResultDatabase.h"
#include "SignalChecks.h"

namespace ct = wcref::calltext;
using wcref::EngineHooks;
using wcref::EngineStore;
using wcref::enter;
using wcref::store;

namespace {

// Reports progress over the configured duration, polling the stop flag at least every 20 ms.
// Returns false when the caller asked to stop; a null progress block runs to the end.
bool reportProgress(Korvo::COMMON::progress_state* progress) {
    using clock = std::chrono::steady_clock;
    std::chrono::milliseconds duration;
    {
        std::lock_guard<std::mutex> guard(store().mutex);
        duration = store().long_operation_duration;
    }
    const clock::time_point start = clock::now();
    const clock::time_point end = start + duration;
    while (true) {
        const clock::time_point now = clock::now();
        if (progress != nullptr) {
            if (progress->is_stop_requested()) {
                LOG(INFO) << "long operation stopped at " << progress->get_value() << "%";
                return false;
            }
            const double done = duration.count() == 0
                                    ? 1.0
                                    : std::min(1.0, std::chrono::duration<double>(now - start) /
                                                        std::chrono::duration<double>(duration));
            progress->set_value(100.0 * done);
        }
        if (now >= end) {
            return true;
        }
        std::this_thread::sleep_for(
            std::min<clock::duration>(end - now, std::chrono::milliseconds(20)));
    }
}

// The fields a waiver is stored by, and who gives it why.
std::string waiverText(const Korvo::API::analysis_waiver& w) {
    return ct::record("waiver", {{"kind", w.kind},
                                 {"job", w.job},
                                 {"step", w.step},
                                 {"scope", ct::number(static_cast<int>(w.scope))},
                                 {"item", ct::number(w.item)},
                                 {"layer", w.layer},
                                 {"nets", ct::joined(w.nets)},
                                 {"identity", w.identity},
                                 {"reason", w.reason},
                                 {"user", w.user}});
}

bool isCopperOrDrill(const Korvo::API::layer_info& l) {
    return l.type == "signal" || l.type == "power_ground" || l.type == "mixed" || l.type == "drill";
}

// What a step's nets depend on: its edit counter, the matrix rows and each layer's size.
std::string netsKey(const wcref::EngineJob& job, const wcref::EngineStep& step) {
    std::string key = std::to_string(step.editops) + ";" + std::to_string(job.netlist.size());
    for (const Korvo::API::layer_info& l : job.matrix) {
        const auto data = step.layers.find(l.name);
        key += ";" + l.name + "|" + std::to_string(l.row) + "|" + l.context + "|" + l.type + "|" +
               l.polarity + "|" + l.drill_start + "|" + l.drill_end + "|" +
               std::to_string(data == step.layers.end() ? 0 : data->second.features.size());
    }
    return key;
}

// The nets of a step (JobNets.h), derived without the store's lock on a copy of its copper and
// drill layers, and kept until the step or its matrix changes. Null for an unknown step.
std::shared_ptr<const wcref::StepNets> stepNets(const std::string& job, const std::string& step) {
    wcref::EngineJob job_copy;
    wcref::EngineStep step_copy;
    std::string key;
    {
        std::lock_guard<std::mutex> guard(store().mutex);
        wcref::EngineJob* j = store().job(job);
        wcref::EngineStep* s = store().step(job, step);
        if (j == nullptr || s == nullptr) {
            return nullptr;
        }
        key = netsKey(*j, *s);
        if (s->nets != nullptr && s->nets_key == key) {
            return s->nets;
        }
        job_copy.name = j->name;
        job_copy.matrix = j->matrix;
        job_copy.netlist = j->netlist;
        step_copy.name = s->name;
        for (const Korvo::API::layer_info& l : j->matrix) {
            if (isCopperOrDrill(l)) {
                step_copy.layers[l.name] = s->layers[l.name];
            }
        }
    }
    auto nets = std::make_shared<const wcref::StepNets>(
        wcref::JobNets::derive(job_copy, step_copy, job_copy.netlist));
    std::lock_guard<std::mutex> guard(store().mutex);
    wcref::EngineStep* s = store().step(job, step);
    if (s != nullptr) {
        s->nets = nets;
        s->nets_key = key;
    }
    return nets;
}

// Copies what the signal layer check reads, so that it runs without the store's lock: the
// layer, the drill layers whose span covers it, the rout layers, the profile, the selections,
// the screen box and the nets of the copper and the holes.
bool checkInput(const std::string& job, const std::string& step, const std::string& layer,
                wcref::SignalCheckInput& input) {
    const std::shared_ptr<const wcref::StepNets> nets = stepNets(job, step);
    if (nets != nullptr) {
        input.net_names = nets->names;
    }
    std::lock_guard<std::mutex> guard(store().mutex);
    wcref::EngineJob* j = store().job(job);
    wcref::EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr || store().layer(job, step, layer) == nullptr) {
        return false;
    }
    const auto rowOf = [j](const std::string& name) {
        const Korvo::API::layer_info* info = j->layer(name);
        return info != nullptr ? info->row : 0;
    };
    const auto copy = [s, &nets](const Korvo::API::layer_info& info) {
        wcref::CheckLayer out;
        out.row = info.row;
        const wcref::EngineLayerData& data = s->layers[info.name];
        out.features = data.features;
        out.selected = data.selected;
        if (nets != nullptr) {
            const auto layer_nets = nets->of.find(info.name);
            if (layer_nets != nets->of.end() && layer_nets->second.size() == out.features.size()) {
                out.nets = layer_nets->second;
            }
        }
        return out;
    };
    const int row = rowOf(layer);
    for (const Korvo::API::layer_info& info : j->matrix) {
        if (info.name == layer) {
            input.copper = copy(info);
            input.outer = info.side != "inner";
        } else if (info.type == "drill") {
            const int first = info.drill_start.empty() ? 0 : rowOf(info.drill_start);
            const int last = info.drill_end.empty() ? 1 << 30 : rowOf(info.drill_end);
            if (row >= std::min(first, last) && row <= std::max(first, last)) {
                input.drills.push_back(copy(info));
            }
        } else if (info.type == "rout") {
            input.routs.push_back(copy(info));
        }
    }
    input.profile = s->profile;
    input.has_screen_box = store().has_screen_box;
    input.screen_box = store().screen_box;
    return true;
}

const char* featureKind(Korvo::API::feature_type type) {
    switch (type) {
        case Korvo::API::feature_pad:
            return "pad";
        case Korvo::API::feature_line:
            return "line";
        case Korvo::API::feature_arc:
            return "arc";
        case Korvo::API::feature_surface:
            return "surface";
        case Korvo::API::feature_text:
            return "text";
    }
    return "unknown";
}

const char* exportName(Korvo::API::export_type type) {
    switch (type) {
        case Korvo::API::export_gerber:
            return "gerber";
        case Korvo::API::export_drill:
            return "drill";
        case Korvo::API::export_dxf:
            return "dxf";
    }
    return "unknown";
}

// One feature per line, coordinates in nanometres.
std::string layerListing(const std::string& job, const std::string& step, const std::string& layer,
                         const char* format, const std::vector<Korvo::API::featureInfo>& features) {
    std::ostringstream out;
    out << "# layer listing of the reference engine; coordinates in nm\n";
    out << "job " << job << "\nstep " << step << "\nlayer " << layer << "\nformat " << format
        << "\nfeatures " << features.size() << "\n";
    const auto xy = [](const Korvo::API::point& p) {
        return ct::number(p.x) + " " + ct::number(p.y);
    };
    for (const Korvo::API::featureInfo& f : features) {
        out << featureKind(f.type) << " " << f.id << " " << (f.positive ? "P" : "N");
        switch (f.type) {
            case Korvo::API::feature_pad:
                out << " " << f.symbol << " " << xy(f.start) << " " << ct::number(f.angle);
                break;
            case Korvo::API::feature_line:
                out << " " << f.symbol << " " << xy(f.start) << " " << xy(f.end);
                break;
            case Korvo::API::feature_arc:
                out << " " << f.symbol << " " << xy(f.start) << " " << xy(f.end) << " "
                    << xy(f.center) << (f.clockwise ? " cw" : " ccw");
                break;
            case Korvo::API::feature_surface:
                out << " " << f.contour.size();
                for (const Korvo::API::point& p : f.contour) {
                    out << " " << xy(p);
                }
                break;
            case Korvo::API::feature_text:
                out << " " << xy(f.start) << " \"" << f.text << "\"";
                break;
        }
        for (const auto& attribute : f.attributes) {
            out << " " << attribute.first;
            if (!attribute.second.empty()) {
                out << "=" << attribute.second;
            }
        }
        out << "\n";
    }
    return out.str();
}

bool writeAtomically(const QString& path, const std::string& text) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    // A full disk shows only when the buffer is flushed; commit() alone would still replace
    // the file.
    const qint64 size = static_cast<qint64>(text.size());
    if (file.write(text.data(), size) != size || !file.flush() || !file.commit()) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    return true;
}

bool snapshotLayer(const std::string& job, const std::string& step, const std::string& layer,
                   std::vector<Korvo::API::featureInfo>& features) {
    std::lock_guard<std::mutex> guard(store().mutex);
    wcref::EngineLayerData* data = store().layer(job, step, layer);
    if (data == nullptr) {
        return false;
    }
    features = data->features;
    return true;
}

}  // namespace

namespace Korvo {
namespace API {

// ---- analyses -------------------------------------------------------------------------------

// Computes the check on the layer's geometry (SignalChecks.h). A stopped run succeeds with the
// hits found so far. False for an unknown job, step or layer.
bool signal_layers_checks(const std::string& job, const std::string& step, const std::string& layer,
                          signal_check_params params, std::vector<signal_layers_checks_list> tests,
                          std::map<signal_layers_checks_items, signal_check_range> ranges,
                          std::map<signal_layers_checks_items, signal_check_result>& result,
                          COMMON::progress_value<signal_check_result_map>* progress, int scope) {
    std::vector<std::string> test_names;
    for (signal_layers_checks_list test : tests) {
        test_names.push_back(ct::number(static_cast<int>(test)));
    }
    if (auto hook = enter(
            "signal_layers_checks",
            {job, step, layer, ct::checkParams(params), ct::joined(test_names),
             "ranges{" + ct::number(static_cast<int>(ranges.size())) + "}", ct::number(scope)},
            &EngineHooks::signal_layers_checks)) {
        return hook(job, step, layer, std::move(params), std::move(tests), std::move(ranges),
                    result, progress, scope);
    }
    wcref::SignalCheckInput input;
    if (!checkInput(job, step, layer, input)) {
        return false;
    }
    const bool completed =
        wcref::SignalChecks::run(input, params, tests, ranges, result, progress, scope);
    // The netlist's opens and shorts go with the spacing test, on the layer of their first pad.
    const std::shared_ptr<const wcref::StepNets> nets = stepNets(job, step);
    if (completed && nets != nullptr &&
        std::find(tests.begin(), tests.end(), sl_spacing) != tests.end()) {
        for (const wcref::NetDifference& d : nets->differences) {
            if (d.features.empty() || d.features.front().layer_row != input.copper.row ||
                d.at.empty()) {
                continue;
            }
            check_info hit;
            hit.shape.kind = check_points::line;
            hit.shape.points = {d.at.front(), d.at.back()};
            hit.features = d.features;
            hit.nets = d.nets;
            wcref::SignalChecks::grade(
                d.kind == wcref::NetDifference::open ? sli_netlist_open : sli_netlist_short,
                std::move(hit), ranges, result);
        }
    }
    return true;
}

Quorin::DBS_API::CreateSesult insertSignalLayerAnalysisResult(
    const dms_signal_check_params& params, const signal_check_result_map& result) {
    if (auto hook = enter("insertSignalLayerAnalysisResult",
                          {ct::checkParams(params),
                           "result{layers=" + ct::number(static_cast<int>(result.size())) + "}"},
                          &EngineHooks::insertSignalLayerAnalysisResult)) {
        return hook(params, result);
    }
    return wcref::resultdb::insertSignalCheck(params, result);
}

bool getSignalLayerAnalysisResult(int id, dms_signal_check_params& params,
                                  signal_check_result_map& result) {
    if (auto hook = enter("getSignalLayerAnalysisResult", {ct::number(id)},
                          &EngineHooks::getSignalLayerAnalysisResult)) {
        return hook(id, params, result);
    }
    return wcref::resultdb::loadSignalCheck(id, &params, result);
}

// Keys are "tq" followed by the id of a stored check.
bool getTqSignalLayerAnalysisResult(const std::string& key, signal_check_result_map& result) {
    if (auto hook = enter("getTqSignalLayerAnalysisResult", {key},
                          &EngineHooks::getTqSignalLayerAnalysisResult)) {
        return hook(key, result);
    }
    int id = -1;
    if (key.size() > 2 && key.compare(0, 2, "tq") == 0 &&
        key.find_first_not_of("0123456789", 2) == std::string::npos && key.size() < 12) {
        id = std::stoi(key.substr(2));
    }
    if (id < 0) {
        LOG(ERROR) << "no stored signal layer check under key " << key;
        return false;
    }
    return wcref::resultdb::loadSignalCheck(id, nullptr, result);
}

std::map<int, std::vector<std::string>> getCheckResultMaster() {
    if (auto hook = enter("getCheckResultMaster", {}, &EngineHooks::getCheckResultMaster)) {
        return hook();
    }
    return wcref::resultdb::master();
}

// ---- waivers and the history of runs ---------------------------------------------------------

Quorin::DBS_API::CreateSesult insertAnalysisWaiver(const analysis_waiver& waiver) {
    if (auto hook = enter("insertAnalysisWaiver", {waiverText(waiver)},
                          &EngineHooks::insertAnalysisWaiver)) {
        return hook(waiver);
    }
    return wcref::resultdb::insertWaiver(waiver);
}

bool getAnalysisWaivers(const std::string& kind, const std::string& job, const std::string& step,
                        std::vector<analysis_waiver>& waivers, std::string& error) {
    if (auto hook =
            enter("getAnalysisWaivers", {kind, job, step}, &EngineHooks::getAnalysisWaivers)) {
        return hook(kind, job, step, waivers, error);
    }
    return wcref::resultdb::loadWaivers(kind, job, step, waivers, error);
}

bool deleteAnalysisWaiver(int id, std::string& error) {
    if (auto hook =
            enter("deleteAnalysisWaiver", {ct::number(id)}, &EngineHooks::deleteAnalysisWaiver)) {
        return hook(id, error);
    }
    return wcref::resultdb::deleteWaiver(id, error);
}

bool getAnalysisRuns(const std::string& kind, const std::string& job, const std::string& step,
                     std::vector<analysis_run_info>& runs, std::string& error) {
    if (auto hook = enter("getAnalysisRuns", {kind, job, step}, &EngineHooks::getAnalysisRuns)) {
        return hook(kind, job, step, runs, error);
    }
    return wcref::resultdb::listRuns(kind, job, step, runs, error);
}

// ---- DFM optimisations ----------------------------------------------------------------------
// Computed by DfmOperations.h. False for an unknown job, step or layer, or no layer.

bool signal_layer_DFM_op(const std::string& job, const std::string& step,
                         const std::vector<std::string>& layers, signal_layer_DFM_op_params params,
                         signal_layer_DFM_result_map& results,
                         COMMON::progress_value<void>* progress) {
    if (auto hook =
            enter("signal_layer_DFM_op", {job, step, ct::joined(layers), ct::dfmParams(params)},
                  &EngineHooks::signal_layer_DFM_op)) {
        return hook(job, step, layers, std::move(params), results, progress);
    }
    return wcref::DfmOperations::signalLayer(job, step, layers, params, results, progress);
}

bool solder_mask_DFM_op(const std::string& job, const std::string& step,
                        const std::vector<std::string>& layers, solder_mask_DFM_params params,
                        solder_mask_DFM_result_map& results,
                        COMMON::progress_value<void>* progress) {
    if (auto hook =
            enter("solder_mask_DFM_op", {job, step, ct::joined(layers), ct::dfmParams(params)},
                  &EngineHooks::solder_mask_DFM_op)) {
        return hook(job, step, layers, std::move(params), results, progress);
    }
    return wcref::DfmOperations::solderMask(job, step, layers, params, results, progress);
}

bool teardrop_create_DFM_op(const std::string& job, const std::string& step,
                            const std::vector<std::string>& layers,
                            teardrop_create_DFM_op_params params, teardrop_result_map& results,
                            COMMON::progress_value<void>* progress) {
    if (auto hook =
            enter("teardrop_create_DFM_op", {job, step, ct::joined(layers), ct::dfmParams(params)},
                  &EngineHooks::teardrop_create_DFM_op)) {
        return hook(job, step, layers, std::move(params), results, progress);
    }
    return wcref::DfmOperations::teardrops(job, step, layers, params, results, progress);
}

bool NFP_removal_DFM_op(const std::string& job, const std::string& step,
                        const std::vector<std::string>& layers, NFP_removal_DFM_op_params params,
                        NFP_removal_result_map& results, COMMON::progress_value<void>* progress) {
    if (auto hook =
            enter("NFP_removal_DFM_op", {job, step, ct::joined(layers), ct::dfmParams(params)},
                  &EngineHooks::NFP_removal_DFM_op)) {
        return hook(job, step, layers, std::move(params), results, progress);
    }
    return wcref::DfmOperations::nfpRemoval(job, step, layers, params, results, progress);
}

// ---- output ---------------------------------------------------------------------------------
// The reference engine writes a text listing of the features whatever the export type asks
// for (the type is named in the listing); a stopped run writes nothing and still succeeds.

bool layer_export(const std::string& job, const std::string& step, const std::string& layer,
                  export_type type, const std::string& path,
                  COMMON::progress_value<void>* progress) {
    if (auto hook =
            enter("layer_export", {job, step, layer, ct::number(static_cast<int>(type)), path},
                  &EngineHooks::layer_export)) {
        return hook(job, step, layer, type, path, progress);
    }
    std::vector<featureInfo> features;
    if (!snapshotLayer(job, step, layer, features)) {
        return false;
    }
    if (path.empty()) {
        LOG(ERROR) << "layer_export needs a path";
        return false;
    }
    if (!reportProgress(progress)) {
        return true;
    }
    return writeAtomically(QString::fromStdString(path),
                           layerListing(job, step, layer, exportName(type), features));
}

// One listing per layer of the matrix, named "<layer>.txt", below `folder` (created if needed).
bool Export_step(const std::string& job, const std::string& step, const std::string& folder,
                 COMMON::progress_value<void>* progress) {
    if (auto hook = enter("Export_step", {job, step, folder}, &EngineHooks::Export_step)) {
        return hook(job, step, folder, progress);
    }
    std::vector<std::string> layers;
    {
        std::lock_guard<std::mutex> guard(store().mutex);
        wcref::EngineJob* j = store().job(job);
        if (j == nullptr || store().step(job, step) == nullptr) {
            return false;
        }
        for (const layer_info& info : j->matrix) {
            layers.push_back(info.name);
        }
    }
    const QString directory = QString::fromStdString(folder);
    if (folder.empty() || !QDir().mkpath(directory)) {
        LOG(ERROR) << "Export_step cannot create folder \"" << folder << "\"";
        return false;
    }
    if (!reportProgress(progress)) {
        return true;
    }
    for (const std::string& layer : layers) {
        std::vector<featureInfo> features;
        if (!snapshotLayer(job, step, layer, features)) {
            return false;
        }
        const QString path = QDir(directory).filePath(QString::fromStdString(layer) + ".txt");
        if (!writeAtomically(path, layerListing(job, step, layer, "listing", features))) {
            return false;
        }
    }
    return true;
}

}  // namespace API
}  // namespace Korvo
