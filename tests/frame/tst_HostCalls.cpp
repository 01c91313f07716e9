// What a host sees of the frame's calls to it: the recorder's twin before each recorded engine
// operation.

#include <QtTest>

#include "DataColumns.h"
#include "HostSettings.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "ScopedEngineHook.h"
#include "frame/RecordedCalls.h"

namespace {
const std::string kJob = "sample_job";
}

class tst_HostCalls : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob(kJob));
        wcref::clearRecordedSaves();
    }
    void cleanup() { wcref::setSaveFlag(false); }

    void twinPrecedesOperation_data() {
        wctest::columns<bool, QString>("saving", "operation");
        for (bool saving : {true, false}) {
            for (const char* op :
                 {"get_graphics", "get_matrix", "create_step", "clear_selected_features"}) {
                QTest::addRow("%s %s", op, saving ? "saving" : "not saving")
                    << saving << QString::fromLatin1(op);
            }
        }
    }

    // The twin must already be recorded when the engine operation runs, with the same job.
    void twinPrecedesOperation() {
        QFETCH(bool, saving);
        QFETCH(QString, operation);
        wcref::setSaveFlag(saving);
        std::vector<std::string> seenBefore;
        auto noteSaves = [&] { seenBefore = wcref::recordedSaves(); };

        const auto answerOk = [&](auto&&...) {
            noteSaves();
            return std::string("OK");
        };
        const auto answerTrue = [&](auto&&...) {
            noteSaves();
            return true;
        };
        std::vector<std::string> steps;
        std::vector<Korvo::API::layer_info> layers;
        if (operation == "get_graphics") {
            wctest::ScopedEngineHook hook(&wcref::EngineHooks::get_graphics, answerOk);
            wc::recordedGetGraphics(kJob, steps, layers);
        } else if (operation == "get_matrix") {
            wctest::ScopedEngineHook hook(&wcref::EngineHooks::get_matrix, answerOk);
            wc::recordedGetMatrix(kJob, steps, layers);
        } else if (operation == "create_step") {
            wctest::ScopedEngineHook hook(&wcref::EngineHooks::create_step, answerTrue);
            QVERIFY(wc::recordedCreateStep(kJob, "array", 2));
        } else {
            wctest::ScopedEngineHook hook(&wcref::EngineHooks::clear_selected_features, answerTrue);
            QVERIFY(wc::recordedClearSelectedFeatures(kJob, "pcb", "top"));
        }

        QCOMPARE(int(seenBefore.size()), saving ? 1 : 0);
        if (saving) {
            const QString twin = QString::fromStdString(seenBefore.front());
            QVERIFY2(twin.startsWith(operation + "_db_save("), qPrintable(twin));
            QVERIFY2(twin.contains(QString::fromStdString(kJob)), qPrintable(twin));
        }
        const auto calls = wcref::engineCalls();
        QCOMPARE(QString::fromStdString(calls.back().operation), operation);
    }
};

QTEST_MAIN(tst_HostCalls)
#include "tst_HostCalls.moc"
