#include "simulators/scoped_variables.h"
#include "support/test_main.h"
#include "trackers/asee/asee_sdk.h"

#include <QLibrary>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace at = asee::gaze_record;

namespace {

#define OCELA_POINTER(name, parameters, arguments) int(*name) parameters = nullptr;
OCELA_ASEE_FUNCTIONS(OCELA_POINTER)

struct Record {
    std::array<unsigned char, at::bytes> bytes;

    template <typename T>
    [[nodiscard]] T field(std::size_t offset) const {
        T value{};
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return value;
    }
    [[nodiscard]] bool eyeSeen() const { return (field<int>(at::leftEyeFlags) & 1) != 0; }
    [[nodiscard]] bool tracked() const { return field<int>(at::leftStatus) < 2; }
    [[nodiscard]] bool gazeNear(double x, double y) const {
        return std::hypot(field<float>(at::gaze) - x, field<float>(at::gaze + 4) - y) < 0.05;
    }
};

/// What the library's threads tell.
struct Listener {
    std::mutex mutex;
    std::vector<Record> records;  // guarded by mutex, as the next one
    QString image;
    std::atomic<int> images{0}, nullRecords{0}, percent{-1}, finished{0}, inside{0}, stops{0};
    std::atomic<bool> stopFromWithin{false};

    static void gaze(const void *record, void *context) {
        auto *self = static_cast<Listener *>(context);
        ++self->inside;
        if (self->stopFromWithin) {
            _7i_stop();
            ++self->stops;
        }
        std::this_thread::yield();
        const std::lock_guard lock(self->mutex);
        if (record == nullptr)
            ++self->nullRecords;
        else
            std::memcpy(self->records.emplace_back().bytes.data(), record, at::bytes);
        --self->inside;
    }
    static void picture(const unsigned char *pixels, int size, int width, int height, long long /*stamp*/,
                        void *context) {
        auto *self = static_cast<Listener *>(context);
        const std::lock_guard lock(self->mutex);
        self->image = QString("%1 bytes of %2x%3%4").arg(size).arg(width).arg(height).arg(pixels ? "" : ", null");
        ++self->images;
    }
    static void progress(int /*number*/, int percent, void *context) {
        static_cast<Listener *>(context)->percent = percent;
    }
    static void finish(int /*number*/, int /*result*/, void *context) { ++static_cast<Listener *>(context)->finished; }

    bool blinked() {
        const std::lock_guard lock(mutex);
        return std::any_of(records.begin(), records.end(), [](const Record &record) { return !record.eyeSeen(); });
    }
    bool heard() {
        const std::lock_guard lock(mutex);
        return records.size() > 1;
    }
    std::vector<Record> takeRecords() {
        const std::lock_guard lock(mutex);
        return std::exchange(records, {});
    }
};

}  // namespace

class TestAseeLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void tells_gaze_once_it_is_calibrated();
    void goes_wrong_as_told_data();
    void goes_wrong_as_told();
    void shows_images_of_any_size_data();
    void shows_images_of_any_size();
    void calls_back_until_it_is_stopped_data();
    void calls_back_until_it_is_stopped();

private:
    int start() {
        _7i_set_gaze_callback(Listener::gaze, &listener_);
        _7i_set_image_callback(Listener::picture, &listener_);
        return _7i_start(qPrintable(folder_.path()));
    }
    int lookAt(float x, float y) {
        const std::array<float, 2> place{x, y};
        listener_.finished = 0;
        return _7i_start_calibration_point(1, place.data(), Listener::progress, &listener_, Listener::finish,
                                           &listener_);
    }
    QString session();

    QTemporaryDir folder_;
    Listener listener_;
    std::array<char, asee::coefficientBytes> coefficients_{};
};

