#include "RunControls.h"

#include <glog/logging.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>

#include "BackgroundRun.h"
#include "DialogTexts.h"
#include "ExceptionGuard.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "ListPopup.h"
#include "RecordedCalls.h"
#include "Translate.h"

namespace wc {
namespace {

const char* const kRunPictures[] = {"Run globally1.jpg", "Run on features on screen only1.jpg",
                                    "Run on features inside profile1.jpg"};
// Texts of the shared pieces are translated in the context of the dialog that shows them; the
// catalogue lists them once under "Shared" and scripts/fill-translations.py gives every dialog
// its copy.
const char* const kRunTips[] = {QT_TRANSLATE_NOOP("Shared", "Run globally"),
                                QT_TRANSLATE_NOOP("Shared", "Run on features on screen only"),
                                QT_TRANSLATE_NOOP("Shared", "Run on features inside profile")};
const char* const kRunNames[] = {"pushButton_RunGlobally", "pushButton_RunScreen",
                                 "pushButton_RunProfile"};

QString resource(const char* picture) {
    return QStringLiteral(":/Widget_Common/Resources/") + QString::fromUtf8(picture);
}

QPushButton* pictureButton(QWidget* dialog, const char* picture, const QString& name) {
    auto* button = new QPushButton(dialog);
    button->setObjectName(name);
    const QSize size = QPixmap(resource(picture)).size();
    button->setFixedSize(size.isValid() ? size : QSize(32, 32));
    return button;
}

}  // namespace

RunControlsOptions runOptions(const QString& range_key, const QString& layer_text) {
    RunControlsOptions options;
    options.range_key = range_key;
    options.layer_text = layer_text;
    return options;
}

RunControlsOptions spacedLabels(RunControlsOptions options) {
    options.layer_label = QT_TRANSLATE_NOOP("Shared", "Layer: ");
    options.erf_label = QT_TRANSLATE_NOOP("Shared", "ERF: ");
    options.save_as_label = QT_TRANSLATE_NOOP("Shared", "Save As");
    options.view_tip = QT_TRANSLATE_NOOP("Shared", "View Results");
    return options;
}

int runScope(int button_scope, bool selected_only) {
    return selected_only ? ScopeSelected : button_scope;
}

QString layersProcessedText(const QObject* dialog, int count, CountWording wording) {
    if (count <= 0) {
        return translateFor(
            dialog, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "No layers were processed")));
    }
    if (count == 1) {
        // Two blanks in the viewer's wording: kept on purpose.
        return translateFor(dialog,
                            wording == CountWording::Viewer
                                ? QT_TRANSLATE_NOOP("Shared", "%n layer  was processed")
                                : QT_TRANSLATE_NOOP("Shared", "%n layer was processed"),
                            count);
    }
    return translateFor(dialog, QT_TRANSLATE_NOOP("Shared", "%n layers were processed"), count);
}

LayerResolution resolveLayers(const QString& job, const QString& expression) {
    LayerResolution resolution;
    if (expression.trimmed().isEmpty()) {
        return resolution;
    }
    std::vector<std::string> missing;
    resolution.layers =
        Korvo::UIAPI::getAnalyzeAndDFMLayers(job.toStdString(), expression.toStdString(), missing);
    for (const std::string& name : missing) {
        resolution.missing.append(QString::fromStdString(name));
    }
    return resolution;
}

