#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include "DataRows.h"
#include "TemporaryWorkingDirectory.h"
#include "frame/ParameterSetStore.h"

using wc::ParameterSetStore;

using wctest::row;

// Named parameter sets on disk: where they go, what is refused, and what a bad file does.
class tst_ParameterSetStore : public QObject {
    Q_OBJECT

private slots:
    void init() {
        dir_ = new wctest::TemporaryWorkingDirectory;
        QVERIFY(dir_->isValid());
    }

    void cleanup() {
        delete dir_;
        dir_ = nullptr;
    }

    void saveThenLoadRoundTrips_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QJsonObject>("object");
        const QJsonArray ranges{QJsonObject{
            {"name", "Spacing"}, {"RedLv", 50800.0}, {"YellowLv", 76200.0}, {"GreenLv", 101600.0}}};
        row("nested values", "ERF", QJsonObject{{"lineEdit_Size", "3.5"}, {"rangesList", ranges}});
        row("blanks and dots", "teardrop set 1.v2", QJsonObject{{"checkBox_Pad", true}});
        row("non-latin name", QString::fromUtf8("模板"), QJsonObject{{"x", "1"}});
    }
    void saveThenLoadRoundTrips() {
        QFETCH(QString, name);
        QFETCH(QJsonObject, object);

        ParameterSetStore store(QStringLiteral("TeardropsRanges"));
        QVERIFY(!QDir(store.folder()).exists());  // not made before a save
        QCOMPARE(store.save(name, object), ParameterSetStore::SaveResult::Saved);
        QVERIFY(QFile::exists(dir_->filePath("ERFconfig/TeardropsRanges/" + name + ".json")));
        QJsonObject loaded;
        QCOMPARE(store.load(name, loaded), ParameterSetStore::LoadResult::Loaded);
        QCOMPARE(loaded, object);
        // Indented, so a person can read and diff it.
        QFile file(store.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QJsonDocument(object).toJson(QJsonDocument::Indented));
    }

    void neverOverwritesUntilRemoved() {
        ParameterSetStore store(QStringLiteral("SignalLayerRanges"));
        const QJsonObject first{{"Spacing", "5"}};
        const QJsonObject second{{"Spacing", "9"}};
        QCOMPARE(store.save(QStringLiteral("ERF"), first), ParameterSetStore::SaveResult::Saved);
        QString error;
        QCOMPARE(store.save(QStringLiteral("ERF"), second, &error),
                 ParameterSetStore::SaveResult::Exists);
        QCOMPARE(error, QStringLiteral("ERF have a same name file!"));
        QJsonObject loaded;
        QCOMPARE(store.load(QStringLiteral("ERF"), loaded), ParameterSetStore::LoadResult::Loaded);
        QCOMPARE(loaded, first);

        QVERIFY(store.remove(QStringLiteral("ERF")));
        QVERIFY(!store.exists(QStringLiteral("ERF")));
        QVERIFY(!store.remove(QStringLiteral("ERF")));
        QCOMPARE(store.save(QStringLiteral("ERF"), second), ParameterSetStore::SaveResult::Saved);
        QCOMPARE(store.load(QStringLiteral("ERF"), loaded), ParameterSetStore::LoadResult::Loaded);
        QCOMPARE(loaded, second);
    }

    void namesListsOnlySetsSorted() {
        ParameterSetStore store(QStringLiteral("TeardropsRanges"));
        QCOMPARE(store.names(), QStringList());
        for (const char* name : {"zeta", "Alpha", "beta"}) {
            QCOMPARE(store.save(QString::fromLatin1(name), QJsonObject()),
                     ParameterSetStore::SaveResult::Saved);
        }
        QFile other(store.folder() + QStringLiteral("notes.txt"));
        QVERIFY(other.open(QIODevice::WriteOnly));
        QVERIFY(QDir().mkpath(store.folder() + QStringLiteral("folder.json")));
        QCOMPARE(store.names(), (QStringList{"Alpha", "beta", "zeta"}));
        QCOMPARE(ParameterSetStore(QStringLiteral("DrillRanges")).names(), QStringList());
    }

    void badFileLeavesOutputUntouched_data() {
        QTest::addColumn<bool>("write");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("result");
        using R = ParameterSetStore::LoadResult;
        row("missing", false, QByteArray(), int(R::Missing));
        row("empty file", true, QByteArray(), int(R::NotJson));
        row("truncated", true, QByteArray("{\"Spacing\": \"5\", \"rangesL"), int(R::NotJson));
        row("not json", true, QByteArray("Spacing=5\n"), int(R::NotJson));
        row("binary", true, QByteArray("\x00\xff\xfe{", 4), int(R::NotJson));
        row("array, not object", true, QByteArray("[{\"Spacing\": \"5\"}]"), int(R::WrongShape));
    }
    void badFileLeavesOutputUntouched() {
        QFETCH(bool, write);
        QFETCH(QByteArray, bytes);
        QFETCH(int, result);

        ParameterSetStore store(QStringLiteral("TeardropsRanges"));
        if (write) {
            QVERIFY(QDir().mkpath(store.folder()));
            QFile file(store.filePath(QStringLiteral("bad")));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(bytes), qint64(bytes.size()));
        }
        const QJsonObject before{{"kept", "as it was"}};
        QJsonObject out = before;
        QString error;
        QCOMPARE(int(store.load(QStringLiteral("bad"), out, &error)), result);
        QCOMPARE(out, before);
        QVERIFY2(error.contains(QStringLiteral("bad")), qPrintable(error));
    }

    void hostileNamesAreRefused_data() {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"../x", "a/b", "a\\b", "C:x", "..", ".", "", " ", ".hidden", "a\nb", "/tmp/x"}) {
            QTest::addRow("\"%s\"", name) << QString::fromLatin1(name);
        }
        row("200 characters", QString(200, QLatin1Char('n')));
    }
    void hostileNamesAreRefused() {
        QFETCH(QString, name);

        ParameterSetStore store(QStringLiteral("TeardropsRanges"));
        const QString problem = ParameterSetStore::nameProblem(name);
        QVERIFY2(problem.startsWith(QStringLiteral("Illegal template name: ")),
                 qPrintable(problem));
        QString error;
        QCOMPARE(store.save(name, QJsonObject{{"v", 1}}, &error),
                 ParameterSetStore::SaveResult::BadName);
        QCOMPARE(error, problem);
        QVERIFY(!store.exists(name));
        QVERIFY(!store.remove(name));
        QJsonObject out{{"kept", 1}};
        QCOMPARE(store.load(name, out), ParameterSetStore::LoadResult::BadName);
        QCOMPARE(out, (QJsonObject{{"kept", 1}}));
        // Nothing at all was written below the working directory.
        QCOMPARE(QDir(dir_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
    }

private:
    wctest::TemporaryWorkingDirectory* dir_ = nullptr;
};

QTEST_MAIN(tst_ParameterSetStore)
#include "tst_ParameterSetStore.moc"
