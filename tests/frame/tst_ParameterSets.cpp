#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "Korvo_UIAPI.h"
#include "MessageBoxAnswerer.h"
#include "TemporaryWorkingDirectory.h"
#include "frame/ParameterSetForm.h"
#include "frame/ParameterSetStore.h"

using wc::ParameterSetStore;
using wctest::row;

// Named parameter sets: the store on disk (where they go, what is refused, what a bad file does)
// and a whole form saved and put back with the kind's ranges.
class tst_ParameterSets : public QObject {
    Q_OBJECT

private slots:
    void init() {
        dir_ = new wctest::TemporaryWorkingDirectory;
        QVERIFY(dir_->isValid());
        form_ = new QWidget;
        size_ = new QLineEdit(QStringLiteral("3.5"), form_);
        size_->setObjectName(QStringLiteral("lineEdit_Size"));
        pads_ = new QCheckBox(form_);
        pads_->setObjectName(QStringLiteral("checkBox_Pads"));
        pads_->setChecked(true);
        mode_ = new QComboBox(form_);
        mode_->setObjectName(QStringLiteral("comboBox_Mode"));
        mode_->addItems({QStringLiteral("Line"), QStringLiteral("Arc"), QStringLiteral("Both")});
        mode_->setCurrentIndex(2);
        widgets_ = {size_, pads_, mode_};
        QVERIFY(!Korvo::UIAPI::getRanges(key_.toStdString()).empty());
    }

    void cleanup() {
        delete form_;
        delete dir_;
        form_ = nullptr;
        dir_ = nullptr;
    }

