#include <QPushButton>
#include <QSemaphore>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTcpServer>
#include <QtTest>
#include <functional>
#include <thread>

#include "CheckResultBrowser.h"
#include "DataRows.h"
#include "HostSettings.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "ReferenceEngine.h"
#include "ResultDatabase.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::API;

namespace {

// Runs `statements` on a database directly, as a user editing it by hand or another program
// would; false when one fails.
bool execute(const wcref::ResultDatabaseSettings& where, const QStringList& statements) {
    bool done = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(where.driver, "tst_direct");
        db.setDatabaseName(where.name);
        db.setHostName(where.host);
        db.setPort(where.port);
        db.setUserName(where.user);
        done = db.open();
        QSqlQuery query(db);
        for (const QString& statement : statements) {
            done = done && query.exec(statement);
        }
    }
    QSqlDatabase::removeDatabase("tst_direct");
    return done;
}

analysis_waiver hitWaiver(const std::string& identity, const std::string& user,
                          const std::string& reason) {
    analysis_waiver waiver;
    waiver.kind = "SignalLayer";
    waiver.job = "sample_job";
    waiver.step = "pcb";
    waiver.item = sli_line_to_line_spacing;
    waiver.layer = "top";
    waiver.nets = {"GND", "N$12, A"};
    waiver.identity = identity;
    waiver.user = user;
    waiver.reason = reason;
    return waiver;
}

// What one call of the result database answered; `message` is empty for calls that give none.
struct Answer {
    bool ok;
    std::string message;
};

// Every call of the result database; the first kWithMessage of them say why they failed.
constexpr size_t kWithMessage = 5;
std::vector<std::function<Answer()>> everyCall() {
    const auto said = [](bool ok, const std::string& error) { return Answer{ok, error}; };
    return {
        [] {
            const auto answer = insertAnalysisWaiver(hitWaiver("line 1", "ann", "agreed"));
            return Answer{answer.success, answer.message};
        },
        [said] {
            std::vector<analysis_waiver> waivers;
            std::string error;
            return said(getAnalysisWaivers("SignalLayer", "sample_job", "pcb", waivers, error),
                        error);
        },
        [said] {
            std::string error;
            return said(deleteAnalysisWaiver(1, error), error);
        },
        [said] {
            std::vector<analysis_run_info> runs;
            std::string error;
            return said(getAnalysisRuns("SignalLayer", "sample_job", "pcb", runs, error), error);
        },
        [] {
            const auto answer = insertSignalLayerAnalysisResult({}, {});
            return Answer{answer.success, answer.message};
        },
        [] {
            dms_signal_check_params params;
            signal_check_result_map result;
            return Answer{getSignalLayerAnalysisResult(1, params, result), ""};
        },
        [] {
            signal_check_result_map result;
            return Answer{getTqSignalLayerAnalysisResult("tq1", result), ""};
        },
        [] {
            return Answer{!getCheckResultMaster().empty(), ""};
        },
        [] {
            return Answer{wcref::clearResultDatabase(), ""};
        },
    };
}

