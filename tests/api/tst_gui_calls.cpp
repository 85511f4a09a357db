#include "api/v1/gui_calls.h"
#include "support/test_main.h"

#include <QTest>
#include <atomic>
#include <stdexcept>
#include <thread>

using api_v1::GuiCalls;
using namespace std::chrono_literals;

class TestGuiCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void call_runs_on_the_gui_thread();
    void call_that_times_out_never_runs();
    void call_that_has_begun_is_waited_for();
    void closing_ends_all_waits();
};

namespace {

/// Makes a call on another thread. Destroy it only after the end of the call.
class Caller {
public:
    Caller(GuiCalls &calls, const std::function<void()> &function, std::chrono::milliseconds timeout)
        : thread_([this, &calls, function, timeout] {
              try {
                  wasCalled_ = calls.run(function, timeout);
              } catch (const std::runtime_error &) {
                  hasThrown_ = true;
              }
              isOver_ = true;
          }) {}
    ~Caller() { thread_.join(); }
    Caller(const Caller &) = delete;
    Caller &operator=(const Caller &) = delete;

    [[nodiscard]] bool isOver() const { return isOver_; }
    [[nodiscard]] bool wasCalled() const { return wasCalled_; }
    [[nodiscard]] bool hasThrown() const { return hasThrown_; }

private:
    std::atomic<bool> isOver_{false};
    std::atomic<bool> wasCalled_{false};
    std::atomic<bool> hasThrown_{false};
    std::thread thread_;
};

}  // namespace

void TestGuiCalls::call_runs_on_the_gui_thread() {
    GuiCalls calls;
    const std::thread::id gui = std::this_thread::get_id();
    std::thread::id ranOn;
    const Caller caller(
        calls, [&] { ranOn = std::this_thread::get_id(); }, 30s);
    QTRY_VERIFY(caller.isOver());
    QVERIFY(caller.wasCalled());
    QCOMPARE(ranOn, gui);
    QVERIFY(calls.run([&] { ranOn = {}; }, 0s));
    QCOMPARE(ranOn, std::thread::id());

    const Caller failing(
        calls, [] { throw std::runtime_error("failed"); }, 30s);
    QTRY_VERIFY(failing.isOver());
    QVERIFY(failing.hasThrown());
}

void TestGuiCalls::call_that_times_out_never_runs() {
    GuiCalls calls;
    bool hasRun = false;
    {
        const Caller caller(
            calls, [&] { hasRun = true; }, 20ms);
        // This thread is busy: it processes no events.
        while (!caller.isOver())
            std::this_thread::yield();
        QVERIFY(!caller.wasCalled());
    }
    QCoreApplication::processEvents();
    QVERIFY(!hasRun);
}

void TestGuiCalls::call_that_has_begun_is_waited_for() {
    GuiCalls calls;
    const Caller caller(
        calls, [&] { QTest::qWait(100); }, 50ms);
    QTRY_VERIFY(caller.isOver());
    QVERIFY(caller.wasCalled());
}

void TestGuiCalls::closing_ends_all_waits() {
    GuiCalls calls;
    bool hasRun = false;
    {
        const Caller early(
            calls, [&] { hasRun = true; }, 1h);
        std::this_thread::sleep_for(10ms);
        calls.close();
        const Caller late(
            calls, [&] { hasRun = true; }, 1h);
        while (!early.isOver() || !late.isOver())
            std::this_thread::yield();
        QVERIFY(!early.wasCalled() && !late.wasCalled());
    }
    QCoreApplication::processEvents();
    QVERIFY(!hasRun);
}

OCELA_TEST(TestGuiCalls)
#include "tst_gui_calls.moc"
