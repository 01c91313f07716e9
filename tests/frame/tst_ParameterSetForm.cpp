#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QtTest>

#include "Korvo_UIAPI.h"
#include "MessageBoxAnswerer.h"
#include "TemporaryWorkingDirectory.h"
#include "frame/ParameterSetForm.h"
#include "frame/ParameterSetStore.h"

// A whole form saved as a named set and put back: widget values and the kind's ranges.
class tst_ParameterSetForm : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void saveThenLoadRestoresFormAndRanges();
    void existingNameIsAnsweredAndKept();
    void badNameIsAnswered();
    void unreadableSetLeavesFormAsItWas_data();
    void unreadableSetLeavesFormAsItWas();

private:
    double firstRedLevel() const;
    QString firstRangeName() const;

    const QString key_ = QStringLiteral("TeardropsRanges");
    wctest::TemporaryWorkingDirectory* dir_ = nullptr;
    QWidget* form_ = nullptr;
    QLineEdit* size_ = nullptr;
    QCheckBox* pads_ = nullptr;
    QComboBox* mode_ = nullptr;
    QList<QObject*> widgets_;
};

void tst_ParameterSetForm::init() {
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
    QVERIFY(!firstRangeName().isEmpty());
}

void tst_ParameterSetForm::cleanup() {
    delete form_;
    form_ = nullptr;
    delete dir_;
    dir_ = nullptr;
}

double tst_ParameterSetForm::firstRedLevel() const {
    return Korvo::UIAPI::getRanges(key_.toStdString()).front().RedLv;
}

QString tst_ParameterSetForm::firstRangeName() const {
    const auto records = Korvo::UIAPI::getRanges(key_.toStdString());
    return records.empty() ? QString() : QString::fromStdString(records.front().name);
}

void tst_ParameterSetForm::saveThenLoadRestoresFormAndRanges() {
    wctest::MessageBoxAnswerer boxes;
    const double red = firstRedLevel();
    QVERIFY(wc::saveParameterSet(form_, key_, QStringLiteral("set 1"), widgets_));
    QCOMPARE(boxes.count(), 0);

    QFile file(wc::ParameterSetStore(key_).filePath(QStringLiteral("set 1")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject saved = QJsonDocument::fromJson(file.readAll()).object();
    QCOMPARE(saved.value(QStringLiteral("lineEdit_Size")).toString(), QStringLiteral("3.5"));
    const QJsonArray ranges = saved.value(QStringLiteral("rangesList")).toArray();
    QCOMPARE(ranges.size(), int(Korvo::UIAPI::getRanges(key_.toStdString()).size()));
    const QJsonObject first = ranges.first().toObject();
    QCOMPARE(first.keys(), (QStringList{"GreenLv", "RedLv", "YellowLv", "name"}));
    QCOMPARE(first.value(QStringLiteral("name")).toString(), firstRangeName());
    QCOMPARE(first.value(QStringLiteral("RedLv")).toDouble(), red);

    // Change everything, then load.
    size_->setText(QStringLiteral("9"));
    pads_->setChecked(false);
    mode_->setCurrentIndex(0);
    QVERIFY(Korvo::UIAPI::changeRangesValue(key_.toStdString(), firstRangeName().toStdString(),
                                            "RedLv", red + 1000.0));
    QString error;
    QVERIFY2(wc::loadParameterSet(form_, key_, QStringLiteral("set 1"), widgets_, &error),
             qPrintable(error));
    QCOMPARE(size_->text(), QStringLiteral("3.5"));
    QVERIFY(pads_->isChecked());
    QCOMPARE(mode_->currentIndex(), 2);
    QCOMPARE(firstRedLevel(), red);
    QCOMPARE(boxes.count(), 0);
}

void tst_ParameterSetForm::existingNameIsAnsweredAndKept() {
    wctest::MessageBoxAnswerer boxes;
    QVERIFY(wc::saveParameterSet(form_, key_, QStringLiteral("ERF"), widgets_));
    size_->setText(QStringLiteral("7"));

    QVERIFY(!wc::saveParameterSet(form_, key_, QStringLiteral("ERF"), widgets_));
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral("Warning"));
    QCOMPARE(boxes.last().text, QStringLiteral("ERF have a same name file!"));

    QJsonObject kept;
    QCOMPARE(wc::ParameterSetStore(key_).load(QStringLiteral("ERF"), kept),
             wc::ParameterSetStore::LoadResult::Loaded);
    QCOMPARE(kept.value(QStringLiteral("lineEdit_Size")).toString(), QStringLiteral("3.5"));
}

void tst_ParameterSetForm::badNameIsAnswered() {
    wctest::MessageBoxAnswerer boxes;
    QVERIFY(!wc::saveParameterSet(form_, key_, QStringLiteral("../escape"), widgets_));
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral("Warning"));
    QCOMPARE(boxes.last().text, wc::ParameterSetStore::nameProblem(QStringLiteral("../escape")));
    QVERIFY(!QFile::exists(dir_->filePath(QStringLiteral("ERFconfig/escape.json"))));
    QVERIFY(!QDir(dir_->filePath(QStringLiteral("ERFconfig"))).exists());
}

void tst_ParameterSetForm::unreadableSetLeavesFormAsItWas_data() {
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("missing") << QByteArray();
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("truncated") << QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [");
    QTest::newRow("array") << QByteArray("[{\"lineEdit_Size\": \"1\"}]");
    QTest::newRow("ranges not an array")
        << QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": {}}");
    QTest::newRow("range without name")
        << QByteArray("{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"RedLv\": 1}]}");
    QTest::newRow("level as text") << QByteArray(
        "{\"lineEdit_Size\": \"1\", \"rangesList\": [{\"name\": \"x\", "
        "\"RedLv\": \"1\"}]}");
}

void tst_ParameterSetForm::unreadableSetLeavesFormAsItWas() {
    QFETCH(QByteArray, bytes);

    wc::ParameterSetStore store(key_);
    if (QTest::currentDataTag() != QLatin1String("missing")) {
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
    QCOMPARE(size_->text(), QStringLiteral("3.5"));
    QVERIFY(pads_->isChecked());
    QCOMPARE(mode_->currentIndex(), 2);
    QCOMPARE(firstRedLevel(), red);
    QCOMPARE(boxes.count(), 0);
}

QTEST_MAIN(tst_ParameterSetForm)
#include "tst_ParameterSetForm.moc"
