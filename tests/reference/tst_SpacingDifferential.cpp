// The reference spacing check judged by a second, independent opinion: libgerbv draws the same
// copper layer (its own cairo export), the picture's islands and the gaps between them are
// measured by a distance transform (tests/support/CopperPicture.h), and the two must agree:
// - every spacing, SMD or same-net hit inside the window lies on copper of two different
//   picture islands (one island for a same-net hit), and the picture's gap there is the hit's
//   value within two pixels;
// - every place where two picture islands come closer than the spacing less two pixels has a
//   hit of the engine within a few pixels.
// Rows: copper layers of the example boards of the gerbv package (skipped when they are not
// installed), a generated board and a hand-made layer of every shape kind, written as RS-274X
// so that both sides read the same file.

#include <QtTest>
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <regex>
#include <set>

#include "CopperPicture.h"
#include "EngineJob.h"
#include "EngineStore.h"
#include "GerberPicture.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "SignalChecks.h"
#include "SyntheticJob.h"

using namespace Korvo::API;
using wctest::CopperPicture;
using wctest::GerberPicture;
using wctest::IslandMeeting;
using wctest::NarrowGap;

namespace {

constexpr double kNmPerMil = 25400.0;
constexpr double kMilPerInch = 1000.0;
const QString kExamples = "/usr/share/doc/gerbv/examples/";
// The picture reaches this far beyond the window, so that a hit inside the window sees its
// surroundings and a gap at the window's edge is measured whole.
constexpr double kBorderMil = 40.0;
// A picture larger than this is refused (bytes per pixel: about 13 during the analysis).
constexpr qint64 kMaxPixels = 12'000'000;

enum class Source { examples, synthetic, handmade };

QString milText(double nm) {
    return QString::number(nm / kNmPerMil, 'f', 2);
}

QString where(QPointF p) {
    return QString("(%1, %2) mil").arg(milText(p.x()), milText(p.y()));
}

QString islandList(const std::vector<int>& islands) {
    QStringList out;
    for (int i : islands) {
        out << QString::number(i);
    }
    return out.isEmpty() ? QString("none") : out.join(",");
}

// ---- engine side -----------------------------------------------------------------------------

// Opens a folder as a job of the reference engine, once per run; the job's name, or empty
// with the reason in `error`. `features` counts the layer's features.
std::string openBoard(const QString& folder, QString& error) {
    static std::map<QString, std::string> opened;
    const auto it = opened.find(folder);
    if (it != opened.end()) {
        return it->second;
    }
    const std::string name = "differential" + std::to_string(opened.size());
    wcref::EngineJob job;
    std::string message;
    if (!wcref::JobFromFolder::build(name, folder.toStdString(), job, message)) {
        error = QString::fromStdString(message);
        return {};
    }
    {
        std::lock_guard<std::mutex> guard(wcref::store().mutex);
        wcref::store().jobs.emplace(name, std::move(job));
    }
    opened[folder] = name;
    return name;
}

int featureCount(const std::string& job, const std::string& layer) {
    std::lock_guard<std::mutex> guard(wcref::store().mutex);
    const wcref::EngineLayerData* data = wcref::store().layer(job, "pcb", layer);
    return data != nullptr ? static_cast<int>(data->features.size()) : -1;
}

bool isSameNet(signal_layers_checks_items item) {
    return item == sli_same_net_pad_to_pad || item == sli_same_net_pad_to_line ||
           item == sli_same_net_line_to_line;
}

bool isSpacing(signal_layers_checks_items item) {
    return (item >= sli_pad_to_pad_spacing && item <= sli_surface_to_surface_spacing) ||
           isSameNet(item) || (item >= sli_smd_to_smd_spacing && item <= sli_smd_to_line_spacing);
}

struct Hit {
    signal_layers_checks_items item;
    double value;
    QPointF p;
    QPointF q;
};

// The spacing hits with a place; `placeless` counts those without one.
std::vector<Hit> spacingHits(const wcref::SignalResult& result, int& placeless) {
    std::vector<Hit> hits;
    for (const auto& entry : result) {
        if (!isSpacing(entry.first)) {
            continue;
        }
        for (const auto* list :
             {&entry.second.red, &entry.second.yellow, &entry.second.green, &entry.second.other}) {
            for (const check_info& info : *list) {
                if (info.shape.points.size() < 2) {
                    ++placeless;
                    continue;
                }
                hits.push_back({entry.first,
                                info.value,
                                {info.shape.points[0].x, info.shape.points[0].y},
                                {info.shape.points[1].x, info.shape.points[1].y}});
            }
        }
    }
    return hits;
}

QString itemName(signal_layers_checks_items item) {
    static const std::map<signal_layers_checks_items, const char*> names = {
        {sli_pad_to_pad_spacing, "pad to pad"},
        {sli_pad_to_line_spacing, "pad to line"},
        {sli_pad_to_arc_spacing, "pad to arc"},
        {sli_pad_to_surface_spacing, "pad to surface"},
        {sli_line_to_line_spacing, "line to line"},
        {sli_line_to_arc_spacing, "line to arc"},
        {sli_line_to_surface_spacing, "line to surface"},
        {sli_arc_to_arc_spacing, "arc to arc"},
        {sli_surface_to_surface_spacing, "surface to surface"},
        {sli_same_net_pad_to_pad, "same net pad to pad"},
        {sli_same_net_pad_to_line, "same net pad to line"},
        {sli_same_net_line_to_line, "same net line to line"},
        {sli_smd_to_smd_spacing, "SMD to SMD"},
        {sli_smd_to_pad_spacing, "SMD to pad"},
        {sli_smd_to_line_spacing, "SMD to line"}};
    const auto it = names.find(item);
    return it != names.end() ? QString(it->second) : QString::number(static_cast<int>(item));
}

// ---- files both sides read -------------------------------------------------------------------

QString coordinate(double nm) {
    return QString::number(std::llround(nm / 25.4));  // millionths of an inch
}

QString xy(const point& p) {
    return "X" + coordinate(p.x) + "Y" + coordinate(p.y);
}

// RS-274X of round pads, round-ended lines and surfaces, the generated board's vocabulary;
// false when a feature is of another kind.
bool writeGerber(const std::vector<featureInfo>& features, const QString& path, QString& error) {
    std::map<std::string, int> apertures;
    QString body;
    const std::regex round("r([0-9]+(\\.[0-9]+)?)");
    for (const featureInfo& f : features) {
        if (f.type == feature_surface) {
            if (f.contour.size() < 3) {
                error = "a surface without an outline";
                return false;
            }
            body += "G36*\n" + xy(f.contour.front()) + "D02*\n";
            for (size_t i = 1; i < f.contour.size(); ++i) {
                body += xy(f.contour[i]) + "D01*\n";
            }
            body += xy(f.contour.front()) + "D01*\nG37*\n";
            continue;
        }
        std::smatch size;
        if ((f.type != feature_pad && f.type != feature_line) || !f.positive ||
            !std::regex_match(f.symbol, size, round)) {
            error = QString("no RS-274X for feature %1 (%2)").arg(f.id).arg(f.symbol.c_str());
            return false;
        }
        const int code =
            apertures.emplace(f.symbol, 10 + static_cast<int>(apertures.size())).first->second;
        body += QString("D%1*\n").arg(code);
        if (f.type == feature_pad) {
            body += xy(f.start) + "D03*\n";
        } else {
            body += xy(f.start) + "D02*\n" + xy(f.end) + "D01*\n";
        }
    }
    QString head = "G04 generated copper*\n%FSLAX36Y36*%\n%MOIN*%\n";
    for (const auto& a : apertures) {
        const double mil = std::stod(a.first.substr(1));
        head += QString("%ADD%1C,%2*%\n").arg(a.second).arg(mil / kMilPerInch, 0, 'f', 6);
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write((head + "%LPD*%\nG01*\n" + body + "M02*\n").toLatin1()) < 0) {
        error = "cannot write " + path;
        return false;
    }
    return true;
}

// A layer of every shape kind, each pair at a known gap (mil): rectangle to round pad 3,
// obround to line 4, arc to pad 3.5, surface to line 2.5, parallel diagonal lines 4.5, pad to
// line 6 (no violation at 5), two round pads 1, line of a pad's island to another pad 3. Two
// pads carry holes (handmade.drl), so that plain pads meet SMD pads.
const char* kHandmadeGerber = R"(G04 hand-made copper*
%FSLAX36Y36*%
%MOIN*%
%ADD10C,0.020000*%
%ADD11R,0.020000X0.010000*%
%ADD12O,0.030000X0.015000*%
%ADD13C,0.006000*%
%ADD14C,0.008000*%
%LPD*%
G01*
D11*
X0Y0D03*
D10*
X23000Y0D03*
D12*
X100000Y0D03*
D13*
X122000Y-30000D02*
X122000Y30000D01*
D14*
G75*
X230000Y0D02*
G03*
X200000Y30000I-30000J0D01*
G01*
D10*
X233588Y33588D03*
G36*
X300000Y-20000D02*
X340000Y-20000D01*
X340000Y20000D01*
X300000Y20000D01*
X300000Y-20000D01*
G37*
D13*
X290000Y25500D02*
X350000Y25500D01*
D14*
X400000Y-30000D02*
X440000Y10000D01*
X391161Y-21161D02*
X431161Y18839D01*
D10*
X500000Y0D03*
D13*
X519000Y-30000D02*
X519000Y30000D01*
D10*
X600000Y0D03*
X621000Y0D03*
X700000Y0D03*
D13*
X700000Y0D02*
X700000Y40000D01*
D10*
X716000Y40000D03*
M02*
)";

