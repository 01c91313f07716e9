#include "DemoWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <set>

#include "DrillFormatPanel.h"
#include "FabricationExport.h"
#include "FeatureFilterHost.h"
#include "FeatureMoveHost.h"
#include "FeaturePick.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "MatrixPanel.h"
#include "PluginBus.h"
#include "StepRepeatDemo.h"
#include "TriageTour.h"
#include "analysis/Widget_ResultsViewer.h"
#include "analysis_drawing_data.h"
#include "frame/PluginMessages.h"

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
    leftLayout->addWidget(new QLabel(tr("Job:"), left));
    jobs_ = new QComboBox(left);
    jobs_->setObjectName(QStringLiteral("jobs"));
    leftLayout->addWidget(jobs_);
    leftLayout->addWidget(new QLabel(tr("Step:"), left));
    steps_ = new QComboBox(left);
    steps_->setObjectName(QStringLiteral("steps"));
    leftLayout->addWidget(steps_);
    leftLayout->addWidget(new QLabel(tr("Layers (checked are displayed):"), left));
    layers_ = new QListWidget(left);
    layers_->setObjectName(QStringLiteral("layers"));
    leftLayout->addWidget(layers_);

    view_ = new GraphicView(this);
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

    connect(jobs_, &QComboBox::currentTextChanged, this, [this](const QString& job) {
        if (job.isEmpty()) {
            return;
        }
        context_.job = job;
        std::vector<std::string> steps;
        std::vector<Korvo::API::layer_info> layers;
        Korvo::API::get_matrix(job.toStdString(), steps, layers);
        const QSignalBlocker blocker(steps_);
        steps_->clear();
        for (const std::string& step : steps) {
            steps_->addItem(QString::fromStdString(step));
        }
        context_.step = steps_->currentText();
        refreshLayers();
    });
    connect(steps_, &QComboBox::currentTextChanged, this, [this](const QString& step) {
        context_.step = step;
        redraw();
    });
    connect(layers_, &QListWidget::itemChanged, this, [this] { redraw(); });

    // The host's side of the plug-in messages the dialogs send: the view clears its marks when
    // the results viewer closes; the job list and the matrix re-read the job after an edit.
    onMessage(wc::code::ViewerClosed, [this](const PluginMetaData&) {
        view_->clearOverlays();
        view_->clearFeatureMarks(GraphicView::Mark::Highlighted);
    });
    // The viewer's hits: the view draws their measurement shapes and zooms or pans to them.
    for (int code :
         {wc::code::ShowOneHit, wc::code::ShowAllHits, wc::code::SolderMaskOptOneHit,
          wc::code::SolderMaskOptAllHits, wc::code::NfpOrConductorOneHit, wc::code::TeardropOneHit,
          wc::code::DrillTableOneHit, wc::code::DrillTableAllHits, wc::code::MrcOneHit,
          wc::code::MrcAllHits, wc::code::PrepareOneHit, wc::code::PrepareAllHits,
          wc::code::PadSnappingOneHit, wc::code::PadSnappingAllHits, wc::code::PowerGroundOneHit,
          wc::code::PowerGroundAllHits, wc::code::PowerGroundOptAllHits}) {
        onMessage(code, [this](const PluginMetaData& message) { showHits(message); });
    }
    onMessage(wc::code::RefreshMatrix, [this](const PluginMetaData&) { refreshLayers(); });
    onMessage(wc::code::RefreshGraphic, [this](const PluginMetaData&) {
        refreshJobs();
        view_->reload();
    });

    demo::forwardPicksToViewers(view_);

    subscription_ = wcref::PluginBus::instance().subscribe(
        [this](const PluginMetaData& message) { dispatch(message); });
    new demo::FeatureFilterHost(this);
    feature_move_ = new demo::FeatureMoveHost(this);
    buildMenus();
    new demo::StepRepeatHost(this);
}

DemoWindow::~DemoWindow() {
    wcref::PluginBus::instance().unsubscribe(subscription_);
}

