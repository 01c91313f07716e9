// Saving parameter sets and range changes where the file cannot be written: a full disk (a tiny
// tmpfs, when this process may mount one) and a folder that cannot be created because a file
// stands in its place (which holds even for root, who ignores read-only permissions). Each
// writer reports the failure and leaves the previous file as it was, with no stray file.

#include <sys/mount.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include "DataColumns.h"
#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "MessageBoxAnswerer.h"
#include "RangeStore.h"
#include "TemporaryWorkingDirectory.h"
#include "ZeLineEdit.h"
#include "analysis/Widget_Ranges.h"
#include "frame/ParameterSetStore.h"

namespace {

enum class Failure { DiskFull, FolderIsAFile };

// Fills the file system of `folder` to the last byte.
void fill(const QString& folder) {
    QFile filler(folder + QStringLiteral("/filler"));
    if (!filler.open(QIODevice::WriteOnly)) {
        return;
    }
    const QByteArray block(512, 'x');
    while (filler.write(block) == block.size() && filler.flush()) {
    }
    const QByteArray byte(1, 'x');
    while (filler.write(byte) == 1 && filler.flush()) {
    }
}

// Every file below `folder`, relative to it.
QStringList filesBelow(const QString& folder) {
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files << QDir(folder).relativeFilePath(it.next());
    }
    files.sort();
    return files;
}

}  // namespace

Q_DECLARE_METATYPE(Failure)

class tst_FileFailures : public QObject {
    Q_OBJECT

private slots:
    void init() {
        QVERIFY(temporary_.isValid());
        root_ = temporary_.path() + QStringLiteral("/app");
        QDir(root_).removeRecursively();
        QVERIFY(QDir().mkpath(root_));
        previous_ = QDir::currentPath();
        QVERIFY(QDir::setCurrent(root_));
        wcref::setApplicationDir(root_);
        wcref::RangeStore::instance().invalidate();
    }
    void cleanup() {
        QDir::setCurrent(previous_);
        if (mounted_) {
            ::umount2(root_.toLocal8Bit().constData(), MNT_DETACH);
            mounted_ = false;
        }
        wcref::setApplicationDir(QString());
        wcref::RangeStore::instance().invalidate();
    }

    void writersReportAndKeepThePreviousFile_data() {
        wctest::columns<Failure, QString>("failure", "writer");
        for (const char* writer : {"parameter set", "range change", "range editor"}) {
            QTest::newRow(qPrintable(QStringLiteral("disk full, ") + writer))
                << Failure::DiskFull << QString::fromLatin1(writer);
            QTest::newRow(qPrintable(QStringLiteral("folder is a file, ") + writer))
                << Failure::FolderIsAFile << QString::fromLatin1(writer);
        }
    }
    void writersReportAndKeepThePreviousFile() {
        QFETCH(Failure, failure);
        QFETCH(QString, writer);
        if (failure == Failure::DiskFull) {
            if (::mount("tmpfs", root_.toLocal8Bit().constData(), "tmpfs", 0, "size=64k") != 0) {
                QSKIP("this process may not mount a tmpfs");
            }
            mounted_ = true;
            QVERIFY(QDir::setCurrent(root_));
        }
        // What was there before: one saved set and a range file with one change.
        const QString set_folder = root_ + QStringLiteral("/ERFconfig/TeardropsRanges");
        const QByteArray old_set = "{\n    \"lineEdit_A\": \"1\"\n}\n";
        QVERIFY(wctest::writeFile(set_folder + QStringLiteral("/old.json"), old_set));
        QVERIFY(Korvo::UIAPI::changeRangesValue("TeardropsRanges", "Skipped for Spacing", "RedLv",
                                                50800));
        const QString range_file = wcref::RangeStore::filePath();
        const QByteArray old_ranges = wctest::readFile(range_file);
        QVERIFY(!old_ranges.isEmpty());

        if (failure == Failure::DiskFull) {
            fill(root_);
        } else {
            // The sets' folder and the range file's folder replaced by plain files.
            QVERIFY(QDir(set_folder).removeRecursively());
            QVERIFY(wctest::writeFile(set_folder, "not a folder"));
            QVERIFY(QDir(QFileInfo(range_file).absolutePath()).removeRecursively());
            QVERIFY(wctest::writeFile(QFileInfo(range_file).absolutePath(), "not a folder"));
        }
        const QStringList files_before = filesBelow(root_);

        if (writer == "parameter set") {
            QString error;
            // Small enough to sit in the write buffer until the file is committed.
            const QJsonObject small{{QStringLiteral("lineEdit_A"), QStringLiteral("2")}};
            QCOMPARE(wc::ParameterSetStore(QStringLiteral("TeardropsRanges"))
                         .save(QStringLiteral("new"), small, &error),
                     wc::ParameterSetStore::SaveResult::WriteFailed);
            QVERIFY(!error.isEmpty());
        } else if (writer == "range change") {
            QVERIFY(!Korvo::UIAPI::changeRangesValue("TeardropsRanges", "Skipped for Spacing",
                                                     "RedLv", 76200));
            // The change still holds for this session.
            QCOMPARE(Korvo::UIAPI::getRanges("TeardropsRanges").back().RedLv, 76200.0);
        } else {
            QWidget host;
            Widget_Ranges editor("TeardropsRanges", "Teardrops", &host, &host);
            auto edits = editor.findChildren<Korvo::UIAPI::ZeLineEdit*>();
            QVERIFY(!edits.isEmpty());
            wctest::MessageBoxAnswerer boxes;
            auto* first = edits.front();
            first->setText(QStringLiteral("1.5"));
            emit first->editingFinished();
            QCOMPARE(boxes.texts(),
                     QStringList{"The ranges could not be saved; the change holds until the "
                                 "program closes."});
        }

        QCOMPARE(filesBelow(root_), files_before);
        if (failure == Failure::DiskFull) {
            QCOMPARE(wctest::readFile(set_folder + QStringLiteral("/old.json")), old_set);
            QCOMPARE(wctest::readFile(range_file), old_ranges);
        }
    }

private:
    QTemporaryDir temporary_;
    QString root_;
    QString previous_;
    bool mounted_ = false;
};

QTEST_MAIN(tst_FileFailures)
#include "tst_FileFailures.moc"