void TestAseeLibrary::initTestCase() {
    const ScopedVariables frequentBlinks("OCELA_SIM_BLINK_INTERVAL=0.3");
    QLibrary library(OCELA_ASEE_LIBRARY);
#define OCELA_RESOLVE(name, parameters, arguments)                      \
    name = reinterpret_cast<int(*) parameters>(library.resolve(#name)); \
    QVERIFY2(name != nullptr, #name);
    OCELA_ASEE_FUNCTIONS(OCELA_RESOLVE)
    QVERIFY(_7i_stop() == 0);  // the simulated person is born
}

void TestAseeLibrary::cleanup() {
    _7i_stop();
    listener_.takeRecords();
    listener_.percent = -1;
    listener_.images = listener_.nullRecords = 0;
}

/// How far one goes from connecting to gaze, and why no further.
QString TestAseeLibrary::session() {
    if (const int code = _7i_device_connect(); code != 0)
        return QString("connect: %1").arg(code);
    if (const int code = start(); code != 0)
        return QString("start: %1").arg(code);
    if (_7i_start_calibration(1) != 0 || lookAt(0.85F, 0.15F) != 0)
        return "no calibration";
    const QString when = listener_.finished > 0 ? ", at once" : "";
    if (!QTest::qWaitFor([this] { return listener_.finished > 0; }, listener_.percent == 50 ? 0 : 2000))
        return QString("stuck at %1 %").arg(listener_.percent);
    if (_7i_compute_calibration(coefficients_.data()) != 0)
        return "not computed";
    return (_7i_start_tracking(coefficients_.data()) == 0 ? "gaze" : "refused") + when;
}

void TestAseeLibrary::tells_gaze_once_it_is_calibrated() {
    const ScopedVariables slowPoints("OCELA_SIM_ASEE_POINT_MS=900 OCELA_SIM_ASEE_FAULT=null-records");
    QCOMPARE(session(), QString("gaze"));
    for (const Record &record : listener_.takeRecords())
        QVERIFY(!record.tracked());
    QTRY_VERIFY(listener_.nullRecords > 5 && listener_.blinked());
    for (const Record &record : listener_.takeRecords()) {
        QCOMPARE(record.tracked(), record.eyeSeen());
        QVERIFY(!record.eyeSeen() || record.gazeNear(0.85, 0.15));
    }
    float left = 0, right = 0;
    QCOMPARE(_7i_get_calibration_score(&left, &right), 0);
    QVERIFY(left > 0.2F && left < 3 && right > 0.2F && right < 3);
    QCOMPARE(_7i_complete_calibration(), 0);
}

void TestAseeLibrary::goes_wrong_as_told_data() {
    QTest::addColumn<QByteArray>("variables");
    QTest::addColumn<QString>("end");
    QTest::newRow("no fault") << QByteArray() << "gaze";
    QTest::newRow("connect error") << QByteArray("OCELA_SIM_ASEE_CONNECT_ERROR=-7") << "connect: -7";
    QTest::newRow("start error") << QByteArray("OCELA_SIM_ASEE_START_ERROR=9") << "start: 9";
    QTest::newRow("compute fails") << QByteArray("OCELA_SIM_ASEE_FAULT=compute") << "not computed";
    QTest::newRow("coefficients refused") << QByteArray("OCELA_SIM_ASEE_FAULT=refuse-coefficients") << "refused";
    QTest::newRow("endless point") << QByteArray("OCELA_SIM_ASEE_FAULT=endless-point") << "stuck at 50 %";
    QTest::newRow("finish before the call returns")
        << QByteArray("OCELA_SIM_ASEE_FAULT=instant-point") << "gaze, at once";
}

void TestAseeLibrary::goes_wrong_as_told() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope("OCELA_SIM_ASEE_POINT_MS=100 " + variables);
    QTEST(session(), "end");
}

void TestAseeLibrary::shows_images_of_any_size_data() {
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("image");
    QTest::newRow("as the real one") << QByteArray() << "1310720 bytes of 1280x1024";
    QTest::newRow("larger") << QByteArray("OCELA_SIM_ASEE_IMAGE=1600x1200") << "1920000 bytes of 1600x1200";
    QTest::newRow("absurd") << QByteArray("OCELA_SIM_ASEE_TOLD_IMAGE=-5x0") << "1310720 bytes of -5x0";
    QTest::newRow("bytes below zero") << QByteArray("OCELA_SIM_ASEE_TOLD_BYTES=-1") << "-1 bytes of 1280x1024";
    QTest::newRow("null") << QByteArray("OCELA_SIM_ASEE_FAULT=null-image") << "1310720 bytes of 1280x1024, null";
}

void TestAseeLibrary::shows_images_of_any_size() {
    QFETCH(QByteArray, variable);
    const ScopedVariables scope(variable);
    QCOMPARE(_7i_device_connect() + start(), 0);
    QTRY_VERIFY(listener_.images > 1);
    _7i_stop();
    QTEST(listener_.image, "image");
}

void TestAseeLibrary::calls_back_until_it_is_stopped_data() {
    QTest::addColumn<bool>("stopFromWithin");
    QTest::addColumn<QByteArray>("late");
    QTest::newRow("stopped from outside") << false << QByteArray();
    QTest::newRow("stopped by a callback") << true << QByteArray();
    QTest::newRow("callbacks after the stop") << false << QByteArray("OCELA_SIM_ASEE_LATE_CALLBACKS_MS=300");
}

void TestAseeLibrary::calls_back_until_it_is_stopped() {
    QFETCH(bool, stopFromWithin);
    QFETCH(QByteArray, late);
    const ScopedVariables scope("OCELA_SIM_ASEE_RATE=1000 " + late);
    listener_.stopFromWithin = stopFromWithin;
    QCOMPARE(_7i_device_connect() + start(), 0);
    QTRY_VERIFY(stopFromWithin ? listener_.stops > 0 && listener_.inside == 0 : listener_.heard());
    listener_.stopFromWithin = false;
    _7i_stop();
    listener_.takeRecords();
    const auto heard = [this] { return listener_.heard(); };
    QCOMPARE(QTest::qWaitFor(heard, 100), !late.isEmpty());
    const auto silent = [&] { return listener_.takeRecords().empty() && !QTest::qWaitFor(heard, 50); };
    QVERIFY(QTest::qWaitFor(silent, 5000));
    QCOMPARE(listener_.inside.load(), 0);
}

OCELA_TEST(TestAseeLibrary)
#include "tst_asee_library.moc"
