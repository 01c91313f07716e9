#include <QRegExpValidator>
#include <QScopedPointer>
#include <QtTest>

#include "frame/Validators.h"

// The three shared input patterns, judged through the validators the dialogs attach.
class tst_Validators : public QObject {
    Q_OBJECT

private slots:
    void accepts_data();
    void accepts();
    void noCjkPatternIsTheCommonIdeographRange();
    void validatorsBelongToTheirParent();
};

namespace {

QRegExpValidator* makeValidator(const QString& kind, QObject* parent) {
    if (kind == QLatin1String("float")) {
        return wc::makeFloatValidator(parent);
    }
    if (kind == QLatin1String("name")) {
        return wc::makeNameValidator(parent);
    }
    return wc::makeNoCjkValidator(parent);
}

}  // namespace

void tst_Validators::accepts_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("acceptable");

    const QString fl = QStringLiteral("float");
    QTest::newRow("float: integer") << fl << "7" << true;
    QTest::newRow("float: 15 digits") << fl << "123456789012345" << true;
    QTest::newRow("float: 16 digits") << fl << "1234567890123456" << false;
    QTest::newRow("float: zero point") << fl << "0." << true;
    QTest::newRow("float: bare zero") << fl << "0" << false;
    QTest::newRow("float: five decimals") << fl << "0.12345" << true;
    QTest::newRow("float: six decimals") << fl << "0.123456" << false;
    QTest::newRow("float: negative fraction") << fl << "-0.5" << true;
    QTest::newRow("float: negative integer") << fl << "-42" << true;
    QTest::newRow("float: leading zero") << fl << "01" << false;
    QTest::newRow("float: trailing point") << fl << "1." << false;
    QTest::newRow("float: long integer part with decimals") << fl << "12345678901234567.5" << true;
    QTest::newRow("float: six decimals after integer") << fl << "1.123456" << false;
    QTest::newRow("float: plus sign") << fl << "+1" << false;
    QTest::newRow("float: exponent") << fl << "1e5" << false;
    QTest::newRow("float: comma") << fl << "1,5" << false;
    QTest::newRow("float: empty") << fl << "" << false;
    QTest::newRow("float: minus only") << fl << "-" << false;

    const QString nm = QStringLiteral("name");
    QTest::newRow("name: layer") << nm << "top_sig-1" << true;
    QTest::newRow("name: every punctuation") << nm << "a_b+c.d;e-f" << true;
    QTest::newRow("name: upper case") << nm << "Top" << false;
    QTest::newRow("name: blank") << nm << "top sig" << false;
    QTest::newRow("name: slash") << nm << "top/sig" << false;
    QTest::newRow("name: empty") << nm << "" << true;
    QTest::newRow("name: 64 characters") << nm << QString(64, QLatin1Char('a')) << true;
    QTest::newRow("name: 65 characters") << nm << QString(65, QLatin1Char('a')) << false;

    const QString cjk = QStringLiteral("nocjk");
    QTest::newRow("no-cjk: latin") << cjk << "Layer 1 (top)" << true;
    QTest::newRow("no-cjk: empty") << cjk << "" << true;
    QTest::newRow("no-cjk: U+4E00") << cjk << QString(QChar(0x4E00)) << false;
    QTest::newRow("no-cjk: U+9FA5") << cjk << QString(QChar(0x9FA5)) << false;
    QTest::newRow("no-cjk: U+6B65 inside a word")
        << cjk << QStringLiteral("a") + QChar(0x6B65) + QStringLiteral("b") << false;
    QTest::newRow("no-cjk: U+9FA6") << cjk << QString(QChar(0x9FA6)) << true;
    QTest::newRow("no-cjk: U+4DFF") << cjk << QString(QChar(0x4DFF)) << true;
    QTest::newRow("no-cjk: full-width colon") << cjk << QString(QChar(0xFF1A)) << true;
}

void tst_Validators::accepts() {
    QFETCH(QString, kind);
    QFETCH(QString, text);
    QFETCH(bool, acceptable);

    QObject owner;
    QRegExpValidator* validator = makeValidator(kind, &owner);
    int position = 0;
    const QValidator::State state = validator->validate(text, position);
    QCOMPARE(state == QValidator::Acceptable, acceptable);
}

void tst_Validators::noCjkPatternIsTheCommonIdeographRange() {
    const QString pattern = wc::noCjkPattern();
    QCOMPARE(pattern.size(), 12);  // 14 bytes, of which two 2-byte GBK codes
    QCOMPARE(pattern.at(3), QChar(0x4E00));
    QCOMPARE(pattern.at(5), QChar(0x9FA5));
    QCOMPARE(pattern, QStringLiteral("^[^\u4E00-\u9FA5]{0,}$"));
}

void tst_Validators::validatorsBelongToTheirParent() {
    QPointer<QRegExpValidator> validator;
    {
        QObject owner;
        validator = wc::makeFloatValidator(&owner);
        QCOMPARE(validator->parent(), &owner);
        QCOMPARE(validator->regExp().caseSensitivity(), Qt::CaseSensitive);
    }
    QVERIFY(validator.isNull());
}

QTEST_MAIN(tst_Validators)
#include "tst_Validators.moc"
