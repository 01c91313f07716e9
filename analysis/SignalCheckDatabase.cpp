#include "SignalCheckDatabase.h"

#include <glog/logging.h>

#include <QMessageBox>
#include <memory>

#include "Korvo_API.h"
#include "analysis/SignalCheckForm.h"
#include "analysis/SignalCheckRun.h"
#include "analysis/Widget_SignalLayerChecks.h"
#include "frame/BackgroundRun.h"
#include "frame/DialogShell.h"
#include "frame/RunControls.h"
#include "frame/Translate.h"

namespace wc {

namespace {

using Korvo::API::signal_check_params;
using Korvo::API::signal_check_result_map;
using Korvo::API::signal_layers_checks_list;

const char* const kSaveFailed = QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Save 2 db failed");
const char* const kNoStoredCheck =
    QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "No stored check with id ");

struct SaveBlock : Korvo::COMMON::progress_value<void> {
    Quorin::DBS_API::CreateSesult answer;
};

}  // namespace

SignalCheckDatabase::SignalCheckDatabase(Widget_SignalLayerChecks* dialog, DialogShell& shell)
    : QObject(dialog), dialog_(dialog), shell_(shell) {}

void SignalCheckDatabase::rememberRun(const signal_check_params& params,
                                      const std::vector<signal_layers_checks_list>& tests) {
    last_params_ = params;
    last_tests_ = tests;
}

void SignalCheckDatabase::save(const signal_check_result_map& result, int processed_layers) {
    if (shell_.busy()) {
        return;
    }
    if (!connected_ || processed_layers == 0) {
        LOG(ERROR) << "nothing saved: " << (connected_ ? "no result" : "no database");
        information(kSaveFailed);
        return;
    }
    Korvo::API::dms_signal_check_params record;
    record.job = shell_.job().toStdString();
    record.step = shell_.step().toStdString();
    record.params = last_params_;
    record.tests = last_tests_;
    record.scope = shell_.controls().rememberedScope();
    auto block = std::make_shared<SaveBlock>();
    // The save swaps the run's two texts.
    const RunOutcome outcome = BackgroundRun::once(
        signalRunOptions(dialog_, QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Processing"),
                         QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Please wait"),
                         "SignalCheckDatabase.cpp", __LINE__),
        block, [record, result](SaveBlock& b) {
            b.answer = Korvo::API::insertSignalLayerAnalysisResult(record, result);
        });
    if (outcome.owner_destroyed) {
        return;
    }
    if (!outcome.worker_returned || outcome.worker_threw) {
        information(kSaveFailed);
        return;
    }
    showSaveAnswer(block->answer);
}

void SignalCheckDatabase::showSaveAnswer(const Quorin::DBS_API::CreateSesult& answer) {
    if (answer.success) {
        emit stored(answer.id);
    }
    information(answer.success ? QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Save success")
                               : QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Save failed"),
                QStringLiteral(": ") + QString::fromStdString(answer.message));
}

void SignalCheckDatabase::openBrowser() {
    if (!connected_) {
        information(QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "DB connection failed"));
        return;
    }
    if (browser_ == nullptr) {
        using Quorin::DBS_API::CheckResultBrowser;
        browser_ = Quorin::DBS_API::createCheckResultBrowser(dialog_);
        connect(browser_, &CheckResultBrowser::send_check_id_text, dialog_,
                &Widget_SignalLayerChecks::get_analysis_result_from_db);
        connect(browser_, &CheckResultBrowser::send_tq_check_id_text, dialog_,
                &Widget_SignalLayerChecks::get_tq_analysis_result_from_db);
        connect(browser_, &CheckResultBrowser::send_load_index, dialog_,
                &Widget_SignalLayerChecks::refresh_load_result);
    }
    browser_->show();
    browser_->raise();
}

void SignalCheckDatabase::loadCheck(const QString& id) {
    bool number = false;
    const int check_id = id.toInt(&number);
    Korvo::API::dms_signal_check_params record;
    signal_check_result_map result;
    if (!number || !Korvo::API::getSignalLayerAnalysisResult(check_id, record, result)) {
        LOG(ERROR) << "no stored signal layer check " << id.toStdString();
        information(kNoStoredCheck, id);
        return;
    }
    params2ui(record.params, record.tests);
    rememberRun(record.params, record.tests);
    emit resultLoaded(result);
}

void SignalCheckDatabase::loadTqCheck(const QString& id) {
    signal_check_result_map result;
    if (!Korvo::API::getTqSignalLayerAnalysisResult(id.toStdString(), result)) {
        LOG(ERROR) << "no stored signal layer result " << id.toStdString();
        information(kNoStoredCheck, id);
        return;
    }
    emit resultLoaded(result);
}

void SignalCheckDatabase::loadAt(int index) {
    const auto master = Korvo::API::getCheckResultMaster();
    if (index < 0 || index >= static_cast<int>(master.size())) {
        LOG(ERROR) << "no stored check at position " << index;
        return;
    }
    const QString id = QString::number(std::next(master.begin(), index)->first);
    loadCheck(id);
}

void SignalCheckDatabase::params2ui(const signal_check_params& params,
                                    const std::vector<signal_layers_checks_list>& tests) {
    SignalCheckForm shown = dialog_->form();
    showSignalCheckParams(params, tests, shown);
    dialog_->setForm(shown);
}

// `text` translated in the dialog's context, then `tail` as it stands.
void SignalCheckDatabase::information(const char* text, const QString& tail) {
    QMessageBox::information(
        dialog_,
        translateFor(dialog_, QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Information")),
        translateFor(dialog_, QString::fromLatin1(text)) + tail, QMessageBox::Ok);
}

}  // namespace wc
