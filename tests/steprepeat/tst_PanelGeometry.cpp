// Panel geometry of the step-and-repeat editor: data tables for each operation, and seeded
// property checks over random panels.

#include <QtTest>
#include <random>

#include "DataColumns.h"
#include "DataRows.h"
#include "StepRepeatGeometry.h"
#include "steprepeat/PanelGeometry.h"

using namespace wc::panel;
using wctest::row;

Q_DECLARE_METATYPE(Rows)

namespace {

// Child "b": 100 x 50 with its datum at the lower left corner; child "c": 30 x 30.
ChildBoxes childSteps() {
    return {{"b", {0, 0, 100, 50}}, {"c", {0, 0, 30, 30}}};
}

step_repeat_op at(int x, int y, bool selected = true, const char* step = "b", int angle = 0,
                  bool mirror = false) {
    step_repeat_op r;
    r.step_name = step;
    r.x = x;
    r.y = y;
    r.angle = angle;
    r.mirror = mirror;
    if (selected) {
        r.selection.insert(0);
    }
    return r;
}

PanelFrame frame(int gap = 0, Margins margins = {}) {
    PanelFrame f;
    f.child_boxes = childSteps();
    f.panel = {0, 0, 1000, 800};
    f.margins = margins;
    f.gap = gap;
    return f;
}

// Lower left corners "x,y" of every row, in table order.
QStringList corners(const Rows& rows) {
    QStringList out;
    for (const step_repeat_op& r : rows) {
        const reply_box b = instanceBox(childSteps().at(r.step_name), r);
        out << QStringLiteral("%1,%2").arg(b.xmin).arg(b.ymin);
    }
    return out;
}

// How far two boxes are apart, negative when they overlap.
double apart(const reply_box& a, const reply_box& b) {
    return std::max(std::max(a.xmin - b.xmax, b.xmin - a.xmax),
                    std::max(a.ymin - b.ymax, b.ymin - a.ymax));
}

// Every pair of instances whose boxes overlap, as a count.
int overlaps(const Rows& rows, const ChildBoxes& boxes) {
    const std::vector<reply_box> all = instanceBoxes(rows, boxes);
    int n = 0;
    for (size_t a = 0; a < all.size(); ++a) {
        for (size_t b = a + 1; b < all.size(); ++b) {
            n += boxesOverlap(all[a], all[b]);
        }
    }
    return n;
}

}  // namespace

class tst_PanelGeometry : public QObject {
    Q_OBJECT

private slots:
    // The editor's boxes must be the engine's boxes, or packing would be measured wrongly.
    void boxMatchesEngine_data() {
        wctest::columns<int, bool>("angle", "mirror");
        for (int angle : {0, 30, 45, 90, 135, 180, 270, 315, 359}) {
            for (bool mirror : {false, true}) {
                QTest::addRow("%d%s", angle, mirror ? " mirrored" : "") << angle << mirror;
            }
        }
    }
    void boxMatchesEngine() {
        QFETCH(int, angle);
        QFETCH(bool, mirror);
        const reply_box child{-20, 10, 100, 50};
        const step_repeat_op row = at(300, -70, false, "b", angle, mirror);
        wcref::RepeatInstance instance;
        instance.position = {300, -70};
        instance.angle = angle;
        instance.mirror = mirror;
        const reply_box ours = instanceBox(child, row);
        const reply_box engine = wcref::instanceBox(child, instance);
        QVERIFY(std::abs(ours.xmin - engine.xmin) < 1e-6 &&
                std::abs(ours.xmax - engine.xmax) < 1e-6);
        QVERIFY(std::abs(ours.ymin - engine.ymin) < 1e-6 &&
                std::abs(ours.ymax - engine.ymax) < 1e-6);
    }

