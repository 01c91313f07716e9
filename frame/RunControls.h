#pragma once
// The run arrangement the engine-running dialogs share: the "Layer:" row with its layer popup,
// the "ERF:" row with its parameter-set popup and "Save as", "Ranges...", the three run buttons
// with their red-bordered pressed style, the view button, the time and status labels, the layer
// resolution and the run-scope rule. A dialog composes one, lays out its rows, and connects the
// buttons to its own slots; the controls keep the styles and the remembered scope.

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <functional>
#include <string>
#include <vector>

#include "frame/WidgetCommonExport.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace wc {

class ListPopup;

// Scopes of the run buttons and of "Apply to" = "Selected".
enum RunScope : int { ScopeGlobal = 0, ScopeScreen = 1, ScopeProfile = 2, ScopeSelected = 3 };

// "Selected" always runs on the selected features, whichever button was pressed.
int runScope(int button_scope, bool selected_only);

// "No layers were processed", "1 layer was processed", n + " layers were processed", translated
// in the context of `dialog` with the count as the plural argument. The viewer's variant writes
// "1 layer  was processed" with two blanks, kept on purpose.
enum class CountWording { Run, Viewer };
QString layersProcessedText(const QObject* dialog, int count,
                            CountWording wording = CountWording::Run);

// The resolved layers of a layer expression and the names it gave that the job lacks.
struct LayerResolution {
    std::vector<std::string> layers;
    QStringList missing;
};
LayerResolution resolveLayers(const QString& job, const QString& expression);

struct RunControlsOptions {
    QString range_key;   // "SignalLayerRanges", ... : parameter sets and the range editor
    QString layer_text;  // default of the "Layer:" field
    QString erf_text;    // default of the "ERF:" field
    bool read_only_erf = true;
    // The buttons' texts as the dialog writes them (the later dialogs say "Layer: ", "ERF: ",
    // "Save As" and "View Results").
    const char* layer_label = QT_TRANSLATE_NOOP("Shared", "Layer:");
    const char* erf_label = QT_TRANSLATE_NOOP("Shared", "ERF:");
    const char* save_as_label = QT_TRANSLATE_NOOP("Shared", "Save as");
    const char* view_tip = QT_TRANSLATE_NOOP("Shared", "View results");
};

// The options of a dialog's kind: its range key and its default layer filter.
RunControlsOptions runOptions(const QString& range_key, const QString& layer_text);

// The button texts of the optimisation dialogs other than the signal layer one.
RunControlsOptions spacedLabels(RunControlsOptions options);

class WIDGET_COMMON_EXPORT RunControls : public QObject {
    Q_OBJECT
public:
    enum class ViewState { Stale, Fresh, Stopped };

    RunControls(QWidget* dialog, RunControlsOptions options);

    // Buttons and fields, parented to the dialog, with object names "pushButton_Layer",
    // "lineEdit_Layer", "pushButton_ERF", "lineEdit_ERF", "pushButton_SaveAs",
    // "pushButton_Ranges", "pushButton_RunGlobally", "pushButton_RunScreen",
    // "pushButton_RunProfile", "pushButton_View", "label_Time", "label_Status",
    // "pushButton_Close". Their texts follow the language through wc::retranslate(dialog).
    QPushButton* layerButton() const { return layer_button_; }
    QLineEdit* layerEdit() const { return layer_edit_; }
    QPushButton* erfButton() const { return erf_button_; }
    QLineEdit* erfEdit() const { return erf_edit_; }
    QPushButton* saveAsButton() const { return save_as_button_; }
    QPushButton* rangesButton() const { return ranges_button_; }
    QPushButton* runButton(int scope) const { return run_buttons_[scope]; }
    QPushButton* viewButton() const { return view_button_; }
    QLabel* timeLabel() const { return time_label_; }
    QLabel* statusLabel() const { return status_label_; }
    QPushButton* closeButton() const { return close_button_; }

