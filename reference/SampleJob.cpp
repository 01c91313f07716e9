#include "SampleJob.h"

#include <utility>

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;
using Korvo::API::step_repeat_op;

namespace {

using Attributes = std::map<std::string, std::string>;

point mil(double x, double y) {
    return {x * kNanometresPerMil, y * kNanometresPerMil};
}

std::vector<point> rectangle(double x0, double y0, double x1, double y1) {
    return {mil(x0, y0), mil(x1, y0), mil(x1, y1), mil(x0, y1)};
}

// Adds features to one layer of one step; coordinates in mil.
class Painter {
public:
    Painter(EngineStep& step, const std::string& layer)
        : data_(step.layers[layer]), layer_(layer) {}

    void pad(const std::string& symbol, double x, double y, Attributes attributes = {},
             bool positive = true) {
        featureInfo f = base(Korvo::API::feature_pad, symbol, positive, std::move(attributes));
        f.start = f.end = mil(x, y);
        data_.add(f);
    }
    void line(const std::string& symbol, double x0, double y0, double x1, double y1,
              Attributes attributes = {}) {
        featureInfo f = base(Korvo::API::feature_line, symbol, true, std::move(attributes));
        f.start = mil(x0, y0);
        f.end = mil(x1, y1);
        data_.add(f);
    }
    void arc(const std::string& symbol, double x0, double y0, double x1, double y1, double cx,
             double cy, bool clockwise) {
        featureInfo f = base(Korvo::API::feature_arc, symbol, true, {});
        f.start = mil(x0, y0);
        f.end = mil(x1, y1);
        f.center = mil(cx, cy);
        f.clockwise = clockwise;
        data_.add(f);
    }
    void surface(std::vector<point> contour, Attributes attributes = {}, bool positive = true) {
        featureInfo f = base(Korvo::API::feature_surface, "", positive, std::move(attributes));
        f.contour = std::move(contour);
        f.start = f.contour.front();
        f.end = f.contour.front();
        data_.add(f);
    }
    void text(const std::string& content, double x, double y) {
        featureInfo f = base(Korvo::API::feature_text, "standard", true, {});
        f.start = f.end = mil(x, y);
        f.text = content;
        data_.add(f);
    }

private:
    featureInfo base(Korvo::API::feature_type type, const std::string& symbol, bool positive,
                     Attributes attributes) const {
        featureInfo f;
        f.layer = layer_;
        f.type = type;
        f.symbol = symbol;
        f.positive = positive;
        f.attributes = std::move(attributes);
        return f;
    }

