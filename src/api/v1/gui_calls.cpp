#include "api/v1/gui_calls.h"

#include <QThread>
#include <algorithm>
#include <condition_variable>
#include <exception>
#include <utility>

using namespace api_v1;

/// One call: waiting, then running, then done; or waiting, then revoked.
class GuiCalls::Call {
public:
    explicit Call(const std::function<void()> &function) : function_(function) {}

    /// Runs the function unless the call is revoked.
    void execute() {
        if (!moveOn(Phase::Waiting, Phase::Running))
            return;
        try {
            function_();
        } catch (...) {
            exception_ = std::current_exception();
        }
        (void)moveOn(Phase::Running, Phase::Done);
    }

    void revoke() { (void)moveOn(Phase::Waiting, Phase::Revoked); }

    /// Returns whether the function was called.
    [[nodiscard]] bool wait(std::chrono::milliseconds timeout) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, timeout, [this] { return phase_ != Phase::Waiting; });
        if (phase_ == Phase::Waiting)
            phase_ = Phase::Revoked;
        changed_.wait(lock, [this] { return phase_ != Phase::Running; });
        if (exception_)
            std::rethrow_exception(exception_);
        return phase_ == Phase::Done;
    }

private:
    enum class Phase { Waiting, Running, Done, Revoked };

    bool moveOn(Phase from, Phase to) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (phase_ != from)
                return false;
            phase_ = to;
        }
        changed_.notify_all();
        return true;
    }

    /// Used only while the caller of run() waits.
    const std::function<void()> &function_;
    std::exception_ptr exception_;
    Phase phase_ = Phase::Waiting;
    std::mutex mutex_;
    std::condition_variable changed_;
};

GuiCalls::GuiCalls(QObject *parent) : QObject(parent) {}

GuiCalls::~GuiCalls() {
    close();
}

bool GuiCalls::run(const std::function<void()> &function, std::chrono::milliseconds timeout) {
    if (QThread::currentThread() == thread()) {
        function();
        return true;
    }
    const auto call = std::make_shared<Call>(function);
    const bool isAccepted = calls_.with([&](Calls &calls) {
        const auto isGone = [](const std::weak_ptr<Call> &waiting) { return waiting.expired(); };
        calls.waiting.erase(std::remove_if(calls.waiting.begin(), calls.waiting.end(), isGone), calls.waiting.end());
        calls.waiting.push_back(call);
        return !calls.isClosed;
    });
    if (!isAccepted)
        return false;
    QMetaObject::invokeMethod(
        this, [call] { call->execute(); }, Qt::QueuedConnection);
    return call->wait(timeout);
}

void GuiCalls::close() {
    const std::vector<std::weak_ptr<Call>> waiting = calls_.with([](Calls &calls) {
        calls.isClosed = true;
        return std::exchange(calls.waiting, {});
    });
    for (const std::weak_ptr<Call> &entry : waiting) {
        if (const std::shared_ptr<Call> call = entry.lock())
            call->revoke();
    }
}
