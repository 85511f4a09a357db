#include "simulators/fault_rows.h"
#include "simulators/record_field.h"
#include "support/test_main.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLibrary>
#include <QScreen>
#include <QtMath>
#include <array>
#include <cmath>

namespace at = quicklink2::frame_record;

namespace {

#define OCELA_POINTER(name, parameters, arguments) int(*name) parameters = nullptr;
OCELA_QUICKLINK2_FUNCTIONS(OCELA_POINTER)

/// Longer than a machine stops.
constexpr int frameTimeoutMs = 6000;

template <typename T>
T field(const quicklink2::QLFrameRecord &record, int offset) {
    return fieldAt<T>(record.bytes, static_cast<std::size_t>(offset));
}

/// Returns whether the dark pupil in the image extends equally far from its reported centre in opposite directions.
bool isPupilInImage(const quicklink2::QLFrameRecord &frame, int eye) {
    const auto width = ptrdiff_t(field<int>(frame, at::imageWidth));
    const int x = int(field<float>(frame, eye + at::eyePupilCentre));
    const int y = int(field<float>(frame, eye + at::eyePupilCentre + 4));
    const auto *centre = field<const unsigned char *>(frame, at::imagePixels) + y * width + x;
    const auto extent = [centre](ptrdiff_t step) {
        int pixelCount = 0;
        while (centre[pixelCount * step] <= 30)
            ++pixelCount;
        return pixelCount;
    };
    return extent(1) > 0 && std::abs(extent(1) - extent(-1)) < 6 && std::abs(extent(width) - extent(-width)) < 6;
}

}  // namespace

class TestEyetechLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void streams_frames_while_it_runs();
    void looks_beside_the_mouse_pointer_by_its_offset();
    void finds_devices_data();
    void finds_devices();
    void returns_each_frame_once_with_an_invalid_image();
    void calibrates_data();
    void calibrates();

private:
    int start();
    static QString outcomeOf(int calibration);

    int device_ = 0;
};

