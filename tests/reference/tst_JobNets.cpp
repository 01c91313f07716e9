// Nets of the reference engine: the X2 attributes read beside libgerbv, the IPC-D-356 netlist
// reader, and the connectivity derived from copper and plated holes, named from the files and
// compared with a netlist.

#include <QtTest>

#include "CopperGeometry.h"
#include "GerberX2.h"
#include "Ipc356.h"
#include "JobNets.h"
#include "Korvo_API.h"
#include "LogCapture.h"

using namespace Korvo::API;
using wcref::EngineJob;
using wcref::EngineStep;
using wcref::JobNets;
using wcref::StepNets;
using wcref::TestPoint;

namespace {

constexpr double kMil = 25400.0;

std::string round(double mil) {
    return wcref::CopperGeometry::symbolName(wcref::SymbolSize::round, mil * kMil, mil * kMil);
}

// A job of copper layers (top to bottom) and one plated drill layer spanning them, in mil.
class Board {
public:
    explicit Board(int copper_layers) {
        job.name = "nets";
        step.name = "pcb";
        for (int k = 0; k < copper_layers; ++k) {
            layer_info l;
            l.name = "l" + std::to_string(k + 1);
            l.row = k + 1;
            l.context = "board";
            l.type = "signal";
            l.polarity = "positive";
            l.side = k == 0 ? "top" : k + 1 == copper_layers ? "bottom" : "inner";
            job.matrix.push_back(l);
        }
        layer_info drill;
        drill.name = "drill";
        drill.row = copper_layers + 1;
        drill.context = "board";
        drill.type = "drill";
        drill.polarity = "positive";
        drill.drill_start = "l1";
        drill.drill_end = "l" + std::to_string(copper_layers);
        job.matrix.push_back(drill);
    }
    featureInfo& pad(const std::string& layer, double d, double x, double y) {
        featureInfo f;
        f.type = feature_pad;
        f.symbol = round(d);
        f.start = f.end = {x * kMil, y * kMil};
        return step.layers[layer].add(f);
    }
    featureInfo& line(const std::string& layer, double w, double x0, double y0, double x1,
                      double y1) {
        featureInfo f;
        f.type = feature_line;
        f.symbol = round(w);
        f.start = {x0 * kMil, y0 * kMil};
        f.end = {x1 * kMil, y1 * kMil};
        return step.layers[layer].add(f);
    }
    featureInfo& hole(double d, double x, double y, const char* kind = "plated") {
        featureInfo& f = pad("drill", d, x, y);
        f.attributes[".drill"] = kind;
        return f;
    }
    StepNets nets(const std::vector<TestPoint>& netlist = {}) const {
        return JobNets::derive(job, step, netlist);
    }
    std::string net(const StepNets& nets, const std::string& layer, int id) const {
        return nets.nameOf(layer, static_cast<size_t>(id - 1));
    }
    EngineJob job;
    EngineStep step;
};

TestPoint testPoint(const std::string& net, double x, double y,
                    TestPoint::Side side = TestPoint::both) {
    TestPoint p;
    p.net = net;
    p.at = {x * kMil, y * kMil};
    p.side = side;
    return p;
}

}  // namespace

class TestJobNets : public QObject {
    Q_OBJECT

private slots:
    void x2Attributes_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("polarity");
        QTest::addColumn<QString>("nets");  // "net@x,y" per object, mil

