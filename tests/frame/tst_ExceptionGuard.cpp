// The guard every slot body runs in: the two log lines in the host's code page, the
// "Information" box, and a dialog that stays usable afterwards.

#include <QtTest>
#include <stdexcept>
#include <string>

#include "DataColumns.h"
#include "LogCapture.h"
#include "MessageBoxAnswerer.h"
#include "frame/ExceptionGuard.h"

namespace {

// GBK bytes of "异常位置：" and "异常描述：", the host's log readers look for exactly these.
const QByteArray kPlace = QByteArray::fromHex("d2ecb3a3cebbd6c3a3ba");
const QByteArray kDescription = QByteArray::fromHex("d2ecb3a3c3e8caf6a3ba");

enum class Thrown { Standard, StdString, QtString, Literal, Other };

void throwAs(Thrown kind) {
    switch (kind) {
        case Thrown::Standard:
            throw std::runtime_error("engine refused");
        case Thrown::StdString:
            throw std::string("engine refused");
        case Thrown::QtString:
            throw QStringLiteral("engine refused");
        case Thrown::Literal:
            throw "engine refused";
        case Thrown::Other:
            throw 42;
    }
}

}  // namespace

Q_DECLARE_METATYPE(Thrown)

class tst_ExceptionGuard : public QObject {
    Q_OBJECT

private slots:
    void placeAndDescriptionLinesAreGbk() {
        const std::string place = wc::exceptionPlaceLine("/src/edit/Widget_Contourize.cpp", 57);
        QCOMPARE(QByteArray::fromStdString(place), kPlace + "Widget_Contourize.cpp : 57");
        const std::string description =
            wc::exceptionDescriptionLine(QString::fromUtf8("层 top 不存在"));
        // The description itself is converted too: 层 is B2E3 in GBK.
        QVERIFY(QByteArray::fromStdString(description).startsWith(kDescription + "\xb2\xe3"));
    }

    void guardedCatchesEveryKind_data() {
        wctest::columns<Thrown, QString>("kind", "shown");
        QTest::newRow("std::exception") << Thrown::Standard << "engine refused";
        QTest::newRow("std::string") << Thrown::StdString << "engine refused";
        QTest::newRow("QString") << Thrown::QtString << "engine refused";
        QTest::newRow("text literal") << Thrown::Literal << "engine refused";
        QTest::newRow("anything else") << Thrown::Other << "Unknown exception";
    }

    void guardedCatchesEveryKind() {
        QFETCH(Thrown, kind);
        QFETCH(QString, shown);
        QWidget dialog;
        wctest::MessageBoxAnswerer boxes;
        wctest::LogCapture log;

        const bool ok = wc::guarded(&dialog, "Widget_Test.cpp", 12, [&] { throwAs(kind); });

        QVERIFY(!ok);
        QCOMPARE(boxes.count(), 1);
        QCOMPARE(boxes.last().title, QStringLiteral("Information"));
        QCOMPARE(boxes.last().text, shown);
        const auto errors = log.errors();
        QCOMPARE(int(errors.size()), 2);
        QCOMPARE(QByteArray::fromStdString(errors[0]), kPlace + "Widget_Test.cpp : 12");
        QCOMPARE(QByteArray::fromStdString(errors[1]), kDescription + shown.toUtf8());

        // The dialog is still there and the next slot body runs normally.
        bool ran = false;
        QVERIFY(wc::guarded(&dialog, "Widget_Test.cpp", 13, [&] { ran = true; }));
        QVERIFY(ran);
        QCOMPARE(boxes.count(), 1);
    }
};

QTEST_MAIN(tst_ExceptionGuard)
#include "tst_ExceptionGuard.moc"
