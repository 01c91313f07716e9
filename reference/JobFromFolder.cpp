#include "JobFromFolder.h"

#include <glog/logging.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <set>

#include "CopperGeometry.h"
#include "EngineStore.h"
#include "FabricationArchive.h"
#include "GerberImport.h"
#include "Ipc356.h"
#include "LayerGuess.h"
#include "StepRepeatGeometry.h"

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;

namespace {

std::string drillFormatText(const Korvo::API::file_Parameters& p) {
    DrillNumberFormat f;
    f.units = p.units;
    f.zeros = p.zeros;
    f.integer_digits = p.integer_digits;
    f.decimal_digits = p.decimal_digits;
    return DrillFormat::describe(f) + (p.plating.empty() ? "" : ", " + p.plating);
}

bool isNetlist(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) &&
           Ipc356::looksLikeNetlist(file.read(4096).toStdString());
}

// The folder's netlist, compared with the copper by the signal layer check; one that does not
// parse is refused and the job opens without it.
void readNetlist(const std::string& path, EngineJob& job) {
    std::vector<TestPoint> points;
    std::string why;
    if (!Ipc356::read(path, points, why)) {
        LOG(ERROR) << "netlist refused, the job opens without it: " << why;
        return;
    }
    if (!job.netlist.empty()) {
        LOG(WARNING) << "second netlist " << path << " ignored: the job has one";
        return;
    }
    LOG(INFO) << "netlist " << path << ": " << points.size() << " test points";
    job.netlist = std::move(points);
}

unsigned long long key(const point& p) {
    // Drill and pad centres agree to the micrometre. Unsigned, so that negative coordinates
    // (boards drawn about their centre) shift without overflow.
    const auto x = static_cast<unsigned long long>(std::llround(p.x / 1000.0));
    const auto y = static_cast<unsigned long long>(std::llround(p.y / 1000.0));
    return (x << 32) ^ (y & 0xffffffffULL);
}

}  // namespace

layer_info JobFromFolder::guessLayer(const std::string& file_name, bool drill) {
    // The name alone: attributes and content are not known here.
    return layerguess::guess(file_name, drill, X2Attributes{}, {}).info;
}

