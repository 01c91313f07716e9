#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

#include <functional>
#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "Korvo_API.h"
#include "LogCapture.h"
#include "MarkingTranslator.h"
#include "MessageBoxAnswerer.h"
#include "PluginBus.h"
#include "PluginSpy.h"
#include "ScopedEngineHook.h"
#include "analysis/HitTableModel.h"
#include "analysis/Widget_ResultsViewer.h"
#include "analysis_drawing_data.h"
#include "frame/ExceptionGuard.h"

using namespace Korvo::API;
using wctest::row;

namespace {

check_info hit(double value, double x = 0.0) {
    check_info info;
    info.value = value;
    info.shape.kind = check_points::box;
    info.shape.points = {{x, 0.0}, {x + 1000.0, 500.0}};
    return info;
}

template <typename Levels>
Levels twoRedOneYellow() {
    Levels levels;
    levels.red = {hit(76200, 0), hit(50800, 5000)};
    levels.yellow = {hit(101600, 10000)};
    return levels;
}

// The plug-in spy, with the drawing data of the last message copied while it was delivered.
class DrawingCatcher : public wctest::PluginSpy {
public:
    DrawingCatcher() {
        id_ = wcref::PluginBus::instance().subscribe([this](const PluginMetaData& message) {
            data = message.payload != nullptr
                       ? *static_cast<const analysis_drawing_data*>(message.payload)
                       : analysis_drawing_data();
        });
    }
    ~DrawingCatcher() { wcref::PluginBus::instance().unsubscribe(id_); }
    const wctest::SeenMessage& last() const { return messages().last(); }
    analysis_drawing_data data;

private:
    int id_ = 0;
};

using wctest::child;

void chooseLevel(Widget_ResultsViewer& viewer, int level) {
    auto* combo = child<QComboBox>(viewer, "m_pLevelCB");
    combo->setCurrentIndex(level);
    viewer.on_Level_changed(combo->currentText());
}

void chooseLayer(Widget_ResultsViewer& viewer, int row) {
    auto* layers = child<QListWidget>(viewer, "m_pLayersList");
    layers->setCurrentRow(row);
    viewer.on_m_pLayersList_itemClicked(layers->item(row));
}

QStringList categoryTexts(Widget_ResultsViewer& viewer) {
    QStringList out;
    auto* list = child<QListWidget>(viewer, "m_pCategoriesList");
    for (int i = 0; i < list->count(); ++i) {
        out << list->item(i)->text();
    }
    return out;
}

using W = Widget_ResultsViewer;
// A viewer made by the kind's constructor, or by the plain constructor and the kind's refresh.
using Factory = std::function<W*(QWidget*, bool refreshed)>;

// A viewer over a result of type Map that `fill` gives one item with two red hits and one
// yellow; `extra` are the constructor's arguments after the result.
template <typename Map, typename Fill, typename Refresh, typename... Extra>
Factory over(Fill fill, Refresh refresh, Extra... extra) {
    auto r = std::make_shared<Map>();
    fill(*r);
    return [r, refresh, extra...](QWidget* p, bool refreshed) {
        W* viewer = refreshed ? new W(p) : new W(0, p, r, extra...);
        if (refreshed) {
            (viewer->*refresh)(r);
        }
        return viewer;
    };
}

// The same where the hits are `result[layer][item]`.
template <typename Map, typename Item, typename Refresh, typename... Extra>
Factory atLayer(const char* layer, Item item, Refresh refresh, Extra... extra) {
    using Levels = typename Map::mapped_type::mapped_type;
    return over<Map>([=](Map& r) { r[layer][item] = twoRedOneYellow<Levels>(); }, refresh,
                     extra...);
}

// The same where the hits are `result[item]`.
template <typename Map, typename Refresh, typename... Extra>
Factory atItem(typename Map::key_type item, Refresh refresh, Extra... extra) {
    return over<Map>([=](Map& r) { r[item] = twoRedOneYellow<typename Map::mapped_type>(); },
                     refresh, extra...);
}

// The same for the optimisations whose viewer takes the run's layers first.
template <typename Map>
Factory overLayers(typename Map::key_type item,
                   void (W::*refresh)(const std::vector<std::string>&, wc::SharedResult<Map>)) {
    auto r = std::make_shared<Map>();
    (*r)[item] = twoRedOneYellow<typename Map::mapped_type>();
    const std::vector<std::string> layers{"top"};
    return [r, refresh, layers](QWidget* p, bool refreshed) {
        W* viewer = refreshed ? new W(p) : new W(0, p, layers, r);
        if (refreshed) {
            (viewer->*refresh)(layers, r);
        }
        return viewer;
    };
}

std::shared_ptr<signal_check_result_map> twoLayerResult() {
    auto result = std::make_shared<signal_check_result_map>();
    (*result)["top"][sli_line_width] = twoRedOneYellow<signal_check_result>();
    (*result)["top"][sli_pad_size].yellow = {hit(127000), hit(152400)};
    (*result)["top"][sli_pad_size].other = {hit(1)};
    (*result)["bottom"][sli_line_width].red = {hit(25400)};
    return result;
}

}  // namespace

