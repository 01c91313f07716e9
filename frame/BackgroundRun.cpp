#include "BackgroundRun.h"

#include <glog/logging.h>

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QList>
#include <QRect>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "ProgressWorkerGuard.h"
#include "ZeProgressDialog.h"

namespace wc {
namespace {

using Clock = std::chrono::steady_clock;

// However quiet the event queue, the GUI thread looks at the stop request at least this often.
constexpr std::chrono::milliseconds kLookAtLeastEvery(20);

// Lets the worker wake the GUI thread from its wait in the event dispatcher when it ends. The
// GUI thread clears `dispatcher` when it stops waiting, so a worker that outlives the run (or
// the application) never touches it.
struct WakeOnEnd {
    std::mutex lock;
    QAbstractEventDispatcher* dispatcher = nullptr;
    std::atomic<bool> ended{false};
};

struct WorkerEnd {
    bool threw = false;
    QString error;
};

std::atomic<int> exitWaitMs{5000};

// Holds the futures of workers the GUI stopped waiting for. A std::async future blocks in its
// destructor, so it cannot simply be dropped; it is reaped here once ready and the rest are
// waited for at process exit (they have all been asked to stop), for a bounded time: an engine
// call that ignores its stop flag must not keep the host from exiting.
class Orphanage {
public:
    static Orphanage& instance() {
        static Orphanage orphanage;
        return orphanage;
    }

    ~Orphanage() {
        if (waitAll(std::chrono::milliseconds(exitWaitMs.load()))) {
            return;
        }
        std::lock_guard<std::mutex> guard(lock_);
        LOG(ERROR) << futures_.size() << " stopped worker(s) did not end within "
                   << exitWaitMs.load() << " ms; exiting without them";
        // Kept reachable and never destroyed: destroying a std::async future would wait again.
        static auto* abandoned = new std::vector<std::future<WorkerEnd>>();
        for (std::future<WorkerEnd>& future : futures_) {
            abandoned->push_back(std::move(future));
        }
        futures_.clear();
    }

    void adopt(std::future<WorkerEnd> future) {
        std::lock_guard<std::mutex> guard(lock_);
        reap();
        futures_.push_back(std::move(future));
    }

    int pending() {
        std::lock_guard<std::mutex> guard(lock_);
        reap();
        return static_cast<int>(futures_.size());
    }

    bool waitAll(std::chrono::milliseconds timeout) {
        const Clock::time_point deadline = Clock::now() + timeout;
        std::lock_guard<std::mutex> guard(lock_);
        for (std::future<WorkerEnd>& future : futures_) {
            if (future.wait_until(deadline) != std::future_status::ready) {
                reap();
                return false;
            }
        }
        futures_.clear();
        return true;
    }

private:
    void reap() {
        futures_.erase(std::remove_if(futures_.begin(), futures_.end(),
                                      [](std::future<WorkerEnd>& future) {
                                          return future.wait_for(std::chrono::seconds(0)) ==
                                                 std::future_status::ready;
                                      }),
                       futures_.end());
    }

