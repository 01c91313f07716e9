#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>
#include <QTranslator>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "MarkingTranslator.h"
#include "MessageBoxAnswerer.h"
#include "ReferenceEngine.h"
#include "TemporaryWorkingDirectory.h"
#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "frame/DialogTexts.h"
#include "frame/FieldTable.h"
#include "frame/ListPopup.h"
#include "frame/RangeMap.h"
#include "frame/RunControls.h"

using wctest::row;

namespace {

struct Record {
    int32_t min = -1;
    double spacing = -1.0;
    int32_t hidden = -1;
};

const std::vector<wc::FieldRow<Record>> kRows = {
    {"Min:", "min_value", "Min", 4.0, 0.0, 20.0, "4", &Record::min},
    {" Spacing:", "pp_spacing", "Spacing", 10.0, 0.0, 1000.0, "10", &Record::spacing},
    {"Hidden:", "hidden", "Hidden", 1.0, 0.0, 30.0, "1", &Record::hidden, false},
    {"Shown only:", "shown", "Shown", 2.0, 0.0, 30.0, "2"},
};

// Words every text with a count its own way and leaves the others alone, as a catalogue with
// plural forms does.
class CountCatalogue : public QTranslator {
public:
    QString translate(const char*, const char* source, const char*, int) const override {
        return QByteArray(source).contains("%n") ? QStringLiteral("已处理 %n 个层") : QString();
    }
    bool isEmpty() const override { return false; }
};

}  // namespace