const char* kHandmadeDrill = R"(M48
INCH
T1C0.0120
%
T1
X0.023Y0.0
X0.6Y0.0
M30
)";

bool writeText(const QString& path, const char* text, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0) {
        error = "cannot write " + path;
        return false;
    }
    return true;
}

// ---- the comparison --------------------------------------------------------------------------

struct Verdict {
    int checked = 0;  // hits inside the window
    int confirmed = 0;
    QStringList contradicted;
    int contradicted_fine = 0;  // of them, within three pixels or below two pixels wide
    int narrow = 0;             // narrow places of the picture inside the window
    int found = 0;              // of them, with a hit nearby
    QStringList missed;
    int missed_elsewhere = 0;  // of the missed, the island pair has a hit elsewhere
    QStringList unresolved;    // islands that may meet outside a windowed picture
};

class Comparison {
public:
    Comparison(const CopperPicture& picture, double spacing, QRectF window, bool whole)
        : picture_(picture), spacing_(spacing), window_(window), whole_(whole) {}

    void judge(const std::vector<Hit>& hits, Verdict& verdict) const {
        const double px = picture_.pixel();
        for (const Hit& hit : hits) {
            if (!window_.contains(hit.p) || !window_.contains(hit.q)) {
                continue;
            }
            ++verdict.checked;
            QString why;
            double off = 0.0;
            if (confirm(hit, why, off)) {
                ++verdict.confirmed;
                continue;
            }
            if (hit.value < 2 * px || off <= 3 * px) {
                ++verdict.contradicted_fine;
            }
            verdict.contradicted << QString("%1 hit %2 to %3, %4 mil: %5")
                                        .arg(itemName(hit.item), where(hit.p), where(hit.q),
                                             milText(hit.value), why);
        }
        std::vector<std::pair<std::vector<int>, std::vector<int>>> islands;
        for (const Hit& hit : hits) {
            islands.emplace_back(picture_.islandsNear(hit.p, 2 * px),
                                 picture_.islandsNear(hit.q, 2 * px));
        }
        const auto joins = [&islands](size_t h, int a, int b) {
            const auto has = [](const std::vector<int>& v, int i) {
                return std::find(v.begin(), v.end(), i) != v.end();
            };
            return (has(islands[h].first, a) && has(islands[h].second, b)) ||
                   (has(islands[h].first, b) && has(islands[h].second, a));
        };
        for (const NarrowGap& gap : picture_.narrowGaps(spacing_ - 2 * px, 3 * px)) {
            if (!window_.contains(gap.closest().middle())) {
                continue;
            }
            ++verdict.narrow;
            bool near = false;
            bool elsewhere = false;
            for (size_t h = 0; h < hits.size() && !near; ++h) {
                if (!joins(h, gap.a, gap.b)) {
                    continue;
                }
                elsewhere = true;
                const QPointF middle = (hits[h].p + hits[h].q) / 2.0;
                for (const IslandMeeting& m : gap.meetings) {
                    const QPointF d = m.middle() - middle;
                    if (std::hypot(d.x(), d.y()) <= 6 * px) {
                        near = true;
                        break;
                    }
                }
            }
            if (near) {
                ++verdict.found;
                continue;
            }
            const IslandMeeting& c = gap.closest();
            const QString text = QString(
                                     "islands %1 and %2 are %3 mil apart between %4 and %5 "
                                     "(%6 places); the engine %7")
                                     .arg(gap.a)
                                     .arg(gap.b)
                                     .arg(milText(c.gap), where(c.on_a), where(c.on_b))
                                     .arg(gap.meetings.size())
                                     .arg(elsewhere ? "has a hit between them elsewhere"
                                                    : "reports nothing between them");
            if (!whole_ && picture_.reachesBorder(gap.a, px) && picture_.reachesBorder(gap.b, px)) {
                verdict.unresolved << text;
                continue;
            }
            verdict.missed_elsewhere += elsewhere ? 1 : 0;
            verdict.missed << text;
        }
    }

private:
    // True when the picture agrees with the hit; else `why` says what the picture shows and
    // `off` how far the picture's gap is from the value (infinite when there is none).
    bool confirm(const Hit& hit, QString& why, double& off) const {
        const double px = picture_.pixel();
        off = std::numeric_limits<double>::infinity();
        const std::vector<int> at_p = picture_.islandsNear(hit.p, 2 * px);
        const std::vector<int> at_q = picture_.islandsNear(hit.q, 2 * px);
        const double apart = std::hypot(hit.p.x() - hit.q.x(), hit.p.y() - hit.q.y());
        if (at_p.empty() || at_q.empty()) {
            why = QString("the picture has no copper within 2 px of %1")
                      .arg(at_p.empty() ? where(hit.p) : where(hit.q));
            return false;
        }
        if (std::abs(apart - hit.value) > 2 * px) {
            off = std::abs(apart - hit.value);
            why = QString("its points are %1 mil apart").arg(milText(apart));
            return false;
        }
        const QPointF middle = (hit.p + hit.q) / 2.0;
        if (isSameNet(hit.item)) {
            std::vector<int> common;
            std::set_intersection(at_p.begin(), at_p.end(), at_q.begin(), at_q.end(),
                                  std::back_inserter(common));
            const double open = picture_.openLength(hit.p, hit.q);
            off = std::abs(open - hit.value);
            if (common.empty()) {
                why = QString("the points lie on different islands (%1 and %2)")
                          .arg(islandList(at_p), islandList(at_q));
                return false;
            }
            if (off > 2 * px) {
                why = QString("the picture has %1 mil without copper between them")
                          .arg(milText(open));
                return false;
            }
            return true;
        }
        // "There" is the hit's middle: the two islands' smallest meeting within four pixels of
        // it. A closer place of the same islands elsewhere is a narrow place of its own.
        bool facing = false;
        IslandMeeting best;
        for (int a : at_p) {
            for (int b : at_q) {
                IslandMeeting m;
                if (a == b || !picture_.meetingNear(a, b, middle, 4 * px, m)) {
                    continue;
                }
                if (!facing || std::abs(m.gap - hit.value) < std::abs(best.gap - hit.value)) {
                    best = m;
                    facing = true;
                }
            }
        }
        if (!facing) {
            bool distinct = false;
            for (int a : at_p) {
                for (int b : at_q) {
                    distinct = distinct || a != b;
                }
            }
            why = distinct ? QString("islands %1 and %2 do not face each other there")
                                 .arg(islandList(at_p), islandList(at_q))
                           : QString("both points lie on island %1").arg(islandList(at_p));
            return false;
        }
        off = std::abs(best.gap - hit.value);
        if (off > 2 * px) {
            why = QString("islands %1 and %2 are %3 mil apart there (%4 to %5)")
                      .arg(best.a)
                      .arg(best.b)
                      .arg(milText(best.gap), where(best.on_a), where(best.on_b));
            return false;
        }
        return true;
    }