    EngineLayerData& data_;
    std::string layer_;
};

layer_info matrixRow(const std::string& name, int row, const std::string& context,
                     const std::string& type, const std::string& polarity, const std::string& side,
                     const std::string& start = {}, const std::string& end = {}) {
    layer_info info;
    info.name = name;
    info.row = row;
    info.context = context;
    info.type = type;
    info.polarity = polarity;
    info.side = side;
    info.drill_start = start;
    info.drill_end = end;
    return info;
}

std::vector<layer_info> sampleMatrix() {
    int row = 0;
    return {
        matrixRow("top_silk", ++row, "board", "silk_screen", "positive", "top"),
        matrixRow("top_mask", ++row, "board", "solder_mask", "positive", "top"),
        matrixRow("top", ++row, "board", "signal", "positive", "top"),
        matrixRow("l2_gnd", ++row, "board", "power_ground", "negative", "inner"),
        matrixRow("l3", ++row, "board", "signal", "positive", "inner"),
        matrixRow("l4", ++row, "board", "mixed", "positive", "inner"),
        matrixRow("l5_pwr", ++row, "board", "power_ground", "positive", "inner"),
        matrixRow("bottom", ++row, "board", "signal", "positive", "bottom"),
        matrixRow("bottom_mask", ++row, "board", "solder_mask", "positive", "bottom"),
        matrixRow("bottom_silk", ++row, "board", "silk_screen", "positive", "bottom"),
        matrixRow("drill", ++row, "board", "drill", "positive", "none", "top", "bottom"),
        matrixRow("via_drill", ++row, "board", "drill", "positive", "none", "top", "l3"),
        matrixRow("doc", ++row, "misc", "document", "positive", "none"),
        matrixRow("fab_notes", ++row, "misc", "document", "positive", "none"),
    };
}

// Positions shared by the layers of the board, in mil.
struct BoardPlaces {
    std::vector<point> header;   // through-hole connector, 2 x 10
    std::vector<point> vias;     // 8 x 4 grid
    std::vector<point> top_smd;  // two rows of 12
    std::vector<point> bottom_smd;
    std::vector<point> mounting;  // non-plated corner holes
};

BoardPlaces boardPlaces() {
    BoardPlaces places;
    for (int k = 0; k < 10; ++k) {
        places.header.push_back({200.0 + 100 * k, 200.0});
        places.header.push_back({200.0 + 100 * k, 300.0});
    }
    for (int j = 0; j < 4; ++j) {
        for (int i = 0; i < 8; ++i) {
            places.vias.push_back({1300.0 + 70 * i, 550.0 + 90 * j});
        }
    }
    for (int k = 0; k < 12; ++k) {
        places.top_smd.push_back({500.0 + 70 * k, 900.0});
        places.top_smd.push_back({500.0 + 70 * k, 1200.0});
    }
    for (int k = 0; k < 10; ++k) {
        places.bottom_smd.push_back({300.0 + 90 * k, 600.0});
    }
    places.mounting = {{100, 100}, {1900, 100}, {1900, 1400}, {100, 1400}};
    return places;
}

void paintSignal(EngineStep& step, const std::string& layer, const BoardPlaces& places,
                 bool outer) {
    Painter p(step, layer);
    for (const point& h : places.header) {
        p.pad("r60", h.x, h.y);
    }
    for (const point& v : places.vias) {
        p.pad("r24", v.x, v.y);
    }
    // Traces from the connector to the via field; every fourth one ends in a teardrop.
    for (int k = 0; k < 10; ++k) {
        const point& from = places.header[2 * k + 1];
        const point& to = places.vias[k];
        const std::string symbol = (k % 3 == 0) ? "r10" : "r8";
        p.line(symbol, from.x, from.y, from.x, to.y);
        Attributes teardrop;
        if (outer && k % 4 == 0) {
            teardrop[".tear_drop"] = "";
        }
        p.line(symbol, from.x, to.y, to.x, to.y, teardrop);
    }
    for (int k = 0; k < 6; ++k) {
        const double x = 300.0 + 150 * k;
        p.arc("r8", x, 1350.0, x + 100, 1350.0, x + 50, 1350.0, k % 2 == 0);
    }
    if (outer) {
        for (int k = 0; k < 6; ++k) {
            const point& v = places.vias[k];
            p.surface({mil(v.x - 20, v.y), mil(v.x, v.y - 40), mil(v.x + 20, v.y)},
                      {{".tear_drop", ""}});
        }
    }
    p.surface(rectangle(1300, 1000, 1800, 1300));
}

void paintBoard(EngineStep& pcb) {
    const BoardPlaces places = boardPlaces();
    paintSignal(pcb, "top", places, true);
    paintSignal(pcb, "l3", places, false);
    paintSignal(pcb, "bottom", places, true);
    {
        Painter top(pcb, "top");
        for (const point& s : places.top_smd) {
            top.pad("rect60x80", s.x, s.y, {{".smd", ""}});
        }
        for (int k = 0; k < 12; ++k) {
            const point& s = places.top_smd[2 * k];
            top.line("r8", s.x, s.y - 40, s.x, s.y - 150);
        }
        top.text("TOP", 1500, 1420);
    }
    {
        Painter bottom(pcb, "bottom");
        for (const point& s : places.bottom_smd) {
            bottom.pad("oval40x80", s.x, s.y, {{".smd", ""}});
        }
        bottom.text("BOTTOM", 1500, 1420);
    }
    {
        Painter l4(pcb, "l4");
        for (const point& h : places.header) {
            l4.pad("r60", h.x, h.y);
        }
        for (int k = 0; k < 8; ++k) {
            l4.line("r8", 150, 500.0 + 40 * k, 1150, 500.0 + 40 * k);
        }
        l4.surface(rectangle(1250, 950, 1850, 1350));
    }
    // The negative ground layer draws clearances; the power plane is a positive pour with
    // negative clearance pads.
    {
        Painter gnd(pcb, "l2_gnd");
        for (const point& h : places.header) {
            gnd.pad("r80", h.x, h.y);
        }
        for (const point& m : places.mounting) {
            gnd.pad("r160", m.x, m.y);
        }
    }
    {
        Painter pwr(pcb, "l5_pwr");
        pwr.surface(rectangle(50, 50, 1950, 1450));
        for (const point& h : places.header) {
            pwr.pad("r80", h.x, h.y, {}, false);
        }
        for (const point& v : places.vias) {
            pwr.pad("r40", v.x, v.y, {}, false);
        }
    }
    for (const auto& side :
         {std::make_pair("top_mask", true), std::make_pair("bottom_mask", false)}) {
        Painter mask(pcb, side.first);
        for (const point& h : places.header) {
            mask.pad("r70", h.x, h.y);
        }
        for (const point& m : places.mounting) {
            mask.pad("r140", m.x, m.y);
        }
        if (side.second) {
            for (const point& s : places.top_smd) {
                mask.pad("rect64x84", s.x, s.y, {{".smd", ""}});
            }
        } else {
            for (const point& s : places.bottom_smd) {
                mask.pad("oval44x84", s.x, s.y, {{".smd", ""}});
            }
        }
    }
    {
        Painter silk(pcb, "top_silk");
        silk.line("r6", 140, 140, 1160, 140);
        silk.line("r6", 1160, 140, 1160, 360);
        silk.line("r6", 1160, 360, 140, 360);
        silk.line("r6", 140, 360, 140, 140);
        silk.text("J1", 140, 400);
        silk.text("U1", 450, 1050);
        silk.arc("r6", 460, 1000, 540, 1000, 500, 1000, true);
    }
    {
        Painter silk(pcb, "bottom_silk");
        silk.line("r6", 250, 540, 1250, 540);
        silk.line("r6", 250, 660, 1250, 660);
        silk.text("U2", 250, 700);
    }
    {
        Painter drill(pcb, "drill");
        for (const point& h : places.header) {
            drill.pad("r40", h.x, h.y, {{".drill", "plated"}});
        }
        for (const point& m : places.mounting) {
            drill.pad("r120", m.x, m.y, {{".drill", "non_plated"}});
        }
    }
    {
        Painter via(pcb, "via_drill");
        for (const point& v : places.vias) {
            via.pad("r12", v.x, v.y, {{".drill", "via"}});
        }
    }
    {
        Painter doc(pcb, "doc");
        doc.line("r1", 0, 0, 2000, 0);
        doc.line("r1", 2000, 0, 2000, 1500);
        doc.line("r1", 2000, 1500, 0, 1500);
        doc.line("r1", 0, 1500, 0, 0);
        doc.text("SAMPLE BOARD 2000 x 1500 mil", 100, 1550);
    }
    {
        Painter notes(pcb, "fab_notes");
        notes.text("1. MATERIAL FR4 1.6 MM", 0, -100);
        notes.text("2. FINISH ENIG", 0, -160);
        notes.text("3. SOLDER MASK GREEN", 0, -220);
    }
}

void paintPanel(EngineStep& panel) {
    const point fiducials[3] = {{250, 250}, {8750, 250}, {250, 6750}};
    for (const char* layer : {"top", "bottom"}) {
        Painter p(panel, layer);
        for (const point& f : fiducials) {
            p.pad("r40", f.x, f.y, {{".fiducial", ""}});
        }
    }
    Painter drill(panel, "drill");
    for (const point& t :
         {point{150, 150}, point{8850, 150}, point{8850, 6850}, point{150, 6850}}) {
        drill.pad("r125", t.x, t.y, {{".drill", "non_plated"}});
    }
    Painter silk(panel, "top_silk");
    silk.text("PANEL", 4000, 6500);
}

EngineStep emptyStep(const std::string& name, const std::vector<layer_info>& matrix) {
    EngineStep step;
    step.name = name;
    for (const layer_info& layer : matrix) {
        step.layers[layer.name];
    }
    return step;
}

}  // namespace