    void expansion() {
        step_repeat_op array = at(0, 0, false);
        array.dx = 200;
        array.dy = 100;
        array.nx = 3;
        array.ny = 2;
        array.selection = {1, 5};
        const step_repeat_op whole = [] {
            step_repeat_op r = at(0, 500, false, "c");
            r.nx = 4;
            return r;
        }();
        const Expansion e = expandInstances({whole, array});
        QCOMPARE(e.rows.size(), size_t(7));  // the unselected row stays whole
        QCOMPARE(e.rows[0].nx, 4);
        QCOMPARE(e.selected, (std::vector<int>{2, 6}));
        QCOMPARE(corners({e.rows[2], e.rows[6]}), (QStringList{"200,0", "400,100"}));
        QCOMPARE(instanceCount(e.rows), instanceCount({whole, array}));
    }

    void align_data() {
        // The reference box as xmin, ymin, xmax, ymax.
        wctest::columns<int, QList<int>, QStringList>("kind", "reference", "expected");
        // Wider and taller than the boxes, so that each side gives its own place.
        const QList<int> ref{500, 300, 650, 380};
        row("left", int(AlignKind::Left), ref, QStringList{"500,0", "500,200"});
        row("right", int(AlignKind::Right), ref, QStringList{"550,0", "550,200"});
        row("top", int(AlignKind::Top), ref, QStringList{"0,330", "250,330"});
        row("bottom", int(AlignKind::Bottom), ref, QStringList{"0,300", "250,300"});
        // -3 + 0 = -3: the midpoint truncates towards zero to -1, not down to -2.
        row("centre x odd negative", int(AlignKind::CenterX), QList<int>{-3, 0, 0, 10},
            QStringList{"-51,0", "-51,200"});
        row("centre y odd", int(AlignKind::CenterY), QList<int>{0, 0, 10, 7},
            QStringList{"0,-22", "250,-22"});
    }
    void align() {
        QFETCH(int, kind);
        QFETCH(QList<int>, reference);
        QFETCH(QStringList, expected);
        const reply_box ref{double(reference[0]), double(reference[1]), double(reference[2]),
                            double(reference[3])};
        const Outcome out = alignToReference({at(0, 0), at(250, 200), at(700, 700, false)}, ref,
                                             AlignKind(kind), childSteps());
        QVERIFY(out.ok());
        QCOMPARE(corners(out.rows).mid(0, 2), expected);
        QCOMPARE(corners(out.rows).at(2), "700,700");  // unselected stays
    }

    void pack_data() {
        wctest::columns<int, Rows, QStringList>("edge", "rows", "expected");
        // Margins left 5, right 7, top 11, bottom 13; gap 10. Two selected in one lane: the
        // nearer reaches the edge, the other stops a gap behind it (taking the farther first
        // would leave it stuck behind the nearer one at 210).
        row("left, nearest first", int(PackEdge::Left), Rows{at(300, 100), at(100, 100)},
            QStringList{"115,100", "5,100"});
        row("right", int(PackEdge::Right), Rows{at(300, 100), at(600, 100)},
            QStringList{"783,100", "893,100"});
        row("top", int(PackEdge::Top), Rows{at(100, 100), at(100, 400)},
            QStringList{"100,679", "100,739"});
        row("bottom", int(PackEdge::Bottom), Rows{at(100, 100), at(100, 400)},
            QStringList{"100,13", "100,73"});
        row("unselected blocks", int(PackEdge::Left), Rows{at(0, 120, false), at(400, 100)},
            QStringList{"0,120", "110,100"});
        row("a gap beside the lane blocks", int(PackEdge::Left),
            Rows{at(0, 155, false), at(400, 100)}, QStringList{"0,155", "110,100"});
        row("beyond the gap does not block", int(PackEdge::Left),
            Rows{at(0, 160, false), at(400, 100)}, QStringList{"0,160", "5,100"});
        row("never moves away", int(PackEdge::Left), Rows{at(2, 100)}, QStringList{"2,100"});
        // Turned by 30 and mirrored the box starts at x = 400 - 86.60...: the travel to the margin
        // is cut to whole units, so the box stops just inside it, its datum at x = 92.
        row("travel cut to whole units", int(PackEdge::Left),
            Rows{at(400, 100, true, "b", 30, true)}, QStringList{"5.39746,100"});
    }
    void pack() {
        QFETCH(int, edge);
        QFETCH(Rows, rows);
        QFETCH(QStringList, expected);
        const Outcome out = do_align(rows, PackEdge(edge), frame(10, {5, 7, 11, 13}));
        QVERIFY(out.ok());
        QCOMPARE(corners(out.rows), expected);
    }