RunControls::RunControls(QWidget* dialog, RunControlsOptions options)
    : QObject(dialog), dialog_(dialog), options_(std::move(options)) {
    setObjectName(QStringLiteral("runControls"));
    layer_button_ = new QPushButton(dialog);
    setSourceText(dialog, layer_button_, options_.layer_label);
    layer_button_->setObjectName(QStringLiteral("pushButton_Layer"));
    layer_edit_ = new QLineEdit(options_.layer_text, dialog);
    layer_edit_->setObjectName(QStringLiteral("lineEdit_Layer"));

    erf_button_ = new QPushButton(dialog);
    setSourceText(dialog, erf_button_, options_.erf_label);
    erf_button_->setObjectName(QStringLiteral("pushButton_ERF"));
    erf_edit_ = new QLineEdit(options_.erf_text, dialog);
    erf_edit_->setObjectName(QStringLiteral("lineEdit_ERF"));
    erf_edit_->setReadOnly(options_.read_only_erf);
    save_as_button_ = new QPushButton(dialog);
    setSourceText(dialog, save_as_button_, options_.save_as_label);
    save_as_button_->setObjectName(QStringLiteral("pushButton_SaveAs"));

    ranges_button_ = new QPushButton(dialog);
    setSourceText(dialog, ranges_button_, QT_TRANSLATE_NOOP("Shared", "Ranges..."));
    ranges_button_->setObjectName(QStringLiteral("pushButton_Ranges"));

    for (int scope = ScopeGlobal; scope <= ScopeProfile; ++scope) {
        QPushButton* button =
            pictureButton(dialog, kRunPictures[scope], QString::fromLatin1(kRunNames[scope]));
        setSourceToolTip(dialog, button, kRunTips[scope]);
        run_buttons_[scope] = button;
    }
    resetCheckedStyle();
    view_button_ = pictureButton(dialog, "viewgreen.jpg", QStringLiteral("pushButton_View"));
    setSourceToolTip(dialog, view_button_, options_.view_tip);
    setViewState(ViewState::Stale);

    time_label_ = new QLabel(
        translateFor(dialog, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "No results"))), dialog);
    time_label_->setObjectName(QStringLiteral("label_Time"));
    status_label_ = new QLabel(dialog);
    status_label_->setObjectName(QStringLiteral("label_Status"));
    close_button_ = new QPushButton(dialog);
    close_button_->setObjectName(QStringLiteral("pushButton_Close"));
    setSourceText(dialog, close_button_, QT_TRANSLATE_NOOP("Shared", "Close"));

    connect(layer_button_, &QPushButton::clicked, this, &RunControls::openLayerPopup);
    connect(erf_button_, &QPushButton::clicked, this, &RunControls::openErfPopup);
}

void RunControls::connectTo(Callbacks callbacks, const char* file, int line) {
    callbacks_ = std::move(callbacks);
    file_ = file;
    line_ = line;
    if (!callbacks_.close) {
        callbacks_.close = [dialog = dialog_] { dialog->close(); };
    }
    for (int scope = ScopeGlobal; scope <= ScopeProfile; ++scope) {
        if (callbacks_.run) {
            connect(run_buttons_[scope], &QPushButton::clicked, this,
                    [this, scope] { run(scope); });
        }
    }
    const auto wire = [this](QPushButton* button, const std::function<void()>& callback,
                             void (RunControls::*click)()) {
        if (callback) {
            connect(button, &QPushButton::clicked, this, click);
        }
    };
    wire(view_button_, callbacks_.view, &RunControls::view);
    wire(ranges_button_, callbacks_.ranges, &RunControls::openRanges);
    connect(save_as_button_, &QPushButton::clicked, this, &RunControls::saveAs);
    wire(close_button_, callbacks_.close, &RunControls::close);
}

namespace {

void call(QWidget* dialog, const char* file, int line, const std::function<void()>& callback) {
    if (callback) {
        guarded(dialog, file, line, callback);
    }
}

}  // namespace

// A second click while this dialog's run or save is under way does nothing.
void RunControls::run(int scope) {
    if (!callbacks_.run || BackgroundRun::activeFor(dialog_)) {
        return;
    }
    guarded(dialog_, file_, line_, [&] {
        pressRun(scope);
        callbacks_.run(scope);
    });
}

void RunControls::view() {
    call(dialog_, file_, line_, callbacks_.view);
}

void RunControls::openRanges() {
    call(dialog_, file_, line_, callbacks_.ranges);
}

void RunControls::saveAs() {
    call(dialog_, file_, line_, callbacks_.save_as ? callbacks_.save_as : default_save_as_);
}

void RunControls::close() {
    call(dialog_, file_, line_, callbacks_.close);
}

void RunControls::openLayerPopup() {
    call(dialog_, file_, line_, [this] { showLayerPopup(); });
}

void RunControls::openErfPopup() {
    call(dialog_, file_, line_, [this] { showErfPopup(); });
}

void RunControls::markStaleOnChange(const QList<QObject*>& widgets) {
    for (QObject* widget : widgets) {
        if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            connect(edit, &QLineEdit::editingFinished, this, &RunControls::markStale);
        } else if (auto* box = qobject_cast<QCheckBox*>(widget)) {
            connect(box, &QCheckBox::toggled, this, &RunControls::markStale);
        } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                    &RunControls::markStale);
        } else if (auto* group = qobject_cast<QButtonGroup*>(widget)) {
            connect(group, &QButtonGroup::idClicked, this, &RunControls::markStale);
        }
    }
}