        const QString head = "%FSLAX24Y24*%%MOIN*%%ADD10C,0.010*%D10*";
        QTest::newRow("extended file attributes")
            << "%TF.FileFunction,Copper,L1,Top*%%TF.FilePolarity,Positive*%" + head + "M02*"
            << "Copper,L1,Top"
            << "Positive"
            << "";
        QTest::newRow("attributes in comments")
            << "G04 #@! TF.FileFunction,Soldermask,Bot*\nG04 #@! TF.FilePolarity,Negative*\n" +
                   head + "M02*"
            << "Soldermask,Bot"
            << "Negative"
            << "";
        QTest::newRow("a flash and a draw of a net, then none")
            << head + "%TO.N,GND*%X10000Y20000D03*X0Y0D02*X5000Y0D01*%TD*%X30000Y0D03*M02*"
            << ""
            << ""
            << "GND@1000,2000 GND@500,0";
        QTest::newRow("modal draws keep the net; TD.N ends it")
            << head + "%TO.N,VCC*%X0Y0D02*X100Y0D01*X200Y0*%TD.N*%X300Y0D01*M02*"
            << ""
            << ""
            << "VCC@10,0 VCC@20,0";
        QTest::newRow("trailing zeros omitted, mm")
            << "%FSTAX33Y33*%%MOMM*%%ADD10C,0.2*%D10*%TO.N,A*%X0254Y0508D03*M02*"
            << ""
            << ""
            << "A@1000,2000";
        QTest::newRow("a region is named at its first vertex")
            << head + "%TO.N,P1*%G36*X10000Y10000D02*X20000Y10000D01*X20000Y20000D01*G37*M02*"
            << ""
            << ""
            << "P1@1000,1000";
        QTest::newRow("a net name with a comma") << head + "%TO.N,A,B*%X0Y0D03*M02*"
                                                 << ""
                                                 << ""
                                                 << "A,B@0,0";
    }
    void x2Attributes() {
        QFETCH(QString, text);
        QFETCH(QString, function);
        QFETCH(QString, polarity);
        QFETCH(QString, nets);
        const wcref::X2Attributes read = wcref::GerberX2::parse(text.toStdString(), "t.gbr");
        QCOMPARE(QString::fromStdString(read.file_function), function);
        QCOMPARE(QString::fromStdString(read.file_polarity), polarity);
        QStringList found;
        for (const wcref::X2Object& o : read.objects) {
            found << QString("%1@%2,%3")
                         .arg(QString::fromStdString(o.net))
                         .arg(std::round(o.at.x / kMil))
                         .arg(std::round(o.at.y / kMil));
        }
        QCOMPARE(found.join(' '), nets);
    }

    void malformedAttributeIsLoggedAndSkipped() {
        wctest::LogCapture log;
        const wcref::X2Attributes read = wcref::GerberX2::parse(
            "%FSLAX24Y24*%\n%TF.FilePolarity,Sideways*%\n%TO.N,GND*%X0Y0D03*M02*", "bad.gbr");
        QVERIFY(read.file_polarity.empty());
        QCOMPARE(read.objects.size(), size_t(1));  // the rest of the file is still read
        QVERIFY(!log.errors().empty());
        QVERIFY(log.errors().front().find("bad.gbr:2") != std::string::npos);
    }

    void featuresTakeTheNetAtTheirPlace() {
        const wcref::X2Attributes read = wcref::GerberX2::parse(
            "%FSLAX24Y24*%%MOIN*%%ADD10C,0.010*%D10*%TO.N,GND*%X10000Y0D03*"
            "%TO.N,SIG*%X0Y0D02*X5000Y0D01*%TD*%X20000Y0D03*M02*",
            "t.gbr");
        std::vector<featureInfo> features(3);
        features[0].type = feature_pad;
        features[0].start = {1000 * kMil, 0.0004};  // libgerbv's rounding differs slightly
        features[1].type = feature_line;
        features[1].start = {0, 0};
        features[1].end = {500 * kMil, 0};
        features[2].type = feature_pad;
        features[2].start = {2000 * kMil, 0};
        QCOMPARE(wcref::GerberX2::nameFeatures(read, features), size_t(2));
        QCOMPARE(features[0].attributes[".net"], std::string("GND"));
        QCOMPARE(features[1].attributes[".net"], std::string("SIG"));
        QCOMPARE(features[2].attributes.count(".net"), size_t(0));
    }

    void netlist_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("points");  // "net/side@x,y(hole)" per point, mil
        QTest::addColumn<QString>("message");

        const QString p1 =
            "317GND                R1    -1      D0320PA00X+010000Y+020000X0600Y0600R000S0\n";
        const QString p2 =
            "327VCC                U1    -14          A01X-005000Y+001000X0300Y0500R090S1\n";
        QTest::newRow("through hole and surface pad, tenths of a mil")
            << "C  test\nP  JOB   x\nP  UNITS CUST 0\n" + p1 + p2 + "999\n"
            << "GND/both@1000,2000(32) VCC/top@-500,100(0)"
            << "";
        QTest::newRow("metric, bottom access")
            << "P  UNITS CUST 1\n"
               "327N$7                C3    -2           A02X+025400Y+050800X0300Y0500R000S2\n"
            << "N$7/bottom@1000,2000(0)"
            << "";
        QTest::newRow("data after the end is not read")
            << p1 + "999\n" + p2 << "GND/both@1000,2000(32)"
            << "";
        QTest::newRow("a damaged record")
            << p1 + "317VCC                R2    -1      D0320PA00X+01000\n"
            << ""
            << "netlist line 2 is not a test record";
        QTest::newRow("no test point") << "C  nothing\n999\n"
                                       << ""
                                       << "the netlist holds no test point";
        QTest::newRow("unknown units") << "P  UNITS FURLONGS\n" + p1 << ""
                                       << "unknown units";
    }
    void netlist() {
        QFETCH(QString, text);
        QFETCH(QString, message);
        QFETCH(QString, points);
        std::vector<TestPoint> read_points;
        std::string why;
        const bool ok = wcref::Ipc356::parse(text.toStdString(), read_points, why);
        QCOMPARE(ok, message.isEmpty());
        QVERIFY2(QString::fromStdString(why).contains(message), why.c_str());
        QStringList read;
        for (const TestPoint& p : read_points) {
            const char* side = p.side == TestPoint::both  ? "both"
                               : p.side == TestPoint::top ? "top"
                                                          : "bottom";
            read << QString("%1/%2@%3,%4(%5)")
                        .arg(QString::fromStdString(p.net), side)
                        .arg(std::round(p.at.x / kMil))
                        .arg(std::round(p.at.y / kMil))
                        .arg(std::round(p.hole / kMil));
        }
        QCOMPARE(read.join(' '), points);
    }

    // Which features share a net, on a two-layer board: pads 1 and 2 on top, 1 and 2 on
    // bottom, joined or not through holes.
    void connectivity_data() {
        QTest::addColumn<QString>("board");
        QTest::addColumn<bool>("topJoinsBottom");
        QTest::addColumn<bool>("topPadsJoined");

        QTest::newRow("a plated hole joins the layers") << "plated" << true << false;
        QTest::newRow("a non-plated hole does not") << "non_plated" << false << false;
        QTest::newRow("a hole beside the pads joins nothing") << "beside" << false << false;
        QTest::newRow("a trace joins the top pads") << "trace" << false << true;
        QTest::newRow("a trace stopping short does not") << "short trace" << false << false;
        QTest::newRow("a clear pad drawn after the copper cuts the hole off")
            << "cleared" << false << false;
        QTest::newRow("two holes join both pads through the bottom") << "two holes" << true << true;
    }
    void connectivity() {
        QFETCH(QString, board);
        QFETCH(bool, topJoinsBottom);
        QFETCH(bool, topPadsJoined);
        Board b(2);
        b.pad("l1", 60, 0, 0);
        b.pad("l1", 60, 200, 0);
        b.pad("l2", 60, 0, 0);
        b.pad("l2", 60, 200, 0);
        if (board == "plated" || board == "cleared") {
            b.hole(30, 0, 0);
        } else if (board == "non_plated") {
            b.hole(30, 0, 0, "non_plated");
        } else if (board == "beside") {
            b.hole(30, 100, 0);
        } else if (board == "trace") {
            b.line("l1", 10, 0, 0, 200, 0);
        } else if (board == "short trace") {
            b.line("l1", 10, 0, 0, 160, 0);  // ends 5 mil before the second pad
        } else if (board == "two holes") {
            b.hole(30, 0, 0);
            b.hole(30, 200, 0);
            b.line("l2", 10, 0, 0, 200, 0);
        }
        if (board == "cleared") {
            featureInfo& clear = b.pad("l2", 70, 0, 0);
            clear.positive = false;
        }
        const StepNets nets = b.nets();
        QCOMPARE(b.net(nets, "l1", 1) == b.net(nets, "l2", 1), topJoinsBottom);
        QCOMPARE(b.net(nets, "l1", 1) == b.net(nets, "l1", 2), topPadsJoined);
        QVERIFY(!b.net(nets, "l1", 1).empty());
        QVERIFY(!nets.named_by_files);
    }

    void planeJoinsHolesOutsideItsClearances() {
        Board b(3);
        b.job.matrix[1].type = "power_ground";
        b.job.matrix[1].polarity = "negative";
        b.pad("l1", 60, 0, 0);
        b.pad("l1", 60, 200, 0);
        b.pad("l1", 60, 400, 0);
        b.hole(30, 0, 0);
        b.hole(30, 200, 0);
        b.hole(30, 400, 0);
        b.pad("l2", 50, 200, 0);  // a clearance around the second hole
        featureInfo thermal;      // a thermal relief: a ring drawn about the third hole
        thermal.type = feature_pad;
        thermal.start = {400 * kMil, 0};
        for (int k = 0; k < 16; ++k) {
            const double a = k * 3.14159265358979 / 8;
            thermal.contour.push_back({(400 + 30 * std::cos(a)) * kMil, 30 * std::sin(a) * kMil});
        }
        for (int k = 0; k < 16; ++k) {
            const double a = -k * 3.14159265358979 / 8;
            thermal.holes.resize(1);
            thermal.holes[0].push_back({(400 + 20 * std::cos(a)) * kMil, 20 * std::sin(a) * kMil});
        }
        thermal.symbol = "macro_thermal_d10";
        b.step.layers["l2"].add(thermal);
        const StepNets nets = b.nets();
        QCOMPARE(b.net(nets, "l1", 1), b.net(nets, "l1", 3));
        QVERIFY(b.net(nets, "l1", 1) != b.net(nets, "l1", 2));
        QCOMPARE(b.net(nets, "l2", 1), std::string());  // a clearance is no copper
    }

    void x2NamesNameTheNetsAndReportShorts() {
        Board b(2);
        b.pad("l1", 60, 0, 0).attributes[".net"] = "GND";
        b.pad("l1", 60, 200, 0).attributes[".net"] = "SIG";
        b.pad("l2", 60, 200, 0).attributes[".net"] = "VCC";
        b.pad("l2", 60, 600, 0).attributes[".net"] = "GND";  // joined by name, not by copper
        b.hole(30, 200, 0);
        StepNets nets = b.nets();
        QVERIFY(nets.named_by_files);
        QCOMPARE(b.net(nets, "l1", 1), std::string("GND"));
        QCOMPARE(b.net(nets, "l2", 2), std::string("GND"));
        QCOMPARE(nets.differences.size(), size_t(1));
        const wcref::NetDifference& d = nets.differences.front();
        QCOMPARE(d.kind, wcref::NetDifference::short_circuit);
        QCOMPARE(QString::fromStdString(d.nets[0] + "+" + d.nets[1]), QString("SIG+VCC"));
        QCOMPARE(d.features.size(), size_t(2));
    }

    void netlistNamesTheCopperAndFindsOpensAndShorts() {
        Board b(2);
        b.pad("l1", 60, 0, 0);
        b.pad("l1", 60, 200, 0);
        b.line("l1", 10, 0, 0, 200, 0);  // joins A's pad to B's: a short
        b.pad("l1", 60, 400, 0);
        b.pad("l1", 60, 600, 0);  // C's second pad, left unconnected: an open
        const StepNets nets =
            b.nets({testPoint("A", 0, 0), testPoint("B", 200, 0), testPoint("C", 400, 0),
                    testPoint("C", 600, 0), testPoint("D", 900, 0)});
        QVERIFY(nets.named_by_files);
        QCOMPARE(b.net(nets, "l1", 1), std::string("A"));
        QCOMPARE(b.net(nets, "l1", 4), std::string("C"));
        QStringList found;
        for (const wcref::NetDifference& d : nets.differences) {
            found << QString("%1 %2 %3")
                         .arg(d.kind == wcref::NetDifference::open ? "open" : "short")
                         .arg(QString::fromStdString(d.nets.front() + "/" + d.nets.back()))
                         .arg(d.features.size());
        }
        found.sort();
        QCOMPARE(found.join(", "), QString("open C/C 2, short A/B 2"));
    }

    // A folder as a board house receives it: copper with X2 nets, a netlist and a damaged
    // second netlist. Opened and checked through the engine, a gap between two pads of one net
    // is a same-net hit, a gap between nets a spacing hit naming both nets, and the netlist's
    // two unjoined pads of GND an open.
    void folderWithNetsThroughTheEngine() {
        QTemporaryDir dir;
        const auto write = [&dir](const char* name, const QByteArray& text) {
            QFile file(dir.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(text);
        };
        write(
            "board.gtl",
            "%FSLAX26Y26*%\n%MOIN*%\n%TF.FileFunction,Copper,L1,Top*%\n%ADD10C,0.050*%\n"
            "D10*\n%TO.N,GND*%\nX0Y0D03*\nX53000Y0D03*\n%TO.N,SIG*%\nX106000Y0D03*\n%TD*%\nM02*\n");
        write("board.ipc",
              "P  JOB   board\nP  UNITS CUST 0\n"
              "327GND                U1    -1           A01X+000000Y+000000X0500Y0500R000S0\n"
              "327GND                U1    -2           A01X+000530Y+000000X0500Y0500R000S0\n"
              "327SIG                U1    -3           A01X+001060Y+000000X0500Y0500R000S0\n"
              "999\n");
        write("another.ipc", "P  JOB   x\n327GND                U1    -1           A01X+0\n");
        wctest::LogCapture log;
        const std::string job = "nets_folder";
        QVERIFY(open_job(job, dir.path().toStdString()));
        QVERIFY(!log.errors().empty());  // the damaged netlist, refused

        signal_check_params params;
        params.spacing = 5 * kMil;
        std::map<signal_layers_checks_items, signal_check_result> result;
        QVERIFY(signal_layers_checks(job, "pcb", "board.gtl", params, {sl_spacing}, {}, result,
                                     nullptr, 0));
        QStringList found;
        for (const auto& [item, record] : result) {
            for (const auto* list : {&record.red, &record.yellow, &record.green, &record.other}) {
                for (const check_info& hit : *list) {
                    QStringList nets;
                    for (const std::string& n : hit.nets) {
                        nets << QString::fromStdString(n);
                    }
                    found << QString("%1:%2:%3")
                                 .arg(item)
                                 .arg(std::round(hit.value / kMil))
                                 .arg(nets.join('/'));
                }
            }
        }
        QStringList expected{QString("%1:0:GND").arg(sli_netlist_open),
                             QString("%1:3:GND/SIG").arg(sli_pad_to_pad_spacing),
                             QString("%1:3:GND").arg(sli_same_net_pad_to_pad)};
        found.sort();
        expected.sort();
        QCOMPARE(found.join(' '), expected.join(' '));
        close_job(job);
    }
};

QTEST_MAIN(TestJobNets)
#include "tst_JobNets.moc"