    void packRefusesOverlap_data() {
        wctest::columns<bool, bool>("outlinesMeet", "refused");
        row("boxes only", true, true);
        row("outlines apart", false, false);
    }
    void packRefusesOverlap() {
        QFETCH(bool, outlinesMeet);
        QFETCH(bool, refused);
        const Rows rows{at(100, 100), at(150, 120), at(500, 500)};
        int asked = 0;
        const Outcome out = do_align(rows, PackEdge::Left, frame(),
                                     [&](const step_repeat_op&, const step_repeat_op&) {
                                         ++asked;
                                         return outlinesMeet;
                                     });
        QCOMPARE(asked, 1);  // only the pair whose boxes meet is measured
        QCOMPARE(out.refusal == Refusal::Overlap, refused);
        if (refused) {
            QCOMPARE(corners(out.rows), corners(rows));
        }
    }

    void packSides_data() {
        wctest::columns<bool, QStringList>("centre", "expected");
        row("both ways", false, QStringList{"0,0", "900,0", "900,100"});
        // Centre line x = 500, gap 10: the left one ends at 495, the right ones start at 505.
        row("to centre", true, QStringList{"395,0", "505,0", "505,100"});
    }
    void packSides() {
        QFETCH(bool, centre);
        QFETCH(QStringList, expected);
        const Rows rows{at(200, 0), at(600, 0), at(700, 100)};
        const PanelFrame f = frame(10);
        const Outcome out = centre ? packToCentre(rows, Axis::Horizontal, f)
                                   : packBothWays(rows, Axis::Horizontal, f);
        QVERIFY(out.ok());
        QCOMPARE(corners(out.rows), expected);
    }

    void spaceEvenly_data() {
        wctest::columns<int, Rows, QStringList>("axis", "rows", "expected");
        const int h = int(Axis::Horizontal);
        // Widths 100: span 400 against 300 of boxes, gap 50.
        row("horizontal", h, Rows{at(0, 0), at(120, 0), at(300, 0)},
            QStringList{"0,0", "150,0", "300,0"});
        // Span 401: the gap 50.5 truncates to 50 and the last box comes back by one.
        row("gap truncated", h, Rows{at(0, 0), at(100, 0), at(301, 0)},
            QStringList{"0,0", "150,0", "300,0"});
        row("overlapping, span smaller stays", h, Rows{at(0, 0), at(50, 0), at(150, 0)},
            QStringList{"0,0", "50,0", "150,0"});
        // Heights 50 one above the other: span 250 against 150.
        row("vertical", int(Axis::Vertical), Rows{at(0, 0), at(0, 60), at(0, 200)},
            QStringList{"0,0", "0,100", "0,200"});
        // Two rows spaced on their own; a box in the way of a group keeps that group still.
        row("grouped by row", h,
            Rows{at(0, 0), at(120, 0), at(300, 0), at(0, 300), at(100, 300), at(400, 300),
                 at(210, 300, false, "c")},
            QStringList{"0,0", "150,0", "300,0", "0,300", "100,300", "400,300", "210,300"});
    }
    void spaceEvenly() {
        QFETCH(int, axis);
        QFETCH(Rows, rows);
        QFETCH(QStringList, expected);
        const Outcome out = arrange_selected_steps(rows, Axis(axis), frame());
        QVERIFY(out.ok());
        QCOMPARE(corners(out.rows), expected);
    }

