#include "simulators/fault_rows.h"
#include "simulators/record_field.h"
#include "support/test_main.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <QFile>
#include <QLibrary>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <mutex>
#include <vector>

namespace at = asee_sdk::gaze_record;

namespace {

/// Several times as long as a calibration point takes, because the machine may stop meanwhile.
constexpr int pointTimeoutMs = 6000;

#define OCELA_POINTER(name, parameters, arguments) int(*name) parameters = nullptr;
OCELA_ASEE_FUNCTIONS(OCELA_POINTER)

struct Record {
    std::array<unsigned char, at::sizeBytes> bytes;

    template <typename T>
    [[nodiscard]] T field(std::size_t offset) const {
        return fieldAt<T>(bytes.data(), offset);
    }
    [[nodiscard]] bool eyeSeen() const { return (field<int>(at::leftEyeFlags) & 1) != 0; }
    [[nodiscard]] bool tracked() const { return field<int>(at::leftStatus) < 2; }
    [[nodiscard]] double gazeError(double x, double y) const {
        return std::hypot(field<float>(at::gaze) - x, field<float>(at::gaze + 4) - y);
    }
};

/// Receives the callbacks of the library's threads.
struct Listener {
    std::mutex mutex;
    std::vector<Record> records;  // guarded by mutex
    QString image;                // guarded by mutex
    std::atomic<int> nullRecords{0}, finished{0}, inside{0}, stops{0};
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
            std::memcpy(self->records.emplace_back().bytes.data(), record, at::sizeBytes);
        --self->inside;
    }
    static void picture(const unsigned char *pixels, int size, int width, int height, long long, void *context) {
        auto *self = static_cast<Listener *>(context);
        const std::lock_guard lock(self->mutex);
        self->image = QString("%1 bytes of %2x%3%4").arg(size).arg(width).arg(height).arg(pixels ? "" : ", null");
    }
    static void progress(int, int, void *) {}
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
    void cleanup() { _7i_stop(); }
    void reports_gaze_after_a_calibration();
    void simulates_faults_data();
    void simulates_faults();
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
    const ScopedVariables person("OCELA_SIM_BLINK_INTERVAL=0.3 OCELA_SIM_OFFSET=0.5,-0.5 OCELA_SIM_NOISE=0");
    QLibrary library(OCELA_ASEE_LIBRARY);
#define OCELA_RESOLVE(name, parameters, arguments)                   \
    name = reinterpret_cast<decltype(name)>(library.resolve(#name)); \
    QVERIFY2(name != nullptr, #name);
    OCELA_ASEE_FUNCTIONS(OCELA_RESOLVE)
    QCOMPARE(_7i_stop(), 0);  // the first call, which creates the simulated person
}

/// Connects, calibrates with one point and starts tracking. Returns the step that fails, or "gaze". Appends
/// ", immediately" if the point finished before its call returned.
QString TestAseeLibrary::session() {
    if (const int code = _7i_device_connect(); code != 0)
        return QString("connect: %1").arg(code);
    if (const int code = start(); code != 0)
        return QString("start: %1").arg(code);
    if (!QFile::exists(folder_.filePath("armeabi/unpacked.mnn")))
        return "not unpacked";
    if (calibrateAt({0.85F, 0.15F}) != 0)
        return "no calibration";
    const QString when = listener_.finished > 0 ? ", immediately" : "";
    if (!QTest::qWaitFor([this] { return listener_.finished > 0; }, pointTimeoutMs))
        return "stuck";
    std::array<char, asee_sdk::coefficientBytes> coefficients{};
    if (_7i_compute_calibration(coefficients.data()) != 0)
        return "not computed";
    return (_7i_start_tracking(coefficients.data()) == 0 ? "gaze" : "refused") + when;
}

void TestAseeLibrary::reports_gaze_after_a_calibration() {
    const ScopedVariables scope("OCELA_SIM_ASEE_POINT_MS=900 OCELA_SIM_ASEE_FAULT=null-records");
    QCOMPARE(session(), QString("gaze"));
    for (const Record &record : listener_.take())
        QVERIFY(!record.tracked());
    QTRY_VERIFY(listener_.nullRecords > 5 && listener_.blinked());
    for (const Record &record : listener_.take()) {
        QCOMPARE(record.tracked(), record.eyeSeen());
        QVERIFY(!record.eyeSeen() || record.gazeError(0.86113, 0.12960) < 0.0001);
    }
    float left = 0, right = 0;
    QCOMPARE(_7i_get_calibration_score(&left, &right), 0);
    QVERIFY(left > 0.2F && left < 3 && right > 0.2F && right < 3);
    _7i_stop();
    QCOMPARE(listener_.image, QString("1310720 bytes of 1280x1024"));
}

void TestAseeLibrary::simulates_faults_data() {
    faultColumns();
    faultRow("no fault", "", "gaze");
    faultRow("connect error", "OCELA_SIM_ASEE_CONNECT_ERROR=-7", "connect: -7");
    faultRow("start error", "OCELA_SIM_ASEE_START_ERROR=9", "start: 9");
    faultRow("compute fails", "OCELA_SIM_ASEE_FAULT=compute", "not computed");
    faultRow("coefficients refused", "OCELA_SIM_ASEE_FAULT=refuse-coefficients", "refused");
    faultRow("a point is refused", "OCELA_SIM_ASEE_FAULT=refuse-point", "no calibration");
    faultRow("a point that never finishes", "OCELA_SIM_ASEE_FAULT=endless-point", "stuck");
    faultRow("a point that finishes before the call returns", "OCELA_SIM_ASEE_FAULT=instant-point",
             "gaze, immediately");
}

void TestAseeLibrary::simulates_faults() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope("OCELA_SIM_ASEE_POINT_MS=100 " + variables);
    QTEST(session(), "outcome");
}

/// Stops from outside first, then in a callback.
void TestAseeLibrary::calls_back_until_it_is_stopped() {
    const ScopedVariables scope("OCELA_SIM_ASEE_RATE=1000");
    const auto heard = [this] { return !listener_.take().empty(); };
    for (const bool fromWithin : {false, true}) {
        listener_.stopFromWithin = fromWithin;
        QCOMPARE(_7i_device_connect() + start(), 0);
        QVERIFY(QTest::qWaitFor([&] { return fromWithin ? listener_.stops > 0 && listener_.inside == 0 : heard(); },
                                test_support::longWaitMs));
        listener_.stopFromWithin = false;
        if (!fromWithin)
            _7i_stop();
        listener_.take();
        QVERIFY(!QTest::qWaitFor(heard, 100));
    }
}

OCELA_TEST(TestAseeLibrary)
#include "tst_asee_library.moc"
