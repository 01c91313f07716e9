#include <QRegExpValidator>
#include <QtTest>

#include "frame/Validators.h"

// The three shared input patterns, judged through the validators the dialogs attach.
class tst_Validators : public QObject {
    Q_OBJECT

private slots:
    void accepts_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("acceptable");

        const struct {
            const char* kind;
            const char* text;
            bool acceptable;
        } rows[] = {
            {"float", "7", true},
            {"float", "123456789012345", true},
            {"float", "1234567890123456", false},
            {"float", "0.", true},
            {"float", "0", false},
            {"float", "0.12345", true},
            {"float", "0.123456", false},
            {"float", "-0.5", true},
            {"float", "-42", true},
            {"float", "01", false},
            {"float", "1.", false},
            {"float", "12345678901234567.5", true},  // the digit limit is for integers only
            {"float", "1.123456", false},
            {"float", "+1", false},
            {"float", "1e5", false},
            {"float", "1,5", false},
            {"float", "", false},
            {"float", "-", false},
            {"name", "top_sig-1", true},
            {"name", "a_b+c.d;e-f", true},
            {"name", "Top", false},
            {"name", "top sig", false},
            {"name", "top/sig", false},
            {"name", "", true},
            {"nocjk", "Layer 1 (top)", true},
            {"nocjk", "", true},
        };
        for (const auto& row : rows) {
            QTest::addRow("%s \"%s\"", row.kind, row.text)
                << row.kind << QString::fromLatin1(row.text) << row.acceptable;
        }
        QTest::newRow("name 64 characters") << "name" << QString(64, QLatin1Char('a')) << true;
        QTest::newRow("name 65 characters") << "name" << QString(65, QLatin1Char('a')) << false;
        const QChar a(QLatin1Char('a'));
        QTest::newRow("nocjk U+4E00") << "nocjk" << QString(QChar(0x4E00)) << false;
        QTest::newRow("nocjk U+9FA5") << "nocjk" << QString(QChar(0x9FA5)) << false;
        QTest::newRow("nocjk U+6B65 in a word")
            << "nocjk" << QString(a) + QChar(0x6B65) + a << false;
        QTest::newRow("nocjk U+9FA6") << "nocjk" << QString(QChar(0x9FA6)) << true;
        QTest::newRow("nocjk U+4DFF") << "nocjk" << QString(QChar(0x4DFF)) << true;
        QTest::newRow("nocjk full-width colon") << "nocjk" << QString(QChar(0xFF1A)) << true;
    }
    void accepts() {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(bool, acceptable);

        QObject owner;
        QRegExpValidator* validator =
            kind == QLatin1String("float")  ? wc::makeFloatValidator(&owner)
            : kind == QLatin1String("name") ? wc::makeNameValidator(&owner)
                                            : wc::makeNoCjkValidator(&owner);
        int position = 0;
        QCOMPARE(validator->validate(text, position) == QValidator::Acceptable, acceptable);
    }
};

QTEST_MAIN(tst_Validators)
#include "tst_Validators.moc"