    // The turned angle stays below 360. The typed angle's limits (-1 and 361 refused, 0 and 360
    // taken) are proven with the editor's message and its write in the editor's refusals test.
    void rotateWraps_data() {
        wctest::columns<int, int>("angle", "result");
        row("360", 360, 90);
        row("270", 270, 0);
    }
    void rotateWraps() {
        QFETCH(int, angle);
        QFETCH(int, result);
        const Outcome out =
            rotateInstances({at(0, 0, true, "b", 90)}, angle, Anchor::StepDatum, childSteps());
        QVERIFY(out.ok());
        QCOMPARE(out.rows.front().angle, result);
    }

    // A marker on the child must land where the plain transformation of the panel puts it.
    void turnAndMirrorMoveTheChild_data() {
        // Operation 0 rotates by 90, 1 mirrors horizontally, 2 vertically.
        wctest::columns<int, int, int, bool>("operation", "anchor", "angle", "mirror");
        for (int op : {0, 1, 2}) {
            for (int anchor : {0, 1, 2}) {
                for (int angle : {0, 90, 30}) {
                    for (bool mirror : {false, true}) {
                        QTest::addRow("op %d anchor %d angle %d%s", op, anchor, angle,
                                      mirror ? " m" : "")
                            << op << anchor << angle << mirror;
                    }
                }
            }
        }
    }
    void turnAndMirrorMoveTheChild() {
        QFETCH(int, operation);
        QFETCH(int, anchor);
        QFETCH(int, angle);
        QFETCH(bool, mirror);
        const Rows rows{at(300, 200, true, "b", angle, mirror), at(500, 100, true, "c")};
        const point marker{90, 10};  // near the lower right corner of "b"
        const auto placed = [&](const step_repeat_op& r) {
            const point p = wcref::placePoint(marker, r.angle, r.mirror);
            return point{p.x + r.x, p.y + r.y};
        };
        // The anchor point as the operation defines it.
        const std::vector<reply_box> boxes = instanceBoxes(rows, childSteps());
        point centre{(boxes[0].xmin + boxes[0].xmax) / 2, (boxes[0].ymin + boxes[0].ymax) / 2};
        if (anchor == int(Anchor::StepDatum)) {
            centre = {300, 200};
        } else if (anchor == int(Anchor::CenterOfSet)) {
            const reply_box& a = boxes[0];
            const reply_box& b = boxes[1];
            centre = {(std::min(a.xmin, b.xmin) + std::max(a.xmax, b.xmax)) / 2,
                      (std::min(a.ymin, b.ymin) + std::max(a.ymax, b.ymax)) / 2};
        }
        const point before = placed(rows[0]);
        point expected;
        Outcome out;
        if (operation == 0) {
            out = rotateInstances(rows, 90, Anchor(anchor), childSteps());
            expected = {centre.x + (before.y - centre.y), centre.y - (before.x - centre.x)};
        } else if (operation == 1) {
            out = mirrorInstances(rows, MirrorKind::Horizontal, Anchor(anchor), childSteps());
            expected = {2 * centre.x - before.x, before.y};
        } else {
            out = mirrorInstances(rows, MirrorKind::Vertical, Anchor(anchor), childSteps());
            expected = {before.x, 2 * centre.y - before.y};
        }
        QVERIFY(out.ok());
        const point after = placed(out.rows[0]);
        // Positions are whole units, so a half-unit centre may round.
        QVERIFY2(std::abs(after.x - expected.x) <= 1.0 && std::abs(after.y - expected.y) <= 1.0,
                 qPrintable(QString::asprintf("(%g,%g) expected (%g,%g)", after.x, after.y,
                                              expected.x, expected.y)));
    }