    std::mutex lock_;
    std::vector<std::future<WorkerEnd>> futures_;
};

bool isReady(const std::future<WorkerEnd>& future) {
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

WorkerEnd runGuarded(const std::function<void()>& work, const char* file, int line) {
    WorkerEnd end;
    end.threw = !runProgressWorker(file, line, work, &end.error);
    return end;
}

// Runs `work` on a task of its own that wakes the GUI thread's event dispatcher when it ends.
std::future<WorkerEnd> startWorker(std::function<void()> work, const std::string& file, int line,
                                   const std::shared_ptr<WakeOnEnd>& wake) {
    wake->dispatcher = QAbstractEventDispatcher::instance();
    return std::async(std::launch::async, [work = std::move(work), file, line, wake] {
        WorkerEnd end = runGuarded(work, file.c_str(), line);
        wake->ended = true;
        std::lock_guard<std::mutex> guard(wake->lock);
        if (wake->dispatcher != nullptr) {
            wake->dispatcher->wakeUp();
        }
        return end;
    });
}

// Once the GUI thread stops waiting: the worker's end into `outcome`, or a worker still running
// handed to the orphanage.
void collectWorker(std::future<WorkerEnd> future, WakeOnEnd& wake, RunOutcome& outcome) {
    {
        std::lock_guard<std::mutex> guard(wake.lock);
        wake.dispatcher = nullptr;
    }
    if (!isReady(future)) {
        outcome.worker_returned = false;
        Orphanage::instance().adopt(std::move(future));
        LOG(INFO) << "Left a stopped worker running";
        return;
    }
    const WorkerEnd end = future.get();
    outcome.worker_threw = end.threw;
    outcome.error = end.error;
}

}  // namespace

namespace {

// The runs under way, all on the GUI thread.
QList<const BackgroundRun*>& runsUnderWay() {
    static QList<const BackgroundRun*> runs;
    return runs;
}

}  // namespace

BackgroundRun::BackgroundRun(BackgroundRunOptions options)
    : options_(std::move(options)),
      owner_(options_.parent),
      had_owner_(options_.parent != nullptr) {
    runsUnderWay().append(this);
}

BackgroundRun::~BackgroundRun() {
    runsUnderWay().removeOne(this);
    finish();
}

bool BackgroundRun::activeFor(const QWidget* owner) {
    for (const BackgroundRun* run : runsUnderWay()) {
        if (owner != nullptr && run->owner_.data() == owner) {
            return true;
        }
    }
    return false;
}

bool BackgroundRun::ownerDestroyed() const {
    return had_owner_ && owner_.isNull();
}

bool BackgroundRun::stopRequested() const {
    if (stop_seen_ || ownerDestroyed()) {
        return true;
    }
    return !window_.isNull() && window_->isDialogStop();
}

ZeProgressDialog* BackgroundRun::progressWindow() const {
    return window_.data();
}

void BackgroundRun::openWindow() {
    if (!window_.isNull() || ownerDestroyed()) {
        return;
    }
    const QString label = options_.label.isEmpty() ? tr("Processing") : options_.label;
    auto* window = new ZeProgressDialog(label, tr("Cancel"), 0, 100, owner_.data());
    window->setObjectName(QStringLiteral("BackgroundRunProgress"));
    window->setMinimumDuration(1);
    window->setWindowTitle(options_.title.isEmpty() ? tr("Please wait") : options_.title);
    window->setFixedSize(250, 60);
    // A zero range shows a busy indicator instead of a percentage.
    window->setRange(0, 0);
    window->setCancelButton(nullptr);
    // Setting the flags hides the window, and modality only takes effect on showing, so both
    // come before show().
    window->setWindowFlags(Qt::Dialog | Qt::WindowTitleHint);
    window->setWindowModality(Qt::ApplicationModal);
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        window->move(area.x() + area.width() - window->width(), 0);
    }
    window->show();
    window_ = window;
}

void BackgroundRun::finish() {
    if (!window_.isNull()) {
        window_->close();
        delete window_.data();
    }
}

void BackgroundRun::noteStop(bool call_back) {
    stop_seen_ = true;
    if (call_back && options_.on_stop_requested) {
        options_.on_stop_requested();
    }
}

bool BackgroundRun::stoppedBeforeStart(RunOutcome& outcome) {
    if (!stop_seen_ && !ownerDestroyed() && (window_.isNull() || !window_->isDialogStop())) {
        return false;
    }
    // The user stopped between two steps: nothing more is started.
    outcome.end = RunEnd::Stopped;
    outcome.owner_destroyed = ownerDestroyed();
    if (!stop_seen_) {
        noteStop(!outcome.owner_destroyed);
    }
    return true;
}

bool BackgroundRun::leaveOnStop(const BlockAccess& access, RunOutcome& outcome) {
    if (ownerDestroyed()) {
        // The dialog is gone: no callback may run any more, whatever the stop behaviour.
        if (!stop_seen_) {
            access.request_stop();
            noteStop(false);
        }
        outcome.end = RunEnd::Stopped;
        outcome.owner_destroyed = true;
        return true;
    }
    // A window deleted by someone else counts as a stop: nobody can ask it any more.
    if (!stop_seen_ && (window_.isNull() || window_->isDialogStop())) {
        access.request_stop();
        outcome.end = RunEnd::Stopped;
        noteStop(true);
        return options_.stop == StopBehaviour::LeaveAtOnce;
    }
    return false;
}

void BackgroundRun::poll(const BlockAccess& access, RunOutcome& outcome) {
    ++outcome.polls;
    const double value = access.get_value();
    if (options_.on_poll) {
        options_.on_poll(value);
    }
}

RunOutcome BackgroundRun::runWorker(BlockAccess access, std::function<void()> work) {
    RunOutcome outcome;
    if (stoppedBeforeStart(outcome)) {
        return outcome;
    }
    openWindow();

    // Copied: a worker left running may outlive the caller's text.
    const std::string file = options_.source_file != nullptr ? options_.source_file : __FILE__;
    const int line = options_.source_file != nullptr ? options_.source_line : __LINE__;
    auto wake = std::make_shared<WakeOnEnd>();
    std::future<WorkerEnd> future = startWorker(std::move(work), file, line, wake);

    const std::chrono::milliseconds period(std::max(1, options_.poll_ms));
    // The GUI thread sleeps in the event dispatcher, so timers, input and repaints are served as
    // they come; this timer only bounds the sleep for the stop and poll checks.
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.start(std::min(period, kLookAtLeastEvery));
    Clock::time_point next_poll = Clock::now() + period;
    // No sleep before the first look: a worker that is already done closes the run at once.
    while (!isReady(future)) {
        if (wake->ended) {
            future.wait();  // its result is being stored
            break;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (leaveOnStop(access, outcome)) {
            break;
        }
        const Clock::time_point now = Clock::now();
        if (now >= next_poll && !ownerDestroyed()) {
            next_poll = now + period;
            poll(access, outcome);
        }
    }
    heartbeat.stop();
    collectWorker(std::move(future), *wake, outcome);
    return outcome;
}

int BackgroundRun::detachedWorkers() {
    return Orphanage::instance().pending();
}

void BackgroundRun::setExitWait(int timeout_ms) {
    exitWaitMs = std::max(0, timeout_ms);
}

bool BackgroundRun::waitForDetachedWorkers(int timeout_ms) {
    return Orphanage::instance().waitAll(std::chrono::milliseconds(std::max(0, timeout_ms)));
}

}  // namespace wc
