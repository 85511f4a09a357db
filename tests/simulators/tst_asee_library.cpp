#include "simulators/fault_rows.h"
#include "support/test_main.h"
#include "trackers/asee/asee_sdk.h"

#include <QLibrary>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <mutex>
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
        if (self->stopFromWithin)
            self->stops += _7i_stop() == 0 ? 1 : 0;
        const std::lock_guard lock(self->mutex);
        if (record == nullptr)
            ++self->nullRecords;
        else
            std::memcpy(self->records.emplace_back().bytes.data(), record, at::bytes);
        --self->inside;
    }
    static void picture(const unsigned char *pixels, int size, int width, int height, long long, void *context) {
        auto *self = static_cast<Listener *>(context);
        const std::lock_guard lock(self->mutex);
        self->image = QString("%1 bytes of %2x%3%4").arg(size).arg(width).arg(height).arg(pixels ? "" : ", null");
        ++self->images;
    }
    static void progress(int, int percent, void *context) { static_cast<Listener *>(context)->percent = percent; }
    static void finish(int, int, void *context) { ++static_cast<Listener *>(context)->finished; }

    std::vector<Record> take() {
        const std::lock_guard lock(mutex);
        return std::exchange(records, {});
    }
    bool blinked() {
        const std::lock_guard lock(mutex);
        return std::any_of(records.begin(), records.end(), [](const Record &record) { return !record.eyeSeen(); });
    }
};

}  // namespace

class TestAseeLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { listener_.percent = -1; }
    void cleanup() { _7i_stop(); }
    void tells_gaze_once_it_is_calibrated();
    void fails_as_told_data();
    void fails_as_told();
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
    int calibrateAt(std::array<float, 2> place) {
        listener_.finished = 0;
        const int result = _7i_start_calibration(1);
        return result != 0 ? result
                           : _7i_start_calibration_point(1, place.data(), Listener::progress, &listener_,
                                                         Listener::finish, &listener_);
    }
    QString session();

    QTemporaryDir folder_;
    Listener listener_;
};