Q_DECLARE_METATYPE(Factory)

class tst_Widget_ResultsViewer : public QObject {
    Q_OBJECT
private slots:
    void everyModeSendsItsCodes_data() {
        wctest::columns<Factory, int, QString, int, int, QString>("make", "number", "caption",
                                                                  "oneHit", "allHits", "raise");
        row("signal",
            atLayer<signal_check_result_map>("top", sli_line_width,
                                             &W::RefreshSignalLayerChecksData),
            6, "Signal Layer Checks", 20002803, 20002808, "Signal_check_raise()");
        row("signal opt",
            atLayer<signal_layer_DFM_result_map>("top", sdi_spacing, &W::RefreshSignalLayerDFMData),
            7, "Signal Layer Opt", 20002803, 20002808, "Signal_DFM_raise()");
        row("solder mask",
            atLayer<wc::SolderMaskResult>("top_mask", smi_clearance_pad, &W::RefreshSolderMaskData,
                                          QString("job"), 0, QStringList{"top_mask"}),
            5, " Solder Mask Check ", 20002803, 20002808, "SolderMask_check_raise()");
        row("solder mask opt",
            over<solder_mask_DFM_result_map>(
                [](auto& r) {
                    r[smo_clearance_resized] = {twoRedOneYellow<solder_mask_DFM_op_result>()};
                },
                &W::RefreshSolderMaskOptData),
            8, "Solder Mask Opt", 20002817, 20002818, "SolderMask_DFM_raise()");
        row("silk",
            atLayer<wc::SilkScreenResult>("top_silk", ssi_silk_to_pad, &W::RefreshSilkScreenData),
            4, " Silk Screen Checks ", 20002803, 20002808, "Silk_check_raise()");
        row("drill",
            over<wc::DrillResult>(
                [](auto& r) { r["drill"].items[dci_hole_size] = twoRedOneYellow<check_levels>(); },
                &W::RefreshDrillData),
            1, "Drill Checks", 20002803, 20002808, "Drill_check_raise()");
        // The second drill form is a drill check too: mode 1, with codes of its own.
        row("drill table", atLayer<wc::DrillTableResult>("drill", "slot", &W::RefreshDrillData_g),
            1, "Drill Checks", 20002825, 20002826, "Drill_check_raise()");
        row("board drill",
            over<wc::BoardDrillResult>(
                [](auto& r) { r["drill"].items[bdi_hole_size] = twoRedOneYellow<check_levels>(); },
                &W::RefreshBoardDrillData),
            2, "Board-DrillChecks", 20002803, 20002808, "BoardDrill_check_raise()");
        row("power ground",
            atLayer<wc::PowerGroundResult>("l2_gnd", pgi_thermal_air_gap,
                                           &W::RefreshPowerGroundCheckData),
            9, "Power Ground Checks", 20002840, 20002841, "PowerGround_raise()");
        row("power ground opt",
            atLayer<wc::PowerGroundDFMResult>("l2_gnd", pgo_sliver_filled,
                                              &W::RefreshPowerGroundDFMData, QString("job"),
                                              QString("pcb")),
            10, " Power Ground Opt ", 20002803, 20002844, "PowerGround_DFM_raise()");
        row("prepare",
            atItem<wc::PrepareResult>(pci_open_surfaces, &W::RefreshPrepareCheck, QString("pcb")),
            11, " Prepare Checks ", 20002834, 20002835, "Prepare_check_raise()");
        row("mrc",
            over<mrc_check_result>(
                [](auto& r) {
                    r["top"]["width"] = {{"a", hit(25400)}, {"b", hit(50800)}};
                },
                &W::RefreshMrcCheck),
            12, " MRC ", 20002832, 20002833, "Mrc_check_raise()");
        row("surface",
            atLayer<wc::SurfaceAnalyzerResult>("top", sai_surface_width,
                                               &W::RefreshSurfaceAnalyzerData),
            13, "Surface Analyzer", 20002803, 20002808, "Surface_check_raise()");
        row("pad snapping",
            atItem<wc::PadSnappingResult>(psi_pad_off_grid, &W::RefreshPadSnappingData), 14,
            "Pad Snapping", 20002836, 20002807, "PadSnapping_raise()");
        row("teardrops",
            overLayers<teardrop_result_map>(tdi_created_drilled, &W::RefreshTeardropsData), 15,
            "Advanced Teardrops Creation", 20002822, 20002808, "TearDrop_DFM_raise()");
        row("nfp",
            overLayers<NFP_removal_result_map>(nfp_isolated_removed, &W::RefreshNFPRemovalData), 16,
            "NFP Removal", 20002819, 20002808, "NFP_DFM_raise()");
        row("avoid conductor",
            overLayers<wc::AvoidConductorResult>(aci_moved_line, &W::RefreshAVoidConductorData), 17,
            "Avoid Conductor DFM", 20002819, 20002808, "Avoid_Conductor_DFM_raise()");
    }