EngineJob buildSampleJob(const std::string& name) {
    EngineJob job;
    job.name = name;
    job.path = ":sample";
    job.matrix = sampleMatrix();
    for (const layer_info& layer : job.matrix) {
        if (layer.context == "board") {
            job.displayed.insert(layer.name);
        }
    }

    EngineStep pcb = emptyStep("pcb", job.matrix);
    pcb.profile = rectangle(0, 0, 2000, 1500);
    pcb.attributes = {{".pcb_type", "rigid"}, {".customer", "sample"}};
    paintBoard(pcb);

    EngineStep panel = emptyStep("panel", job.matrix);
    panel.profile = rectangle(0, 0, 9000, 7000);
    panel.attributes = {{".panel_type", "production"}};
    step_repeat_op array;
    array.step_name = "pcb";
    array.x = static_cast<int32_t>(500 * kNanometresPerMil);
    array.y = static_cast<int32_t>(500 * kNanometresPerMil);
    array.dx = static_cast<int32_t>(2200 * kNanometresPerMil);
    array.dy = static_cast<int32_t>(1700 * kNanometresPerMil);
    array.nx = 3;
    array.ny = 2;
    // Rotated clockwise by 90 the board spans x 0..1500 and y -2000..0 mil about its origin,
    // so the column sits at x 7200..8700 and y 500..2500 / 2700..4700 mil.
    step_repeat_op column;
    column.step_name = "pcb";
    column.x = static_cast<int32_t>(7200 * kNanometresPerMil);
    column.y = static_cast<int32_t>(2500 * kNanometresPerMil);
    column.dy = static_cast<int32_t>(2200 * kNanometresPerMil);
    column.nx = 1;
    column.ny = 2;
    column.angle = 90;
    panel.repeat = {array, column};
    paintPanel(panel);

    job.steps.push_back(std::move(pcb));
    job.steps.push_back(std::move(panel));
    return job;
}

}  // namespace wcref