void RunControls::addClosingRows(QVBoxLayout* layout, const QList<QWidget*>& extras) const {
    auto* ranges_row = new QHBoxLayout;
    ranges_row->addWidget(ranges_button_);
    ranges_row->addStretch();
    QHBoxLayout* run_row = makeRunRow();
    for (QWidget* extra : extras) {
        run_row->addWidget(extra);
    }
    auto* close_row = new QHBoxLayout;
    close_row->addStretch();
    close_row->addWidget(close_button_);
    layout->addLayout(ranges_row);
    layout->addLayout(run_row);
    layout->addWidget(time_label_);
    layout->addWidget(status_label_);
    layout->addLayout(close_row);
}

QHBoxLayout* RunControls::makeLayerRow() const {
    auto* row = new QHBoxLayout;
    row->addWidget(layer_button_);
    row->addWidget(layer_edit_, 1);
    return row;
}

QHBoxLayout* RunControls::makeErfRow() const {
    auto* row = new QHBoxLayout;
    row->addWidget(erf_button_);
    row->addWidget(erf_edit_, 1);
    row->addWidget(save_as_button_);
    return row;
}

QHBoxLayout* RunControls::makeRunRow() const {
    auto* row = new QHBoxLayout;
    for (QPushButton* button : run_buttons_) {
        row->addWidget(button);
    }
    row->addStretch();
    row->addWidget(view_button_);
    return row;
}

QString RunControls::runStyle(int scope, bool pressed) {
    return QStringLiteral("QPushButton{background-image:url(") + resource(kRunPictures[scope]) +
           (pressed ? QStringLiteral(");border: 2px solid red;}") : QStringLiteral(");}"));
}

QString RunControls::viewStyle(ViewState state) {
    switch (state) {
        case ViewState::Fresh:
            return QStringLiteral(
                "QPushButton{background-image:url(:/Widget_Common/Resources/viewgreen.jpg)}");
        case ViewState::Stopped:
            return QStringLiteral(
                "QPushButton{background-image:url(:/Widget_Common/Resources/viewred.jpg)}");
        case ViewState::Stale:
            break;
    }
    return QString();
}

void RunControls::resetCheckedStyle() {
    for (int scope = ScopeGlobal; scope <= ScopeProfile; ++scope) {
        run_buttons_[scope]->setStyleSheet(runStyle(scope, false));
    }
}

void RunControls::pressRun(int scope) {
    resetCheckedStyle();
    run_buttons_[scope]->setStyleSheet(runStyle(scope, true));
    if (scope != ScopeGlobal) {
        remembered_scope_ = scope;
    }
}

LayerResolution RunControls::resolveLayerField() const {
    return resolveLayers(job_, layer_edit_->text());
}

void RunControls::setViewState(ViewState state) {
    view_state_ = state;
    view_button_->setStyleSheet(viewStyle(state));
}

void RunControls::markStale() {
    setViewState(ViewState::Stale);
}

void RunControls::setStatus(const QString& text) {
    status_label_->setText(text);
}

void RunControls::showTime(const QDateTime& start, qint64 elapsed_ms) {
    time_label_->setText(start.toString(QStringLiteral("yyyy.MM.dd hh:mm:ss.zzz")) +
                         QStringLiteral(" - ") +
                         Korvo::UIAPI::formatTime(static_cast<int>(elapsed_ms)));
}

ListPopup* RunControls::layerPopup() {
    if (layer_popup_ == nullptr) {
        layer_popup_ = new ListPopup(ListPopup::LayerList, dialog_);
        connect(layer_popup_, &ListPopup::send_Text, layer_edit_, [this](const QString& text) {
            layer_edit_->setText(text);
            emit layer_edit_->editingFinished();
        });
    }
    return layer_popup_;
}

ListPopup* RunControls::erfPopup() {
    if (erf_popup_ == nullptr) {
        erf_popup_ = new ListPopup(ListPopup::NameList, dialog_);
        connect(erf_popup_, &ListPopup::send_Text, this, &RunControls::erfChosen);
    }
    return erf_popup_;
}

void RunControls::showLayerPopup() {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    const std::string answer = recordedGetGraphics(job_.toStdString(), steps, layers);
    QStringList names;
    for (const Korvo::API::layer_info& layer : layers) {
        names.append(QString::fromStdString(layer.name));
    }
    if (names.isEmpty()) {
        LOG(ERROR) << "no layers to offer for job " << job_.toStdString() << ": " << answer;
    }
    layerPopup()->setItems(names);
    layerPopup()->popUp(layer_button_);
}

void RunControls::showErfPopup() {
    erfPopup()->setItems(Korvo::UIAPI::getERFList(options_.range_key));
    erfPopup()->popUp(erf_button_);
}

}  // namespace wc
