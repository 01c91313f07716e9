// What the dialogs do on a bad day: engine operations that fail, throw, or never return until
// stopped, a dialog destroyed while its engine call runs, and a monkey that clicks, types and
// switches units and languages at random in every dialog of the demo's catalogue.

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>

#include "DataColumns.h"
#include "DialogCatalogue.h"
#include "MessageBoxAnswerer.h"
#include "PluginSpy.h"
#include "ProgressWindows.h"
#include "ReferenceEngine.h"
#include "SampleJobScene.h"
#include "UnitScope.h"
#include "frame/BackgroundRun.h"
#include "progress_value.h"

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;

enum class Fault {
    ReturnsFalse,
    ThrowsText,
    ThrowsStd,
    PartialAfterStop,
    DialogDestroyed,
    ReenteredDuringRun
};

template <typename Arg, typename = void>
struct IsMap : std::false_type {};
template <typename Arg>
struct IsMap<Arg, std::void_t<typename Arg::key_type, typename Arg::mapped_type>> : std::true_type {
};

// The progress block among an engine call's arguments, if it has one.
template <typename... Args>
Korvo::COMMON::progress_state* progressOf(Args&&... args) {
    Korvo::COMMON::progress_state* found = nullptr;
    const auto look = [&found](auto&& arg) {
        using Arg = std::decay_t<decltype(arg)>;
        if constexpr (std::is_pointer_v<Arg> && std::is_base_of_v<Korvo::COMMON::progress_state,
                                                                  std::remove_pointer_t<Arg>>) {
            if (arg != nullptr) {
                found = arg;
            }
        }
    };
    (look(args), ...);
    return found;
}

// An engine operation that misbehaves as `fault` says. `calls` counts its calls.
auto faulty(Fault fault, std::shared_ptr<std::atomic<int>> calls) {
    return [fault, calls](auto&&... args) -> bool {
        ++*calls;
        switch (fault) {
            case Fault::ReturnsFalse:
                return false;
            case Fault::ThrowsText:
                throw std::string("engine lost its licence");
            case Fault::ThrowsStd:
                throw std::runtime_error("engine ran out of memory");
            case Fault::PartialAfterStop:
            case Fault::DialogDestroyed:
            case Fault::ReenteredDuringRun: {
                Korvo::COMMON::progress_state* progress = progressOf(args...);
                while (progress != nullptr && !progress->is_stop_requested()) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(2));
                }
                // One default entry in each writable map argument (the result, and maybe a
                // copy of the ranges): what an engine had found when it was stopped.
                const auto fill = [](auto&& arg) {
                    using Arg = std::remove_reference_t<decltype(arg)>;
                    if constexpr (!std::is_const_v<Arg> && IsMap<Arg>::value) {
                        arg[typename Arg::key_type{}];
                    }
                };
                (fill(args), ...);
                return true;
            }
        }
        return false;
    };
}

// Puts the faulty operation in place of the one a dialog runs.
using Installer = std::function<void(Fault, std::shared_ptr<std::atomic<int>>)>;

template <typename Hook>
Installer install(Hook wcref::EngineHooks::*member) {
    return [member](Fault fault, std::shared_ptr<std::atomic<int>> calls) {
        wcref::engineHooks().*member = Hook(faulty(fault, std::move(calls)));
    };
}

const demo::DialogEntry& entryNamed(const QString& menu) {
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        if (entry.menu == menu) {
            return entry;
        }
    }
    qFatal("no dialog %s in the catalogue", qPrintable(menu));
    return demo::dialogCatalogue().front();
}

}  // namespace

Q_DECLARE_METATYPE(Fault)
Q_DECLARE_METATYPE(Installer)

class tst_Robustness : public QObject {
    Q_OBJECT

private slots:
    void init() {
        QVERIFY(scene_.open());
        wcref::setLongOperationDuration(std::chrono::milliseconds(0));
        context_.host = scene_.host();
        context_.log = [](const QString&) {};
        context_.job = QString::fromLatin1(kJob);
        context_.step = QStringLiteral("pcb");
    }
    void cleanup() {
        wcref::engineHooks() = wcref::EngineHooks();
        QVERIFY(scene_.close());
    }

