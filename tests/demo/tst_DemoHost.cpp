// The demo host as a host: what its graphic view does with each message the dialogs send, that
// the panel drawing puts each instance where the engine does, and that the tour pictures every
// dialog.

#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <functional>

#include "DataColumns.h"
#include "DataRows.h"
#include "DemoWindow.h"
#include "DialogCatalogue.h"
#include "DrillFormatPanel.h"
#include "FeatureFilterSettings.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "QTpluginsManger4CAM.h"
#include "ReferenceEngine.h"
#include "TriageTour.h"
#include "analysis/ResultAdapters.h"
#include "analysis/Widget_SignalLayerChecks.h"
#include "analysis_drawing_data.h"
#include "frame/PluginMessages.h"

using wctest::row;

namespace {

using Korvo::API::analysis_drawing_data;
using Korvo::API::point;
using Send = std::function<void(DemoWindow&)>;

void send(DemoWindow& window, int code, const QString& receiver, void* payload,
          const QVariantMap& values = {}) {
    PluginMetaData message;
    message.values = values;
    message.sender = QStringLiteral("test");
    message.receiver = receiver;
    message.code = code;
    message.payload = payload;
    QTpluginsManger4CAM::instance()->recMegToPlugin(&window, message);
}

// The viewer's drawing data for `count` two-point hits on `layer`.
Send hits(int code, int count, const std::string& layer, bool replace) {
    return [=](DemoWindow& window) {
        static const point line[] = {{0, 0}, {254000, 254000}};
        analysis_drawing_data data;
        data.replace_layers = replace;
        data.layer_names = {layer};
        for (int k = 0; k < count; ++k) {
            data.shapes.push_back({Korvo::API::check_points::line, line, 2, 254000.0, 0});
        }
        data.bounds = {0, 0, 254000, 254000};
        send(window, code, wc::module::GraphicView, &data);
    };
}

Send filter(int code, const QString& receiver, int mask) {
    return [=](DemoWindow& window) {
        FeatureFilterSettings settings;
        settings.feature_type = mask;
        send(window, code, receiver, &settings);
    };
}

Send both(Send first, Send second) {
    return [=](DemoWindow& window) {
        first(window);
        second(window);
    };
}

// Features of `type` on the layers the view shows.
int shownFeatures(const GraphicView& view, int type) {
    int count = 0;
    for (const std::string& layer : view.displayedLayers()) {
        std::vector<Korvo::API::featureInfo> features;
        Korvo::API::get_all_feature_info(view.job(), view.step(), layer, features, type);
        count += int(features.size());
    }
    return count;
}

bool hasSeveralColours(const QImage& image) {
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3) {
            if (image.pixel(x, y) != first)
                return true;
        }
    }
    return false;
}

}  // namespace

Q_DECLARE_METATYPE(Send)

