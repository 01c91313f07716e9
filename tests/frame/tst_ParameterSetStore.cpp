#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include "TemporaryWorkingDirectory.h"
#include "frame/ParameterSetStore.h"

using wc::ParameterSetStore;

// Named parameter sets on disk: where they go, what is refused, and what a bad file does.
class tst_ParameterSetStore : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void folderIsBelowTheWorkingDirectory();
    void saveThenLoadRoundTrips_data();
    void saveThenLoadRoundTrips();
    void neverOverwrites();
    void removeAllowsSavingAgain();
    void namesListsOnlySetsSorted();
    void badFileLeavesOutputUntouched_data();
    void badFileLeavesOutputUntouched();
    void missingSet();
    void hostileNamesAreRefused_data();
    void hostileNamesAreRefused();
    void unwritableFolderIsReported();

private:
    void writeRaw(const QString& name, const QByteArray& bytes);

    wctest::TemporaryWorkingDirectory* dir_ = nullptr;
};

void tst_ParameterSetStore::init() {
    dir_ = new wctest::TemporaryWorkingDirectory;
    QVERIFY(dir_->isValid());
}

void tst_ParameterSetStore::cleanup() {
    delete dir_;
    dir_ = nullptr;
}

void tst_ParameterSetStore::writeRaw(const QString& name, const QByteArray& bytes) {
    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    QVERIFY(QDir().mkpath(store.folder()));
    QFile file(store.folder() + name + QStringLiteral(".json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_ParameterSetStore::folderIsBelowTheWorkingDirectory() {
    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    QVERIFY(!QDir(store.folder()).exists());  // not created before a save
    QCOMPARE(store.folder(), QDir::currentPath() + QStringLiteral("/ERFconfig/TeardropsRanges/"));
    QCOMPARE(store.save(QStringLiteral("a"), QJsonObject()), ParameterSetStore::SaveResult::Saved);
    QVERIFY(QFile::exists(dir_->filePath(QStringLiteral("ERFconfig/TeardropsRanges/a.json"))));
}

void tst_ParameterSetStore::saveThenLoadRoundTrips_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QJsonObject>("object");

    QJsonArray ranges{QJsonObject{
        {"name", "Spacing"}, {"RedLv", 50800.0}, {"YellowLv", 76200.0}, {"GreenLv", 101600.0}}};
    QTest::newRow("plain name, nested values")
        << "ERF" << QJsonObject{{"lineEdit_Size", "3.5"}, {"rangesList", ranges}};
    QTest::newRow("blanks and dots inside")
        << "teardrop set 1.v2" << QJsonObject{{"checkBox_Pad", true}, {"comboBox_Mode", 2}};
    QTest::newRow("non-latin name") << QString::fromUtf8("模板") << QJsonObject{{"x", "1"}};
    QTest::newRow("empty object") << "empty" << QJsonObject();
}

void tst_ParameterSetStore::saveThenLoadRoundTrips() {
    QFETCH(QString, name);
    QFETCH(QJsonObject, object);

    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    QVERIFY(!store.exists(name));
    QString error;
    QCOMPARE(store.save(name, object, &error), ParameterSetStore::SaveResult::Saved);
    QVERIFY(store.exists(name));

    QJsonObject loaded;
    QCOMPARE(store.load(name, loaded, &error), ParameterSetStore::LoadResult::Loaded);
    QCOMPARE(loaded, object);

    // Written indented, so a person can read and diff it.
    QFile file(store.filePath(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QJsonDocument(object).toJson(QJsonDocument::Indented));
}

void tst_ParameterSetStore::neverOverwrites() {
    ParameterSetStore store(QStringLiteral("SignalLayerRanges"));
    const QJsonObject first{{"Spacing", "5"}};
    QCOMPARE(store.save(QStringLiteral("ERF"), first), ParameterSetStore::SaveResult::Saved);

    QString error;
    QCOMPARE(store.save(QStringLiteral("ERF"), QJsonObject{{"Spacing", "9"}}, &error),
             ParameterSetStore::SaveResult::Exists);
    QCOMPARE(error, QStringLiteral("ERF have a same name file!"));

    QJsonObject loaded;
    QCOMPARE(store.load(QStringLiteral("ERF"), loaded), ParameterSetStore::LoadResult::Loaded);
    QCOMPARE(loaded, first);
}

void tst_ParameterSetStore::removeAllowsSavingAgain() {
    ParameterSetStore store(QStringLiteral("DrillRanges"));
    QCOMPARE(store.save(QStringLiteral("s"), QJsonObject{{"v", 1}}),
             ParameterSetStore::SaveResult::Saved);
    QVERIFY(store.remove(QStringLiteral("s")));
    QVERIFY(!store.exists(QStringLiteral("s")));
    QVERIFY(!store.remove(QStringLiteral("s")));
    QCOMPARE(store.save(QStringLiteral("s"), QJsonObject{{"v", 2}}),
             ParameterSetStore::SaveResult::Saved);
    QJsonObject loaded;
    QCOMPARE(store.load(QStringLiteral("s"), loaded), ParameterSetStore::LoadResult::Loaded);
    QCOMPARE(loaded.value(QStringLiteral("v")).toInt(), 2);
}

void tst_ParameterSetStore::namesListsOnlySetsSorted() {
    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    QCOMPARE(store.names(), QStringList());
    for (const char* name : {"zeta", "Alpha", "beta"}) {
        QCOMPARE(store.save(QString::fromLatin1(name), QJsonObject()),
                 ParameterSetStore::SaveResult::Saved);
    }
    QFile other(store.folder() + QStringLiteral("notes.txt"));
    QVERIFY(other.open(QIODevice::WriteOnly));
    other.close();
    QVERIFY(QDir().mkpath(store.folder() + QStringLiteral("folder.json")));

    QCOMPARE(store.names(), (QStringList{"Alpha", "beta", "zeta"}));
    // Another kind's folder is separate.
    QCOMPARE(ParameterSetStore(QStringLiteral("DrillRanges")).names(), QStringList());
}

void tst_ParameterSetStore::badFileLeavesOutputUntouched_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");

    using R = ParameterSetStore::LoadResult;
    QTest::newRow("empty file") << QByteArray() << int(R::NotJson);
    QTest::newRow("truncated") << QByteArray("{\"Spacing\": \"5\", \"rangesL") << int(R::NotJson);
    QTest::newRow("not json") << QByteArray("Spacing=5\n") << int(R::NotJson);
    QTest::newRow("binary") << QByteArray("\x00\xff\xfe{", 4) << int(R::NotJson);
    QTest::newRow("array, not object")
        << QByteArray("[{\"Spacing\": \"5\"}]") << int(R::WrongShape);
}

void tst_ParameterSetStore::badFileLeavesOutputUntouched() {
    QFETCH(QByteArray, bytes);
    QFETCH(int, result);

    writeRaw(QStringLiteral("bad"), bytes);
    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    const QJsonObject before{{"kept", "as it was"}};
    QJsonObject out = before;
    QString error;
    QCOMPARE(int(store.load(QStringLiteral("bad"), out, &error)), result);
    QCOMPARE(out, before);
    QVERIFY2(!error.isEmpty(), "a reason is given");
}

void tst_ParameterSetStore::missingSet() {
    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    const QJsonObject before{{"kept", 1}};
    QJsonObject out = before;
    QString error;
    QCOMPARE(store.load(QStringLiteral("nothing"), out, &error),
             ParameterSetStore::LoadResult::Missing);
    QCOMPARE(out, before);
    QVERIFY(error.contains(QStringLiteral("nothing")));
}

void tst_ParameterSetStore::hostileNamesAreRefused_data() {
    QTest::addColumn<QString>("name");

    QTest::newRow("parent folder") << "../x";
    QTest::newRow("slash") << "a/b";
    QTest::newRow("backslash") << "a\\b";
    QTest::newRow("drive letter") << "C:x";
    QTest::newRow("dot dot") << "..";
    QTest::newRow("dot") << ".";
    QTest::newRow("empty") << "";
    QTest::newRow("blank") << " ";
    QTest::newRow("hidden") << ".hidden";
    QTest::newRow("newline") << "a\nb";
    QTest::newRow("200 characters") << QString(200, QLatin1Char('n'));
    QTest::newRow("absolute") << "/tmp/x";
}

void tst_ParameterSetStore::hostileNamesAreRefused() {
    QFETCH(QString, name);

    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    const QString problem = ParameterSetStore::nameProblem(name);
    QVERIFY2(problem.startsWith(QStringLiteral("Illegal template name: ")), qPrintable(problem));

    QString error;
    QCOMPARE(store.save(name, QJsonObject{{"v", 1}}, &error),
             ParameterSetStore::SaveResult::BadName);
    QCOMPARE(error, problem);
    QVERIFY(!store.exists(name));
    QVERIFY(!store.remove(name));
    QJsonObject out{{"kept", 1}};
    QCOMPARE(store.load(name, out), ParameterSetStore::LoadResult::BadName);
    QCOMPARE(out, (QJsonObject{{"kept", 1}}));

    // Nothing at all was written anywhere below the working directory.
    QCOMPARE(QDir(dir_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void tst_ParameterSetStore::unwritableFolderIsReported() {
    // A file where the folder should be: the folder cannot be made.
    QVERIFY(QDir().mkpath(dir_->filePath(QStringLiteral("ERFconfig"))));
    QFile blocker(dir_->filePath(QStringLiteral("ERFconfig/TeardropsRanges")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();

    ParameterSetStore store(QStringLiteral("TeardropsRanges"));
    QString error;
    QCOMPARE(store.save(QStringLiteral("s"), QJsonObject(), &error),
             ParameterSetStore::SaveResult::WriteFailed);
    QVERIFY(!error.isEmpty());
}

QTEST_MAIN(tst_ParameterSetStore)
#include "tst_ParameterSetStore.moc"
