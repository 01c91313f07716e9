#include "LayerExport.h"

#include <glog/logging.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>
#include <type_traits>

#include "EngineStore.h"
#include "LayerExportImage.h"

#ifndef WIDGET_COMMON_VERSION
#define WIDGET_COMMON_VERSION "0"
#endif

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::layer_info;

namespace {

bool isCopper(const layer_info& row) {
    return row.type == "signal" || row.type == "power_ground" || row.type == "mixed";
}

// Characters that end an attribute field or the command: replaced, so that a job or layer name
// never breaks the attribute that quotes it.
std::string fieldText(std::string text) {
    for (char& c : text) {
        if (c == ',' || c == '*' || c == '%' || c == '\n' || c == '\r') {
            c = '_';
        }
    }
    return text;
}

// 1 for the top copper layer, counting the copper rows of the matrix down; 0 when `name` is not
// copper of this matrix.
int copperNumber(const std::vector<layer_info>& matrix, const std::string& name) {
    int n = 0;
    for (const layer_info& row : matrix) {
        if (isCopper(row)) {
            ++n;
            if (row.name == name) {
                return n;
            }
        }
    }
    return 0;
}

std::string sideField(const std::string& side) {
    return side == "top" ? "Top" : side == "bottom" ? "Bot" : side == "inner" ? "Inr" : "";
}

// The three file attributes every file carries, each without its framing.
std::vector<std::string> fileAttributes(const ExportLayer& layer, const std::string& plating) {
    return {"TF.GenerationSoftware,Widget_Common,reference engine," WIDGET_COMMON_VERSION,
            "TF.FileFunction," + LayerExport::fileFunction(layer.row, layer.matrix, plating),
            std::string("TF.FilePolarity,") +
                (layer.row.polarity == "negative" ? "Negative" : "Positive"),
            "TF.SameCoordinates," + fieldText(layer.job + "/" + layer.step)};
}

bool stopped(Korvo::COMMON::progress_state* progress) {
    return progress != nullptr && progress->is_stop_requested();
}

// libgerbv's exporters set LC_NUMERIC to "C" while they write and then to "" (the
// environment's), not back to what it was: the caller's setting is put back here. They share
// the process locale, so one export runs at a time.
template <class Export>
bool runExporter(Export exporter, const std::string& path, gerbv_image_t* image) {
    static std::mutex mutex;
    std::lock_guard<std::mutex> guard(mutex);
    const char* current = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = current != nullptr ? current : "C";
    const bool ok = exporter(path.c_str(), image, nullptr) != 0;
    std::setlocale(LC_NUMERIC, saved.c_str());
    return ok;
}

// libgerbv's output, read back for correction; empty with the reason when it is not there.
bool readBack(const std::string& path, std::vector<std::string>& lines, std::string& message) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        message = "libgerbv wrote no file";
        return false;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        lines.push_back(line.trimmed().toStdString());
    }
    while (!lines.empty() && lines.back().empty()) {
        lines.pop_back();
    }
    return true;
}

LayerExport::Outcome commit(const std::vector<std::string>& lines, const std::string& path,
                            Korvo::COMMON::progress_state* progress, std::string& message) {
    QSaveFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly)) {
        message = "cannot write " + path + ": " + file.errorString().toStdString();
        return LayerExport::Outcome::failed;
    }
    QByteArray text;
    for (const std::string& line : lines) {
        text.append(line.data(), static_cast<int>(line.size()));
        text.append('\n');
    }
    if (stopped(progress)) {
        file.cancelWriting();
        return LayerExport::Outcome::stopped;
    }
    // A full disk shows only when the buffer is flushed; commit() alone would still replace the
    // file.
    if (file.write(text) != text.size() || !file.flush() || !file.commit()) {
        message = "cannot write " + path + ": " + file.errorString().toStdString();
        return LayerExport::Outcome::failed;
    }
    return LayerExport::Outcome::written;
}