class tst_DemoHost : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetEngine(); }

    // What the view shows after the messages of a row: overlays, marked features (-1: as many
    // as the shown layers hold of the filter's type) and whether "bottom" is displayed.
    void messageReactions_data() {
        using namespace wc::code;
        const int pads = Korvo::API::FT_Pad | Korvo::API::FT_Positive | Korvo::API::FT_Negative;
        wctest::columns<Send, int, int, int, bool, int>("messages", "overlays", "highlighted",
                                                        "hidden", "bottomShown", "shownLayers");
        row("one hit replaces the layers", hits(ShowOneHit, 1, "bottom", true), 1, 0, 0, true, 1);
        row("all hits keep the layers", hits(ShowAllHits, 3, "bottom", false), 3, 0, 0, true, 4);
        row("teardrop hit", hits(TeardropOneHit, 1, "top", true), 1, 0, 0, false, 1);
        row("viewer closed clears",
            both(hits(ShowOneHit, 1, "bottom", true),
                 [](DemoWindow& w) { send(w, ViewerClosed, wc::module::GraphicView, nullptr); }),
            0, 0, 0, true, 1);
        row("filter highlight", filter(FilterHighlight, wc::module::JobList, pads), 0, -1, 0, false,
            3);
        row("filter turn off", filter(FilterTurnOff, wc::module::JobList, pads), 0, 0, -1, false,
            3);
        row("filter to another module", filter(FilterHighlight, wc::module::GraphicView, pads), 0,
            0, 0, false, 3);
        row("filter closed clears",
            both(filter(FilterHighlight, wc::module::JobList, pads),
                 [](DemoWindow& w) {
                     send(w, FilterHistogramOrClose, wc::module::JobList, nullptr,
                          {{"type", "close"}});
                 }),
            0, 0, 0, false, 3);
    }
    void messageReactions() {
        QFETCH(Send, messages);
        DemoWindow window;
        QVERIFY(window.openSampleJob());
        GraphicView* view = window.view();
        messages(window);
        QFETCH(int, overlays);
        QFETCH(int, highlighted);
        QFETCH(int, hidden);
        QFETCH(bool, bottomShown);
        QFETCH(int, shownLayers);
        const int pads = shownFeatures(*view, Korvo::API::FT_Pad);
        QVERIFY(pads > 0);
        QCOMPARE(view->overlayCount(), overlays);
        QCOMPARE(view->markedCount(GraphicView::Mark::Highlighted),
                 highlighted < 0 ? pads : highlighted);
        QCOMPARE(view->markedCount(GraphicView::Mark::Hidden), hidden < 0 ? pads : hidden);
        const std::vector<std::string>& shown = view->displayedLayers();
        QCOMPARE(std::count(shown.begin(), shown.end(), "bottom") == 1, bottomShown);
        QCOMPARE(int(shown.size()), shownLayers);
    }

    // The popup's symbol pick buttons: after the request, a click near a pad of the shown
    // layers puts its symbol into the field the button belongs to, replacing or adding.
    void symbolPicks_data() {
        using namespace wc::code;
        wctest::columns<int, QString, bool>("code", "field", "replace");
        row("include, replace", PickIncludeSymbol, "lineEdit_IncludeSymbols", true);
        row("include, add", PickAddIncludeSymbol, "lineEdit_IncludeSymbols", false);
        row("exclude, replace", PickExcludeSymbol, "lineEdit_ExcludeSymbols", true);
        row("exclude, add", PickAddExcludeSymbol, "lineEdit_ExcludeSymbols", false);
    }
    void symbolPicks() {
        QFETCH(int, code);
        QFETCH(QString, field);
        QFETCH(bool, replace);
        DemoWindow window;
        QVERIFY(window.openSampleJob());
        GraphicView* view = window.view();
        QWidget* popup = nullptr;
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            if (entry.menu == QLatin1String("Feature filter...")) {
                popup = window.openDialog(entry);
            }
        }
        QVERIFY(popup != nullptr);
        auto* edit = popup->findChild<QLineEdit*>(field);
        QVERIFY(edit != nullptr);
        edit->setText(QStringLiteral("s5"));
        std::vector<Korvo::API::featureInfo> pads;
        Korvo::API::get_all_feature_info(view->job(), view->step(), view->displayedLayers().front(),
                                         pads, Korvo::API::FT_Pad);
        QVERIFY(!pads.empty());
        const Korvo::API::featureInfo& pad = pads.front();

        emit view->pointPicked(pad.start, false);  // no request yet: nothing happens
        QCOMPARE(edit->text(), "s5");
        send(window, code, wc::module::GraphicView, nullptr);
        emit view->pointPicked({pad.start.x + 2540, pad.start.y}, false);
        QString expected = QString::fromStdString(pad.symbol);
        Korvo::UIAPI::setSymbolDataByMilUnit(popup->parentWidget(), expected);
        QCOMPARE(edit->text(), replace ? expected : QStringLiteral("s5;") + expected);
    }

    // Every pad of the placed board lands where the engine's own flattening puts it, for a
    // turned and a mirrored row alike.
    void panelDrawingFollowsTheEngine_data() {
        QTest::addColumn<int>("angle");
        QTest::addColumn<bool>("mirror");
        row("as placed", -1, false);
        row("90 mirrored", 90, true);
        row("270", 270, false);
        row("45 mirrored", 45, true);
    }
    void panelDrawingFollowsTheEngine() {
        QFETCH(int, angle);
        QFETCH(bool, mirror);
        const std::string job = "sample_job";
        QVERIFY(wcref::openSampleJob(job));
        std::vector<Korvo::API::step_repeat_op> rows;
        QVERIFY(Korvo::API::get_step_repeat(job, "panel", rows));
        if (angle >= 0) {
            rows.back().angle = angle;
            rows.back().mirror = mirror;
            QVERIFY(Korvo::API::set_step_repeat(job, "panel", rows));
        }
        QVERIFY(Korvo::API::flatten_step(job, "panel", "top", "doc"));
        std::vector<Korvo::API::featureInfo> flat;
        Korvo::API::get_all_feature_info(job, "panel", "doc", flat, Korvo::API::FT_Pad);
        std::vector<Korvo::API::featureInfo> child;
        Korvo::API::get_all_feature_info(job, "pcb", "top", child, Korvo::API::FT_Pad);

        GraphicView view;
        view.showStep(job, "panel", {"top"});
        QCOMPARE(view.instanceCount(), int(view.instancePlacements().size()));
        QVERIFY(view.instanceCount() > 0);
        const auto near = [&flat](const QPointF& p) {
            return std::any_of(flat.begin(), flat.end(), [&p](const Korvo::API::featureInfo& f) {
                return std::abs(f.start.x - p.x()) < 1.0 && std::abs(f.start.y - p.y()) < 1.0;
            });
        };
        for (const QTransform& placement : view.instancePlacements()) {
            for (const Korvo::API::featureInfo& pad : child) {
                const QPointF drawn = placement.map(QPointF(pad.start.x, pad.start.y));
                QVERIFY2(near(drawn), qPrintable(QStringLiteral("pad %1 drawn at %2, %3")
                                                     .arg(pad.id)
                                                     .arg(drawn.x())
                                                     .arg(drawn.y())));
            }
        }
    }

    // An opened board says how each drill file was read; read again in a format the user
    // sets, the holes move by that format and the engine reports it as the user's.
    void drillFormatsShownAndOverridden() {
        const QString board = QStringLiteral("/usr/share/doc/gerbv/examples/protel-pnp");
        if (!QDir(board).exists()) {
            QSKIP("the gerbv examples are not installed");
        }
        DemoWindow window;
        QVERIFY(window.openFabricationFiles(board));
        const QString log = window.findChild<QPlainTextEdit*>()->toPlainText();
        QVERIFY2(log.contains("Drill layer se_sg_if_v2.txt read as INCH,LZ 2:3, plated (header"),
                 qPrintable(log));
        std::vector<Korvo::API::featureInfo> before;
        QVERIFY(Korvo::API::get_all_feature_info("protel-pnp", "pcb", "se_sg_if_v2.txt", before,
                                                 Korvo::API::FT_All));

        auto* panel = qobject_cast<DrillFormatPanel*>(window.openDrillFormats());
        QVERIFY(panel != nullptr);
        // The same digits read with trailing zeros left out (TZ) instead of leading ones.
        auto* zeros = panel->findChild<QComboBox*>(QStringLiteral("Zeros"));
        zeros->setCurrentIndex(zeros->findData(QStringLiteral("leading")));
        QVERIFY(panel->readAgain());
        std::map<std::string, std::string> attributes;
        QVERIFY(Korvo::API::get_step_attributes("protel-pnp", "pcb", attributes));
        QCOMPARE(QString::fromStdString(attributes["drill_format_source.se_sg_if_v2.txt"]),
                 QString("set by the user"));
        std::vector<Korvo::API::featureInfo> after;
        QVERIFY(Korvo::API::get_all_feature_info("protel-pnp", "pcb", "se_sg_if_v2.txt", after,
                                                 Korvo::API::FT_All));
        QCOMPARE(after.size(), before.size());
        // X0152 was 1.52 inch; with leading zeros left out it reads 0.152 inch.
        int moved = 0;
        for (size_t k = 0; k < after.size(); ++k) {
            moved += std::abs(after[k].start.x - before[k].start.x) > 1000;
        }
        QCOMPARE(after.size(), size_t(427));
        QVERIFY2(moved > int(after.size()) / 2, qPrintable(QString::number(moved)));
        panel->close();
    }

    // On a real board: three hits waived, one feature moved by 5 mil, the check run again. The
    // waivers hold, the moved feature's hit is new and its old place fixed, every other hit
    // (the waived ones too) is unchanged.
    void triageOnARealBoard() {
        const QString board = QStringLiteral("/usr/share/doc/gerbv/examples/protel-pnp");
        if (!QDir(board).exists()) {
            QSKIP("the gerbv examples are not installed");
        }
        DemoWindow window;
        QVERIFY(window.openFabricationFiles(board));
        QWidget* dialog = nullptr;
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            if (entry.menu == QLatin1String("Signal Layer Checks...")) {
                dialog = window.openDialog(entry);
                entry.apply(dialog);
            }
        }
        QVERIFY(dialog != nullptr);
        QVERIFY(QMetaObject::invokeMethod(dialog, "on_ViewResult_clicked"));
        const auto* check = qobject_cast<Widget_SignalLayerChecks*>(dialog);
        const auto first = std::make_shared<const wc::SignalLayerResult>(check->result());
        const std::size_t total = wc::modelOf(first, {"SignalLayerRanges", {}, {}}).total();
        QVERIFY2(total > 100, qPrintable(QString::number(total)));
        QString status;
        demo::tourTriage(window, dialog, [&](QWidget* shown, const QString& name) {
            if (name == QLatin1String("Signal_Layer_Checks_triage")) {
                status = shown->findChild<QLabel*>(QStringLiteral("m_pTriageStatus"))->text();
            }
        });
        QCOMPARE(status,
                 QString("3 waived, 0 waivers stale; 1 new, %1 unchanged, 1 fixed").arg(total - 1));
    }

    void tourPicturesEveryDialog() {
        QTemporaryDir folder;
        DemoWindow window;
        QVERIFY(window.openSampleJob());
        const QStringList written = window.tour(folder.path());
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            QString name = entry.menu;
            name.remove(QStringLiteral("...")).replace(' ', '_');
            for (const char* suffix : {"_mil", "_mm", "_zh"}) {
                const QString path = QDir(folder.path()).filePath(name + suffix + ".png");
                QVERIFY2(written.contains(path), qPrintable(path));
                QVERIFY2(hasSeveralColours(QImage(path)), qPrintable(path));
            }
        }
        QVERIFY(hasSeveralColours(QImage(QDir(folder.path()).filePath("demo_hit.png"))));
    }
};

QTEST_MAIN(tst_DemoHost)
#include "tst_DemoHost.moc"
