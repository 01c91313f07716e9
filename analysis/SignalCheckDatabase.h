#pragma once
// The result database of the signal layer check: "Save" stores the last run's record (what it
// was asked) with the result, "Load" opens the browser of stored checks, and a check picked
// there comes back into the form (record and tests) and as the dialog's result.

#include <QObject>
#include <QString>
#include <vector>

#include "CheckResultBrowser.h"
#include "DBS_API.h"
#include "Korvo_Analysis_types.h"
#include "frame/WidgetCommonExport.h"

class Widget_SignalLayerChecks;

namespace wc {

class DialogShell;

class WIDGET_COMMON_EXPORT SignalCheckDatabase : public QObject {
    Q_OBJECT
public:
    SignalCheckDatabase(Widget_SignalLayerChecks* dialog, DialogShell& shell);

    // on_db_connected: without a connection nothing is saved or loaded.
    void setConnected(bool connected) { connected_ = connected; }
    // What the run was asked; stored with its result.
    void rememberRun(const Korvo::API::signal_check_params& params,
                     const std::vector<Korvo::API::signal_layers_checks_list>& tests);

    // "Save": stores `result` behind the progress window. Like the run buttons, it does nothing
    // while the dialog's run or save is under way.
    void save(const Korvo::API::signal_check_result_map& result, int processed_layers);
    // The database's answer to a save, under "Information".
    void showSaveAnswer(const Quorin::DBS_API::CreateSesult& answer);
    // "Load": the browser (made once), connected to the dialog's three slots.
    void openBrowser();
    // The stored check `id` of the browser: its record into the form, its result to the dialog.
    void loadCheck(const QString& id);
    // A stored result without a record.
    void loadTqCheck(const QString& id);
    // The stored check at `index` of the master list.
    void loadAt(int index);

signals:
    // A stored result to be shown as the dialog's own.
    void resultLoaded(const Korvo::API::signal_check_result_map& result);
    // The shown result was stored under `id`.
    void stored(int id);

private:
    // The stored record shown in the form; the layer text stays.
    void params2ui(const Korvo::API::signal_check_params& params,
                   const std::vector<Korvo::API::signal_layers_checks_list>& tests);
    void information(const char* text, const QString& tail = QString());

    Widget_SignalLayerChecks* dialog_;
    DialogShell& shell_;
    bool connected_ = false;
    Korvo::API::signal_check_params last_params_;
    std::vector<Korvo::API::signal_layers_checks_list> last_tests_;
    Quorin::DBS_API::CheckResultBrowser* browser_ = nullptr;
};

}  // namespace wc