    void alignToGrid_data() {
        // The result: "<nx>x<ny> <dx>,<dy> sel <n>" of the first row, or all the corners.
        wctest::columns<Rows, int, QString>("rows", "refusal", "result");
        row("regular merges into an array",
            Rows{at(0, 0), at(203, 2), at(1, 97), at(198, 101), at(900, 700, false)},
            int(Refusal::None), QStringLiteral("2x2 198,97 sel 4"));
        row("irregular stays singles", Rows{at(0, 0), at(203, 2), at(1, 97)}, int(Refusal::None),
            QStringLiteral("0,0;203,0;0,97"));
        row("different angles", Rows{at(0, 0), at(200, 0, true, "b", 90)}, int(Refusal::NotAligned),
            QString());
        row("different steps", Rows{at(0, 0), at(200, 0, true, "c")}, int(Refusal::NotAligned),
            QString());
        row("different mirror", Rows{at(0, 0), at(200, 0, true, "b", 0, true)},
            int(Refusal::NotAligned), QString());
    }
    void alignToGrid() {
        QFETCH(Rows, rows);
        QFETCH(int, refusal);
        QFETCH(QString, result);
        const Outcome out = wc::panel::alignToGrid(rows, frame());
        QCOMPARE(int(out.refusal), refusal);
        QCOMPARE(instanceCount(out.rows), instanceCount(rows));
        if (result.isEmpty()) {
            return;
        }
        if (result.contains('x')) {
            const step_repeat_op& a = out.rows.front();
            QCOMPARE(QString::asprintf("%dx%d %d,%d sel %d", a.nx, a.ny, a.dx, a.dy,
                                       int(a.selection.size())),
                     result);
            QCOMPARE(out.rows.size(), size_t(2));
        } else {
            QCOMPARE(corners(out.rows).join(';'), result);
        }
    }

    // The one selected row takes the entry's repeat and keeps its step. No selected row and
    // several are refused; the editor's refusals test proves both with their messages.
    void modifyEntry() {
        step_repeat_op entry = at(10, 20, false);
        entry.nx = 3;
        entry.dx = 150;
        entry.angle = 450;
        const Outcome out = wc::panel::modifyEntry({at(0, 0, false), at(200, 0, true, "c")}, entry);
        QVERIFY(out.ok());
        QCOMPARE(out.rows[1].nx, 3);
        QCOMPARE(out.rows[1].angle, 90);
        QCOMPARE(out.rows[1].step_name, std::string("c"));
    }

    void reduceNesting_data() {
        wctest::columns<bool, QString>("highestOnly", "expected");
        // panel -> "mid" (turned 90 at 1000,0) -> "b" at (100,0) -> "c" at (0,0) when deep.
        row("highest only", true, QStringLiteral("b 1000,-100 90"));
        row("all levels", false, QStringLiteral("c 1000,-100 90"));
    }
    void reduceNesting() {
        QFETCH(bool, highestOnly);
        QFETCH(QString, expected);
        std::map<std::string, Rows> tables;
        tables["mid"] = {at(100, 0, false, "b")};
        tables["b"] = {at(0, 0, false, "c")};
        const Outcome out =
            wc::panel::reduceNesting({at(1000, 0, true, "mid", 90)}, tables, highestOnly);
        QVERIFY(out.ok());
        QCOMPARE(out.rows.size(), size_t(1));
        const step_repeat_op& r = out.rows.front();
        QCOMPARE(QString::asprintf("%s %d,%d %d", r.step_name.c_str(), r.x, r.y, r.angle),
                 expected);
    }

    void reduceNestingRefusesACycle() {
        std::map<std::string, Rows> tables;
        tables["b"] = {at(0, 0, false, "b")};
        QCOMPARE(wc::panel::reduceNesting({at(0, 0)}, tables, false).refusal, Refusal::Nesting);
    }

