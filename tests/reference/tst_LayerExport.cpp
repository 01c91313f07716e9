// Layers written as Gerber RS-274X and Excellon through libgerbv and read back, and archives of
// fabrication files read and refused: every example board of the gerbv package goes through
// import, export and import again.

#include <archive.h>
#include <archive_entry.h>

#include <QtTest>
#include <cmath>

#include "DataRows.h"
#include "FabricationArchive.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "LayerExport.h"
#include "ReferenceEngine.h"

using namespace Korvo::API;

namespace {

const QString kExamples = "/usr/share/doc/gerbv/examples/";
constexpr double kTolerance = 0.01 * 25400;  // 0.01 mil in nanometres

double gap(const point& a, const point& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// Distance from `p` to the closed outline `ring`.
double toRing(const point& p, const std::vector<point>& ring) {
    double best = 1e300;
    for (size_t k = 0; k < ring.size(); ++k) {
        const point& a = ring[k];
        const point& b = ring[(k + 1) % ring.size()];
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        const double len = dx * dx + dy * dy;
        const double t =
            len > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / len, 0.0, 1.0) : 0.0;
        best = std::min(best, gap(p, {a.x + t * dx, a.y + t * dy}));
    }
    return best;
}

// Each outline lies within the tolerance of the other's edges. Outlines written point for point
// come back from the same first point, turning either way: compared point for point first.
bool sameRing(const std::vector<point>& a, const std::vector<point>& b) {
    const size_t n = a.size();
    if (n >= 3 && b.size() == n) {
        bool forward = true;
        bool backward = true;
        for (size_t k = 0; k < n && (forward || backward); ++k) {
            forward = forward && gap(a[k], b[k]) <= kTolerance;
            backward = backward && gap(a[k], b[(n - k) % n]) <= kTolerance;
        }
        if (forward || backward) {
            return true;
        }
    }
    const auto within = [](const std::vector<point>& from, const std::vector<point>& to) {
        return std::all_of(from.begin(), from.end(),
                           [&](const point& p) { return toRing(p, to) <= kTolerance; });
    };
    return a.size() >= 3 && b.size() >= 3 && within(a, b) && within(b, a);
}

bool sameSymbol(const featureInfo& a, const featureInfo& b) {
    if (!a.contour.empty() || !b.contour.empty()) {
        // Macro and polygon pads: the outline is the size (a macro's name is the file's).
        if (a.holes.size() != b.holes.size() || !sameRing(a.contour, b.contour)) {
            return false;
        }
        for (size_t k = 0; k < a.holes.size(); ++k) {
            if (!sameRing(a.holes[k], b.holes[k])) {
                return false;
            }
        }
        return true;
    }
    static const QRegularExpression standard("^(r|s|rect|oval)([0-9.]+)(?:x([0-9.]+))?$");
    const auto size = [](const std::string& symbol) {
        const QRegularExpressionMatch m = standard.match(QString::fromStdString(symbol));
        return std::make_tuple(m.captured(1), m.captured(2).toDouble(), m.captured(3).toDouble());
    };
    const auto [kind_a, w_a, h_a] = size(a.symbol);
    const auto [kind_b, w_b, h_b] = size(b.symbol);
    return !kind_a.isEmpty() && kind_a == kind_b && std::abs(w_a - w_b) <= 0.01 &&
           std::abs(h_a - h_b) <= 0.01;
}

// What differs between two features at the same place; empty when nothing does.
QString difference(const featureInfo& a, const featureInfo& b) {
    if (a.positive != b.positive) {
        return "polarity";
    }
    if (gap(a.end, b.end) > kTolerance ||
        (a.type == feature_arc &&
         (gap(a.center, b.center) > kTolerance || a.clockwise != b.clockwise))) {
        return "end or centre";
    }
    if (a.type == feature_surface) {
        bool same = a.holes.size() == b.holes.size() && sameRing(a.contour, b.contour);
        for (size_t k = 0; same && k < a.holes.size(); ++k) {
            // The hole that starts where this one starts (holes keep their first point).
            const auto hole = std::find_if(b.holes.begin(), b.holes.end(), [&](const auto& h) {
                return !h.empty() && gap(h.front(), a.holes[k].front()) <= kTolerance;
            });
            same = hole != b.holes.end() && sameRing(a.holes[k], *hole);
        }
        return same ? QString() : QString("outline or holes");
    }
    if (!sameSymbol(a, b)) {
        return QString("symbol %1 / %2").arg(a.symbol.c_str(), b.symbol.c_str());
    }
    const auto plating = [](const featureInfo& f) {
        const auto it = f.attributes.find(".drill");
        return it == f.attributes.end() ? std::string() : it->second;
    };
    return plating(a) == plating(b) ? QString() : QString("plating");
}

// Pairs each feature of `before` with one of `after` of the same type at the same start (a drill
// file lists its holes by tool, so the order may change) and names the first that differs.
QString compareLayer(std::vector<featureInfo> before, std::vector<featureInfo> after) {
    if (before.size() != after.size()) {
        return QString("%1 features became %2").arg(before.size()).arg(after.size());
    }
    const auto byX = [](const featureInfo& p, const featureInfo& q) {
        return p.start.x < q.start.x;
    };
    std::sort(after.begin(), after.end(), byX);
    std::vector<bool> used(after.size(), false);
    for (const featureInfo& f : before) {
        auto it = std::lower_bound(after.begin(), after.end(), f,
                                   [](const featureInfo& p, const featureInfo& q) {
                                       return p.start.x < q.start.x - kTolerance;
                                   });
        QString why = "nothing at its place";
        bool found = false;
        for (; !found && it != after.end() && it->start.x <= f.start.x + kTolerance; ++it) {
            const size_t k = static_cast<size_t>(it - after.begin());
            if (used[k] || it->type != f.type || gap(it->start, f.start) > kTolerance) {
                continue;
            }
            why = difference(f, *it);
            found = why.isEmpty();
            used[k] = found;
        }
        if (!found) {
            return QString("feature %1 (%2 at %3, %4): %5")
                .arg(f.id)
                .arg(f.symbol.c_str())
                .arg(f.start.x)
                .arg(f.start.y)
                .arg(why);
        }
    }
    return {};
}

std::vector<featureInfo> featuresOf(const std::string& job, const std::string& layer) {
    std::vector<featureInfo> features;
    get_all_feature_info(job, "pcb", layer, features, FT_All);
    // Texts are comments in a Gerber file: they do not come back.
    features.erase(std::remove_if(features.begin(), features.end(),
                                  [](const featureInfo& f) { return f.type == feature_text; }),
                   features.end());
    return features;
}

// Exports every layer of the job's step into `folder`; the layer each file holds by file name.
std::map<std::string, std::string> exportJob(const std::string& job, const QString& folder) {
    std::vector<std::string> steps;
    std::vector<layer_info> matrix;
    get_matrix(job, steps, matrix);
    std::map<std::string, std::string> files;
    for (const auto& [layer, file] : wcref::LayerExport::fileNames(matrix)) {
        const layer_info* row = nullptr;
        for (const layer_info& r : matrix) {
            row = r.name == layer ? &r : row;
        }
        if (layer_export(job, "pcb", layer, wcref::LayerExport::formatOf(*row),
                         QDir(folder).filePath(QString::fromStdString(file)).toStdString(),
                         nullptr)) {
            files[QString::fromStdString(file).toLower().toStdString()] = layer;
        }
    }
    return files;
}

struct Entry {
    Entry(std::string n, QByteArray d = {}, int t = AE_IFREG, std::string l = {})
        : name(std::move(n)), data(std::move(d)), type(t), link(std::move(l)) {}
    std::string name;
    QByteArray data;
    int type;
    std::string link;
};

layer_info row(const char* name, const QString& type, const QString& polarity,
               const QString& side) {
    layer_info r;
    r.name = name;
    r.context = "board";
    r.type = type.toStdString();
    r.polarity = polarity.toStdString();
    r.side = side.toStdString();
    return r;
}

// Writes an archive of `entries` with libarchive as `zip`, else as gzipped tar.
void writeArchive(const QString& path, const std::vector<Entry>& entries, bool zip) {
    archive* a = archive_write_new();
    zip ? archive_write_set_format_zip(a) : archive_write_set_format_pax_restricted(a);
    if (!zip)
        archive_write_add_filter_gzip(a);
    archive_write_open_filename(a, path.toLocal8Bit().constData());
    for (const Entry& e : entries) {
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, e.name.c_str());
        archive_entry_set_filetype(entry, e.type);
        archive_entry_set_perm(entry, 0644);
        archive_entry_set_size(entry, e.type == AE_IFREG ? e.data.size() : 0);
        if (!e.link.empty())
            archive_entry_set_symlink(entry, e.link.c_str());
        archive_write_header(a, entry);
        archive_write_data(a, e.data.constData(), static_cast<size_t>(e.data.size()));
        archive_entry_free(entry);
    }
    archive_write_close(a);
    archive_write_free(a);
}

