#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "CheckResultBrowser.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "ResultDatabase.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::API;

// What the result browser sent.
class BrowserRecorder : public QObject {
    Q_OBJECT
public slots:
    void id(QString& text) { ids.append(text); }
    void key(QString& text) { keys.append(text); }
    void row(int index) { rows.append(index); }

public:
    QStringList ids;
    QStringList keys;
    QList<int> rows;
};

// The result database through Qt SQL. By default an SQLite file below a temporary database path;
// with WIDGET_COMMON_PG_HOST (and _PORT, _USER, _DB) set, the same cases run against that
// PostgreSQL server (scripts/test-postgres.sh starts a throwaway one).
class tst_ResultDatabase : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        const QString host = qEnvironmentVariable("WIDGET_COMMON_PG_HOST");
        if (!host.isEmpty()) {
            wcref::ResultDatabaseSettings settings;
            settings.driver = "QPSQL";
            settings.host = host;
            settings.port = qEnvironmentVariableIntValue("WIDGET_COMMON_PG_PORT");
            settings.user = qEnvironmentVariable("WIDGET_COMMON_PG_USER");
            settings.name = qEnvironmentVariable("WIDGET_COMMON_PG_DB");
            wcref::setResultDatabase(settings);
            chosen_ = settings;
        }
        qInfo("result database: %s", qPrintable(wcref::resultDatabase().driver));
    }
    void init() {
        working_ = std::make_unique<wctest::TemporaryWorkingDirectory>();
        wcref::resetEngine();
    }
    void cleanup() { working_.reset(); }

    void roundTrip() {
        dms_signal_check_params params;
        params.job = "sample_job";
        params.step = "pcb";
        params.scope = 3;
        params.tests = {sl_spacing, sl_smd, sl_pad_connection};
        params.params.layers = "top;bottom";
        params.params.spacing = 254000;
        params.params.rout_to_copper = 635000.5;
        params.params.apply_to = "Selected";
        params.params.use_compensated_rout = true;
        params.params.thresholds = {2540, 127000000};
        params.params.threshold_enabled = {true, false};
        signal_check_result_map result;
        check_info hit;
        hit.value = 1234.5;
        hit.shape.kind = check_points::box;
        hit.shape.points = {{1.5, -2}, {3, 4}};
        hit.features = {{3, 17}, {4, 2}};
        hit.nets = {"GND", "N$12, A"};
        result["top"][sli_line_width].red.push_back(hit);
        result["top"][sli_line_width].yellow.push_back(check_info{});  // a hit of no net
        result["top"][sli_line_width].other.push_back(hit);
        result["top"][sli_pad_size].green.resize(3);
        result["bottom"];  // a layer without hits stays a layer

        const auto first = insertSignalLayerAnalysisResult(params, result);
        QVERIFY2(first.success, first.message.c_str());
        QCOMPARE(first.message, "stored as " + std::to_string(first.id));
        params.step = "panel";
        const auto second = insertSignalLayerAnalysisResult(params, {});
        QVERIFY(second.success && second.id > first.id);

        dms_signal_check_params loaded;
        signal_check_result_map loaded_result;
        QVERIFY(getSignalLayerAnalysisResult(first.id, loaded, loaded_result));
        QCOMPARE(loaded.step, std::string("pcb"));
        QCOMPARE(loaded.scope, 3);
        QCOMPARE(loaded.tests, params.tests);
        QCOMPARE(loaded.params.rout_to_copper, 635000.5);
        QCOMPARE(loaded.params.apply_to, std::string("Selected"));
        QVERIFY(loaded.params.use_compensated_rout && !loaded.params.sort_spacing_by_solder_mask);
        QCOMPARE(loaded.params.thresholds, params.params.thresholds);
        QCOMPARE(loaded.params.threshold_enabled, params.params.threshold_enabled);
        QCOMPARE(loaded_result.size(), size_t(2));
        const check_info& back = loaded_result["top"][sli_line_width].red.at(0);
        QCOMPARE(back.value, 1234.5);
        QCOMPARE(back.shape.kind, check_points::box);
        QCOMPARE(back.shape.points.at(0).x, 1.5);
        QVERIFY(back.features == hit.features);
        QCOMPARE(back.nets, hit.nets);
        QVERIFY(loaded_result["top"][sli_line_width].yellow.at(0).nets.empty());
        QCOMPARE(loaded_result["top"][sli_line_width].other.size(), size_t(1));
        QCOMPARE(loaded_result["top"][sli_pad_size].green.size(), size_t(3));

        signal_check_result_map tq;
        QVERIFY(getTqSignalLayerAnalysisResult("tq" + std::to_string(first.id), tq));
        QCOMPARE(tq.size(), size_t(2));
        for (const std::string& key :
             {std::string("tq"), std::string("tq-1"), std::string("tqx"), std::to_string(first.id),
              "tq" + std::to_string(second.id + 1), std::string("tq99999999999999999999")})
            QVERIFY2(!getTqSignalLayerAnalysisResult(key, tq), key.c_str());
        QVERIFY(!getSignalLayerAnalysisResult(second.id + 1, loaded, loaded_result));

        const auto master = getCheckResultMaster();
        QCOMPARE(master.size(), size_t(2));
        QCOMPARE(master.begin()->first, first.id);
        QCOMPARE(master.at(second.id).at(0), std::string("SignalLayer"));
        QCOMPARE(master.at(second.id).at(2), std::string("panel"));
        QCOMPARE(master.at(first.id).at(4), std::string("layers top;bottom"));
    }

    void browserHandsBackTheChosenCheck() {
        dms_signal_check_params params;
        params.job = "sample_job";
        const int first = insertSignalLayerAnalysisResult(params, {}).id;
        const int second = insertSignalLayerAnalysisResult(params, {}).id;
        QWidget owner;
        using Quorin::DBS_API::CheckResultBrowser;
        CheckResultBrowser* browser = Quorin::DBS_API::createCheckResultBrowser(&owner);
        QCOMPARE(browser->parentWidget(), &owner);
        // The signals carry non-const references, which QSignalSpy cannot record.
        QObject::connect(browser, &CheckResultBrowser::send_check_id_text, &recorder_,
                         &BrowserRecorder::id);
        QObject::connect(browser, &CheckResultBrowser::send_tq_check_id_text, &recorder_,
                         &BrowserRecorder::key);
        QObject::connect(browser, &CheckResultBrowser::send_load_index, &recorder_,
                         &BrowserRecorder::row);
        browser->show();  // lists the stored checks, the newest chosen
        auto* table = browser->findChild<QTableWidget*>("tableWidget_Checks");
        QCOMPARE(table->rowCount(), 2);
        browser->findChild<QPushButton*>("pushButton_Load")->click();
        QCOMPARE(recorder_.ids, QStringList{QString::number(second)});
        table->selectRow(0);
        browser->findChild<QPushButton*>("pushButton_LoadResult")->click();
        QCOMPARE(recorder_.keys, QStringList{"tq" + QString::number(first)});
        emit table->cellDoubleClicked(1, 0);
        QCOMPARE(recorder_.rows, QList<int>{1});
    }

    void unreachableServerIsAnAnswer() {
        wcref::ResultDatabaseSettings nowhere;
        nowhere.driver = "QPSQL";
        nowhere.host = working_->path();  // no server listens there
        nowhere.port = 1;
        nowhere.name = "none";
        wcref::setResultDatabase(nowhere);
        const auto answer = insertSignalLayerAnalysisResult({}, {});
        wcref::setResultDatabase(chosen_);
        QVERIFY(!answer.success);
        QVERIFY(!answer.message.empty());
    }

private:
    std::unique_ptr<wctest::TemporaryWorkingDirectory> working_;
    wcref::ResultDatabaseSettings chosen_;
    BrowserRecorder recorder_;
};

QTEST_MAIN(tst_ResultDatabase)
#include "tst_ResultDatabase.moc"
