#include "DemoWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include "JobView.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "PluginBus.h"
#include "StepRepeatDemo.h"

namespace {

const char* const kJob = "sample_job";

QString describe(const PluginMetaData& message) {
    QStringList values;
    for (auto it = message.values.cbegin(); it != message.values.cend(); ++it) {
        values << it.key() + "=" + it.value().toString();
    }
    return QStringLiteral("message %1 from %2 to %3 %4%5")
        .arg(message.code)
        .arg(message.sender, message.receiver)
        .arg(values.isEmpty() ? QString() : "{" + values.join(", ") + "}")
        .arg(message.payload != nullptr ? " with payload" : "");
}

}  // namespace

DemoWindow::DemoWindow(QWidget* parent) : QMainWindow(parent) {
    setWindowTitle(tr("Widget_Common demo host"));
    context_.host = this;
    context_.job = QString::fromLatin1(kJob);
    context_.step = QStringLiteral("pcb");
    context_.log = [this](const QString& line) { log(line); };

    auto* left = new QWidget(this);
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(new QLabel(tr("Step:"), left));
    steps_ = new QComboBox(left);
    leftLayout->addWidget(steps_);
    leftLayout->addWidget(new QLabel(tr("Layers:"), left));
    layers_ = new QListWidget(left);
    leftLayout->addWidget(layers_);

    view_ = new JobView(this);
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(left);
    splitter->addWidget(view_);
    splitter->setStretchFactor(1, 1);

    log_ = new QPlainTextEdit(this);
    log_->setReadOnly(true);
    log_->setMaximumBlockCount(2000);
    auto* vertical = new QSplitter(Qt::Vertical, this);
    vertical->addWidget(splitter);
    vertical->addWidget(log_);
    vertical->setStretchFactor(0, 3);
    setCentralWidget(vertical);
    resize(1100, 760);

    connect(steps_, &QComboBox::currentTextChanged, this, [this](const QString& step) {
        context_.step = step;
        refreshLayers();
    });
    connect(layers_, &QListWidget::currentTextChanged, this, [this](const QString& layer) {
        if (!layer.isEmpty()) {
            view_->showLayer(kJob, context_.step.toStdString(), layer.toStdString());
        }
    });

    subscription_ = wcref::PluginBus::instance().subscribe(
        [this](const PluginMetaData& message) { log(describe(message)); });
    buildMenus();
    addDockWidget(Qt::RightDockWidgetArea, demo::makeStepRepeatDock(context_, this));
}

DemoWindow::~DemoWindow() {
    wcref::PluginBus::instance().unsubscribe(subscription_);
}

void DemoWindow::buildMenus() {
    QMenu* job = menuBar()->addMenu(tr("&Job"));
    job->addAction(tr("Open sample job"), this, [this] { openSampleJob(); });
    job->addSeparator();
    job->addAction(tr("Quit"), qApp, &QApplication::quit);

    std::map<QString, QMenu*> groups;
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        QMenu*& menu = groups[entry.group];
        if (menu == nullptr) {
            menu = menuBar()->addMenu(entry.group);
        }
        menu->addAction(entry.menu, this, [this, &entry] { openDialog(entry); });
    }

    QMenu* units = menuBar()->addMenu(tr("&Units"));
    auto* unitGroup = new QActionGroup(this);
    QAction* mil = units->addAction(tr("mil (imperial)"), this, [this] { setDisplayUnit(0); });
    QAction* mm = units->addAction(tr("mm (metric)"), this, [this] { setDisplayUnit(1); });
    for (QAction* action : {mil, mm}) {
        action->setCheckable(true);
        unitGroup->addAction(action);
    }
    (Korvo::UIAPI::getUnit(this) == 0 ? mil : mm)->setChecked(true);

    QMenu* language = menuBar()->addMenu(tr("&Language"));
    language->addAction(tr("Re-apply texts (change_language)"), this, [this] { changeLanguage(); });
}

