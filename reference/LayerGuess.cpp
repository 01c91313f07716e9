#include "LayerGuess.h"

#include <glog/logging.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "CopperGeometry.h"

namespace wcref {
namespace layerguess {

using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;

namespace {

bool isCopper(const std::string& type) {
    return type == "signal" || type == "power_ground" || type == "mixed";
}

void setRow(LayerGuess& g, const char* type, const char* side) {
    g.info.type = type;
    g.info.side = side;
    g.info.context = g.info.type == "document" ? "misc" : "board";
}

// "Top" / "Bot" / "Inr" of a file function; empty when it is none of them.
const char* sideOf(const QString& field) {
    if (field == "top") {
        return "top";
    }
    if (field == "bot") {
        return "bottom";
    }
    if (field == "inr") {
        return "inner";
    }
    return "";
}

}  // namespace

bool fromFileFunction(const std::string& function, const std::string& polarity, LayerGuess& guess) {
    QStringList fields = QString::fromStdString(function).toLower().split(',');
    for (QString& f : fields) {
        f = f.trimmed();
    }
    if (fields[0].isEmpty()) {
        return false;
    }
    const QString kind = fields[0];
    const auto field = [&](int k) { return k < fields.size() ? fields[k] : QString(); };
    LayerGuess g;
    g.info.name = guess.info.name;
    g.info.polarity = "positive";
    if (kind == "copper") {
        // Copper,L<n>,Top|Inr|Bot[,Plane|Signal|Mixed|Hatched]
        const QRegularExpressionMatch n = QRegularExpression("^l(\\d+)$").match(field(1));
        const char* side = sideOf(field(2));
        if (!n.hasMatch() || *side == '\0') {
            LOG(WARNING) << "file function \"" << function << "\" names no copper layer and side";
            return false;
        }
        g.order = n.captured(1).toInt();
        const QString use = field(3);
        setRow(g, use == "plane" ? "power_ground" : use == "mixed" ? "mixed" : "signal", side);
    } else if (kind == "soldermask" || kind == "legend" || kind == "paste") {
        const char* side = sideOf(field(1));
        if (*side == '\0' || std::string(side) == "inner") {
            LOG(WARNING) << "file function \"" << function << "\" names no side";
            return false;
        }
        setRow(g,
               kind == "soldermask" ? "solder_mask"
               : kind == "legend"   ? "silk_screen"
                                    : "solder_paste",
               side);
    } else if (kind == "profile") {
        setRow(g, "rout", "none");
    } else if (kind == "plated" || kind == "nonplated") {
        // Plated|NonPlated,<from>,<to>,PTH|NPTH|Blind|Buried[,Drill|Rout|Mixed]
        bool from_ok = false;
        bool to_ok = false;
        const int from = field(1).toInt(&from_ok);
        const int to = field(2).toInt(&to_ok);
        setRow(g, "drill", "none");
        if (from_ok && to_ok && from > 0 && to > 0) {
            g.span_from = std::min(from, to);
            g.span_to = std::max(from, to);
        }
    } else if (kind == "assemblydrawing" || kind == "fabricationdrawing" || kind == "drillmap" ||
               kind == "otherdrawing" || kind == "arraydrawing" || kind == "other" ||
               kind == "component" || kind == "glue" || kind == "keep-out" || kind == "pads" ||
               kind == "vcutmap" || kind == "vcut" || kind == "depthrout" || kind == "viafill" ||
               kind.endsWith("mask")) {
        // Drawings and the rarer process layers carry no copper the checks read: documents,
        // with their side when they name one.
        const char* side = sideOf(field(1));
        setRow(g, "document", *side == '\0' || std::string(side) == "inner" ? "none" : side);
    } else {
        LOG(INFO) << "file function \"" << function << "\" is not typed; the file name decides";
        return false;
    }
    const QString p = QString::fromStdString(polarity).trimmed().toLower();
    if (p == "negative") {
        g.info.polarity = "negative";
    } else if (!p.isEmpty() && p != "positive") {
        LOG(WARNING) << "file polarity \"" << polarity << "\" is neither Positive nor Negative; "
                     << "read as positive";
    }
    g.decided_by = "attributes";
    guess = g;
    return true;
}

int nameOrder(const std::string& file_name) {
    const QString name = QFileInfo(QString::fromStdString(file_name)).fileName().toLower();
    const QRegularExpressionMatch m =
        QRegularExpression("(?:\\.gp?|-in|group|etchlayer)(\\d+)").match(name);
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}

bool fromFileName(const std::string& file_name, LayerGuess& guess) {
    const QString name = QFileInfo(QString::fromStdString(file_name)).fileName().toLower();
    const QString ext = QFileInfo(name).suffix();
    LayerGuess& g = guess;
    g.info.name = name.toStdString();
    g.info.polarity = "positive";
    g.order = nameOrder(file_name);
    const auto is = [&](const char* pattern) {
        return name.contains(QRegularExpression(QString::fromLatin1(pattern)));
    };
    // A word of the name: at its start or after a separator, before its extension.
    const auto last = [&](const char* words) {
        return is((QStringLiteral("(^|[._-])(") + QString::fromLatin1(words) +
                   QStringLiteral(")\\.[a-z0-9]+$"))
                      .toLatin1()
                      .constData());
    };
    const char* top_words = "front|top|component|comp";
    const char* bottom_words = "back|bottom|bot|solder";
    // Masks, silk and paste first: "componentmask" and "soldermask" name a side too.
    if (ext == "gts" || ext == "stc" || ext == "smt" || is("-f[._]mask\\.") ||
        is("(front|top|component)[-_]?(solder)?mask")) {
        setRow(g, "solder_mask", "top");
    } else if (ext == "gbs" || ext == "sts" || ext == "smb" || is("-b[._]mask\\.") ||
               is("(back|bottom|bot|solder)[-_]?mask")) {
        setRow(g, "solder_mask", "bottom");
    } else if (ext == "gto" || ext == "plc" || ext == "sst" || is("-f[._]silks") ||
               is("(front|top|component)[-_]?silk")) {
        setRow(g, "silk_screen", "top");
    } else if (ext == "gbo" || ext == "pls" || ext == "ssb" || is("-b[._]silks") ||
               is("(back|bottom|bot|solder)[-_]?silk")) {
        setRow(g, "silk_screen", "bottom");
    } else if (ext == "gtp" || ext == "crc" || is("-f[._]paste\\.") ||
               is("(front|top|component)[-_]?paste")) {
        setRow(g, "solder_paste", "top");
    } else if (ext == "gbp" || ext == "crs" || is("-b[._]paste\\.") ||
               is("(back|bottom|bot|solder)[-_]?paste")) {
        setRow(g, "solder_paste", "bottom");
    } else if (is("etchlayer\\d+")) {
        // "EtchLayer2Bottom", "EtchLayer1Top", "EtchLayer3"
        setRow(g, "signal",
               is("etchlayer\\d+[-_]?top")   ? "top"
               : is("etchlayer\\d+[-_]?bot") ? "bottom"
                                             : "inner");
    } else if (ext == "gtl" || ext == "cmp" || ext == "top" || is("-f[._]cu\\.") ||
               last(top_words) || is("(top|front)[-_]?cop(per)?\\.") ||
               is("cop(per)?[-_]?(top|front)\\.")) {
        setRow(g, "signal", "top");
    } else if (ext == "gbl" || ext == "sol" || ext == "bot" || is("-b[._]cu\\.") ||
               last(bottom_words) || is("(bottom|bot|back)[-_]?cop(per)?\\.") ||
               is("cop(per)?[-_]?(bottom|bot|back)\\.")) {
        setRow(g, "signal", "bottom");
    } else if (is("\\.g\\d+$") || is("-in\\d+[._]cu\\.") || is("(^|[._-])group\\d+\\.")) {
        setRow(g, "signal", "inner");
    } else if (is("\\.gp\\d+$") || is("(^|[._-])(gnd|ground|pwr|power|pow|vcc)\\d*\\.")) {
        setRow(g, "power_ground", "inner");
    } else if (is("(^|[._-])(un)?plated[-_]drill\\.")) {
        // A drawing of the holes as Gerber flashes.
        setRow(g, "drill", "none");
    } else if (ext == "gko" || ext == "gm1" || is("edge[._]cuts") || is("outline") ||
               is("profile")) {
        setRow(g, "rout", "none");
    } else {
        setRow(g, "document", "none");
        g.decided_by = "nothing";
        return false;
    }
    g.decided_by = "name";
    return true;
}

bool isOutlineOnly(const std::vector<featureInfo>& features) {
    // A board outline is a few hundred segments at most; a file far beyond that is artwork.
    constexpr size_t kMaxSegments = 20000;
    if (features.empty() || features.size() > kMaxSegments) {
        return false;
    }
    std::vector<point> ends;
    ends.reserve(features.size() * 2);
    for (const featureInfo& f : features) {
        if ((f.type != Korvo::API::feature_line && f.type != Korvo::API::feature_arc) ||
            !f.positive) {
            return false;
        }
        const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
        if (size.kind == SymbolSize::none || std::max(size.width, size.height) > kOutlineMaxWidth) {
            return false;
        }
        ends.push_back(f.start);
        ends.push_back(f.end);
    }
    // Ends closer than a micrometre are one node: union them, sweeping along x.
    constexpr double kJoin = 1000.0;
    std::vector<size_t> parent(ends.size());
    std::iota(parent.begin(), parent.end(), size_t{0});
    const auto find = [&](size_t k) {
        while (parent[k] != k) {
            parent[k] = parent[parent[k]];
            k = parent[k];
        }
        return k;
    };
    std::vector<size_t> byX(ends.size());
    std::iota(byX.begin(), byX.end(), size_t{0});
    std::sort(byX.begin(), byX.end(), [&](size_t a, size_t b) { return ends[a].x < ends[b].x; });
    for (size_t i = 0; i < byX.size(); ++i) {
        for (size_t j = i + 1; j < byX.size() && ends[byX[j]].x - ends[byX[i]].x <= kJoin; ++j) {
            if (std::abs(ends[byX[j]].y - ends[byX[i]].y) <= kJoin) {
                parent[find(byX[j])] = find(byX[i]);
            }
        }
    }
    // Closed: every node is met an even number of times. Then each feature joins its two nodes
    // into one outline.
    std::map<size_t, int> degree;
    for (size_t k = 0; k < ends.size(); ++k) {
        ++degree[find(k)];
    }
    for (const auto& node : degree) {
        if (node.second % 2 != 0) {
            return false;
        }
    }
    for (size_t k = 0; k < features.size(); ++k) {
        parent[find(2 * k)] = find(2 * k + 1);
    }
    // One outline encloses the others: the box of the largest outline holds every end.
    struct Box {
        double xmin = 1e300, ymin = 1e300, xmax = -1e300, ymax = -1e300;
        double area() const { return (xmax - xmin) * (ymax - ymin); }
    };
    std::map<size_t, Box> boxes;
    for (size_t k = 0; k < ends.size(); ++k) {
        Box& b = boxes[find(k)];
        b.xmin = std::min(b.xmin, ends[k].x);
        b.ymin = std::min(b.ymin, ends[k].y);
        b.xmax = std::max(b.xmax, ends[k].x);
        b.ymax = std::max(b.ymax, ends[k].y);
    }
    for (size_t k = 0; k < features.size(); ++k) {
        const featureInfo& f = features[k];
        if (f.type == Korvo::API::feature_arc && f.start == f.end) {
            // A full circle: its box is around its centre, wider than its ends.
            const double r = std::hypot(f.start.x - f.center.x, f.start.y - f.center.y);
            Box& b = boxes[find(2 * k)];
            b.xmin = std::min(b.xmin, f.center.x - r);
            b.ymin = std::min(b.ymin, f.center.y - r);
            b.xmax = std::max(b.xmax, f.center.x + r);
            b.ymax = std::max(b.ymax, f.center.y + r);
        }
    }
    const auto largest = std::max_element(
        boxes.begin(), boxes.end(),
        [](const auto& a, const auto& b) { return a.second.area() < b.second.area(); });
    const Box& outer = largest->second;
    if (outer.area() <= 0.0) {
        return false;
    }
    for (const auto& entry : boxes) {
        const Box& b = entry.second;
        if (b.xmin < outer.xmin || b.ymin < outer.ymin || b.xmax > outer.xmax ||
            b.ymax > outer.ymax) {
            return false;
        }
    }
    return true;
}

LayerGuess guess(const std::string& file_name, bool excellon, const X2Attributes& attributes,
                 const std::vector<featureInfo>& features) {
    LayerGuess g;
    g.info.name = QFileInfo(QString::fromStdString(file_name)).fileName().toLower().toStdString();
    if (fromFileFunction(attributes.file_function, attributes.file_polarity, g)) {
        if (excellon && g.info.type != "drill") {
            LOG(WARNING) << file_name << " is an Excellon file whose attributes say \""
                         << attributes.file_function << "\"; typed as a drill layer";
            setRow(g, "drill", "none");
            g.decided_by = "content";
        }
        return g;
    }
    const bool named = fromFileName(file_name, g);
    // A polarity without a function still says how the file is drawn.
    if (QString::fromStdString(attributes.file_polarity).trimmed().toLower() == "negative") {
        g.info.polarity = "negative";
    }
    if (excellon) {
        if (g.info.type != "drill") {
            setRow(g, "drill", "none");
            g.decided_by = "content";
        }
        return g;
    }
    if (!named && isOutlineOnly(features)) {
        setRow(g, "rout", "none");
        g.decided_by = "content";
    }
    return g;
}

LayerGuess guessFile(const std::string& path, bool excellon,
                     const std::vector<featureInfo>& features) {
    return guess(path, excellon, excellon ? X2Attributes{} : GerberX2::read(path), features);
}

int rank(const layer_info& l, int order) {
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
    if (isCopper(l.type)) {
        return top ? 100 : l.side == "bottom" ? 800 : 200 + std::min(std::max(order, 0), 500);
    }
    if (l.type == "drill") {
        return 1000;
    }
    if (l.type == "rout") {
        return 1100;
    }
    return 1200;
}

void settleLayers(std::vector<LayerGuess>& layers) {
    // All signal copper inner: the lowest number is the top, the highest the bottom. Planes
    // stay inner: a board whose signal layers are not typed yet has no outer layer to guess.
    std::vector<LayerGuess*> copper;
    bool outer = false;
    for (LayerGuess& g : layers) {
        if (isCopper(g.info.type) && g.info.type != "power_ground") {
            copper.push_back(&g);
            outer = outer || g.info.side != "inner";
        }
    }
    if (!outer && copper.size() >= 2) {
        const auto byOrder = [](const LayerGuess* a, const LayerGuess* b) {
            return a->order < b->order;
        };
        (*std::min_element(copper.begin(), copper.end(), byOrder))->info.side = "top";
        (*std::max_element(copper.begin(), copper.end(), byOrder))->info.side = "bottom";
    }
    std::stable_sort(layers.begin(), layers.end(), [](const LayerGuess& a, const LayerGuess& b) {
        return rank(a.info, a.order) < rank(b.info, b.order);
    });
    std::vector<const LayerGuess*> stack;  // copper, top first
    for (size_t k = 0; k < layers.size(); ++k) {
        layers[k].info.row = static_cast<int>(k) + 1;
        if (isCopper(layers[k].info.type)) {
            stack.push_back(&layers[k]);
        }
    }
    // A copper number from the attributes is the layer's place in the stack; names number
    // inner layers only, so the stack position stands in for them.
    const auto copperNumber = [&](int n) -> std::string {
        for (const LayerGuess* c : stack) {
            if (c->decided_by == "attributes" && c->order == n) {
                return c->info.name;
            }
        }
        return n >= 1 && n <= static_cast<int>(stack.size()) &&
                       std::none_of(
                           stack.begin(), stack.end(),
                           [](const LayerGuess* c) { return c->decided_by == "attributes"; })
                   ? stack[n - 1]->info.name
                   : std::string();
    };
    for (LayerGuess& g : layers) {
        if (g.info.type != "drill" || stack.empty()) {
            continue;
        }
        std::string from = g.span_from > 0 ? copperNumber(g.span_from) : std::string();
        std::string to = g.span_to > 0 ? copperNumber(g.span_to) : std::string();
        if (from.empty() || to.empty()) {
            from = stack.front()->info.name;
            to = stack.back()->info.name;
        }
        g.info.drill_start = from;
        g.info.drill_end = to;
    }
}

}  // namespace layerguess
}  // namespace wcref