    // Every engine-running dialog against every fault: no crash, no box for a worker's
    // exception, the run's end shown, the host told of the change where the dialog tells it,
    // and the dialog usable for a normal run afterwards.
    void faultInjection_data() {
        wctest::columns<QString, Installer, Fault, bool>("menu", "install", "fault", "notifies");
        struct Dialog {
            const char* menu;
            Installer install;
            bool notifies;
        };
        const Dialog dialogs[] = {
            {"Signal Layer Checks...", install(&wcref::EngineHooks::signal_layers_checks), false},
            {"Signal Layer Optimization...", install(&wcref::EngineHooks::signal_layer_DFM_op),
             true},
            {"Solder Mask Optimization...", install(&wcref::EngineHooks::solder_mask_DFM_op), true},
            {"Advanced Teardrop Creation...", install(&wcref::EngineHooks::teardrop_create_DFM_op),
             true},
            {"NFP Removal...", install(&wcref::EngineHooks::NFP_removal_DFM_op), true}};
        const std::pair<const char*, Fault> faults[] = {
            {"returns false", Fault::ReturnsFalse},
            {"throws a text", Fault::ThrowsText},
            {"throws std::exception", Fault::ThrowsStd},
            {"partial results after a stop", Fault::PartialAfterStop},
            {"dialog destroyed during the run", Fault::DialogDestroyed},
            {"second click, unit, language and close during the run", Fault::ReenteredDuringRun},
        };
        for (const Dialog& dialog : dialogs) {
            for (const auto& fault : faults) {
                const QByteArray tag = QByteArray(dialog.menu) + " " + fault.first;
                QTest::newRow(tag.constData()) << QString::fromLatin1(dialog.menu) << dialog.install
                                               << fault.second << dialog.notifies;
            }
        }
    }
    void faultInjection() {
        QFETCH(QString, menu);
        QFETCH(Installer, install);
        QFETCH(Fault, fault);
        QFETCH(bool, notifies);
        const demo::DialogEntry& entry = entryNamed(menu);
        QPointer<QWidget> dialog = entry.create(context_);
        dialog->show();
        auto calls = std::make_shared<std::atomic<int>>(0);
        install(fault, calls);

        // Ends a run wrongly started inside the first, so that the row fails instead of hanging.
        QTimer rescue;
        rescue.setSingleShot(true);
        QObject::connect(&rescue, &QTimer::timeout, [] { wctest::stopProgressWindows(); });
        int calls_of_second_click = 0;
        QTimer interferer;
        QObject::connect(&interferer, &QTimer::timeout, [&] {
            if (!wctest::isProgressShown()) {
                return;
            }
            if (fault == Fault::DialogDestroyed && !dialog.isNull()) {
                delete dialog.data();
            } else if (fault == Fault::PartialAfterStop) {
                wctest::stopProgressWindows();
            } else if (fault == Fault::ReenteredDuringRun && !dialog.isNull()) {
                if (*calls == 0) {
                    return;  // the window is up, but the run's own engine call has not begun
                }
                // What a host may do while the progress window keeps the user out.
                interferer.stop();
                const int before = *calls;
                rescue.start(3000);
                entry.apply(dialog.data());
                calls_of_second_click = *calls - before;
                entry.changeUnit(dialog);
                entry.changeLanguage(dialog);
                dialog->close();
                wctest::stopProgressWindows();
            }
        });
        interferer.start(5);
        wctest::MessageBoxAnswerer boxes;
        wctest::PluginSpy messages;
        entry.apply(dialog.data());
        interferer.stop();

        QCOMPARE(boxes.count(), 0);
        if (fault == Fault::DialogDestroyed) {
            QVERIFY(dialog.isNull());
            // The worker may still be starting: it was left to end on its own.
            QVERIFY(wc::BackgroundRun::waitForDetachedWorkers(10000));
            QVERIFY(*calls > 0);
            return;
        }
        QVERIFY(*calls > 0);
        QCOMPARE(calls_of_second_click, 0);
        QVERIFY(!wctest::isProgressShown());
        if (notifies) {
            QCOMPARE(messages.withCode(20002401).size(), 1);
            QCOMPARE(messages.withCode(20002400).size(), 1);
        }
        // Usable afterwards: the next run reaches the engine again and ends.
        dialog->show();
        wcref::engineHooks() = wcref::EngineHooks();
        install(Fault::ReturnsFalse, calls);
        const int before = *calls;
        entry.apply(dialog.data());
        QVERIFY(*calls > before);
        QVERIFY(dialog->isVisible());
    }