void TestEyetechLibrary::initTestCase() {
    const ScopedVariables person(
        "OCELA_SIM_BLINK_INTERVAL=0.5 OCELA_SIM_DISTANCE=50 OCELA_SIM_OFFSET=1,-0.5 "
        "OCELA_SIM_NOISE=0 OCELA_SIM_FOLLOW_MOUSE=1");
    QLibrary library(OCELA_EYETECH_LIBRARY), incomplete(OCELA_INCOMPLETE_EYETECH_LIBRARY);
    QStringList missing;
#define OCELA_RESOLVE(name, parameters, arguments)                   \
    name = reinterpret_cast<decltype(name)>(library.resolve(#name)); \
    QVERIFY2(name != nullptr, #name);                                \
    if (incomplete.resolve(#name) == nullptr)                        \
        missing << #name;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_RESOLVE)
    QCOMPARE(missing, QStringList("QLCalibration_AddBias"));
    QCOMPARE(QLDevice_Stop_All(), 0);  // creates the simulated person
}

void TestEyetechLibrary::cleanup() {
    QLDevice_Stop_All();
}

/// Starts the only device. QLDevice_Enumerate() also makes the library read the environment.
int TestEyetechLibrary::start() {
    int count = 1;
    const int result = QLDevice_Enumerate(&count, &device_);
    return result != 0 ? result : QLDevice_Start(device_);
}

void TestEyetechLibrary::streams_frames_while_it_runs() {
    int status = 0;
    quicklink2::QLFrameRecord frame{};
    QCOMPARE(start(), 0);
    QCOMPARE(QLDevice_GetStatus(device_, &status), 0);
    QCOMPARE(status, quicklink2::deviceRunning);
    int seen = 0, lost = 0;
    while (seen < 5 || lost < 2) {
        QCOMPARE(QLDevice_GetFrame(device_, frameTimeoutMs, &frame), 0);
        const bool found = field<bool>(frame, at::leftEye);
        QCOMPARE(field<bool>(frame, at::gazeValid), found);
        ++(found ? seen : lost);
        if (!found)
            continue;
        QVERIFY(std::abs(field<float>(frame, at::distance_cm) - 50) < 5);
        QVERIFY(field<float>(frame, at::gaze) > -5 && field<float>(frame, at::gaze) < 105);
        QVERIFY(isPupilInImage(frame, at::leftEye) && isPupilInImage(frame, at::rightEye));
    }
    QLDevice_Stop(device_);
    QVERIFY(QLDevice_GetFrame(device_, frameTimeoutMs, &frame) != 0);
    QLDevice_GetStatus(device_, &status);
    QCOMPARE(status, quicklink2::deviceStopped);
}

/// The pointer is at -132.75 mm, 74.75 mm from the centre of a screen of 531 mm x 299 mm. The eyes are 500 mm away.
void TestEyetechLibrary::looks_beside_the_mouse_pointer_by_its_offset() {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QCursor::setPos(screen.topLeft() + QPoint(screen.width() / 4, screen.height() * 3 / 4));
    QCOMPARE(start(), 0);
    const double x_mm = 500 * std::tan(std::atan2(-132.75, 500) + qDegreesToRadians(1.0));
    const double elevation = std::atan2(74.75, std::hypot(-132.75, 500)) - qDegreesToRadians(0.5);
    const double y_mm = std::hypot(x_mm, 500) * std::tan(elevation);
    const auto errorOf = [&](const quicklink2::QLFrameRecord &frame, int point) {
        return std::hypot(field<float>(frame, point) - (50 + 100 * x_mm / 531),
                          field<float>(frame, point + 4) - (50 + 100 * y_mm / 299));
    };
    quicklink2::QLFrameRecord frame{};
    const auto looksThere = [&] {
        return QLDevice_GetFrame(device_, frameTimeoutMs, &frame) == 0 && field<bool>(frame, at::gazeValid) &&
               errorOf(frame, at::gaze) < 0.001 && errorOf(frame, at::leftEye + at::eyeGaze) < 0.001 &&
               errorOf(frame, at::rightEye + at::eyeGaze) < 0.001;
    };
    QTRY_VERIFY(looksThere());
}

void TestEyetechLibrary::finds_devices_data() {
    faultColumns();
    faultRow("one device", "OCELA_SIM_EYETECH_DEVICES=1", "0: device 101, status 0, start 0");
    faultRow("two devices", "OCELA_SIM_EYETECH_DEVICES=2", "0: device 102, status 0, start 0");
    faultRow("no device", "OCELA_SIM_EYETECH_DEVICES=0", "0: device 0, status 1, start 1");
    faultRow("enumerate error", "OCELA_SIM_EYETECH_ENUMERATE_ERROR=5", "5: device 0, status 1, start 1");
    faultRow("status error", "OCELA_SIM_EYETECH_STATUS_ERROR=6", "0: device 101, status 6, start 0");
    faultRow("start error", "OCELA_SIM_EYETECH_START_ERROR=7", "0: device 101, status 0, start 7");
}

/// Uses the last device.
void TestEyetechLibrary::finds_devices() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope(variables);
    std::array<int, 100> devices{};
    int count = 100, status = 0;
    const int result = QLDevice_Enumerate(&count, devices.data());
    const int device = result == 0 && count > 0 ? devices[std::size_t(count - 1)] : 0;
    const int statusResult = QLDevice_GetStatus(device, &status);
    const QString outcome = QString("%1: device %2, status %3, start %4");
    QTEST(outcome.arg(result).arg(device).arg(statusResult).arg(QLDevice_Start(device)), "outcome");
}

/// At one frame per second, the second call times out.
void TestEyetechLibrary::returns_each_frame_once_with_an_invalid_image() {
    const ScopedVariables scope(
        "OCELA_SIM_EYETECH_RATE=1 OCELA_SIM_EYETECH_TOLD_IMAGE=-5x0 OCELA_SIM_EYETECH_FAULT=null-image");
    quicklink2::QLFrameRecord frame{};
    QCOMPARE(start(), 0);
    QCOMPARE(QLDevice_GetFrame(device_, frameTimeoutMs, &frame), 0);
    QCOMPARE(field<const unsigned char *>(frame, at::imagePixels), nullptr);
    QCOMPARE(field<int>(frame, at::imageWidth), -5);
    QCOMPARE(QLDevice_GetFrame(device_, 50, &frame), 4);
}

void TestEyetechLibrary::calibrates_data() {
    faultColumns();
    faultRow("no fault", "", "5 targets to (10, 90), status 0, good");
    faultRow("a target fails once", "target-fails-once", "5 targets to (10, 90), status 3, status 0, good");
    faultRow("a target always fails", "target-fails", "5 targets to (10, 90), status 3, status 3, no score");
    faultRow("the person looks elsewhere", "distracted", "5 targets to (10, 90), status 0, poor");
    faultRow("buffer too small", "small-target-buffer", "30 targets, too many");
}

/// Calibrates the second target, at which faults occur, up to twice.
void TestEyetechLibrary::calibrates() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope("OCELA_SIM_EYETECH_RATE=200 OCELA_SIM_EYETECH_FAULT=" + variables);
    QFETCH(const QString, outcome);
    QCOMPARE(start(), 0);
    int id = 0;
    QString found;
    // A target also fails if the machine stops while the person looks at it.
    for (int calibration = 0; calibration < 4 && found != outcome; ++calibration) {
        QCOMPARE(QLCalibration_Create(0, &id), 0);
        QCOMPARE(QLCalibration_Initialize(device_, id, 0), 0);
        found = outcomeOf(id);
    }
    QCOMPARE(found, outcome);
    QVERIFY(QLDevice_ApplyCalibration(device_, id) != 0);  // not all targets are done
}

QString TestEyetechLibrary::outcomeOf(int calibration) {
    std::array<quicklink2::QLTarget, 20> targets{};
    int count = 20, status = 3;
    if (QLCalibration_GetTargets(calibration, &count, targets.data()) == 11)
        return QString("%1 targets, too many").arg(count);
    const quicklink2::QLTarget &last = targets[std::size_t(count - 1)];
    QString outcome = QString("%1 targets to (%2, %3)").arg(count).arg(double(last.x)).arg(double(last.y));
    for (int attempt = 0; attempt < 2 && status == 3; ++attempt) {
        QLCalibration_Calibrate(calibration, targets[1].id, 700, attempt == 0);
        while (QLCalibration_GetStatus(calibration, targets[1].id, &status) == 0 && status == 1)
            QTest::qWait(10);
        outcome += QString(", status %1").arg(status);
    }
    quicklink2::QLScore score{};
    if (QLCalibration_GetScoring(calibration, targets[1].id, 1, &score) != 0)
        return outcome + ", no score";
    return outcome + (score.score < 10 ? ", good" : ", poor");
}

OCELA_TEST(TestEyetechLibrary)
#include "tst_eyetech_library.moc"
