#pragma once
// Runs engine calls on a worker task behind the busy progress window while the GUI thread keeps
// processing events. One run owns one window; a per-layer caller runs one worker per layer in it:
//
//     wc::BackgroundRun run(options);
//     for (const std::string& layer : layers) {
//         if (run.stopRequested()) break;
//         run.step([=](Korvo::COMMON::progress_value<void>& block) { engine_call(layer, &block);
//         });
//     }
//     run.finish();
//
// The worker gets only what its callable captured by value and the progress block, which the
// run holds by shared_ptr: a worker left running after a stop (or after its dialog is gone)
// never touches freed memory.

#include <QCoreApplication>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class QWidget;
class ZeProgressDialog;

namespace wc {

enum class StopBehaviour {
    // Set the stop flag and return at once; the worker ends on its own, detached from the run.
    LeaveAtOnce,
    // Set the stop flag, tell the dialog (on_stop_requested) and keep polling until the worker
    // returns.
    WaitForWorker,
};

struct BackgroundRunOptions {
    StopBehaviour stop = StopBehaviour::LeaveAtOnce;
    // How often on_poll is called while a worker runs. Events are processed far more often.
    int poll_ms = 20;
    // Called on the GUI thread every poll_ms with the block's value, read under its lock.
    std::function<void(double)> on_poll;
    // Called on the GUI thread once, when the stop request is first seen.
    std::function<void()> on_stop_requested;
    // Owner of the progress window. If it is destroyed during a run, the run stops and leaves at
    // once without calling back.
    QWidget* parent = nullptr;
    // Empty texts give "Processing" and "Please wait" (the check dialog swaps the two).
    QString label;
    QString title;
    // Where a worker's exception is reported as having happened; this file when null.
    const char* source_file = nullptr;
    int source_line = 0;
};

enum class RunEnd { Finished, Stopped };

struct RunOutcome {
    RunEnd end = RunEnd::Finished;
    // False when the run left while its worker was still running (LeaveAtOnce).
    bool worker_returned = true;
    // The worker threw; the exception was logged on the worker and the run ended as finished.
    bool worker_threw = false;
    QString error;
    // The window's owner was destroyed while the worker ran.
    bool owner_destroyed = false;
    // How many times on_poll was called.
    int polls = 0;

    bool finished() const { return end == RunEnd::Finished; }
};

class WIDGET_COMMON_EXPORT BackgroundRun {
    Q_DECLARE_TR_FUNCTIONS(BackgroundRun)

public:
    explicit BackgroundRun(BackgroundRunOptions options = BackgroundRunOptions());
    ~BackgroundRun();
    BackgroundRun(const BackgroundRun&) = delete;
    BackgroundRun& operator=(const BackgroundRun&) = delete;

    // Runs `work(block)` on a worker task and polls it until it returns or the user stops it.
    // Opens the progress window on the first step. Once a stop has been seen, further steps
    // start no worker and end as stopped.
    template <class Block, class Work>
    RunOutcome step(const std::shared_ptr<Block>& block, Work work) {
        static_assert(std::is_base_of<Korvo::COMMON::progress_state, Block>::value,
                      "the block must be a progress block");
        // Bound to Block so that a block type may add to what its accessors do.
        BlockAccess access;
        access.request_stop = [block] { block->request_stop(); };
        access.get_value = [block] { return block->get_value(); };
        return runWorker(std::move(access), [block, work]() mutable { work(*block); });
    }

    template <class Work>
    RunOutcome step(Work work) {
        return step(std::make_shared<Korvo::COMMON::progress_value<void>>(), std::move(work));
    }

    // One worker behind its own window, closed before returning.
    template <class Block, class Work>
    static RunOutcome once(BackgroundRunOptions options, const std::shared_ptr<Block>& block,
                           Work work) {
        BackgroundRun run(std::move(options));
        RunOutcome outcome = run.step(block, std::move(work));
        run.finish();
        return outcome;
    }

    // True once the user asked to stop (or the window's owner is gone); asked between layers.
    bool stopRequested() const;

    // Closes and deletes the progress window; the destructor does it too.
    void finish();

    // The progress window while it is open, else null.
    ZeProgressDialog* progressWindow() const;

    // True while a run whose window belongs to `owner` is under way (GUI thread). The window is
    // modal, but a host's call or a queued click can still reach the dialog's run button: the
    // dialog then starts no second run inside the first.
    static bool activeFor(const QWidget* owner);

    // Workers that were left running after a stop. They are waited for at process exit;
    // a host (or a test) may wait for them earlier.
    static int detachedWorkers();
    static bool waitForDetachedWorkers(int timeout_ms);
    // How long the process waits for them at exit before it leaves them (5 s by default).
    static void setExitWait(int timeout_ms);

private:
    struct BlockAccess {
        std::function<void()> request_stop;
        std::function<double()> get_value;
    };

    RunOutcome runWorker(BlockAccess access, std::function<void()> work);
    // True, with the outcome of a stopped step, when a stop was seen before the worker started.
    bool stoppedBeforeStart(RunOutcome& outcome);
    // Looks at the owner and the window after the event loop woke: true when the run leaves now.
    bool leaveOnStop(const BlockAccess& access, RunOutcome& outcome);
    void poll(const BlockAccess& access, RunOutcome& outcome);
    void openWindow();
    bool ownerDestroyed() const;
    void noteStop(bool call_back);

    BackgroundRunOptions options_;
    QPointer<QWidget> owner_;
    bool had_owner_ = false;
    QPointer<ZeProgressDialog> window_;
    bool stop_seen_ = false;
};

}  // namespace wc