// Runs one of libgerbv's exporters on `image` into a scratch file and reads what it wrote.
bool exportThroughLibgerbv(gerbv_image_t* image, bool drill, std::vector<std::string>& lines,
                           std::string& message) {
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        message = "no scratch folder for libgerbv: " + scratch.errorString().toStdString();
        return false;
    }
    const std::string path = scratch.filePath(drill ? "layer.drl" : "layer.gbr").toStdString();
    const bool ok = drill ? runExporter(&gerbv_export_drill_file_from_image, path, image)
                          : runExporter(&gerbv_export_rs274x_file_from_image, path, image);
    if (!ok) {
        message = "libgerbv could not write the layer";
        return false;
    }
    return readBack(path, lines, message);
}

// ---- Gerber -------------------------------------------------------------------------------

std::string textComment(const featureInfo& f) {
    std::string text = f.text;
    for (char& c : text) {
        if (c == '*' || c == '%' || c == '\n' || c == '\r') {
            c = ' ';
        }
    }
    char at[80];
    std::snprintf(at, sizeof at, "X%.6f Y%.6f", f.start.x / 25400000.0, f.start.y / 25400000.0);
    return "G04 text \"" + text + "\" at " + at +
           " inch, not drawn: Gerber holds no text and the engine no font*";
}

// Where the Gerber output of libgerbv is corrected and completed:
// - it writes aperture sizes with four decimals of an inch (a tenth of a mil), so a 0.35 mm pad
//   comes back 0.02 mil larger: each standard aperture is written again at full precision;
// - it writes no X2 attributes: they follow its header comments;
// - it cannot hold texts: each is a comment before the end of the file.
// Its output is checked to end with M02, so that a file it left unfinished is not passed on.
bool completeGerber(std::vector<std::string>& lines, const GerberImage& built,
                    const ExportLayer& layer, std::string& message) {
    if (lines.empty() || lines.back() != "M02*") {
        message = "libgerbv's Gerber output ends without M02";
        return false;
    }
    int corrected = 0;
    for (std::string& line : lines) {
        if (line.rfind("%ADD", 0) != 0) {
            continue;
        }
        const int code = std::atoi(line.c_str() + 4);
        const auto exact = built.definitions.find(code);
        if (exact == built.definitions.end()) {
            continue;  // a macro: its primitives are written with six decimals already
        }
        const std::string mine = "%ADD" + std::to_string(code) + exact->second + "*%";
        if (line != mine) {
            line = mine;
            ++corrected;
        }
    }
    std::vector<std::string> head;
    for (const std::string& attribute : fileAttributes(layer, "plated")) {
        head.push_back("%" + attribute + "*%");
    }
    const auto end = std::find(lines.begin(), lines.end(), "G04 --End of header info--*");
    lines.insert(end == lines.end() ? lines.begin() : end + 1, head.begin(), head.end());
    for (const featureInfo& f : layer.features) {
        if (f.type == Korvo::API::feature_text) {
            lines.insert(lines.end() - 1, textComment(f));
        }
    }
    if (corrected > 0) {
        VLOG(1) << "export of " << layer.row.name << ": " << corrected
                << " aperture definitions written again at full precision";
    }
    return true;
}

// ---- Excellon -----------------------------------------------------------------------------

std::string decimal(double inches) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", inches);
    return text;
}

