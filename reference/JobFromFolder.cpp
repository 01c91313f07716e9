#include "JobFromFolder.h"

#include <glog/logging.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <set>

#include "CopperGeometry.h"
#include "EngineStore.h"
#include "GerberImport.h"
#include "StepRepeatGeometry.h"

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;

namespace {

// Sorting rank of a guessed layer: top to bottom, then drills, outline and documents.
int rank(const layer_info& l, int inner) {
    const bool top = l.side == "top";
    if (l.type == "silk_screen") {
        return top ? 0 : 900;
    }
    if (l.type == "solder_paste") {
        return top ? 10 : 890;
    }
    if (l.type == "solder_mask") {
        return top ? 20 : 880;
    }
    if (l.type == "signal" || l.type == "power_ground" || l.type == "mixed") {
        return top ? 100 : l.side == "bottom" ? 800 : 200 + inner;
    }
    if (l.type == "drill") {
        return 1000;
    }
    if (l.type == "rout") {
        return 1100;
    }
    return 1200;
}

int innerNumber(const QString& name) {
    const QRegularExpressionMatch m =
        QRegularExpression("(?:\\.gp?|-in|\\.group)(\\d+)").match(name);
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}

long long key(const point& p) {
    // Drill and pad centres agree to the micrometre.
    return (static_cast<long long>(std::llround(p.x / 1000.0)) << 32) ^
           static_cast<long long>(std::llround(p.y / 1000.0) & 0xffffffff);
}

}  // namespace

layer_info JobFromFolder::guessLayer(const std::string& file_name, bool drill) {
    const QString name = QString::fromStdString(file_name).toLower();
    const QString ext = QFileInfo(name).suffix();
    layer_info l;
    l.name = name.toStdString();
    l.context = "board";
    l.polarity = "positive";
    l.side = "none";
    const auto is = [&](const char* pattern) {
        return name.contains(QRegularExpression(QString::fromLatin1(pattern)));
    };
    const auto set = [&](const char* type, const char* side) {
        l.type = type;
        l.side = side;
    };
    if (drill) {
        set("drill", "none");
    } else if (ext == "gtl" || ext == "cmp" || ext == "top" || is("-f[._]cu\\.") ||
               is("\\.(front|top|component)\\.gbr$")) {
        set("signal", "top");
    } else if (ext == "gbl" || ext == "sol" || ext == "bot" || is("-b[._]cu\\.") ||
               is("\\.(back|bottom|solder)\\.gbr$")) {
        set("signal", "bottom");
    } else if (is("\\.g\\d+$") || is("-in\\d+[._]cu\\.") || is("\\.group\\d+\\.gbr$")) {
        set("signal", "inner");
    } else if (is("\\.gp\\d+$")) {
        set("power_ground", "inner");
    } else if (ext == "gts" || ext == "stc" || ext == "smt" || is("-f[._]mask\\.") ||
               is("\\.(front|top)mask\\.")) {
        set("solder_mask", "top");
    } else if (ext == "gbs" || ext == "sts" || ext == "smb" || is("-b[._]mask\\.") ||
               is("\\.(back|bottom)mask\\.")) {
        set("solder_mask", "bottom");
    } else if (ext == "gto" || ext == "plc" || ext == "sst" || is("-f[._]silks") ||
               is("\\.(front|top)silk\\.")) {
        set("silk_screen", "top");
    } else if (ext == "gbo" || ext == "pls" || ext == "ssb" || is("-b[._]silks") ||
               is("\\.(back|bottom)silk\\.")) {
        set("silk_screen", "bottom");
    } else if (ext == "gtp" || ext == "crc" || is("-f[._]paste\\.") ||
               is("\\.(front|top)paste\\.")) {
        set("solder_paste", "top");
    } else if (ext == "gbp" || ext == "crs" || is("-b[._]paste\\.") ||
               is("\\.(back|bottom)paste\\.")) {
        set("solder_paste", "bottom");
    } else if (ext == "gko" || ext == "gm1" || is("edge[._]cuts") || is("outline") ||
               is("profile")) {
        set("rout", "none");
    } else {
        set("document", "none");
        l.context = "misc";
    }
    return l;
}

bool JobFromFolder::build(const std::string& job_name, const std::string& folder, EngineJob& job,
                          std::string& message) {
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
    std::vector<std::pair<int, layer_info>> rows;
    for (const QFileInfo& file : dir.entryInfoList(QDir::Files | QDir::Readable, QDir::Name)) {
        const std::string path = file.absoluteFilePath().toStdString();
        std::string format;
        Korvo::API::file_Parameters parameters;
        std::string why;
        if (!GerberImport::identify(path, format, parameters, why)) {
            LOG(INFO) << "job " << job_name << " skips " << why;
            continue;
        }
        layer_info row = guessLayer(file.fileName().toStdString(), format == "excellon");
        std::vector<featureInfo> features;
        std::map<int, int> counts;
        if (!GerberImport::read(path, row.name, features, counts, why)) {
            continue;  // logged by the importer
        }
        EngineLayerData& data = step.layers[row.name];
        for (featureInfo& f : features) {
            data.add(std::move(f));
        }
        rows.emplace_back(rank(row, innerNumber(file.fileName().toLower())), row);
    }
    if (rows.empty()) {
        message = "folder \"" + folder + "\" holds no Gerber or Excellon file";
        return false;
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string first_copper;
    std::string last_copper;
    for (size_t k = 0; k < rows.size(); ++k) {
        rows[k].second.row = static_cast<int>(k) + 1;
        const std::string& type = rows[k].second.type;
        if (type == "signal" || type == "power_ground" || type == "mixed") {
            if (first_copper.empty()) {
                first_copper = rows[k].second.name;
            }
            last_copper = rows[k].second.name;
        }
    }
    std::set<long long> drilled;
    for (auto& entry : rows) {
        layer_info& row = entry.second;
        if (row.type == "drill") {
            row.drill_start = first_copper;
            row.drill_end = last_copper;
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
