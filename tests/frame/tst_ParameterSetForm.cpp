#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QtTest>

#include "DataRows.h"
#include "Korvo_UIAPI.h"
#include "MessageBoxAnswerer.h"
#include "TemporaryWorkingDirectory.h"
#include "frame/ParameterSetForm.h"
#include "frame/ParameterSetStore.h"

using wctest::row;

// A whole form saved as a named set and put back: widget values and the kind's ranges.
class tst_ParameterSetForm : public QObject {
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
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("message");
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
        row("missing", QByteArray());
        row("truncated", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": ["));
        row("ranges not an array", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": {}}"));
        row("range without name",
            QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"RedLv\": 1}]}"));
        row("level as text", QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"name\": "
                                        "\"x\", \"RedLv\": \"1\"}]}"));
    }
    void unreadableSetLeavesFormAsItWas() {
        QFETCH(QByteArray, bytes);

        wc::ParameterSetStore store(key_);
        if (!bytes.isEmpty()) {
            QVERIFY(QDir().mkpath(store.folder()));
            QFile file(store.filePath(QStringLiteral("bad")));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
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

QTEST_MAIN(tst_ParameterSetForm)
#include "tst_ParameterSetForm.moc"