    // Random clicks, typed texts, choices and unit and language switches in every dialog of the
    // catalogue, with a fixed seed per dialog. Passes when nothing crashes, nothing throws out of
    // a slot and no box is left open; AddressSanitizer adds leaks and bad memory in CI.
    // WC_MONKEY_SHARD="k/n" keeps every n-th dialog from the k-th, so that ctest can run the
    // shards side by side.
    void monkey_data() {
        QTest::addColumn<int>("index");
        const QStringList shard = qEnvironmentVariable("WC_MONKEY_SHARD", "0/1").split('/');
        const int parts = std::max(1, shard.value(1).toInt());
        const int part = shard.value(0).toInt();
        for (int i = part; i < int(demo::dialogCatalogue().size()); i += parts) {
            QTest::newRow(demo::dialogCatalogue()[size_t(i)].menu.toUtf8().constData()) << i;
        }
    }
    void monkey() {
        QFETCH(int, index);
        const demo::DialogEntry& entry = demo::dialogCatalogue()[size_t(index)];
        wctest::UnitScope units(scene_.host(), 0);
        int unit = 0;
        QPointer<QWidget> dialog = entry.create(context_);
        dialog->show();
        wctest::MessageBoxAnswerer boxes;
        QTimer stopper;  // runs started by the monkey are stopped at once now and then
        QObject::connect(&stopper, &QTimer::timeout, [] { wctest::stopProgressWindows(); });
        QRandomGenerator random(quint32(20261123 + index));
        const auto pick = [&random](int count) { return int(random.bounded(quint32(count))); };
        const QStringList texts = {
            "",        "0", "12.5", "-5",  "1e308", "abc", "中文", "99999999999999999999",
            "0.00001", " ", "top;", "r10", "-0",    "3,5"};
        const int steps = qEnvironmentVariableIntValue("WC_MONKEY_STEPS") > 0
                              ? qEnvironmentVariableIntValue("WC_MONKEY_STEPS")
                              : 1000;
        int acted = 0;
        for (int step = 0; step < steps && !dialog.isNull(); ++step) {
            if (!dialog->isVisible()) {
                dialog->show();
            }
            QList<QWidget*> widgets;
            for (QWidget* widget : dialog->findChildren<QWidget*>()) {
                if (widget->isVisible() && widget->isEnabled() &&
                    (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                     qobject_cast<QComboBox*>(widget) || qobject_cast<QSpinBox*>(widget) ||
                     qobject_cast<QTableWidget*>(widget))) {
                    widgets.append(widget);
                }
            }
            QWidget* target = widgets.isEmpty() ? nullptr : widgets[pick(widgets.size())];
            const quint32 action = random.bounded(20u);
            random.bounded(4u) == 0 ? stopper.start(1) : stopper.stop();
            try {
                if (action == 0) {
                    unit = 1 - unit;
                    units.change(unit);
                    entry.changeUnit(dialog);
                } else if (action == 1) {
                    entry.changeLanguage(dialog);
                } else if (target == nullptr || !target->isVisible() || !target->isEnabled()) {
                    continue;
                } else if (auto* button = qobject_cast<QAbstractButton*>(target)) {
                    button->click();
                } else if (auto* edit = qobject_cast<QLineEdit*>(target)) {
                    if (!edit->isReadOnly()) {
                        edit->setText(texts[pick(texts.size())]);
                        QTest::keyClick(edit, Qt::Key_Return);
                        emit edit->editingFinished();
                    }
                } else if (auto* combo = qobject_cast<QComboBox*>(target)) {
                    if (combo->count() > 0) {
                        combo->setCurrentIndex(pick(combo->count()));
                    }
                } else if (auto* spin = qobject_cast<QSpinBox*>(target)) {
                    spin->setValue(pick(spin->maximum() + 1));
                } else if (auto* table = qobject_cast<QTableWidget*>(target)) {
                    if (table->rowCount() > 0 && table->columnCount() > 0) {
                        table->setCurrentCell(pick(table->rowCount()), pick(table->columnCount()));
                    }
                } else {
                    continue;  // a label or a frame: nothing to do
                }
                ++acted;
            } catch (const std::exception& e) {
                QFAIL(qPrintable(QStringLiteral("exception out of a slot at step %1: %2")
                                     .arg(step)
                                     .arg(QString::fromLocal8Bit(e.what()))));
            } catch (...) {
                QFAIL(qPrintable(QStringLiteral("exception out of a slot at step %1").arg(step)));
            }
            QCoreApplication::processEvents();
        }
        stopper.stop();
        QVERIFY(!wctest::isProgressShown());
        QVERIFY(!dialog.isNull());
        qInfo("%s: %d of %d steps acted", qPrintable(entry.menu), acted, steps);
        // Most steps must reach a widget, or the monkey proves nothing.
        QVERIFY2(acted > steps / 2, qPrintable(QString::number(acted)));
        delete dialog.data();
    }

private:
    wctest::SampleJobScene scene_;
    demo::DemoContext context_;
};

QTEST_MAIN(tst_Robustness)
#include "tst_Robustness.moc"