bool JobFromFolder::build(const std::string& job_name, const std::string& folder, EngineJob& job,
                          std::string& message) {
    if (FabricationArchive::isArchiveName(folder) &&
        !QFileInfo(QString::fromStdString(folder)).isDir()) {
        return buildFromArchive(job_name, folder, job, message);
    }
    const QDir dir(QString::fromStdString(folder));
    if (folder.empty() || !dir.exists()) {
        message = "folder \"" + folder + "\" does not exist";
        return false;
    }
    job = EngineJob{};
    job.name = job_name;
    job.path = folder;
    EngineStep step;
    step.name = "pcb";
    std::vector<LayerGuess> rows;
    // Copper and the other Gerber layers first: the drill files are read in the format that
    // registers their holes onto the pads of the outer copper layers.
    std::vector<QFileInfo> drills;
    for (const QFileInfo& file : dir.entryInfoList(QDir::Files | QDir::Readable, QDir::Name)) {
        const std::string path = file.absoluteFilePath().toStdString();
        bool drill = false;
        std::string why;
        if (!GerberImport::kind(path, drill, why)) {
            if (isNetlist(path)) {
                readNetlist(path, job);
            } else {
                LOG(INFO) << "job " << job_name << " skips " << why;
            }
            continue;
        }
        if (drill) {
            drills.push_back(file);
            continue;
        }
        const std::string name = guessLayer(file.fileName().toStdString(), false).name;
        std::vector<featureInfo> features;
        std::map<int, int> counts;
        if (!GerberImport::read(path, name, features, counts, why)) {
            continue;  // logged by the importer
        }
        // The file's own attributes first, then its name, then what it holds.
        rows.push_back(layerguess::guessFile(path, false, features));
        rows.back().info.name = name;
        EngineLayerData& data = step.layers[name];
        for (featureInfo& f : features) {
            data.add(std::move(f));
        }
    }
    // The outer copper as the stack will have it (a board of numbered layers only gets its
    // first and last as top and bottom).
    layerguess::settleLayers(rows);
    std::vector<PadSite> copper;
    for (const LayerGuess& g : rows) {
        if ((g.info.type == "signal" || g.info.type == "mixed" || g.info.type == "power_ground") &&
            g.info.polarity != "negative" && (g.info.side == "top" || g.info.side == "bottom")) {
            const std::vector<PadSite> sites =
                GerberImport::padSites(step.layers[g.info.name].features);
            copper.insert(copper.end(), sites.begin(), sites.end());
        }
    }
    for (const QFileInfo& file : drills) {
        const std::string path = file.absoluteFilePath().toStdString();
        std::string format;
        Korvo::API::file_Parameters parameters;
        std::string why;
        if (!GerberImport::identify(path, format, parameters, why, copper)) {
            continue;  // logged by the importer
        }
        const std::string name = guessLayer(file.fileName().toStdString(), true).name;
        std::vector<featureInfo> features;
        std::map<int, int> counts;
        if (!GerberImport::read(path, name, features, counts, why, &parameters)) {
            continue;
        }
        LOG(INFO) << "job " << job_name << ": " << file.fileName().toStdString() << " read as "
                  << drillFormatText(parameters) << ", " << parameters.format_source;
        step.attributes[kDrillFormatKey + name] = drillFormatText(parameters);
        step.attributes[kDrillFormatSourceKey + name] = parameters.format_source;
        rows.push_back(layerguess::guessFile(path, true, features));
        rows.back().info.name = name;
        EngineLayerData& data = step.layers[name];
        for (featureInfo& f : features) {
            data.add(std::move(f));
        }
    }
    if (rows.empty()) {
        message = "folder \"" + folder + "\" holds no Gerber or Excellon file";
        return false;
    }
    // Matrix order, row numbers and drill spans.
    layerguess::settleLayers(rows);
    std::set<unsigned long long> drilled;
    for (const LayerGuess& guess : rows) {
        const layer_info& row = guess.info;
        if (row.type == "drill") {
            for (const featureInfo& f : step.layers[row.name].features) {
                if (f.type == Korvo::API::feature_pad) {
                    drilled.insert(key(f.start));
                }
            }
        }
        job.matrix.push_back(row);
    }
    // Outer copper pads without a hole are SMD pads; the outline layer gives the profile.
    std::vector<point> outline;
    std::vector<point> everything;
    for (const layer_info& row : job.matrix) {
        const bool outer = (row.type == "signal" || row.type == "mixed") &&
                           (row.side == "top" || row.side == "bottom");
        for (featureInfo& f : step.layers[row.name].features) {
            if (outer && f.type == Korvo::API::feature_pad && drilled.count(key(f.start)) == 0) {
                f.attributes[".smd"] = "";
            }
            std::vector<point>& into = row.type == "rout" ? outline : everything;
            if (row.context == "board") {
                into.push_back(f.start);
                into.push_back(f.end);
                into.insert(into.end(), f.contour.begin(), f.contour.end());
            }
        }
    }
    const std::vector<point>& source = outline.size() >= 3 ? outline : everything;
    if (!source.empty()) {
        bg::model::multi_point<GeoPoint> cloud;
        for (const point& p : source) {
            cloud.emplace_back(p.x, p.y);
        }
        if (outline.size() >= 3) {
            GeoPolygon hull;
            bg::convex_hull(cloud, hull);
            for (size_t k = 0; k + 1 < hull.outer().size(); ++k) {
                step.profile.push_back({hull.outer()[k].x(), hull.outer()[k].y()});
            }
        } else {
            const Korvo::API::reply_box box = boxOfPoints(source);
            step.profile = {{box.xmin, box.ymin},
                            {box.xmax, box.ymin},
                            {box.xmax, box.ymax},
                            {box.xmin, box.ymax}};
        }
    }
    for (const layer_info& row : job.matrix) {
        if (row.context == "board") {
            job.displayed.insert(row.name);
        }
    }
    job.steps.push_back(std::move(step));
    message = "job " + job_name + " with " + std::to_string(job.matrix.size()) + " layers";
    return true;
}

bool JobFromFolder::buildFromArchive(const std::string& job_name, const std::string& archive,
                                     EngineJob& job, std::string& message) {
    // Unpacked into a scratch folder that goes when the job is built: the job keeps its
    // features, not its files.
    const QTemporaryDir scratch;
    if (!scratch.isValid()) {
        message = "archive \"" + archive + "\" cannot be unpacked: no scratch folder";
        return false;
    }
    if (!FabricationArchive::unpack(archive, scratch.path().toStdString(), message)) {
        return false;
    }
    if (!build(job_name, scratch.path().toStdString(), job, message)) {
        message = "archive \"" + archive + "\" holds no Gerber or Excellon file";
        return false;
    }
    job.path = archive;
    message = "job " + job_name + " with " + std::to_string(job.matrix.size()) +
              " layers from archive \"" + archive + "\"";
    return true;
}

bool JobFromFolder::open(const std::string& job_name, const std::string& folder) {
    {
        std::lock_guard<std::mutex> guard(store().mutex);
        if (store().jobs.count(job_name) != 0) {
            return true;  // an open job keeps its edits, as open_job does for the sample
        }
    }
    EngineJob job;
    std::string message;
    if (!build(job_name, folder, job, message)) {
        LOG(ERROR) << "cannot make a job of " << message;
        return false;
    }
    LOG(INFO) << "opened " << message;
    std::lock_guard<std::mutex> guard(store().mutex);
    return store().jobs.emplace(job_name, std::move(job)).second;
}

}  // namespace wcref