    // Made by the kind's constructor and by its refresh, the viewer is in the kind's mode.
    void everyModeSendsItsCodes() {
        QFETCH(Factory, make);
        QFETCH(int, number);
        QFETCH(QString, caption);
        QFETCH(int, oneHit);
        QFETCH(int, allHits);
        QFETCH(QString, raise);
        QWidget host;
        const QByteArray mode = QTest::currentDataTag();
        for (const bool refreshed : {false, true}) {
            std::unique_ptr<W> viewer(make(&host, refreshed));
            QCOMPARE(viewer->mode(), number);
            QCOMPARE(child<QPushButton>(*viewer, "m_pNamePB")->text(), caption);
            QCOMPARE(child<QPushButton>(*viewer, "m_pToCADPB")->isVisibleTo(viewer.get()),
                     mode == "pad snapping");

            DrawingCatcher catcher;
            viewer->on_Right_clicked();
            QCOMPARE(catcher.count(), 1);
            QCOMPARE(catcher.last().code, oneHit);
            QCOMPARE(catcher.last().sender, "Graphic_MenuBar_Analysis.dll");
            QCOMPARE(catcher.last().receiver, "Graphic_View.dll");
            QCOMPARE(catcher.data.index, 2);
            child<QCheckBox>(*viewer, "m_pShowAllCB")->setChecked(true);
            QCOMPARE(catcher.last().code, allHits);
            QCOMPARE(int(catcher.data.shapes.size()), 2 + (mode == "mrc" ? 0 : 1));

            const QByteArray signal = QByteArray("2") + raise.toLatin1();
            QSignalSpy raised(viewer.get(), signal.constData());
            viewer->on_Name_clicked();
            QCOMPARE(raised.count(), 1);
        }
    }

    void languageReachesEveryKindOfControl_data() {
        wctest::columns<QString, QString>("name", "text");
        row("window title", "", "[Results Viewer]");
        row("caption of the mode", "m_pNamePB", "[Signal Layer Checks]");
        row("label", "m_pLayersLabel", "[Layers]");
        row("combo box items", "m_pReplaceCB", "[Replace layers]|[Keep layers]");
        row("Sv: entries", "m_pLevelCB", "[!!]|[!]|[  ]|[All]");
        row("Meas: first entry", "m_pMeasCB", "[All]");
        row("grouping", "m_pGroupCB", "[None]|[Item]|[Layer]|[Net]");
        row("triage views", "m_pViewCB", "[Open]|[New only]|[Waived]|[Fixed]");
        row("text filter's placeholder", "m_pFindLE", "[Regular expression over the columns]");
        row("triage button", "m_pWaivePB", "[Waive...]");
        row("waiver list's action", "m_pExportAction", "[Export waivers...]");
    }

    void languageReachesEveryKindOfControl() {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QWidget host;
        W viewer(0, &host, twoLayerResult());
        {
            wctest::MarkingTranslator language("Widget_ResultsViewer");
            viewer.change_language();
        }
        QObject* control = name.isEmpty() ? &viewer : child<QObject>(viewer, name);
        const char* property = name.isEmpty()                      ? "windowTitle"
                               : qobject_cast<QLineEdit*>(control) ? "placeholderText"
                                                                   : "text";
        QString shown = control->property(property).toString();
        if (auto* combo = qobject_cast<QComboBox*>(control)) {
            QStringList items;
            for (int i = 0; i < combo->count(); ++i) {
                items << combo->itemText(i);
            }
            shown = items.join(QLatin1Char('|'));
        }
        QCOMPARE(shown, text);
    }

