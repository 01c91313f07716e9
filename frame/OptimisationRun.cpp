#include "OptimisationRun.h"

#include <glog/logging.h>

#include <QWidget>

#include "PluginMessages.h"
#include "Translate.h"
#include "ZeProgressDialog.h"

namespace wc {

OptimisationRunner::OptimisationRunner(RunControls& controls, QWidget* dialog,
                                       const char* source_file, OptimisationTexts texts,
                                       QString job)
    : controls_(controls),
      dialog_(dialog),
      source_file_(source_file),
      texts_(texts),
      job_(std::move(job)),
      start_(QDateTime::currentDateTime()) {
    timer_.start();
}

OptimisationRunner::~OptimisationRunner() {
    // The engine may have changed the job whatever happened after it started.
    notifyJobChanged(job_);
}

BackgroundRunOptions OptimisationRunner::options(int line) {
    BackgroundRunOptions options;
    options.parent = dialog_.data();
    options.stop = StopBehaviour::WaitForWorker;
    options.poll_ms = kPollMs;
    options.source_file = source_file_;
    options.source_line = line;
    options.on_stop_requested = [this] { onStop(); };
    options.on_poll = [this](double value) {
        // The window is the run's; it is open for as long as polls come.
        if (QWidget* owner = dialog_.data()) {
            for (auto* window : owner->findChildren<ZeProgressDialog*>(
                     QStringLiteral("BackgroundRunProgress"), Qt::FindDirectChildrenOnly)) {
                window->setRange(0, 100);
                window->setValue(static_cast<int>(value));
            }
        }
    };
    return options;
}

bool OptimisationOutcome::resultToShow(const char* operation) const {
    if (dialog_gone) {
        return false;  // nothing of the dialog may be touched any more
    }
    if (!engine_ok) {
        LOG(ERROR) << operation << " failed on " << layer_count << " layers";
    }
    return completed;
}

void OptimisationRunner::onStop() {
    if (dialogGone()) {
        return;
    }
    controls_.setStatus(translateFor(dialog_.data(), QString::fromUtf8(texts_.terminated)));
    controls_.setViewState(RunControls::ViewState::Stopped);
    LOG(INFO) << texts_.terminated;
}

void OptimisationRunner::complete(int layer_count) {
    controls_.setViewState(RunControls::ViewState::Fresh);
    controls_.showTime(start_, timer_.elapsed());
    controls_.setStatus(translateFor(dialog_.data(), texts_.processed, layer_count));
}

}  // namespace wc