    void saveThenLoadRoundTrips_data() {
        wctest::columns<QString, QJsonObject>("name", "object");
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

    // Removing a set frees its name. The refusal while the name is taken, with its message and
    // the set kept, is proven by refusedSaveIsAnswered.
    void removeFreesTheName() {
        ParameterSetStore store(QStringLiteral("SignalLayerRanges"));
        const QJsonObject second{{"Spacing", "9"}};
        QCOMPARE(store.save(QStringLiteral("ERF"), QJsonObject{{"Spacing", "5"}}),
                 ParameterSetStore::SaveResult::Saved);
        QVERIFY(store.remove(QStringLiteral("ERF")));
        QVERIFY(!store.exists(QStringLiteral("ERF")));
        QVERIFY(!store.remove(QStringLiteral("ERF")));
        QCOMPARE(store.save(QStringLiteral("ERF"), second), ParameterSetStore::SaveResult::Saved);
        QJsonObject loaded;
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
        QVERIFY(wctest::writeFile(store.folder() + QStringLiteral("notes.txt"), "{}"));
        QVERIFY(QDir().mkpath(store.folder() + QStringLiteral("folder.json")));
        QCOMPARE(store.names(), (QStringList{"Alpha", "beta", "zeta"}));
        QCOMPARE(ParameterSetStore(QStringLiteral("DrillRanges")).names(), QStringList());
    }

    void badFileLeavesOutputUntouched_data() {
        wctest::columns<bool, QByteArray, int>("write", "bytes", "result");
        using R = ParameterSetStore::LoadResult;
        row("missing", false, QByteArray(), int(R::Missing));
        row("empty file", true, QByteArray(), int(R::NotJson));
        row("not json", true, QByteArray("Spacing=5\n"), int(R::NotJson));
        row("array, not object", true, QByteArray("[{\"Spacing\": \"5\"}]"), int(R::WrongShape));
    }
    void badFileLeavesOutputUntouched() {
        QFETCH(bool, write);
        QFETCH(QByteArray, bytes);
        QFETCH(int, result);

        ParameterSetStore store(QStringLiteral("TeardropsRanges"));
        if (write) {
            QVERIFY(wctest::writeFile(store.filePath(QStringLiteral("bad")), bytes));
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

    void saveThenLoadRestoresFormAndRanges() {
        wctest::MessageBoxAnswerer boxes;
        const auto ranges = Korvo::UIAPI::getRanges(key_.toStdString());
        const QString range = QString::fromStdString(ranges.front().name);
        const double red = ranges.front().RedLv;
        QVERIFY(wc::saveParameterSet(form_, key_, QStringLiteral("set 1"), widgets_));

        QFile file(wc::ParameterSetStore(key_).filePath(QStringLiteral("set 1")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject saved = QJsonDocument::fromJson(file.readAll()).object();
        QCOMPARE(saved.value(QStringLiteral("lineEdit_Size")).toString(), QStringLiteral("3.5"));
        const QJsonArray saved_ranges = saved.value(QStringLiteral("rangesList")).toArray();
        QCOMPARE(saved_ranges.size(), int(ranges.size()));
        const QJsonObject first = saved_ranges.first().toObject();
        QCOMPARE(first.keys(), (QStringList{"GreenLv", "RedLv", "YellowLv", "name"}));
        QCOMPARE(first.value(QStringLiteral("name")).toString(), range);
        QCOMPARE(first.value(QStringLiteral("RedLv")).toDouble(), red);

        size_->setText(QStringLiteral("9"));
        pads_->setChecked(false);
        mode_->setCurrentIndex(0);
        QVERIFY(Korvo::UIAPI::changeRangesValue(key_.toStdString(), range.toStdString(), "RedLv",
                                                red + 1000.0));
        QString error;
        QVERIFY2(wc::loadParameterSet(form_, key_, QStringLiteral("set 1"), widgets_, &error),
                 qPrintable(error));
        verifyFormUnchanged(red);
        QCOMPARE(boxes.count(), 0);
    }

    void refusedSaveIsAnswered_data() {
        wctest::columns<QString, QString>("name", "message");
        row("existing name", "ERF", "ERF have a same name file!");
        row("escaping name", "../escape",
            wc::ParameterSetStore::nameProblem(QStringLiteral("../escape")));
    }
    void refusedSaveIsAnswered() {
        QFETCH(QString, name);
        QFETCH(QString, message);

        wctest::MessageBoxAnswerer boxes;
        QVERIFY(wc::saveParameterSet(form_, key_, QStringLiteral("ERF"), widgets_));
        size_->setText(QStringLiteral("7"));
        QVERIFY(!wc::saveParameterSet(form_, key_, name, widgets_));
        QCOMPARE(boxes.count(), 1);
        QCOMPARE(boxes.last().title, QStringLiteral("Warning"));
        QCOMPARE(boxes.last().text, message);

        // The set already there is kept, and nothing lands outside its folder.
        QJsonObject kept;
        QCOMPARE(wc::ParameterSetStore(key_).load(QStringLiteral("ERF"), kept),
                 wc::ParameterSetStore::LoadResult::Loaded);
        QCOMPARE(kept.value(QStringLiteral("lineEdit_Size")).toString(), QStringLiteral("3.5"));
        QCOMPARE(QDir(dir_->filePath(QStringLiteral("ERFconfig")))
                     .entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList{key_});
    }

    void unreadableSetLeavesFormAsItWas_data() {
        QTest::addColumn<QByteArray>("bytes");
        row("truncated", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": ["));
        row("ranges not an array", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": {}}"));
        row("range without name",
            QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"RedLv\": 1}]}"));
        row("level as text", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"name\": "
                                        "\"x\", \"RedLv\": \"1\"}]}"));
    }
    void unreadableSetLeavesFormAsItWas() {
        QFETCH(QByteArray, bytes);

        QVERIFY(
            wctest::writeFile(wc::ParameterSetStore(key_).filePath(QStringLiteral("bad")), bytes));
        wctest::MessageBoxAnswerer boxes;
        const double red = firstRedLevel();
        QString error;
        QVERIFY(!wc::loadParameterSet(form_, key_, QStringLiteral("bad"), widgets_, &error));
        QVERIFY(!error.isEmpty());
        verifyFormUnchanged(red);
        QCOMPARE(boxes.count(), 0);
    }

private:
    double firstRedLevel() const {
        return Korvo::UIAPI::getRanges(key_.toStdString()).front().RedLv;
    }
    void verifyFormUnchanged(double red) {
        QCOMPARE(size_->text(), QStringLiteral("3.5"));
        QVERIFY(pads_->isChecked());
        QCOMPARE(mode_->currentIndex(), 2);
        QCOMPARE(firstRedLevel(), red);
    }

    const QString key_ = QStringLiteral("TeardropsRanges");
    wctest::TemporaryWorkingDirectory* dir_ = nullptr;
    QWidget* form_ = nullptr;
    QLineEdit* size_ = nullptr;
    QCheckBox* pads_ = nullptr;
    QComboBox* mode_ = nullptr;
    QList<QObject*> widgets_;
};

QTEST_MAIN(tst_ParameterSets)
#include "tst_ParameterSets.moc"