    // Random panels: a jittered grid of boxes that do not overlap, a random selection.
    void randomPanels() {
        std::mt19937 random(20261123);
        for (int round = 0; round < 40; ++round) {
            Rows rows;
            std::uniform_int_distribution<int> jitter(0, 30);
            std::uniform_int_distribution<int> coin(0, 2);
            for (int gx = 0; gx < 7; ++gx) {
                for (int gy = 0; gy < 7; ++gy) {
                    if (coin(random) == 0) {
                        continue;
                    }
                    const bool turned = coin(random) == 0;  // 50 x 100 when turned
                    rows.push_back(at(20 + gx * 135 + jitter(random),
                                      20 + gy * 140 + jitter(random) + (turned ? 100 : 0),
                                      coin(random) != 0, "b", turned ? 90 : 0));
                }
            }
            step_repeat_op array = at(960, 20, false, "c");
            array.dy = 40;
            array.ny = 10;
            rows.push_back(array);
            PanelFrame f = frame(std::uniform_int_distribution<int>(0, 12)(random), {3, 4, 5, 6});
            f.panel = {0, 0, 1000, 1000};
            const int count = instanceCount(rows);
            QCOMPARE(overlaps(rows, f.child_boxes), 0);
            const reply_box ref = instanceBox(childSteps().at("b"), rows.front());
            const std::vector<std::pair<const char*, Outcome>> moves{
                {"pack left", do_align(rows, PackEdge::Left, f)},
                {"pack right", do_align(rows, PackEdge::Right, f)},
                {"pack top", do_align(rows, PackEdge::Top, f)},
                {"pack bottom", do_align(rows, PackEdge::Bottom, f)},
                {"both ways", packBothWays(rows, Axis::Vertical, f)},
                {"centre", packToCentre(rows, Axis::Horizontal, f)},
                {"space h", arrange_selected_steps(rows, Axis::Horizontal, f)},
                {"space v", arrange_selected_steps(rows, Axis::Vertical, f)},
            };
            for (const auto& [name, out] : moves) {
                QVERIFY2(out.ok(), name);
                QVERIFY2(instanceCount(out.rows) == count, name);
                QVERIFY2(overlaps(out.rows, f.child_boxes) == 0, name);
                checkPackedGap(rows, out.rows, f, name);
            }
            const std::vector<std::pair<const char*, Outcome>> others{
                {"align", alignToReference(rows, ref, AlignKind::CenterY, f.child_boxes)},
                {"grid", wc::panel::alignToGrid(rows, f)},
                {"rotate", rotateInstances(rows, 90, Anchor::CenterOfSet, f.child_boxes)},
                {"mirror",
                 mirrorInstances(rows, MirrorKind::Flip, Anchor::StepDatum, f.child_boxes)},
                {"move", moveInstances(rows, 7, -3)},
                {"replace", replaceInstances(rows, "c", f.child_boxes)},
            };
            for (const auto& [name, out] : others) {
                QVERIFY2(instanceCount(out.rows) == count, name);
            }
        }
    }

private:
    // Every instance a pack moved lies inside the panel less its margins, and at least the gap
    // from every other instance.
    void checkPackedGap(const Rows& before, const Rows& after, const PanelFrame& f,
                        const char* name) {
        const Expansion e = expandInstances(before);
        const std::vector<reply_box> old_boxes = instanceBoxes(e.rows, f.child_boxes);
        const std::vector<reply_box> new_boxes = instanceBoxes(after, f.child_boxes);
        QVERIFY2(old_boxes.size() == new_boxes.size(), name);
        const bool spacing = QByteArray(name).startsWith("space");
        for (size_t k = 0; k < new_boxes.size(); ++k) {
            const reply_box& b = new_boxes[k];
            if (spacing || (b.xmin == old_boxes[k].xmin && b.ymin == old_boxes[k].ymin)) {
                continue;  // not moved, or spacing, which chooses its own gap
            }
            QVERIFY2(b.xmin >= f.panel.xmin + f.margins.left - 1e-9 &&
                         b.xmax <= f.panel.xmax - f.margins.right + 1e-9 &&
                         b.ymin >= f.panel.ymin + f.margins.bottom - 1e-9 &&
                         b.ymax <= f.panel.ymax - f.margins.top + 1e-9,
                     name);
            for (size_t o = 0; o < new_boxes.size(); ++o) {
                QVERIFY2(
                    o == k || apart(new_boxes[o], b) >=
                                  std::min<double>(f.gap, apart(old_boxes[o], old_boxes[k])) - 1e-9,
                    name);
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_PanelGeometry)
#include "tst_PanelGeometry.moc"