bool DemoWindow::openSampleJob() {
    if (!Korvo::API::is_job_opened(kJob) && !Korvo::API::open_job(kJob, ":sample")) {
        log(tr("The sample job could not be opened."));
        return false;
    }
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(kJob, steps, layers);
    const QSignalBlocker blocker(steps_);
    steps_->clear();
    for (const std::string& step : steps) {
        steps_->addItem(QString::fromStdString(step));
    }
    steps_->setCurrentText(context_.step);
    refreshLayers();
    demo::refreshStepRepeatDock();
    log(tr("Opened job \"%1\": %2 steps, %3 layers")
            .arg(kJob)
            .arg(steps.size())
            .arg(layers.size()));
    return true;
}

void DemoWindow::refreshLayers() {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(kJob, steps, layers);
    layers_->clear();
    for (const Korvo::API::layer_info& layer : layers) {
        auto* item = new QListWidgetItem(QString::fromStdString(layer.name), layers_);
        item->setToolTip(QString::fromStdString(layer.context + " " + layer.type + " " +
                                                layer.side + " " + layer.polarity));
    }
    // The panel shows its step-and-repeat instances best on its first signal layer.
    for (int row = 0; row < layers_->count(); ++row) {
        if (layers[row].type == "signal") {
            layers_->setCurrentRow(row);
            break;
        }
    }
}

QWidget* DemoWindow::openDialog(const demo::DialogEntry& entry) {
    QPointer<QWidget>& dialog = dialogs_[entry.menu];
    if (dialog.isNull()) {
        dialog = entry.create(context_);
        dialog->setAttribute(Qt::WA_DeleteOnClose, false);
        log(tr("Opened %1").arg(dialog->windowTitle()));
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

void DemoWindow::setDisplayUnit(int unit) {
    if (Korvo::UIAPI::getUnit(this) == unit) {
        return;
    }
    Korvo::UIAPI::setUnit(this, unit);
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        auto it = dialogs_.find(entry.menu);
        if (it != dialogs_.end() && !it->second.isNull()) {
            entry.changeUnit(it->second);
        }
    }
    log(tr("Display unit: %1")
            .arg(QString::fromStdString(Korvo::UIAPI::getUnitStringType(this, 1))));
}

void DemoWindow::changeLanguage() {
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        auto it = dialogs_.find(entry.menu);
        if (it != dialogs_.end() && !it->second.isNull()) {
            entry.changeLanguage(it->second);
        }
    }
    log(tr("Texts re-applied"));
}

void DemoWindow::log(const QString& line) {
    log_->appendPlainText(QDateTime::currentDateTime().toString("hh:mm:ss.zzz  ") + line);
}

QStringList DemoWindow::tour(const QString& folder) {
    QDir().mkpath(folder);
    QStringList written;
    auto snap = [&](QWidget* widget, const QString& name) {
        QApplication::processEvents();
        const QString path = QDir(folder).filePath(name + ".png");
        if (widget->grab().save(path)) {
            written << path;
        }
    };
    show();
    snap(this, QStringLiteral("demo_host"));
    for (int unit : {0, 1}) {
        setDisplayUnit(unit);
        const QString suffix = unit == 0 ? QStringLiteral("_mil") : QStringLiteral("_mm");
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            QWidget* dialog = openDialog(entry);
            dialog->adjustSize();
            QString name = entry.menu;
            name.remove(QStringLiteral("...")).replace(' ', '_');
            snap(dialog, name + suffix);
            if (entry.apply) {
                const int lines = log_->blockCount();
                entry.apply(dialog);
                if (log_->blockCount() == lines) {
                    // The dialog's own limits refused a value; it says nothing by design.
                    log(tr("%1: Apply in %2 sent nothing (a value is outside its limit)")
                            .arg(dialog->windowTitle(),
                                 QString::fromStdString(Korvo::UIAPI::getUnitStringType(this, 1))));
                }
            }
        }
    }
    setDisplayUnit(0);
    // The log now holds what every dialog sent in both units.
    snap(this, QStringLiteral("demo_host_log"));
    return written;
}