// Where the Excellon output of libgerbv is corrected and completed:
// - it writes tool diameters with three decimals of an inch (a mil) and coordinates as whole
//   ten-thousandths of an inch (a tenth of a mil): each tool and each hole or slot is written
//   again with a decimal point and six decimals, after checking that libgerbv's digits are that
//   hole rounded (so that the holes are matched one for one);
// - it writes no X2 attributes and no plating: the file's, and for a layer of both kinds each
//   tool's, follow M48 as "; #@! " comments.
bool completeExcellon(std::vector<std::string>& lines, const DrillImage& built,
                      const ExportLayer& layer, std::string& message) {
    if (lines.empty() || lines.back() != "M30") {
        message = "libgerbv's Excellon output ends without M30";
        return false;
    }
    std::vector<std::string> out;
    int tool = 0;
    std::map<int, size_t> used;  // holes of each tool matched so far
    bool header = true;
    for (const std::string& line : lines) {
        if (header && line == "M48") {
            out.push_back(line);
            for (const std::string& attribute : fileAttributes(layer, built.plating)) {
                out.push_back("; #@! " + attribute);
            }
            continue;
        }
        if (header && line == "%") {
            header = false;
            if (built.tools.empty()) {
                // libgerbv tells a drill file by a tool number: a layer without holes gets one.
                out.push_back("T1C0.001000");
            }
        }
        const int code = line.size() > 1 && line[0] == 'T' ? std::atoi(line.c_str() + 1) : 0;
        const auto found = built.tools.find(code);
        if (header && found != built.tools.end()) {
            if (built.plating == "mixed") {
                out.push_back(found->second.plated
                                  ? "; #@! TA.AperFunction,Plated,PTH,ComponentDrill"
                                  : "; #@! TA.AperFunction,NonPlated,NPTH,ComponentDrill");
            }
            out.push_back("T" + std::to_string(code) + "C" + decimal(found->second.diameter));
            continue;
        }
        if (!header && found != built.tools.end() && line == "T" + std::to_string(code)) {
            tool = code;
        } else if (!header && !line.empty() && line[0] == 'X') {
            const auto t = built.tools.find(tool);
            size_t& k = used[tool];
            if (t == built.tools.end() || k >= t->second.holes.size() ||
                !t->second.holes[k].writtenAs(line)) {
                message = "libgerbv wrote a hole this export did not give it: " + line;
                return false;
            }
            out.push_back(t->second.holes[k++].text());
            continue;
        }
        out.push_back(line);
    }
    lines = std::move(out);
    return true;
}

LayerExport::Outcome finish(std::vector<std::string>& lines, const std::string& path,
                            Korvo::COMMON::progress_state* progress, std::string& message) {
    if (progress != nullptr) {
        progress->set_value(90.0);
    }
    const LayerExport::Outcome outcome = commit(lines, path, progress, message);
    if (outcome == LayerExport::Outcome::written && progress != nullptr) {
        progress->set_value(100.0);
    }
    return outcome;
}

// Builds the image, has libgerbv write it, completes what it wrote and commits the file,
// checking for a stop before each step.
template <class Image, class Build, class Complete>
LayerExport::Outcome write(const ExportLayer& layer, const std::string& path,
                           Korvo::COMMON::progress_state* progress, std::string& message,
                           Build build, Complete complete) {
    Image built;
    std::vector<std::string> lines;
    if (stopped(progress) || !build(layer, built, message) || stopped(progress) ||
        !exportThroughLibgerbv(built.image.get(), std::is_same<Image, DrillImage>::value, lines,
                               message) ||
        !complete(lines, built, layer, message)) {
        return stopped(progress) ? LayerExport::Outcome::stopped : LayerExport::Outcome::failed;
    }
    return finish(lines, path, progress, message);
}

}  // namespace

bool DrillHole::writtenAs(const std::string& line) const {
    long x = 0;
    long y = 0;
    long x2 = 0;
    long y2 = 0;
    const auto close = [](long digits, double inches) {
        return std::abs(static_cast<double>(digits) - inches * 10000.0) <= 0.5 + 1e-6;
    };
    if (slot) {
        return std::sscanf(line.c_str(), "X%ldY%ldG85X%ldY%ld", &x, &y, &x2, &y2) == 4 &&
               close(x, x0) && close(y, y0) && close(x2, x1) && close(y2, y1);
    }
    return std::sscanf(line.c_str(), "X%ldY%ld", &x, &y) == 2 && close(x, x1) && close(y, y1) &&
           line.find('G') == std::string::npos;
}

std::string DrillHole::text() const {
    char out[160];
    if (slot) {
        std::snprintf(out, sizeof out, "X%.6fY%.6fG85X%.6fY%.6f", x0, y0, x1, y1);
    } else {
        std::snprintf(out, sizeof out, "X%.6fY%.6f", x1, y1);
    }
    return out;
}

bool LayerExport::snapshot(const std::string& job, const std::string& step,
                           const std::string& layer, ExportLayer& out, std::string& message) {
    std::lock_guard<std::mutex> guard(store().mutex);
    EngineJob* j = store().job(job);
    EngineLayerData* data = store().layer(job, step, layer);
    const layer_info* row = j != nullptr ? j->layer(layer) : nullptr;
    if (data == nullptr || row == nullptr) {
        message = "no layer \"" + layer + "\" in step \"" + step + "\" of job \"" + job + "\"";
        return false;
    }
    out.job = job;
    out.step = step;
    out.row = *row;
    out.matrix = j->matrix;
    out.features = data->features;
    return true;
}

