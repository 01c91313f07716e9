// Layer expressions resolved against the sample job's matrix, directly and through the
// UI service the dialogs call.

#include <QtTest>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "LayerExpression.h"
#include "ReferenceEngine.h"

namespace {

QString joined(const std::vector<std::string>& names) {
    QStringList list;
    for (const std::string& name : names) {
        list << QString::fromStdString(name);
    }
    return list.join(';');
}

}  // namespace

class tst_LayerExpression : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void filters_data();
    void filters();
    void malformed_data();
    void malformed();
    void nameLists_data();
    void nameLists();
    void wildcards_data();
    void wildcards();
    void unknownJobGivesNothing();

private:
    std::vector<Korvo::API::layer_info> matrix_;
};

void tst_LayerExpression::initTestCase() {
    wcref::resetEngine();
    QVERIFY(wcref::openSampleJob("sample_job"));
    std::vector<std::string> steps;
    QCOMPARE(QString::fromStdString(Korvo::API::get_matrix("sample_job", steps, matrix_)),
             QString("OK"));
    QVERIFY(matrix_.size() > 10);
}

void tst_LayerExpression::filters_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("layers");

    QTest::newRow("analysis default") << ".type=signal|mixed&side=top|bottom&context=board"
                                      << "top;bottom";
    QTest::newRow("signal and mixed") << ".type=signal|mixed&context=board"
                                      << "top;l3;l4;bottom";
    QTest::newRow("signal only") << ".type=signal&context=board"
                                 << "top;l3;bottom";
    QTest::newRow("solder mask") << ".type=solder_mask&context=board"
                                 << "top_mask;bottom_mask";
    QTest::newRow("misc context") << ".context=misc"
                                  << "doc;fab_notes";
    QTest::newRow("negative") << ".polarity=negative"
                              << "l2_gnd";
    QTest::newRow("name prefix") << ".name=l*"
                                 << "l2_gnd;l3;l4;l5_pwr";
    QTest::newRow("name alternatives and side") << ".name=*_mask|*_silk&side=bottom"
                                                << "bottom_mask;bottom_silk";
    QTest::newRow("name infix") << ".name=*drill*"
                                << "drill;via_drill";
    QTest::newRow("blanks around parts") << "  . type = drill & side = none  "
                                         << "drill;via_drill";
    QTest::newRow("values are case-sensitive") << ".type=Signal"
                                               << "";
    QTest::newRow("terms all apply") << ".type=signal&type=mixed"
                                     << "";
    QTest::newRow("exact name") << ".name=top"
                                << "top";
}

void tst_LayerExpression::filters() {
    QFETCH(QString, expression);
    QFETCH(QString, layers);

    const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
    QVERIFY2(parsed.ok, parsed.error.c_str());
    QVERIFY(parsed.is_filter);
    std::vector<std::string> unknown;
    QCOMPARE(joined(wcref::resolveLayerExpression(parsed, matrix_, &unknown)), layers);
    QVERIFY(unknown.empty());
    QCOMPARE(joined(Korvo::UIAPI::getAnalyzeAndDFMLayers("sample_job", expression.toStdString())),
             layers);
}

void tst_LayerExpression::malformed_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("error");

    QTest::newRow("point alone") << "."
                                 << "no terms";
    QTest::newRow("point and blanks") << ".   "
                                      << "no terms";
    QTest::newRow("missing equals") << ".type"
                                    << "has no '='";
    QTest::newRow("empty value") << ".type="
                                 << "empty value";
    QTest::newRow("empty alternative") << ".type=signal|"
                                       << "empty value";
    QTest::newRow("double ampersand") << ".type=signal&&side=top"
                                      << "term 2 is empty";
    QTest::newRow("trailing ampersand") << ".type=signal&"
                                        << "term 2 is empty";
    QTest::newRow("lone ampersand") << ".&"
                                    << "term 1 is empty";
    QTest::newRow("unknown key") << ".colour=red"
                                 << "unknown key \"colour\"";
    QTest::newRow("empty key") << ".=signal"
                               << "unknown key \"\"";
    QTest::newRow("two points") << "..type=signal"
                                << "unknown key \".type\"";
    QTest::newRow("double equals") << ".type==signal"
                                   << "more than one '='";
}

