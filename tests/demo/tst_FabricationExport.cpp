// "Job → Export fabrication files...": the sample job's step written to a folder or a .zip that
// opens again as the same layers, and a failing layer that leaves nothing behind.

#include <QtTest>

#include "DataRows.h"
#include "FabricationExport.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"

using namespace Korvo::API;

class tst_FabricationExport : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("sample"));
    }

    void exportStep_data() {
        QTest::addColumn<QString>("target");
        wctest::row("folder", "out");
        wctest::row("zip", "out.ZIP");
    }
    void exportStep() {
        QFETCH(QString, target);
        QTemporaryDir folder;
        QStringList files;
        QCOMPARE(
            demo::FabricationExport::exportStep("sample", "pcb", folder.filePath(target), &files),
            QString());
        std::vector<std::string> steps;
        std::vector<layer_info> before;
        std::vector<layer_info> after;
        get_matrix("sample", steps, before);
        QCOMPARE(files.size(), int(before.size()));
        QVERIFY(files.contains("drill.drl"));
        QVERIFY(open_job("again", folder.filePath(target).toStdString()));
        get_matrix("again", steps, after);
        QCOMPARE(after.size(), before.size());
        // Only the target is left: the scratch folder has gone.
        QCOMPARE(
            QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList{target});
    }

    void failureLeavesNothing() {
        // The top copper's pads and lines added to the drill layer: Excellon holds round holes.
        QVERIFY(copy_layer_features("sample", "pcb", "top", "drill", true));
        QTemporaryDir folder;
        const QString failure =
            demo::FabricationExport::exportStep("sample", "pcb", folder.filePath("out.zip"));
        QVERIFY2(failure.startsWith("Layer drill was not exported: layer \"drill\": "),
                 qPrintable(failure));
        QCOMPARE(
            QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList());
    }
};

QTEST_MAIN(tst_FabricationExport)
#include "tst_FabricationExport.moc"