// A stored run big enough to fill several pages of an SQLite file.
signal_check_result_map someHits() {
    signal_check_result_map result;
    result["top"][sli_line_width].red.resize(2000);
    return result;
}

}  // namespace

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
        timeout_ = Korvo::UIAPI::getTimeout();
        qInfo("result database: %s", qPrintable(wcref::resultDatabase().driver));
    }
    void init() {
        working_ = std::make_unique<wctest::TemporaryWorkingDirectory>();
        wcref::resetEngine();
    }
    void cleanup() {
        wcref::setResultDatabase(chosen_);
        wcref::setTimeout(timeout_);
        working_.reset();
    }

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

    void waiversKeepEveryReason() {
        auto first = hitWaiver("line 1", "ann", "agreed with the customer");
        const auto stored = insertAnalysisWaiver(first);
        QVERIFY2(stored.success, stored.message.c_str());
        QCOMPARE(stored.message, "stored as " + std::to_string(stored.id));
        first.user = "bob";
        first.reason = "still agreed";
        const auto again = insertAnalysisWaiver(first);
        QCOMPARE(again.id, stored.id);
        QCOMPARE(again.message, "reason added to waiver " + std::to_string(stored.id));
        // A net pair covers its nets on every layer and in either order.
        analysis_waiver pair = hitWaiver("ignored", "ann", "test coupon");
        pair.scope = waive_net_pair;
        pair.nets = {"N$12, A", "GND"};
        const int pair_id = insertAnalysisWaiver(pair).id;
        pair.layer = "bottom";
        pair.nets = {"GND", "N$12, A"};
        QCOMPARE(insertAnalysisWaiver(pair).id, pair_id);
        first.step = "panel";
        const int panel_id = insertAnalysisWaiver(first).id;
        QVERIFY(pair_id > stored.id && panel_id > pair_id);

        std::vector<analysis_waiver> waivers;
        std::string error;
        QVERIFY(getAnalysisWaivers("SignalLayer", "sample_job", "pcb", waivers, error));
        QCOMPARE(waivers.size(), size_t(2));
        const analysis_waiver& hit = waivers.at(0);
        QCOMPARE(hit.id, stored.id);
        QCOMPARE(hit.layer, std::string("top"));
        QCOMPARE(hit.identity, std::string("line 1"));
        QCOMPARE(hit.item, static_cast<int>(sli_line_to_line_spacing));
        QCOMPARE(hit.nets, (std::vector<std::string>{"GND", "N$12, A"}));
        QCOMPARE(hit.history.size(), size_t(2));
        QCOMPARE(hit.history.at(0).user, std::string("ann"));
        QCOMPARE(hit.history.at(0).reason, std::string("agreed with the customer"));
        QCOMPARE(hit.reason, std::string("still agreed"));
        QCOMPARE(hit.user, std::string("bob"));
        QVERIFY(QDateTime::fromString(QString::fromStdString(hit.time), "yyyy.MM.dd hh:mm:ss")
                    .isValid());
        const analysis_waiver& net_pair = waivers.at(1);
        QCOMPARE(net_pair.scope, waive_net_pair);
        QCOMPARE(net_pair.nets, hit.nets);
        QVERIFY(net_pair.layer.empty() && net_pair.identity.empty());
        QCOMPARE(net_pair.history.size(), size_t(2));

        QVERIFY2(deleteAnalysisWaiver(stored.id, error), error.c_str());
        QVERIFY(!deleteAnalysisWaiver(stored.id, error));
        QCOMPARE(error, "No waiver " + std::to_string(stored.id) + " is stored.");
        // The same hit waived anew starts a history of its own.
        const int anew = insertAnalysisWaiver(hitWaiver("line 1", "cy", "new board")).id;
        QVERIFY(getAnalysisWaivers("SignalLayer", "sample_job", "pcb", waivers, error));
        QCOMPARE(waivers.size(), size_t(2));
        QCOMPARE(waivers.at(0).id, pair_id);
        QVERIFY(anew > panel_id);
        QCOMPARE(waivers.at(1).id, anew);
        QCOMPARE(waivers.at(1).history.size(), size_t(1));
    }

    void waiverRefused_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("message");
        wctest::row("no reason", "reason", "", "A waiver needs a reason.");
        wctest::row("blank reason", "reason", " \t", "A waiver needs a reason.");
        wctest::row("no job", "job", "", "A waiver needs an analysis, a job and a step.");
        wctest::row("hit without identity", "identity", "",
                    "A waiver of one hit needs the hit's identity.");
        wctest::row("net pair of one net", "pair", "GND", "A waiver of a net pair needs two nets.");
        wctest::row("unknown scope", "scope", "7", "A waiver covers one hit or one net pair.");
    }
    void waiverRefused() {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(QString, message);
        analysis_waiver waiver = hitWaiver("line 1", "ann", "agreed");
        const std::string text = value.toStdString();
        if (field == "reason") {
            waiver.reason = text;
        } else if (field == "job") {
            waiver.job = text;
        } else if (field == "identity") {
            waiver.identity = text;
        } else if (field == "pair") {
            waiver.scope = waive_net_pair;
            waiver.nets = {text};
        } else {
            waiver.scope = static_cast<waiver_scope>(value.toInt());
        }
        const auto answer = insertAnalysisWaiver(waiver);
        QVERIFY(!answer.success);
        QCOMPARE(QString::fromStdString(answer.message), message);
        std::vector<analysis_waiver> waivers;
        std::string error;
        QVERIFY(getAnalysisWaivers("SignalLayer", "sample_job", "pcb", waivers, error));
        QVERIFY(waivers.empty());
    }

    void runsNewestFirst() {
        dms_signal_check_params params;
        params.job = "sample_job";
        params.step = "pcb";
        params.params.layers = "top";
        std::vector<int> ids;
        for (int k = 0; k < 3; ++k) {
            ids.push_back(insertSignalLayerAnalysisResult(params, {}).id);
        }
        params.step = "panel";
        insertSignalLayerAnalysisResult(params, {});
        params.job = "other";
        params.step = "pcb";
        insertSignalLayerAnalysisResult(params, {});
        // The first run's time edited to the future: time decides, ids only break ties.
        QVERIFY(execute(wcref::resultDatabase(),
                        {QString("UPDATE check_results SET created = '2999.01.01 00:00:00' "
                                 "WHERE id = %1")
                             .arg(ids.at(0))}));
        std::vector<analysis_run_info> runs;
        std::string error;
        QVERIFY2(getAnalysisRuns("SignalLayer", "sample_job", "pcb", runs, error), error.c_str());
        QCOMPARE(runs.size(), size_t(3));
        QCOMPARE(runs.at(0).id, ids.at(0));
        QCOMPARE(runs.at(0).time, std::string("2999.01.01 00:00:00"));
        QCOMPARE(runs.at(1).id, ids.at(2));
        QCOMPARE(runs.at(2).id, ids.at(1));
        QCOMPARE(runs.at(2).description, std::string("layers top"));
        QCOMPARE(runs.at(2).step, std::string("pcb"));
        QVERIFY(getAnalysisRuns("Drill", "sample_job", "pcb", runs, error) && runs.empty());
    }

    // Two users waive one hit at the same moment, each through a connection of their own.
    void twoUsersWaiveOneHit() {
        const int rounds = 5;
        for (int round = 0; round < rounds; ++round) {
            const std::string identity = "line " + std::to_string(round);
            QSemaphore ready;
            QSemaphore go;
            Quorin::DBS_API::CreateSesult answers[2];
            std::vector<std::thread> users;
            for (int user = 0; user < 2; ++user) {
                users.emplace_back([&, user] {
                    const auto waiver = hitWaiver(identity, user == 0 ? "ann" : "bob",
                                                  user == 0 ? "agreed" : "coupon");
                    ready.release();
                    go.acquire();
                    answers[user] = insertAnalysisWaiver(waiver);
                });
            }
            ready.acquire(2);
            go.release(2);
            for (std::thread& user : users) {
                user.join();
            }
            QVERIFY2(answers[0].success, answers[0].message.c_str());
            QVERIFY2(answers[1].success, answers[1].message.c_str());
            QCOMPARE(answers[0].id, answers[1].id);
        }
        std::vector<analysis_waiver> waivers;
        std::string error;
        QVERIFY2(getAnalysisWaivers("SignalLayer", "sample_job", "pcb", waivers, error),
                 error.c_str());
        QCOMPARE(waivers.size(), size_t(rounds));
        for (const analysis_waiver& waiver : waivers) {
            QStringList reasons;
            for (const waiver_reason& reason : waiver.history) {
                reasons << QString::fromStdString(reason.user + ": " + reason.reason);
            }
            reasons.sort();
            QCOMPARE(reasons, (QStringList{"ann: agreed", "bob: coupon"}));
        }
    }

    // A file that is not a database of ours is refused by every call, by name, and its bytes
    // stay as they were.
    void unusableFileIsNeverWritten_data() {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("why");
        wctest::row("not SQLite", "garbage", "it is not an SQLite database");
        wctest::row("header cut", "header", "it is not an SQLite database");
        wctest::row("cut in half", "half", "it was cut off");
        wctest::row("last page cut", "page", "it was cut off");
        wctest::row("other tables", "other", "it holds other data than stored checks");
    }
    void unusableFileIsNeverWritten() {
        QFETCH(QString, damage);
        QFETCH(QString, why);
        const QString path = working_->filePath("db/results.sqlite");
        useFile(path);
        QVERIFY(insertSignalLayerAnalysisResult({}, someHits()).success);
        QByteArray bytes = wctest::readFile(path);
        QVERIFY(QFile::remove(path));
        if (damage == "garbage") {
            bytes = QByteArray(8192, 'Z');
        } else if (damage == "other") {
            wcref::ResultDatabaseSettings other;
            other.driver = "QSQLITE";
            other.name = path;
            QVERIFY(execute(other,
                            {"CREATE TABLE parts (id INTEGER)", "INSERT INTO parts VALUES (1)"}));
            bytes = wctest::readFile(path);
        } else {
            bytes.truncate(damage == "header" ? 60
                           : damage == "half" ? bytes.size() / 2
                                              : bytes.size() - 100);
        }
        QVERIFY(wctest::writeFile(path, bytes));
        const auto calls = everyCall();
        for (size_t k = 0; k < calls.size(); ++k) {
            const Answer answer = calls[k]();
            QVERIFY2(!answer.ok, qPrintable(QString("call %1").arg(k)));
            QCOMPARE(wctest::readFile(path), bytes);
            const QString message = QString::fromStdString(answer.message);
            QVERIFY2(k >= kWithMessage ? message.isEmpty()
                                       : message.contains(QDir::toNativeSeparators(path)) &&
                                             message.contains(why),
                     answer.message.c_str());
        }
        QCOMPARE(QDir(working_->filePath("db")).entryList(QDir::Files),
                 QStringList{"results.sqlite"});
    }

    // A file this process used and that was removed since is not made anew; a new one is.
    void removedFileIsNotMadeAnew() {
        const QString path = working_->filePath("moved/results.sqlite");
        useFile(path);
        QVERIFY(!QFile::exists(path));
        QVERIFY(insertSignalLayerAnalysisResult({}, {}).success);
        QVERIFY(QFile::remove(path));
        const std::string removed = "The result database " +
                                    QDir::toNativeSeparators(path).toStdString() +
                                    " is no longer there.";
        const auto calls = everyCall();
        for (size_t k = 0; k < calls.size(); ++k) {
            const Answer answer = calls[k]();
            QVERIFY2(!answer.ok, qPrintable(QString("call %1").arg(k)));
            QCOMPARE(answer.message, k >= kWithMessage ? std::string() : removed);
            QVERIFY(!QFile::exists(path));
        }
    }

    void unreachableServerIsAnAnswer_data() {
        QTest::addColumn<bool>("listening");
        QTest::addColumn<int>("calls");
        wctest::row("no server", false, int(everyCall().size()));
        // A server that takes the connection and never answers: each call gives up after the
        // host's timeout (2 s).
        wctest::row("silent server", true, 2);
    }
    void unreachableServerIsAnAnswer() {
        QFETCH(bool, listening);
        QFETCH(int, calls);
        QTcpServer silent;
        wcref::ResultDatabaseSettings nowhere;
        nowhere.driver = "QPSQL";
        nowhere.host = working_->path();  // no server listens there
        nowhere.port = 1;
        nowhere.name = "none";
        if (listening) {
            QVERIFY(silent.listen(QHostAddress::LocalHost));
            nowhere.host = "127.0.0.1";
            nowhere.port = silent.serverPort();
        }
        wcref::setResultDatabase(nowhere);
        wcref::setTimeout(2000);
        const auto every = everyCall();
        for (int k = 0; k < calls; ++k) {
            QElapsedTimer clock;
            clock.start();
            const Answer answer = every[k]();
            QVERIFY(!answer.ok);
            QVERIFY(clock.elapsed() < 4000);
            const QString message = QString::fromStdString(answer.message);
            QVERIFY2(k >= int(kWithMessage)
                         ? message.isEmpty()
                         : message.startsWith("The result database on " + nowhere.host +
                                              " cannot be reached: "),
                     answer.message.c_str());
        }
    }

private:
    // The SQLite file `path` for the rest of the test, whatever database the run chose.
    static void useFile(const QString& path) {
        wcref::ResultDatabaseSettings file;
        file.driver = "QSQLITE";
        file.name = path;
        wcref::setResultDatabase(file);
    }

    std::unique_ptr<wctest::TemporaryWorkingDirectory> working_;
    wcref::ResultDatabaseSettings chosen_;
    int timeout_ = 0;
    BrowserRecorder recorder_;
};

QTEST_MAIN(tst_ResultDatabase)
#include "tst_ResultDatabase.moc"