    const CopperPicture& picture_;
    double spacing_;
    QRectF window_;
    bool whole_;
};

QString examples(const QStringList& list, int count = 4) {
    QString out;
    for (int i = 0; i < std::min<int>(count, list.size()); ++i) {
        out += "\n    " + list[i];
    }
    return out;
}

}  // namespace

Q_DECLARE_METATYPE(Source)

class tst_SpacingDifferential : public QObject {
    Q_OBJECT

private slots:
    // Each row: a copper file, a square window on it (its centre as a fraction of the layer's
    // box, its side in mil; 0 for the whole layer), the picture's pixel (mil) and the spacing
    // (mil). Windows of large boards sit at fixed places, chosen without the engine's answer.
    void againstPicture_data() {
        QTest::addColumn<Source>("source");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QPointF>("centre");
        QTest::addColumn<double>("side");
        QTest::addColumn<double>("pixel");
        QTest::addColumn<double>("spacing");
        const auto board = [](const char* tag, const char* folder, const char* file,
                              QPointF centre = {}, double side = 0.0, double spacing = 5.0) {
            QTest::newRow(tag) << Source::examples << kExamples + folder << QString(file) << centre
                               << side << 0.5 << spacing;
        };
        const QPointF middle(0.5, 0.5);
        const QPointF lower_left(0.25, 0.25);
        const QPointF right(0.65, 0.35);
        board("protel-pnp top, middle", "protel-pnp", "SE_SG_IF_V2.GTL", middle, 700);
        board("protel-pnp top, lower left", "protel-pnp", "SE_SG_IF_V2.GTL", lower_left, 700);
        board("protel-pnp bottom, middle", "protel-pnp", "SE_SG_IF_V2.GBL", middle, 700);
        board("protel-pnp bottom, right", "protel-pnp", "SE_SG_IF_V2.GBL", right, 700);
        board("hellboard front, middle", "hellboard", "hellboard.front.gbr", middle, 700);
        board("hellboard back, middle", "hellboard", "hellboard.back.gbr", middle, 700);
        board("hellboard group1, middle", "hellboard", "hellboard.group1.gbr", middle, 700);
        board("orcad top", "orcad", "rs232_cm.top");
        board("orcad bottom", "orcad", "rs232_cm.bot");
        board("ekf2 l0, middle", "ekf2", "l0.grb", middle, 700);
        board("ekf2 l0, lower left", "ekf2", "l0.grb", lower_left, 700);
        board("numpres group1, middle", "numpres", "numpres.pcb.output_group1.grb", middle, 800);
        board("numpres group1, lower left", "numpres", "numpres.pcb.output_group1.grb", lower_left,
              800);
        board("nollezappare bottom, middle", "nollezappare", "EtchLayer2Bottom.gdo", middle, 700);
        board("nollezappare bottom, right", "nollezappare", "EtchLayer2Bottom.gdo", right, 700);
        board("eaglecad1 top, middle", "eaglecad1", "top-cop.gbx", middle, 700);
        board("eaglecad1 top, lower left", "eaglecad1", "top-cop.gbx", lower_left, 700);
        board("dan top, middle", "dan", "top.gbx", middle, 800);
        board("dan top, lower left", "dan", "top.gbx", lower_left, 800);
        // Boards keep 5 mil almost everywhere; at 10 mil their close places are many.
        board("protel-pnp top, middle, 10 mil", "protel-pnp", "SE_SG_IF_V2.GTL", middle, 700, 10);
        board("protel-pnp bottom, right, 10 mil", "protel-pnp", "SE_SG_IF_V2.GBL", right, 700, 10);
        board("orcad top, 10 mil", "orcad", "rs232_cm.top", {}, 0, 10);
        board("ekf2 l0, middle, 10 mil", "ekf2", "l0.grb", middle, 700, 10);
        board("nollezappare bottom, middle, 10 mil", "nollezappare", "EtchLayer2Bottom.gdo", middle,
              700, 10);
        board("eaglecad1 top, middle, 10 mil", "eaglecad1", "top-cop.gbx", middle, 700, 10);
        board("dan top, middle, 10 mil", "dan", "top.gbx", middle, 800, 10);
        QTest::newRow("generated, planted 8 mil gaps at 10 mil")
            << Source::synthetic << QString() << QString("synthetic.gtl") << QPointF() << 0.0 << 0.5
            << 10.0;
        QTest::newRow("generated at 5 mil")
            << Source::synthetic << QString() << QString("synthetic.gtl") << QPointF() << 0.0 << 0.5
            << 5.0;
        QTest::newRow("hand-made shapes")
            << Source::handmade << QString() << QString("handmade.gtl") << QPointF() << 0.0 << 0.25
            << 5.0;
    }
    void againstPicture() {
        QFETCH(Source, source);
        QFETCH(QString, folder);
        QFETCH(QString, file);
        QFETCH(QPointF, centre);
        QFETCH(double, side);
        QFETCH(double, pixel);
        QFETCH(double, spacing);
        QTemporaryDir scratch;
        QVERIFY(scratch.isValid());
        QString error;
        if (source == Source::synthetic) {
            folder = scratch.path();
            QVERIFY2(writeGerber(wcref::syntheticCopper(150, 12, 7, nullptr),
                                 scratch.filePath(file), error),
                     qPrintable(error));
        } else if (source == Source::handmade) {
            folder = scratch.path();
            QVERIFY2(writeText(scratch.filePath(file), kHandmadeGerber, error), qPrintable(error));
            QVERIFY2(writeText(scratch.filePath("handmade.drl"), kHandmadeDrill, error),
                     qPrintable(error));
        } else if (!QFileInfo::exists(folder + "/" + file)) {
            QSKIP(qPrintable("example board not installed: " + folder + "/" + file));
        }
        const QString path = QDir(folder).filePath(file);

        // The picture: the window plus a border, or the whole layer.
        QRectF bounds;
        QVERIFY2(GerberPicture::bounds(path, bounds, error), qPrintable(error));
        const bool whole = side <= 0.0;
        QRectF window(bounds.left() * kMilPerInch, bounds.top() * kMilPerInch,
                      bounds.width() * kMilPerInch, bounds.height() * kMilPerInch);
        if (!whole) {
            const QPointF c(window.left() + centre.x() * window.width(),
                            window.top() + centre.y() * window.height());
            window = QRectF(c.x() - side / 2, c.y() - side / 2, side, side);
        }
        const QRectF drawn = window.adjusted(-kBorderMil, -kBorderMil, kBorderMil, kBorderMil);
        const QRectF drawn_inch(drawn.left() / kMilPerInch, drawn.top() / kMilPerInch,
                                drawn.width() / kMilPerInch, drawn.height() / kMilPerInch);
        std::unique_ptr<CopperPicture> drawing;
        {
            const QImage image =
                GerberPicture::render(path, drawn_inch, kMilPerInch / pixel, kMaxPixels, error);
            QVERIFY2(!image.isNull(), qPrintable(error));
            drawing = std::make_unique<CopperPicture>(
                CopperPicture::fromImage(image, drawn.left() * kNmPerMil, drawn.top() * kNmPerMil,
                                         pixel * kNmPerMil, 2 * spacing * kNmPerMil));
        }
        const CopperPicture& picture = *drawing;
        QVERIFY2(picture.islandCount() > 0, "the picture holds no copper");

        // The engine on the same file, through its own entry point.
        const std::string job = openBoard(folder, error);
        QVERIFY2(!job.empty(), qPrintable(error));
        const std::string layer = file.toLower().toStdString();
        const int features = featureCount(job, layer);
        QVERIFY2(features > 0, qPrintable("the engine's layer " + file.toLower() + " is empty"));
        signal_check_params params;
        params.spacing = spacing * kNmPerMil;
        wcref::SignalResult result;
        QVERIFY(Korvo::API::signal_layers_checks(job, "pcb", layer, params, {sl_spacing, sl_smd},
                                                 {}, result, nullptr, 0));
        int placeless = 0;
        const std::vector<Hit> hits = spacingHits(result, placeless);
        QCOMPARE(placeless, 0);

        const QRectF inside(window.left() * kNmPerMil, window.top() * kNmPerMil,
                            window.width() * kNmPerMil, window.height() * kNmPerMil);
        Verdict v;
        Comparison(picture, spacing * kNmPerMil, inside, whole).judge(hits, v);
        const QString summary =
            QString(
                "%1 x %2 px, %3 islands, %4 features; %5 hits in the window: %6 confirmed, "
                "%7 contradicted (%8 within 3 px or below 2 px); %9 narrow places: %10 with a "
                "hit, %11 missed (%12 with a hit elsewhere), %13 unresolved at the border")
                .arg(picture.width())
                .arg(picture.height())
                .arg(picture.islandCount())
                .arg(features)
                .arg(v.checked)
                .arg(v.confirmed)
                .arg(v.contradicted.size())
                .arg(v.contradicted_fine)
                .arg(v.narrow)
                .arg(v.found)
                .arg(v.missed.size())
                .arg(v.missed_elsewhere)
                .arg(v.unresolved.size());
        qInfo().noquote() << QTest::currentDataTag() << ":" << summary << examples(v.contradicted)
                          << examples(v.missed) << examples(v.unresolved, 2);
        QVERIFY2(v.contradicted.isEmpty() && v.missed.isEmpty(),
                 qPrintable(summary + "\n  contradicted:" + examples(v.contradicted, 8) +
                            "\n  missed:" + examples(v.missed, 8)));
    }
};

QTEST_GUILESS_MAIN(tst_SpacingDifferential)
#include "tst_SpacingDifferential.moc"