LayerExport::Outcome LayerExport::writeGerber(const ExportLayer& layer, const std::string& path,
                                              Korvo::COMMON::progress_state* progress,
                                              std::string& message) {
    return write<GerberImage>(layer, path, progress, message, &buildGerberImage, &completeGerber);
}

LayerExport::Outcome LayerExport::writeExcellon(const ExportLayer& layer, const std::string& path,
                                                Korvo::COMMON::progress_state* progress,
                                                std::string& message) {
    return write<DrillImage>(layer, path, progress, message, &buildDrillImage, &completeExcellon);
}

std::string LayerExport::fileFunction(const layer_info& row, const std::vector<layer_info>& matrix,
                                      const std::string& plating) {
    const std::string side = sideField(row.side);
    if (isCopper(row)) {
        const std::string use = row.type == "power_ground" ? "Plane"
                                : row.type == "mixed"      ? "Mixed"
                                                           : "Signal";
        return "Copper,L" + std::to_string(std::max(1, copperNumber(matrix, row.name))) + "," +
               (side.empty() ? "Inr" : side) + "," + use;
    }
    if ((row.type == "solder_mask" || row.type == "silk_screen" || row.type == "solder_paste") &&
        (side == "Top" || side == "Bot")) {
        return (row.type == "solder_mask"   ? "Soldermask,"
                : row.type == "silk_screen" ? "Legend,"
                                            : "Paste,") +
               side;
    }
    if (row.type == "rout") {
        return "Profile,NP";
    }
    if (row.type == "drill") {
        const int copper = static_cast<int>(std::count_if(
            matrix.begin(), matrix.end(), [](const layer_info& r) { return isCopper(r); }));
        int from = copperNumber(matrix, row.drill_start);
        int to = copperNumber(matrix, row.drill_end);
        if (from == 0 || to == 0) {
            from = 1;
            to = std::max(1, copper);
        }
        const std::string span =
            std::to_string(std::min(from, to)) + "," + std::to_string(std::max(from, to));
        return plating == "mixed"        ? "MixedPlating," + span
               : plating == "non_plated" ? "NonPlated," + span + ",NPTH"
                                         : "Plated," + span + ",PTH";
    }
    // Documents, and masks or silk without a side: drawings, with their side when they have one.
    return "Other," + (side == "Top" || side == "Bot" ? side : std::string("Document"));
}

Korvo::API::export_type LayerExport::formatOf(const layer_info& row) {
    return row.type == "drill" ? Korvo::API::export_drill : Korvo::API::export_gerber;
}

std::map<std::string, std::string> LayerExport::fileNames(const std::vector<layer_info>& matrix) {
    static const std::set<std::string> gerber = {
        "gbr", "ger", "grb", "gbx", "pho", "art", "gtl", "gbl", "gts", "gbs", "gto", "gbo",
        "gtp", "gbp", "gko", "gm1", "gdo", "cmp", "sol", "smt", "smb", "sst", "ssb", "off"};
    static const std::set<std::string> drill = {"drl", "xln", "exc", "drd", "ncd", "cnc", "nc"};
    std::map<std::string, std::string> names;
    std::set<std::string> taken;
    for (const layer_info& row : matrix) {
        const bool excellon = formatOf(row) == Korvo::API::export_drill;
        const std::string suffix =
            QFileInfo(QString::fromStdString(row.name)).suffix().toLower().toStdString();
        std::string name = row.name;
        if ((excellon ? drill : gerber).count(suffix) == 0) {
            name += excellon ? ".drl" : ".gbr";
        }
        for (int n = 2; taken.count(name) != 0; ++n) {
            name = row.name + "-" + std::to_string(n) + (excellon ? ".drl" : ".gbr");
        }
        taken.insert(name);
        names[row.name] = name;
    }
    return names;
}

}  // namespace wcref