void TestAseeLibrary::initTestCase() {
    const ScopedVariables frequentBlinks("OCELA_SIM_BLINK_INTERVAL=0.3");
    QLibrary library(OCELA_ASEE_LIBRARY);
#define OCELA_RESOLVE(name, parameters, arguments)                   \
    name = reinterpret_cast<decltype(name)>(library.resolve(#name)); \
    QVERIFY2(name != nullptr, #name);
    OCELA_ASEE_FUNCTIONS(OCELA_RESOLVE)
    QCOMPARE(_7i_stop(), 0);  // the first call: the simulated person is born
}

/// How far one gets from connecting to gaze, with one point.
QString TestAseeLibrary::session() {
    if (const int code = _7i_device_connect(); code != 0)
        return QString("connect: %1").arg(code);
    if (const int code = start(); code != 0)
        return QString("start: %1").arg(code);
    if (calibrateAt({0.85F, 0.15F}) != 0)
        return "no calibration";
    const QString when = listener_.finished > 0 ? ", at once" : "";
    if (!QTest::qWaitFor([this] { return listener_.finished > 0; }, 2000))
        return QString("stuck at %1 %").arg(listener_.percent);
    std::array<char, asee::coefficientBytes> coefficients{};
    if (_7i_compute_calibration(coefficients.data()) != 0)
        return "not computed";
    return (_7i_start_tracking(coefficients.data()) == 0 ? "gaze" : "refused") + when;
}

void TestAseeLibrary::tells_gaze_once_it_is_calibrated() {
    const ScopedVariables scope("OCELA_SIM_ASEE_POINT_MS=900 OCELA_SIM_ASEE_FAULT=null-records");
    QCOMPARE(session(), QString("gaze"));
    for (const Record &record : listener_.take())
        QVERIFY(!record.tracked());
    QTRY_VERIFY(listener_.nullRecords > 5 && listener_.blinked());
    for (const Record &record : listener_.take()) {
        QCOMPARE(record.tracked(), record.eyeSeen());
        QVERIFY(!record.eyeSeen() || record.gazeNear(0.85, 0.15));
    }
    float left = 0, right = 0;
    QCOMPARE(_7i_get_calibration_score(&left, &right), 0);
    QVERIFY(left > 0.2F && left < 3 && right > 0.2F && right < 3);
}

void TestAseeLibrary::fails_as_told_data() {
    faultColumns();
    faultRow("no fault", "", "gaze");
    faultRow("connect error", "OCELA_SIM_ASEE_CONNECT_ERROR=-7", "connect: -7");
    faultRow("start error", "OCELA_SIM_ASEE_START_ERROR=9", "start: 9");
    faultRow("compute fails", "OCELA_SIM_ASEE_FAULT=compute", "not computed");
    faultRow("coefficients refused", "OCELA_SIM_ASEE_FAULT=refuse-coefficients", "refused");
    faultRow("a point that never finishes", "OCELA_SIM_ASEE_FAULT=endless-point", "stuck at 50 %");
    faultRow("a point that finishes before the call returns", "OCELA_SIM_ASEE_FAULT=instant-point", "gaze, at once");
}

void TestAseeLibrary::fails_as_told() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope("OCELA_SIM_ASEE_POINT_MS=100 " + variables);
    QTEST(session(), "outcome");
}

void TestAseeLibrary::shows_images_of_any_size_data() {
    faultColumns();
    faultRow("as the real one", "OCELA_SIM_ASEE_FAULT=", "1310720 bytes of 1280x1024");
    faultRow("larger", "OCELA_SIM_ASEE_IMAGE=1600x1200", "1920000 bytes of 1600x1200");
    faultRow("absurd", "OCELA_SIM_ASEE_TOLD_IMAGE=-5x0", "1310720 bytes of -5x0");
    faultRow("bytes below zero", "OCELA_SIM_ASEE_TOLD_BYTES=-1", "-1 bytes of 1280x1024");
    faultRow("null", "OCELA_SIM_ASEE_FAULT=null-image", "1310720 bytes of 1280x1024, null");
}

void TestAseeLibrary::shows_images_of_any_size() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope(variables);
    listener_.images = 0;
    QCOMPARE(_7i_device_connect() + start(), 0);
    QTRY_VERIFY(listener_.images > 1);
    _7i_stop();
    QTEST(listener_.image, "outcome");
}

void TestAseeLibrary::calls_back_until_it_is_stopped_data() {
    faultColumns();
    faultRow("from outside", "OCELA_SIM_ASEE_RATE=1000", "silent");
    faultRow("by a callback", "OCELA_SIM_ASEE_RATE=1000", "silent");
    faultRow("and longer", "OCELA_SIM_ASEE_RATE=1000 OCELA_SIM_ASEE_LATE_CALLBACKS_MS=300", "late");
}

void TestAseeLibrary::calls_back_until_it_is_stopped() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope(variables);
    const bool fromWithin = QByteArray(QTest::currentDataTag()) == "by a callback";
    const auto heard = [this] { return !listener_.take().empty(); };
    listener_.stopFromWithin = fromWithin;
    QCOMPARE(_7i_device_connect() + start(), 0);
    QVERIFY(QTest::qWaitFor([&] { return fromWithin ? listener_.stops > 0 && listener_.inside == 0 : heard(); }));
    listener_.stopFromWithin = false;
    _7i_stop();
    listener_.take();
    QTEST(QString(QTest::qWaitFor(heard, 100) ? "late" : "silent"), "outcome");
    QVERIFY(QTest::qWaitFor([&] { return !QTest::qWaitFor(heard, 50); }));  // nobody calls a listener that is gone
}

OCELA_TEST(TestAseeLibrary)
#include "tst_asee_library.moc"