void DemoWindow::buildMenus() {
    QMenu* job = menuBar()->addMenu(tr("&Job"));
    job->addAction(tr("Open sample job"), this, [this] { openSampleJob(); });
    job->addAction(tr("Open fabrication files..."), this, [this] {
        const QString folder =
            QFileDialog::getExistingDirectory(this, tr("Folder of Gerber and drill files"),
                                              QStringLiteral("/usr/share/doc/gerbv/examples"));
        if (!folder.isEmpty()) {
            openFabricationFiles(folder);
        }
    });
    job->addAction(tr("Open fabrication archive..."), this,
                   [this] { demo::FabricationExport::openArchive(this); });
    job->addAction(tr("Drill formats..."), this, [this] { openDrillFormats(); });
    job->addAction(tr("Move a feature..."), this, [this] { feature_move_->start(); });
    job->addAction(tr("Export fabrication files..."), this,
                   [this] { demo::FabricationExport::start(this); });
    job->addAction(tr("Layer matrix..."), this, [this] { openLayerMatrix(); });
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
    auto* languageGroup = new QActionGroup(this);
    QAction* english = language->addAction(tr("English"), this, [this] { setLanguage(false); });
    QAction* chinese =
        language->addAction(QStringLiteral("中文 (Chinese)"), this, [this] { setLanguage(true); });
    for (QAction* action : {english, chinese}) {
        action->setCheckable(true);
        languageGroup->addAction(action);
    }
    english->setChecked(true);
}

bool DemoWindow::openSampleJob() {
    if (!Korvo::API::is_job_opened(kJob) && !Korvo::API::open_job(kJob, ":sample")) {
        log(tr("The sample job could not be opened."));
        return false;
    }
    context_.job = QString::fromLatin1(kJob);
    context_.step = QStringLiteral("pcb");
    refreshJobs();
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(kJob, steps, layers);
    log(tr("Opened job \"%1\": %2 steps, %3 layers")
            .arg(kJob)
            .arg(steps.size())
            .arg(layers.size()));
    return true;
}

bool DemoWindow::openFabricationFiles(const QString& folder) {
    // One layer per file, named, typed and ordered from the file names by the reference import.
    const QString job = QDir(folder).dirName().toLower().replace(QRegExp("[^a-z0-9_+.-]"), "_");
    if (!Korvo::API::is_job_opened(job.toStdString()) &&
        !Korvo::API::open_job(job.toStdString(), folder.toStdString())) {
        log(tr("No job could be built from %1 (see the log for the files it refused)").arg(folder));
        return false;
    }
    context_.job = job;
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(job.toStdString(), steps, layers);
    context_.step = steps.empty() ? QString() : QString::fromStdString(steps.front());
    layers_->clear();  // a new job shows its first signal layer and its drills
    refreshJobs();
    folders_[job] = folder;
    log(tr("Opened job \"%1\" from %2: %3 layers").arg(job, folder).arg(layers.size()));
    for (const QString& line : DrillFormatPanel::summary(context_.job, context_.step)) {
        log(line);
    }
    return true;
}

QWidget* DemoWindow::openDrillFormats() {
    const auto folder = folders_.find(context_.job);
    if (folder == folders_.end()) {
        log(tr("Job \"%1\" was not opened from fabrication files: it has no drill files to read "
               "again.")
                .arg(context_.job));
        return nullptr;
    }
    auto* panel = new DrillFormatPanel(context_.job, context_.step, folder->second, this);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &DrillFormatPanel::layerReread, this,
            [this](const QString&, const QString& line) {
                log(line);
                redraw();
            });
    panel->show();
    return panel;
}

QWidget* DemoWindow::openLayerMatrix() {
    auto* panel = new MatrixPanel(context_.job, this);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &MatrixPanel::matrixChanged, this,
            [this](const QString& job) { log(tr("Matrix of job \"%1\" changed").arg(job)); });
    panel->show();
    return panel;
}

void DemoWindow::refreshJobs() {
    std::vector<std::string> jobs;
    Korvo::API::get_opened_jobs(jobs);
    const QString job = context_.job;
    const QString step = context_.step;
    {
        const QSignalBlocker blocker(jobs_);
        jobs_->clear();
        for (const std::string& name : jobs) {
            jobs_->addItem(QString::fromStdString(name));
        }
        jobs_->setCurrentText(job);
    }
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(job.toStdString(), steps, layers);
    {
        const QSignalBlocker blocker(steps_);
        steps_->clear();
        for (const std::string& name : steps) {
            steps_->addItem(QString::fromStdString(name));
        }
        steps_->setCurrentText(step);
    }
    context_.step = steps_->currentText();
    refreshLayers();
}