    // What the dialog does behind its buttons. A run gets the scope of its button, after the
    // re-entrance check and the pressed style; a missing callback leaves its button doing
    // nothing (close defaults to closing the dialog, "Save as" to the parameter sets the
    // dialog's shell keeps). Every call runs guarded; an exception is logged under the
    // dialog's `file` and `line`.
    struct Callbacks {
        std::function<void(int scope)> run;
        std::function<void()> view;
        std::function<void()> ranges;
        std::function<void()> save_as;
        std::function<void()> close;
    };
    void connectTo(Callbacks callbacks, const char* file, int line);
    // "Save as" when the dialog names no callback of its own.
    void setDefaultSaveAs(std::function<void()> save_as) { default_save_as_ = std::move(save_as); }
    // What a click does; the dialogs' public slots forward here.
    void run(int scope);
    void view();
    void openRanges();
    void saveAs();
    void close();
    // The two popups, guarded like the buttons (the host calls them by the dialogs' names).
    void openLayerPopup();
    void openErfPopup();
    // Any change of these widgets (line edits, check boxes, combo boxes, button groups) marks
    // the shown result as stale.
    void markStaleOnChange(const QList<QObject*>& widgets);

    // The rows every optimisation dialog ends with: "Ranges...", the run buttons (with `extras`
    // at their right), the time label, the status label, and "Close" at the right.
    void addClosingRows(QVBoxLayout* layout, const QList<QWidget*>& extras = {}) const;

    // Rows ready to be put in the dialog's layout.
    QHBoxLayout* makeLayerRow() const;
    QHBoxLayout* makeErfRow() const;
    QHBoxLayout* makeRunRow() const;

    const RunControlsOptions& options() const { return options_; }
    void setJob(const QString& job) { job_ = job; }
    const QString& job() const { return job_; }

    // What a run button does before its run: resets the three styles, outlines the pressed one
    // in red, and remembers screen and profile scopes. The global button does not store 0: the
    // remembered scope keeps its value until the run stores the scope it used (kept on purpose).
    void pressRun(int scope);
    void resetCheckedStyle();
    void rememberScope(int scope) { remembered_scope_ = scope; }
    int rememberedScope() const { return remembered_scope_; }

    // Resolves the "Layer:" field against the job.
    LayerResolution resolveLayerField() const;

    void setViewState(ViewState state);
    ViewState viewState() const { return view_state_; }
    void setStatus(const QString& text);
    // "yyyy.MM.dd hh:mm:ss.zzz - " and the elapsed time.
    void showTime(const QDateTime& start, qint64 elapsed_ms);

    // The popups, created on first use and reused.
    ListPopup* layerPopup();
    ListPopup* erfPopup();

    static QString runStyle(int scope, bool pressed);
    static QString viewStyle(ViewState state);

public slots:
    // Fill and show the popups. The layer popup lists the layers the job displays.
    void showLayerPopup();
    void showErfPopup();
    // Any parameter change marks the shown result as stale.
    void markStale();

signals:
    // The name picked in the parameter-set popup.
    void erfChosen(const QString& name);

private:
    QWidget* dialog_;
    RunControlsOptions options_;
    QString job_;
    int remembered_scope_ = ScopeGlobal;
    ViewState view_state_ = ViewState::Stale;

    QPushButton* layer_button_ = nullptr;
    QLineEdit* layer_edit_ = nullptr;
    QPushButton* erf_button_ = nullptr;
    QLineEdit* erf_edit_ = nullptr;
    QPushButton* save_as_button_ = nullptr;
    QPushButton* ranges_button_ = nullptr;
    QPushButton* run_buttons_[3] = {nullptr, nullptr, nullptr};
    QPushButton* view_button_ = nullptr;
    QLabel* time_label_ = nullptr;
    QLabel* status_label_ = nullptr;
    QPushButton* close_button_ = nullptr;
    Callbacks callbacks_;
    std::function<void()> default_save_as_;
    const char* file_ = "";
    int line_ = 0;
    ListPopup* layer_popup_ = nullptr;
    ListPopup* erf_popup_ = nullptr;
};

}  // namespace wc

// A public slot the host knows by name, defined as a one-line forward to what does the work:
//     WC_FORWARD_SLOT(Widget_Teardrops, on_m_pRunGlobalPB_clicked, controls_->run(wc::ScopeGlobal))
#define WC_FORWARD_SLOT(Dialog, slot, call) \
    void Dialog::slot() {                   \
        call;                               \
    }