const QByteArray kGerber =
    "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0100*%\nD10*\nX0Y0D02*\nX10000Y0D01*\nX5000Y5000D03*\n"
    "M02*\n";
const QByteArray kDrill = "M48\nINCH,LZ\nT1C0.0120\n%\nT1\nX0.5000Y0.5000\nX1.0000Y0.5000\nM30\n";

}  // namespace

class tst_LayerExport : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetEngine(); }

    // Import, export, import: every feature comes back within 0.01 mil, and every layer is typed
    // as before from the attributes written.
    void roundTrip_data() {
        QTest::addColumn<QString>("board");
        QTest::addColumn<QString>("refused");
        for (const char* board :
             {"Mentor-BoardStation", "am-test", "amacro-ref", "cslk", "dan", "eaglecad1", "ekf2",
              "exposure", "hellboard", "jj", "nollezappare", "numpres", "orcad", "pick-and-place",
              "polarity", "protel-pnp", "thermal", "trailing", "uwe"})
            wctest::row(board, QString(board), QString());
        // RS-274D without its format statement: the import puts its lines at infinity, and the
        // export says so instead of writing them.
        wctest::row("ekf", "ekf", "l1.off");
    }
    void roundTrip() {
        QFETCH(QString, board);
        QFETCH(QString, refused);
        if (!QFileInfo(kExamples + board).isDir())
            QSKIP("the gerbv package's examples are not installed");
        QVERIFY(open_job("before", (kExamples + board).toStdString()));
        QTemporaryDir folder;
        const std::map<std::string, std::string> files = exportJob("before", folder.path());
        std::vector<std::string> steps;
        std::vector<layer_info> before;
        std::vector<layer_info> after;
        get_matrix("before", steps, before);
        if (!refused.isEmpty()) {
            wcref::ExportLayer layer;
            std::string why;
            QVERIFY(
                wcref::LayerExport::snapshot("before", "pcb", refused.toStdString(), layer, why));
            QCOMPARE(wcref::LayerExport::writeGerber(layer, folder.filePath("x.gbr").toStdString(),
                                                     nullptr, why),
                     wcref::LayerExport::Outcome::failed);
            QVERIFY2(why.find("lies at no finite place") != std::string::npos, why.c_str());
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList());
            return;
        }
        QVERIFY(open_job("after", folder.path().toStdString()));
        get_matrix("after", steps, after);
        QCOMPARE(files.size(), before.size());
        QCOMPARE(after.size(), before.size());
        std::map<std::string, layer_info> rows;
        for (const layer_info& row : before)
            rows[row.name] = row;
        for (const layer_info& row : after) {
            const layer_info& was = rows[files.at(row.name)];
            const QString what = QString::fromStdString(row.name);
            QVERIFY2(row.type == was.type && row.side == was.side && row.polarity == was.polarity,
                     qPrintable(what + ": " + QString::fromStdString(row.type + " " + row.side)));
            const QString why =
                compareLayer(featuresOf("before", was.name), featuresOf("after", row.name));
            QVERIFY2(why.isEmpty(), qPrintable(what + ": " + why));
        }
    }

    // What the files say of themselves: Excellon plating and X2 attributes by layer.
    void attributes_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("side");
        QTest::addColumn<QString>("polarity");
        QTest::addColumn<QString>("function");
        wctest::row("top copper", "signal", "top", "positive", "Copper,L1,Top,Signal");
        wctest::row("inner plane", "power_ground", "inner", "negative", "Copper,L2,Inr,Plane");
        wctest::row("bottom mask", "solder_mask", "bottom", "positive", "Soldermask,Bot");
        wctest::row("top silk", "silk_screen", "top", "positive", "Legend,Top");
        wctest::row("bottom paste", "solder_paste", "bottom", "positive", "Paste,Bot");
        wctest::row("outline", "rout", "none", "positive", "Profile,NP");
        wctest::row("drawing", "document", "none", "positive", "Other,Document");
        wctest::row("drills", "drill", "none", "positive", "Plated,1,3,PTH");
    }
    void attributes() {
        QFETCH(QString, type);
        QFETCH(QString, side);
        QFETCH(QString, polarity);
        QFETCH(QString, function);
        const std::vector<layer_info> matrix = {row("top", "signal", "positive", "top"),
                                                row("plane", "power_ground", "negative", "inner"),
                                                row("bottom", "signal", "positive", "bottom")};
        const layer_info layer = row(type == "signal"         ? "top"
                                     : type == "power_ground" ? "plane"
                                                              : "other",
                                     type, polarity, side);
        QCOMPARE(QString::fromStdString(wcref::LayerExport::fileFunction(layer, matrix)), function);
    }

    // A file that cannot be written, or a run stopped, leaves what was there.
    void nothingHalfWritten_data() {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("stop");
        QTest::addColumn<bool>("ok");
        wctest::row("copper as Excellon", "se_sg_if_v2.gtl", int(export_drill), false, false);
        wctest::row("stopped", "se_sg_if_v2.gtl", int(export_gerber), true, true);
        wctest::row("no such layer", "nosuch", int(export_gerber), false, false);
    }
    void nothingHalfWritten() {
        QFETCH(QString, layer);
        QFETCH(int, type);
        QFETCH(bool, stop);
        QFETCH(bool, ok);
        if (!QFileInfo(kExamples + "protel-pnp").isDir())
            QSKIP("the gerbv package's examples are not installed");
        QVERIFY(open_job("protel", (kExamples + "protel-pnp").toStdString()));
        QTemporaryDir folder;
        const QString path = folder.filePath("out.gbr");
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        Korvo::COMMON::progress_value<void> progress;
        if (stop)
            progress.request_stop();
        QCOMPARE(layer_export("protel", "pcb", layer.toStdString(), export_type(type),
                              path.toStdString(), &progress),
                 ok);
        if (stop) {
            // Past the engine's own check of the stop: the writer checks it before each step.
            wcref::ExportLayer data;
            std::string why;
            QVERIFY(wcref::LayerExport::snapshot("protel", "pcb", layer.toStdString(), data, why));
            QCOMPARE(wcref::LayerExport::writeGerber(data, path.toStdString(), &progress, why),
                     wcref::LayerExport::Outcome::stopped);
        }
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"out.gbr"});
        QFile again(path);
        QVERIFY(again.open(QIODevice::ReadOnly));
        QCOMPARE(again.readAll(), QByteArray("old"));
    }

    // Archives open as the folder they hold.
    void archives_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("zip");
        wctest::row("zip", "board.zip", true);
        wctest::row("tar.gz", "board.tar.gz", false);
        wctest::row("tgz", "BOARD.TGZ", false);
    }
    void archives() {
        QFETCH(QString, name);
        QFETCH(bool, zip);
        QTemporaryDir folder;
        writeArchive(folder.filePath(name),
                     {{"board/", {}, AE_IFDIR},
                      {"board/top.gtl", kGerber},
                      {"board/drill.drl", kDrill},
                      {"board/readme.txt", "not a layer"}},
                     zip);
        QVERIFY(open_job("archive", folder.filePath(name).toStdString()));
        std::vector<std::string> steps;
        std::vector<layer_info> matrix;
        get_matrix("archive", steps, matrix);
        QCOMPARE(int(matrix.size()), 2);
        QCOMPARE(int(featuresOf("archive", "top.gtl").size()), 2);
        QCOMPARE(int(featuresOf("archive", "drill.drl").size()), 2);
    }

    // A folder of exported files written as a .zip opens as the same job.
    void zipWritten() {
        QTemporaryDir folder;
        QDir(folder.path()).mkdir("files");
        for (const auto& [file, text] : {std::pair{"top.gtl", kGerber}, {"drill.drl", kDrill}}) {
            QFile out(folder.filePath(QString("files/") + file));
            QVERIFY(out.open(QIODevice::WriteOnly) && out.write(text) == text.size());
        }
        std::string message;
        QVERIFY(wcref::FabricationArchive::writeZip(folder.filePath("files").toStdString(),
                                                    folder.filePath("out.zip").toStdString(),
                                                    message));
        QVERIFY(open_job("zipped", folder.filePath("out.zip").toStdString()));
        QCOMPARE(int(featuresOf("zipped", "top.gtl").size()), 2);
        QVERIFY(!wcref::FabricationArchive::writeZip(folder.filePath("files").toStdString(),
                                                     folder.filePath("none/out.zip").toStdString(),
                                                     message));
        QVERIFY(!QFileInfo::exists(folder.filePath("none")));
    }

    // Each refusal says what and where, and leaves no unpacked file behind.
    void refusals_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("message");
        wctest::row("damaged", 0, "archive \"%1\" cannot be read: ");
        wctest::row("truncated", 1, "archive \"%1\" is refused: entry \"top.gtl\" is damaged");
        wctest::row("empty", 2, "archive \"%1\" holds no Gerber or Excellon file");
        wctest::row("no fabrication file", 3, "archive \"%1\" holds no Gerber or Excellon file");
        wctest::row("climbs out", 4, "archive \"%1\" is refused: entry \"../top.gtl\" climbs out");
        wctest::row("absolute path", 5,
                    "archive \"%1\" is refused: entry \"/tmp/top.gtl\" has an absolute path");
        wctest::row("link", 6, "archive \"%1\" is refused: entry \"top.gtl\" is a link");
        wctest::row(
            "same name twice", 7,
            "archive \"%1\" is refused: entry \"b/top.gtl\" has the name of an earlier file");
        wctest::row("too large", 8,
                    "archive \"%1\" is refused: entry \"big.gtl\" unpacks to more than 512 MiB");
    }
    void refusals() {
        QFETCH(int, kind);
        QFETCH(QString, message);
        QTemporaryDir folder;
        const QString path = folder.filePath("bad.zip");
        const std::vector<std::vector<Entry>> archives = {
            {},
            {{"top.gtl", kGerber.repeated(400)}},
            {},
            {{"readme.txt", "hello"}},
            {{"../top.gtl", kGerber}},
            {{"/tmp/top.gtl", kGerber}},
            {{"top.gtl", {}, AE_IFLNK, "/etc/passwd"}},
            {{"a/top.gtl", kGerber}, {"b/top.gtl", kGerber}},
            {{"big.gtl", QByteArray(1024, 'G')}}};
        writeArchive(path, archives[kind], true);
        if (kind == 0 || kind == 1) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QByteArray whole = file.readAll();
            file.resize(0);
            file.seek(0);
            file.write(kind == 0 ? QByteArray("PK not really a zip")
                                 : whole.left(whole.size() / 2));
        }
        if (kind == 8) {
            // A zip of 1 KiB that claims 600 MiB for its one file, as an archive bomb would.
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QByteArray bytes = file.readAll();
            const quint32 huge = 600u << 20;
            const int central = bytes.indexOf("PK\x01\x02");
            QVERIFY(central > 0);
            for (int at : {22, central + 24})
                for (int k = 0; k < 4; ++k)
                    bytes[at + k] = char((huge >> (8 * k)) & 0xff);
            file.seek(0);
            file.write(bytes);
        }
        // Scratch folders go where TMPDIR says: none may stay.
        QTemporaryDir scratch;
        const QByteArray tmp = qgetenv("TMPDIR");
        qputenv("TMPDIR", scratch.path().toLocal8Bit());
        wcref::EngineJob job;
        std::string why;
        const bool built = wcref::JobFromFolder::build("bad", path.toStdString(), job, why);
        qputenv("TMPDIR", tmp);
        QVERIFY(!built);
        QVERIFY2(QString::fromStdString(why).startsWith(message.arg(path)), why.c_str());
        QCOMPARE(
            QDir(scratch.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList());
        QVERIFY(!open_job("bad", path.toStdString()));
    }
};

QTEST_MAIN(tst_LayerExport)
#include "tst_LayerExport.moc"
