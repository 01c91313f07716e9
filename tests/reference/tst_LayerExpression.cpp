// Layer expressions resolved against the sample job's matrix, directly and through the
// UI service the dialogs call.

#include <QtTest>

#include "DataRows.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "LayerExpression.h"
#include "ReferenceEngine.h"

using wctest::row;

namespace {

QString joined(const std::vector<std::string>& names) {
    QStringList list;
    for (const std::string& name : names)
        list << QString::fromStdString(name);
    return list.join(';');
}

std::vector<std::string> viaService(const QString& expression) {
    return Korvo::UIAPI::getAnalyzeAndDFMLayers("sample_job", expression.toStdString());
}

}  // namespace

class tst_LayerExpression : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("sample_job"));
        std::vector<std::string> steps;
        QCOMPARE(Korvo::API::get_matrix("sample_job", steps, matrix_), std::string("OK"));
    }

    void filters_data() {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("layers");
        row("analysis default", ".type=signal|mixed&side=top|bottom&context=board", "top;bottom");
        row("signal and mixed", ".type=signal|mixed&context=board", "top;l3;l4;bottom");
        row("signal only", ".type=signal&context=board", "top;l3;bottom");
        row("solder mask", ".type=solder_mask&context=board", "top_mask;bottom_mask");
        row("misc context", ".context=misc", "doc;fab_notes");
        row("negative", ".polarity=negative", "l2_gnd");
        row("name prefix", ".name=l*", "l2_gnd;l3;l4;l5_pwr");
        row("name alternatives and side", ".name=*_mask|*_silk&side=bottom",
            "bottom_mask;bottom_silk");
        row("name infix", ".name=*drill*", "drill;via_drill");
        row("blanks around parts", "  . type = drill & side = none  ", "drill;via_drill");
        row("values are case-sensitive", ".type=Signal", "");
        row("terms all apply", ".type=signal&type=mixed", "");
        row("exact name", ".name=top", "top");
    }
    void filters() {
        QFETCH(QString, expression);
        QFETCH(QString, layers);
        const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
        QVERIFY2(parsed.ok, parsed.error.c_str());
        QVERIFY(parsed.is_filter);
        std::vector<std::string> unknown;
        QCOMPARE(joined(wcref::resolveLayerExpression(parsed, matrix_, &unknown)), layers);
        QVERIFY(unknown.empty());
        QCOMPARE(joined(viaService(expression)), layers);
    }

    void malformed_data() {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("error");
        row("point alone", ".", "no terms");
        row("point and blanks", ".   ", "no terms");
        row("missing equals", ".type", "has no '='");
        row("empty value", ".type=", "empty value");
        row("empty alternative", ".type=signal|", "empty value");
        row("double ampersand", ".type=signal&&side=top", "term 2 is empty");
        row("trailing ampersand", ".type=signal&", "term 2 is empty");
        row("lone ampersand", ".&", "term 1 is empty");
        row("unknown key", ".colour=red", "unknown key \"colour\"");
        row("empty key", ".=signal", "unknown key \"\"");
        row("two points", "..type=signal", "unknown key \".type\"");
        row("double equals", ".type==signal", "more than one '='");
    }
    void malformed() {
        QFETCH(QString, expression);
        QFETCH(QString, error);
        const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
        QVERIFY(!parsed.ok);
        QVERIFY2(QString::fromStdString(parsed.error).contains(error), parsed.error.c_str());
        QVERIFY(wcref::resolveLayerExpression(parsed, matrix_).empty());
        QVERIFY(viaService(expression).empty());
    }

    void nameLists_data() {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("layers");
        QTest::addColumn<QString>("unknown");
        row("two names", "top;bottom", "top;bottom", "");
        row("given order kept", "bottom;l3;top", "bottom;l3;top", "");
        row("blanks and empty parts", " l3 ;; top ;", "l3;top", "");
        row("unknown in the middle", "top;nosuch;bottom", "top;bottom", "nosuch");
        row("repeated name once", "bottom;top;bottom", "bottom;top", "");
        row("case matters", "TOP;top", "top", "TOP");
        row("empty", "", "", "");
        row("separators only", " ; ;; ", "", "");
        row("point inside a name", "top;.type=signal", "top", ".type=signal");
    }
    void nameLists() {
        QFETCH(QString, expression);
        QFETCH(QString, layers);
        QFETCH(QString, unknown);
        const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
        QVERIFY(parsed.ok);
        QVERIFY(!parsed.is_filter);
        std::vector<std::string> missing;
        QCOMPARE(joined(wcref::resolveLayerExpression(parsed, matrix_, &missing)), layers);
        QCOMPARE(joined(missing), unknown);
        QCOMPARE(joined(viaService(expression)), layers);
    }

    void wildcards_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        QTest::newRow("star matches empty") << "*" << QString() << true;
        QTest::newRow("two stars") << "a*b*c" << QString("aXbYc") << true;
        QTest::newRow("anchored start") << "a*" << QString("ba") << false;
        QTest::newRow("backtrack") << "*x" << QString("xx") << true;
        QTest::newRow("empty pattern, empty text") << "" << QString() << true;
        QTest::newRow("empty pattern") << "" << QString("a") << false;
        QTest::newRow("star between") << "a*b" << QString("ab") << true;
        QTest::newRow("double star") << "**" << QString("abc") << true;
        QTest::newRow("anchored end") << "a*c" << QString("abcbd") << false;
    }
    void wildcards() {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, matches);
        QCOMPARE(wcref::wildcardMatch(pattern.toStdString(), text.toStdString()), matches);
    }

    void unknownJobGivesNothing() {
        QVERIFY(Korvo::UIAPI::getAnalyzeAndDFMLayers("no_such_job", "top;bottom").empty());
        QVERIFY(Korvo::UIAPI::getAnalyzeAndDFMLayers("no_such_job", ".type=signal").empty());
    }

private:
    std::vector<Korvo::API::layer_info> matrix_;
};

QTEST_MAIN(tst_LayerExpression)
#include "tst_LayerExpression.moc"