void DemoWindow::refreshLayers() {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(context_.job.toStdString(), steps, layers);
    std::set<QString> shown;
    for (int row = 0; row < layers_->count(); ++row) {
        if (layers_->item(row)->checkState() == Qt::Checked) {
            shown.insert(layers_->item(row)->text());
        }
    }
    {
        const QSignalBlocker blocker(layers_);
        layers_->clear();
        bool anyShown = false;
        for (const Korvo::API::layer_info& layer : layers) {
            const QString name = QString::fromStdString(layer.name);
            auto* item = new QListWidgetItem(name, layers_);
            item->setToolTip(QString::fromStdString(layer.context + " " + layer.type + " " +
                                                    layer.side + " " + layer.polarity));
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            const bool on = shown.count(name) > 0;
            anyShown = anyShown || on;
            item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
        }
        // A fresh job shows its first signal layer and its drill layers.
        if (!anyShown) {
            bool signalShown = false;
            for (int row = 0; row < layers_->count(); ++row) {
                const std::string& type = layers[row].type;
                if ((type == "signal" && !signalShown) || type == "drill") {
                    layers_->item(row)->setCheckState(Qt::Checked);
                    signalShown = signalShown || type == "signal";
                }
            }
        }
    }
    redraw();
}

void DemoWindow::redraw() {
    std::vector<std::string> displayed;
    for (int row = 0; row < layers_->count(); ++row) {
        if (layers_->item(row)->checkState() == Qt::Checked) {
            displayed.push_back(layers_->item(row)->text().toStdString());
        }
    }
    view_->showStep(context_.job.toStdString(), context_.step.toStdString(), displayed);
    emit stepShown(context_.job, context_.step);
}

void DemoWindow::showStep(const QString& step) {
    steps_->setCurrentText(step);
}

void DemoWindow::showHits(const PluginMetaData& message) {
    if (message.receiver != wc::module::GraphicView || message.payload == nullptr) {
        return;
    }
    // The drawing data lives in the viewer during this call only: the overlays copy the points.
    const auto& data = *static_cast<const Korvo::API::analysis_drawing_data*>(message.payload);
    const std::vector<GraphicView::Overlay> overlays = GraphicView::overlaysOf(data);
    // Replace layers: only the hit's layers are displayed; keep layers: they are added.
    {
        const QSignalBlocker blocker(layers_);
        for (int row = 0; row < layers_->count(); ++row) {
            QListWidgetItem* item = layers_->item(row);
            const bool named = std::find(data.layer_names.begin(), data.layer_names.end(),
                                         item->text().toStdString()) != data.layer_names.end();
            if (named) {
                item->setCheckState(Qt::Checked);
            } else if (data.replace_layers && !data.layer_names.empty()) {
                item->setCheckState(Qt::Unchecked);
            }
        }
    }
    redraw();
    view_->setOverlays(overlays);
    if (overlays.empty()) {
        return;
    }
    if (data.zoom_policy == Korvo::API::analysis_drawing_data::auto_zoom) {
        view_->zoomToBox(data.bounds);
    } else {
        view_->panTo(
            {(data.bounds.xmin + data.bounds.xmax) / 2, (data.bounds.ymin + data.bounds.ymax) / 2});
    }
}

void DemoWindow::onMessage(int code, MessageHandler handler) {
    handlers_.emplace(code, std::move(handler));
}

void DemoWindow::dispatch(const PluginMetaData& message) {
    log(describe(message));
    auto range = handlers_.equal_range(message.code);
    for (auto it = range.first; it != range.second; ++it) {
        it->second(message);
    }
}

// The signal layer check and the signal layer optimisation on a board of the gerbv package's
// examples, then the viewer on the check's first hit.
void DemoWindow::tourRealBoard(const std::function<void(QWidget*, const QString&)>& snap) {
    const QString board = QStringLiteral("/usr/share/doc/gerbv/examples/protel-pnp");
    if (!QDir(board).exists() || !openFabricationFiles(board)) {
        log(tr("No example board at %1: the real-board pictures are left out").arg(board));
        return;
    }
    // Each dialog with the slot of its view button.
    const std::map<QString, const char*> view_slots = {
        {QStringLiteral("Signal Layer Checks..."), "on_ViewResult_clicked"},
        {QStringLiteral("Signal Layer Optimization..."), "on_Check_clicked"}};
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        const auto view = view_slots.find(entry.menu);
        if (view == view_slots.end()) {
            continue;
        }
        // A dialog opened on the sample job is made anew for this one.
        delete dialogs_[entry.menu].data();
        QWidget* dialog = openDialog(entry);
        dialog->adjustSize();
        entry.apply(dialog);
        QString name = entry.menu;
        name.remove(QStringLiteral("...")).replace(' ', '_');
        snap(dialog, name + QStringLiteral("_real_board"));
        QMetaObject::invokeMethod(dialog, view->second, Qt::DirectConnection);
        // The newest viewer is the one the dialog has just opened.
        const auto viewers = dialog->parentWidget()->findChildren<Widget_ResultsViewer*>();
        if (viewers.isEmpty()) {
            continue;
        }
        // Every severity admitted and the first hit shown, as the viewer's own row does.
        for (const demo::DialogEntry& row : demo::dialogCatalogue()) {
            if (row.menu == QLatin1String("Results Viewer...")) {
                row.apply(viewers.last());
            }
        }
        snap(viewers.last(), name + QStringLiteral("_real_board_results"));
        snap(this, name + QStringLiteral("_real_board_hit"));
        if (entry.menu == QLatin1String("Signal Layer Checks...")) {
            demo::tourTriage(*this, dialog, snap);
        }
    }
    // The board's layer matrix as its files were typed.
    QWidget* matrix = openLayerMatrix();
    snap(matrix, QStringLiteral("Layer_matrix_real_board"));
    matrix->close();
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