// The shared run arrangement: the field table, the run controls and their rules, the range map
// and the list popup.
class tst_RunControls : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("sample_job"));
    }

    void fieldTableFillsTheRecord_data() {
        wctest::columns<int, QString, QString, int, double>("unit", "min", "spacing", "min_nm",
                                                            "spacing_nm");
        row("mil defaults", 0, "4.00", "10.00", 101600, 254000.0);
        // int32 members are truncated, double members kept.
        row("mm typed", 1, "0.0010009", "0.0000015", 1000, 1.5);
        row("empty keeps the member", 0, "", "1", -1, 25400.0);
    }
    void fieldTableFillsTheRecord() {
        QFETCH(int, unit);
        QFETCH(QString, min);
        QFETCH(QString, spacing);
        QFETCH(int, min_nm);
        QFETCH(double, spacing_nm);
        QWidget dialog;
        wctest::UnitScope scope(&dialog, unit);
        wc::FieldTable<Record> table(&dialog, &dialog, kRows);
        if (QTest::currentDataTag() == QByteArray("mil defaults")) {
            QCOMPARE(table.texts(), QStringList({"4.00", "10.00", "1.00", "2.00"}));
        } else {
            table.setTexts({min, spacing});
        }
        Record record;
        table.fill(record);
        QCOMPARE(record.min, min_nm);
        QCOMPARE(record.spacing, spacing_nm);
        QCOMPARE(record.hidden, -1);  // a disabled row never reaches the record
        QCOMPARE(table.firstEmpty(), min.isEmpty() ? 0 : -1);
        QVERIFY(!dialog.findChild<QLineEdit*>("lineEdit_Hidden")->isEnabled());
        QCOMPARE(dialog.findChild<QLabel*>("label_Spacing")->text(), " Spacing:");
        QCOMPARE(dialog.findChild<QLabel*>("label_SpacingUnit")->text(), unit == 0 ? "mil" : "mm");
    }

    void fieldTableRevertsOutOfRange() {
        QWidget dialog;
        wctest::UnitScope scope(&dialog, 0);
        wc::FieldTable<Record> table(&dialog, &dialog, kRows);
        wctest::MessageBoxAnswerer answerer;
        table.edit(0)->setText("21");
        QTest::keyClick(table.edit(0), Qt::Key_Return);
        QCOMPARE(answerer.count(), 1);
        QCOMPARE(answerer.last().text,
                 "Illegal float value\nfloating value for field \"min_value\" is out of range: "
                 "21\nlegal values: from 0 to 20");
        QCOMPARE(table.edit(0)->text(), "4");
    }

    void runButtonsAndRememberedScope() {
        QWidget dialog;
        wc::RunControls controls(&dialog, {"SignalLayerRanges", "top", "", true});
        controls.pressRun(wc::ScopeProfile);
        QCOMPARE(controls.rememberedScope(), 2);
        controls.pressRun(wc::ScopeGlobal);
        // The global button leaves the remembered scope alone.
        QCOMPARE(controls.rememberedScope(), 2);
        QCOMPARE(controls.runButton(0)->styleSheet(),
                 "QPushButton{background-image:url(:/Widget_Common/Resources/Run "
                 "globally1.jpg);border: 2px solid red;}");
        QCOMPARE(controls.runButton(2)->styleSheet(),
                 "QPushButton{background-image:url(:/Widget_Common/Resources/Run on features "
                 "inside profile1.jpg);}");
        QCOMPARE(controls.runButton(1)->toolTip(), "Run on features on screen only");
    }

    // The count is an argument of the translation, so a catalogue words it in its language.
    void layerCounts_data() {
        wctest::columns<int, int, QString, QString>("count", "wording", "english", "translated");
        const int run = int(wc::CountWording::Run);
        const int viewer = int(wc::CountWording::Viewer);
        row("none", 0, run, "No layers were processed", "No layers were processed");
        row("one", 1, run, "1 layer was processed", "已处理 1 个层");
        row("one in the viewer", 1, viewer, "1 layer  was processed", "已处理 1 个层");
        row("several", 3, run, "3 layers were processed", "已处理 3 个层");
    }
    void layerCounts() {
        QFETCH(int, count);
        QFETCH(int, wording);
        QFETCH(QString, english);
        QFETCH(QString, translated);
        QWidget dialog;
        const auto words = static_cast<wc::CountWording>(wording);
        QCOMPARE(wc::layersProcessedText(&dialog, count, words), english);
        CountCatalogue catalogue;
        QCoreApplication::installTranslator(&catalogue);
        const QString shown = wc::layersProcessedText(&dialog, count, words);
        QCoreApplication::removeTranslator(&catalogue);
        QCOMPARE(shown, translated);
    }

    // Every kind of text DialogTexts remembers is shown again in the language of the moment.
    void dialogTextsFollowTheLanguage() {
        QWidget dialog;
        auto* label = new QLabel(&dialog);
        wc::setSourceText(&dialog, label, "Label");
        auto* box = new QGroupBox(&dialog);
        wc::setSourceText(&dialog, box, "Title");
        auto* action = new QAction(&dialog);
        wc::setSourceText(&dialog, action, "Action");
        wc::setSourceStatusTip(&dialog, action, "Status");
        auto* edit = new QLineEdit(&dialog);
        wc::setSourceText(&dialog, edit, "Placeholder");
        wc::setSourceToolTip(&dialog, edit, "Tip");
        auto* combo = new QComboBox(&dialog);
        wc::setSourceItems(&dialog, combo, {"One", "Two"});
        auto* table = new QTableWidget(&dialog);
        wc::setSourceItems(&dialog, table, {"Range", "Value"});
        auto* tabs = new QTabWidget(&dialog);
        tabs->addTab(new QWidget, QString());
        wc::setSourceItems(&dialog, tabs, {"Main"});
        wc::setSourceText(&dialog, &dialog, "Window");
        const auto shown = [&] {
            return QStringList{label->text(),           box->title(),
                               action->text(),          action->statusTip(),
                               edit->placeholderText(), edit->toolTip(),
                               combo->itemText(1),      table->horizontalHeaderItem(1)->text(),
                               tabs->tabText(0),        dialog.windowTitle()};
        };
        const QStringList english{"Label", "Title", "Action", "Status", "Placeholder",
                                  "Tip",   "Two",   "Value",  "Main",   "Window"};
        QCOMPARE(shown(), english);
        {
            wctest::MarkingTranslator marked("QWidget");
            wc::retranslate(&dialog);
        }
        QStringList translated;
        for (const QString& text : english) {
            translated << QLatin1Char('[') + text + QLatin1Char(']');
        }
        QCOMPARE(shown(), translated);
        QCOMPARE(combo->count(), 2);
    }

    void layerResolution_data() {
        wctest::columns<QString, QStringList, QStringList>("expression", "layers", "missing");
        row("names", "bottom;x1;top;x2", QStringList{"bottom", "top"}, QStringList{"x1", "x2"});
        row("filter", ".type=signal&side=top|bottom", QStringList{"top", "bottom"}, QStringList{});
        row("empty", "", QStringList{}, QStringList{});
    }
    void layerResolution() {
        QFETCH(QString, expression);
        QFETCH(QStringList, layers);
        QFETCH(QStringList, missing);
        const wc::LayerResolution resolution = wc::resolveLayers("sample_job", expression);
        QStringList resolved;
        for (const std::string& layer : resolution.layers) {
            resolved.append(QString::fromStdString(layer));
        }
        QCOMPARE(resolved, layers);
        QCOMPARE(resolution.missing, missing);
    }

    void rangeMapByNameAndRow() {
        std::vector<Korvo::UIAPI::Analysis_Ranges_Record> records =
            Korvo::UIAPI::getRanges("SignalLayerRanges");
        QVERIFY(records.size() > 5);
        records.resize(3);
        std::swap(records[0], records[2]);
        records.push_back({"no such range", 1, 2, 3});
        const auto by_name = wc::buildRangeMap<Korvo::API::signal_layers_checks_items,
                                               Korvo::API::signal_check_range>(
            "SignalLayerRanges", records, wc::toCheckRange);
        QCOMPARE(by_name.size(), size_t(3));  // the unknown name is left out
        QCOMPARE(by_name.at(Korvo::API::signal_layers_checks_items(2)).red, records[0].RedLv);
        const auto by_row = wc::buildRangeMap<int, Korvo::API::dfm_range_value>(
            "SignalLayerRanges", records, wc::toDfmRangeValue, wc::RangeLookup::ByRow);
        QCOMPARE(by_row.size(), size_t(4));
        QCOMPARE(by_row.at(0).limits.second, records[0].YellowLv);
        QCOMPARE(by_row.at(0).value, records[0].GreenLv);
    }

    void popups() {
        wctest::TemporaryWorkingDirectory working;
        for (const char* name : {"b", "a"}) {
            QVERIFY(
                wctest::writeFile(QString("ERFconfig/SignalLayerRanges/%1.json").arg(name), {}));
        }
        QWidget dialog;
        wc::RunControls controls(&dialog, {"SignalLayerRanges", "", "", true});
        controls.setJob("sample_job");
        controls.showLayerPopup();
        auto* list = controls.layerPopup()->findChild<QListWidget*>("listWidget_Items");
        QCOMPARE(list->count(), 12);  // the displayed (board) layers of the sample job
        list->item(4)->setSelected(true);
        list->item(2)->setSelected(true);
        controls.layerPopup()->choose();
        QCOMPARE(controls.layerEdit()->text(), list->item(2)->text() + ";" + list->item(4)->text());

        QSignalSpy chosen(&controls, &wc::RunControls::erfChosen);
        controls.showErfPopup();
        QCOMPARE(controls.erfPopup()->items(), QStringList({"a", "b"}));
        controls.erfPopup()
            ->findChild<QListWidget*>("listWidget_Items")
            ->item(1)
            ->setSelected(true);
        controls.erfPopup()->choose();
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chosen.at(0).at(0).toString(), "b");
    }
};

QTEST_MAIN(tst_RunControls)
#include "tst_RunControls.moc"