    void severityCountsAreCumulative() {
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        chooseLayer(viewer, 1);  // "top"; "bottom" is listed first
        chooseLevel(viewer, wc::SevRed);
        QCOMPARE(categoryTexts(viewer), (QStringList{"Line Width (2)", "Pad Size (0)"}));
        chooseLevel(viewer, wc::SevYellow);
        QCOMPARE(categoryTexts(viewer), (QStringList{"Line Width (3)", "Pad Size (2)"}));
        chooseLevel(viewer, wc::SevAll);
        QCOMPARE(categoryTexts(viewer), (QStringList{"Line Width (3)", "Pad Size (3)"}));

        // Both layers: the item's hits add up.
        viewer.on_All_clicked();
        QCOMPARE(categoryTexts(viewer).first(), "Line Width (4)");
        viewer.on_None_clicked();
        QVERIFY(categoryTexts(viewer).isEmpty());
        QCOMPARE(viewer.currentCount(), std::size_t(0));
    }

    void navigationAndIndexStayInBounds() {
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        chooseLayer(viewer, 1);
        chooseLevel(viewer, wc::SevYellow);
        QCOMPARE(viewer.currentCount(), std::size_t(3));
        QCOMPARE(viewer.currentIndex(), std::size_t(1));

        DrawingCatcher catcher;
        viewer.on_Left_clicked();
        QCOMPARE(catcher.count(), 0);  // already at the first: nothing new to show
        viewer.on_Last_clicked();
        viewer.on_Right_clicked();
        QCOMPARE(viewer.currentIndex(), std::size_t(3));
        QCOMPARE(catcher.count(), 1);

        auto* index = child<QLineEdit>(viewer, "m_pIndexLE");
        index->setText("2");
        QTest::keyClick(index, Qt::Key_Return);
        QCOMPARE(viewer.currentIndex(), std::size_t(2));
        QCOMPARE(catcher.data.index, 2);
        index->setText("9");
        QTest::keyClick(index, Qt::Key_Return);
        QCOMPARE(viewer.currentIndex(), std::size_t(2));
        QCOMPARE(index->text(), "2");
        viewer.on_First_clicked();
        QCOMPARE(viewer.currentIndex(), std::size_t(1));
    }

    void oneHitCarriesTheHitInPlace() {
        auto result = twoLayerResult();
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, result);
        chooseLevel(viewer, wc::SevRed);
        auto* zoom = child<QComboBox>(viewer, "m_pAutoCB");
        zoom->setCurrentIndex(1);
        viewer.on_Auto_changed(zoom->currentText());