void tst_LayerExpression::malformed() {
    QFETCH(QString, expression);
    QFETCH(QString, error);

    const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
    QVERIFY(!parsed.ok);
    QVERIFY2(QString::fromStdString(parsed.error).contains(error), parsed.error.c_str());
    QVERIFY(wcref::resolveLayerExpression(parsed, matrix_).empty());
    QVERIFY(Korvo::UIAPI::getAnalyzeAndDFMLayers("sample_job", expression.toStdString()).empty());
}

void tst_LayerExpression::nameLists_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("unknown");

    QTest::newRow("two names") << "top;bottom"
                               << "top;bottom"
                               << "";
    QTest::newRow("given order kept") << "bottom;l3;top"
                                      << "bottom;l3;top"
                                      << "";
    QTest::newRow("blanks and empty parts") << " l3 ;; top ;"
                                            << "l3;top"
                                            << "";
    QTest::newRow("unknown in the middle") << "top;nosuch;bottom"
                                           << "top;bottom"
                                           << "nosuch";
    QTest::newRow("repeated name once") << "bottom;top;bottom"
                                        << "bottom;top"
                                        << "";
    QTest::newRow("case matters") << "TOP;top"
                                  << "top"
                                  << "TOP";
    QTest::newRow("empty") << ""
                           << ""
                           << "";
    QTest::newRow("separators only") << " ; ;; "
                                     << ""
                                     << "";
    QTest::newRow("point inside a name") << "top;.type=signal"
                                         << "top"
                                         << ".type=signal";
}

void tst_LayerExpression::nameLists() {
    QFETCH(QString, expression);
    QFETCH(QString, layers);
    QFETCH(QString, unknown);

    const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
    QVERIFY(parsed.ok);
    QVERIFY(!parsed.is_filter);
    std::vector<std::string> missing;
    QCOMPARE(joined(wcref::resolveLayerExpression(parsed, matrix_, &missing)), layers);
    QCOMPARE(joined(missing), unknown);
    QCOMPARE(joined(Korvo::UIAPI::getAnalyzeAndDFMLayers("sample_job", expression.toStdString())),
             layers);
}

void tst_LayerExpression::wildcards_data() {
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");

    QTest::newRow("star matches empty") << "*"
                                        << "" << true;
    QTest::newRow("two stars") << "a*b*c"
                               << "aXbYc" << true;
    QTest::newRow("anchored start") << "a*"
                                    << "ba" << false;
    QTest::newRow("backtrack") << "*x"
                               << "xx" << true;
    QTest::newRow("empty pattern, empty text") << ""
                                               << "" << true;
    QTest::newRow("empty pattern") << ""
                                   << "a" << false;
    QTest::newRow("star between") << "a*b"
                                  << "ab" << true;
    QTest::newRow("double star") << "**"
                                 << "abc" << true;
    QTest::newRow("anchored end") << "a*c"
                                  << "abcbd" << false;
    QTest::newRow("literal") << "top"
                             << "top_mask" << false;
}

void tst_LayerExpression::wildcards() {
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QCOMPARE(wcref::wildcardMatch(pattern.toStdString(), text.toStdString()), matches);
}

void tst_LayerExpression::unknownJobGivesNothing() {
    QVERIFY(Korvo::UIAPI::getAnalyzeAndDFMLayers("no_such_job", "top;bottom").empty());
    QVERIFY(Korvo::UIAPI::getAnalyzeAndDFMLayers("no_such_job", ".type=signal").empty());
}

QTEST_MAIN(tst_LayerExpression)
#include "tst_LayerExpression.moc"