bool DemoWindow::setLanguage(bool chinese) {
    QCoreApplication::removeTranslator(&translator_);
    bool loaded = true;
    if (chinese) {
        QString folder = QCoreApplication::applicationDirPath() + "/translations";
        loaded = translator_.load(QStringLiteral("widget_common_zh_CN"), folder);
#ifdef WIDGET_COMMON_DEMO_QM_DIR
        if (!loaded) {
            folder = QStringLiteral(WIDGET_COMMON_DEMO_QM_DIR);
            loaded = translator_.load(QStringLiteral("widget_common_zh_CN"), folder);
        }
#endif
        loaded = loaded && QCoreApplication::installTranslator(&translator_);
        if (!loaded) {
            log(tr("The Chinese catalogue was not found in %1").arg(folder));
        }
    }
    changeLanguage();
    return loaded;
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
    // A box a dialog raises on the way (a value outside its limit, a layer the job lacks) is
    // answered and its text logged: the tour never waits for a hand.
    QTimer answer;
    answer.setInterval(50);
    connect(&answer, &QTimer::timeout, this, [this] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            log(tr("%1 said: %2").arg(box->windowTitle(), box->text()));
            box->done(QMessageBox::Ok);
        }
    });
    answer.start();
    auto snap = [&](QWidget* widget, const QString& name) {
        QApplication::processEvents();
        const QString path = QDir(folder).filePath(name + ".png");
        if (widget->grab().save(path)) {
            written << path;
        }
    };
    show();
    snap(this, QStringLiteral("demo_host"));
    steps_->setCurrentText(QStringLiteral("panel"));
    snap(this, QStringLiteral("demo_panel"));
    steps_->setCurrentText(QStringLiteral("pcb"));
    for (int unit : {0, 1}) {
        setDisplayUnit(unit);
        const QString suffix = unit == 0 ? QStringLiteral("_mil") : QStringLiteral("_mm");
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            QWidget* dialog = openDialog(entry);
            dialog->adjustSize();
            QString name = entry.menu;
            name.remove(QStringLiteral("...")).replace(' ', '_');
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
            // After the run: the picture shows what the dialog made of it.
            snap(dialog, name + suffix);
            if (entry.menu == QLatin1String("Feature filter...") && unit == 0) {
                snap(this, QStringLiteral("demo_filter"));
            }
        }
    }
    setDisplayUnit(0);
    // A hit of the viewer as the host's view shows it.
    for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
        if (entry.menu == QLatin1String("Results Viewer...")) {
            steps_->setCurrentText(QStringLiteral("pcb"));
            entry.apply(openDialog(entry));
            snap(this, QStringLiteral("demo_hit"));
        }
    }
    tourRealBoard(snap);
    if (setLanguage(true)) {
        // Run again in Chinese, so that what a run writes (the layer count) shows in Chinese too.
        for (const demo::DialogEntry& entry : demo::dialogCatalogue()) {
            QWidget* dialog = openDialog(entry);
            dialog->adjustSize();
            if (entry.apply) {
                entry.apply(dialog);
            }
            QString name = entry.menu;
            name.remove(QStringLiteral("...")).replace(' ', '_');
            snap(dialog, name + QStringLiteral("_zh"));
        }
        setLanguage(false);
    }
    // The log now holds what every dialog sent in both units.
    snap(this, QStringLiteral("demo_host_log"));
    return written;
}