        DrawingCatcher catcher;
        viewer.on_First_clicked();
        const analysis_drawing_data& data = catcher.data;
        const check_info& expected = (*result)["bottom"][sli_line_width].red.front();
        QCOMPARE(data.index, 1);  // "bottom" is listed first and is the only layer chosen
        QCOMPARE(data.count, 1);
        QCOMPARE(data.layer_names, (std::vector<std::string>{"bottom"}));
        QCOMPARE(data.item_name, std::string("Line Width"));
        QCOMPARE(data.zoom_policy, analysis_drawing_data::pan_only);
        QCOMPARE(data.value_text, std::string("1.000 mil"));
        QCOMPARE(int(data.shapes.size()), 1);
        QCOMPARE(data.shapes[0].points, expected.shape.points.data());
        QCOMPARE(data.shapes[0].kind, check_points::box);
        QCOMPARE(data.bounds.xmax, 1000.0);
        QCOMPARE(data.bounds.ymax, 500.0);
    }

    void sortedTableRowShowsThatHit() {
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        chooseLayer(viewer, 1);
        chooseLevel(viewer, wc::SevYellow);
        auto* table = child<QTableView>(viewer, "m_pHitTable");
        QCOMPARE(table->model()->rowCount(), 3);

        table->sortByColumn(1, Qt::AscendingOrder);
        QCOMPARE(table->model()->index(0, 1).data().toString(), "2.000");
        QCOMPARE(table->model()->index(0, 0).data().toULongLong(), 2ull);
        DrawingCatcher catcher;
        table->selectRow(2);  // 4.000 mil, the yellow hit, third in navigation order
        QCOMPARE(viewer.currentIndex(), std::size_t(3));
        QCOMPARE(catcher.data.value_text, std::string("4.000 mil"));
    }

    // A hit is marked once shown, whatever the table's order, until another result.
    void shownHitsAreMarkedVisited() {
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        chooseLayer(viewer, 1);
        chooseLevel(viewer, wc::SevYellow);  // three hits, the first shown
        auto* table = child<QTableView>(viewer, "m_pHitTable");
        const auto visited = [table] {
            QList<bool> marks;
            for (int row = 0; row < table->model()->rowCount(); ++row) {
                marks
                    << table->model()->index(row, 0).data(wc::HitTableModel::VisitedRole).toBool();
            }
            return marks;
        };
        QCOMPARE(visited(), (QList<bool>{true, false, false}));
        viewer.on_Last_clicked();
        table->sortByColumn(wc::ValueColumn, Qt::AscendingOrder);  // 2.000, 3.000, 4.000
        QCOMPARE(visited(), (QList<bool>{false, true, true}));
        viewer.RefreshSignalLayerChecksData(twoLayerResult());
        chooseLayer(viewer, 1);
        chooseLevel(viewer, wc::SevYellow);  // the first, 3.000, shown again
        QCOMPARE(visited(), (QList<bool>{false, true, false}));
    }

    void filterAndMeasNarrowTheHits() {
        QWidget host;
        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        chooseLayer(viewer, 1);
        chooseLevel(viewer, wc::SevYellow);  // Line Width: 3.000, 2.000, 4.000 mil

        AnalysisFilterInfo* asked = nullptr;
        connect(&viewer, &Widget_ResultsViewer::send_begin_filter,
                [&asked](AnalysisFilterInfo* info) { asked = info; });
        QSignalSpy narrowed(&viewer, &Widget_ResultsViewer::filter_analysis_items);
        QSignalSpy next(&viewer, &Widget_ResultsViewer::send_next_filter);
        QSignalSpy reset(&viewer, &Widget_ResultsViewer::send_reset_filter);
        viewer.on_Filter_clicked();
        QVERIFY(asked != nullptr);
        QCOMPARE(asked->layer, std::string("top"));
        QCOMPARE(asked->item, int(sli_line_width));
        QCOMPARE(asked->level, int(wc::SevYellow));

        // The filter passes hits 0 and 2 of Line Width, and one hit of another item.
        asked->items = {{sli_line_width, 0}, {sli_pad_size, 1}, {sli_line_width, 2}};
        DrawingCatcher catcher;
        viewer.get_begin_filter_result(asked);
        QCOMPARE(narrowed.count(), 1);
        QCOMPARE(viewer.currentCount(), std::size_t(2));
        viewer.on_Right_clicked();
        QCOMPARE(catcher.data.value_text, std::string("4.000 mil"));
        viewer.on_Right_clicked();
        QCOMPARE(next.count(), 1);  // past the last filtered hit the filter is asked for more
        viewer.on_unfilter_analysis_items();
        QCOMPARE(viewer.currentCount(), std::size_t(3));

        // "Meas:" keeps the hits of one shown value.
        auto* meas = child<QComboBox>(viewer, "m_pMeasCB");
        QCOMPARE(meas->count(), 1);  // built when the list opens
        meas->showPopup();
        QCOMPARE(meas->count(), 4);  // "All" and three values
        meas->hidePopup();
        meas->setCurrentIndex(meas->findText("3.000"));
        viewer.on_Meas_changed(meas->currentText());
        QCOMPARE(viewer.currentCount(), std::size_t(1));
        QCOMPARE(catcher.data.value_text, std::string("3.000 mil"));

        viewer.get_begin_filter_result(asked);
        auto* categories = child<QListWidget>(viewer, "m_pCategoriesList");
        viewer.on_m_pCategoriesList_itemClicked(categories->item(1));
        QCOMPARE(reset.count(), 1);  // another category drops the filter
        QCOMPARE(viewer.currentCount(), std::size_t(2));
    }

    void selectionSelectsTheHitsFeatures() {
        QVERIFY(open_job("viewer_sel", ":sample"));
        std::vector<featureInfo> features;
        QVERIFY(get_all_feature_info("viewer_sel", "pcb", "top", features, FT_All));
        QVERIFY(features.size() > 2);
        auto result = std::make_shared<signal_check_result_map>();
        check_info first = hit(1000);
        first.features = {{3, features[0].id}, {3, features[1].id}};
        check_info second = hit(2000);
        second.features = {{3, features[2].id}};
        (*result)["top"][sli_line_width].red = {first, second};

        QWidget host;
        Widget_ResultsViewer viewer(0, &host, result);
        viewer.setJobAndStep("viewer_sel", "pcb");
        const auto selected = [] {
            std::vector<featureInfo> out;
            get_selected_feature_info("viewer_sel", "pcb", "top", out);
            std::vector<int> ids;
            for (const featureInfo& f : out) {
                ids.push_back(f.id);
            }
            return ids;
        };
        child<QCheckBox>(viewer, "m_pSelectionCB")->setChecked(true);
        QCOMPARE(selected(), (std::vector<int>{features[0].id, features[1].id}));
        viewer.on_Right_clicked();
        QCOMPARE(selected(), (std::vector<int>{features[2].id}));
        child<QCheckBox>(viewer, "m_pSelectionCB")->setChecked(false);
        QVERIFY(selected().empty());
        close_job("viewer_sel");
    }

    void exceptionsAreShownAndLoggedWithTheFile_data() {
        QTest::addColumn<bool>("nfp");
        QTest::addColumn<QString>("file");
        row("signal layer checks", false, "Widget_ResultsViewer.cpp");
        row("NFP removal", true, "Widget_ResultsViewer_NFP.cpp");
    }

    void exceptionsAreShownAndLoggedWithTheFile() {
        QFETCH(bool, nfp);
        QFETCH(QString, file);
        check_info with_feature = hit(1000);
        with_feature.features = {{3, 7}};
        auto signal = std::make_shared<signal_check_result_map>();
        (*signal)["top"][sli_line_width].red = {with_feature};
        auto removal = std::make_shared<NFP_removal_result_map>();
        (*removal)[nfp_isolated_removed].red = {with_feature};
        QWidget host;
        std::unique_ptr<Widget_ResultsViewer> viewer(
            nfp ? new Widget_ResultsViewer(0, &host, std::vector<std::string>{"top"}, removal)
                : new Widget_ResultsViewer(0, &host, signal));
        viewer->setJobAndStep("job", "pcb");

        wctest::ScopedEngineHook hook(&wcref::EngineHooks::get_matrix,
                                      [](const std::string&, std::vector<std::string>&,
                                         std::vector<layer_info>&) -> std::string {
                                          throw std::runtime_error("matrix unreadable");
                                      });
        wctest::LogCapture log;
        wctest::MessageBoxAnswerer answerer;
        child<QCheckBox>(*viewer, "m_pSelectionCB")->setChecked(true);
        QCOMPARE(answerer.count(), 1);
        QCOMPARE(answerer.last().title, "Information");
        QCOMPARE(answerer.last().text, "matrix unreadable");
        std::string place = wc::exceptionPlaceLine(file.toUtf8().constData(), 0);
        place.pop_back();  // any line number
        const auto errors = log.errors();
        QVERIFY(std::any_of(errors.begin(), errors.end(), [&place](const std::string& line) {
            return line.rfind(place, 0) == 0;
        }));
        viewer->on_Right_clicked();  // still usable
    }

    void closingAlwaysSendsViewerClosed() {
        QWidget host;
        DrawingCatcher catcher;
        Widget_ResultsViewer empty(&host);
        empty.show();
        empty.close();
        QCOMPARE(catcher.last().code, 20002810);

        Widget_ResultsViewer viewer(0, &host, twoLayerResult());
        viewer.show();
        QTest::mouseClick(child<QPushButton>(viewer, "m_pClosePB"), Qt::LeftButton);
        QVERIFY(!viewer.isVisible());
        QCOMPARE(catcher.last().code, 20002810);
        QCOMPARE(catcher.data.count, 0);
        QVERIFY(catcher.data.shapes.empty());
    }

    void lentResultIsNotCopied() {
        signal_check_result_map result = *twoLayerResult();
        QWidget host;
        Widget_ResultsViewer viewer(&host);
        viewer.RefreshSignalLayerChecksData(result);
        DrawingCatcher catcher;
        viewer.on_First_clicked();
        viewer.on_Right_clicked();
        QCOMPARE(catcher.data.shapes[0].points,
                 result["bottom"][sli_line_width].red.front().shape.points.data());
    }
};

QTEST_MAIN(tst_Widget_ResultsViewer)
#include "tst_Widget_ResultsViewer.moc"
