#include "simulators/fault_rows.h"
#include "support/test_main.h"
#include "trackers/eyetech/quicklink2.h"

#include <QFile>
#include <QLibrary>
#include <QTemporaryDir>
#include <array>
#include <cmath>
#include <cstring>
#include <future>

namespace {

#define OCELA_POINTER(name, parameters, arguments) int(*name) parameters = nullptr;
OCELA_QUICKLINK2_FUNCTIONS(OCELA_POINTER)

template <typename T>
T field(const QLFrameRecord &record, int offset) {
    T value{};
    std::memcpy(&value, record.bytes + offset, sizeof value);
    return value;
}

/// How far the middle of the dark pixels around an eye's told pupil is from it, in pixels.
double pupilMiss(const QLFrameRecord &frame, int eye) {
    const auto *pixels = field<const unsigned char *>(frame, frame_record::imagePixels);
    const int width = field<int>(frame, frame_record::imageWidth);
    const double toldX = field<float>(frame, eye + frame_record::eyePupilCentre);
    const double toldY = field<float>(frame, eye + frame_record::eyePupilCentre + 4);
    double x = 0, y = 0, count = 0;
    for (int row = int(toldY) - 60; row < int(toldY) + 60; ++row) {
        for (int column = int(toldX) - 60; column < int(toldX) + 60; ++column) {
            if (pixels[row * width + column] > 30)
                continue;
            x += column + 0.5;
            y += row + 0.5;
            ++count;
        }
    }
    return std::hypot(x / count - toldX, y / count - toldY);
}

}  // namespace

class TestEyetechLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void streams_frames_while_it_runs();
    void finds_devices_data();
    void finds_devices();
    void can_be_unplugged_while_running();
    void blocks_in_a_frame_whatever_happens();
    void calibrates_data();
    void calibrates();
    void keeps_settings();

private:
    int start();
    static QString courseOf(int calibration);

    QTemporaryDir folder_;
    int device_ = 0;
};

void TestEyetechLibrary::initTestCase() {
    const ScopedVariables frequentBlinks("OCELA_SIM_BLINK_INTERVAL=0.5");
    QLibrary library(OCELA_EYETECH_LIBRARY), incomplete(OCELA_INCOMPLETE_EYETECH_LIBRARY);
    QStringList missing;
#define OCELA_RESOLVE(name, parameters, arguments)                   \
    name = reinterpret_cast<decltype(name)>(library.resolve(#name)); \
    QVERIFY2(name != nullptr, #name);                                \
    if (incomplete.resolve(#name) == nullptr)                        \
        missing << #name;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_RESOLVE)
    QCOMPARE(missing, QStringList("QLCalibration_AddBias"));
    QCOMPARE(QLDevice_Stop_All(), 0);  // the simulated person is born
}

void TestEyetechLibrary::cleanup() {
    QLDevice_Stop_All();
}

/// Reads the environment, too.
int TestEyetechLibrary::start() {
    int count = 1;
    const int result = QLDevice_Enumerate(&count, &device_);
    return result != 0 ? result : QLDevice_Start(device_);
}

void TestEyetechLibrary::streams_frames_while_it_runs() {
    int status = 0;
    QLFrameRecord frame{};
    QCOMPARE(start(), 0);
    QCOMPARE(QLDevice_GetStatus(device_, &status), 0);
    QCOMPARE(status, ql_device_running);
    int seen = 0, lost = 0;
    while (seen < 5 || lost < 2) {
        QCOMPARE(QLDevice_GetFrame(device_, 1000, &frame), 0);
        const bool found = field<bool>(frame, frame_record::leftEye);
        QCOMPARE(field<bool>(frame, frame_record::gazeValid), found);
        ++(found ? seen : lost);
        if (!found)
            continue;
        QVERIFY(std::abs(field<float>(frame, frame_record::distance_cm) - 62) < 5);
        QVERIFY(field<float>(frame, frame_record::gaze) > -5 && field<float>(frame, frame_record::gaze) < 105);
        QVERIFY(pupilMiss(frame, frame_record::leftEye) < 3 && pupilMiss(frame, frame_record::rightEye) < 3);
    }
    QLDevice_Stop(device_);
    QVERIFY(QLDevice_GetFrame(device_, 1000, &frame) != 0);
    QLDevice_GetStatus(device_, &status);
    QCOMPARE(status, ql_device_stopped);
}

void TestEyetechLibrary::finds_devices_data() {
    faultColumns();
    faultRow("one device", "OCELA_SIM_EYETECH_DEVICES=1", "0: 1 devices, status 0, start 0");
    faultRow("two devices", "OCELA_SIM_EYETECH_DEVICES=2", "0: 2 devices, status 0, start 0");
    faultRow("no device", "OCELA_SIM_EYETECH_DEVICES=0", "0: 0 devices, status 1, start 1");
    faultRow("not yet", "OCELA_SIM_EYETECH_APPEAR_AFTER=9999", "0: 0 devices, status 1, start 1");
    faultRow("enumerate error", "OCELA_SIM_EYETECH_ENUMERATE_ERROR=5", "5: 100 devices, status 1, start 1");
    faultRow("status error", "OCELA_SIM_EYETECH_STATUS_ERROR=6", "0: 1 devices, status 6, start 0");
    faultRow("start error", "OCELA_SIM_EYETECH_START_ERROR=7", "0: 1 devices, status 0, start 7");
}

void TestEyetechLibrary::finds_devices() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope(variables);
    std::array<int, 100> devices{};
    int count = 100, status = 0;
    const int found = QLDevice_Enumerate(&count, devices.data());
    const int asked = QLDevice_GetStatus(devices[0], &status);
    const int started = QLDevice_Start(devices[0]);
    QTEST(QString("%1: %2 devices, status %3, start %4").arg(found).arg(count).arg(asked).arg(started), "outcome");
}

void TestEyetechLibrary::can_be_unplugged_while_running() {
    QFile plug(folder_.filePath("unplugged"));
    const ScopedVariables scope("OCELA_SIM_EYETECH_UNPLUGGED_FILE=" + plug.fileName().toLocal8Bit());
    int status = 0;
    QCOMPARE(start(), 0);
    const auto frames = std::async(std::launch::async, [this] {
        QLFrameRecord frame{};
        while (QLDevice_GetFrame(device_, 10000, &frame) == 0) {
        }
    });
    QVERIFY(plug.open(QIODevice::WriteOnly));
    QCOMPARE(frames.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    QLDevice_GetStatus(device_, &status);
    QVERIFY(status != ql_device_stopped && status != ql_device_running);
    QVERIFY(QLDevice_Start(device_) != 0);
    QVERIFY(plug.remove());
    QLDevice_GetStatus(device_, &status);
    QCOMPARE(status, ql_device_stopped);
    QCOMPARE(QLDevice_Start(device_), 0);
}

void TestEyetechLibrary::blocks_in_a_frame_whatever_happens() {
    const ScopedVariables scope("OCELA_SIM_EYETECH_FRAME_BLOCKS_MS=1500");
    QCOMPARE(start(), 0);
    const auto frame = std::async(std::launch::async, [this] {
        QLFrameRecord record{};
        return QLDevice_GetFrame(device_, 0, &record);
    });
    QCOMPARE(frame.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    QLDevice_Stop(device_);
    QCOMPARE(frame.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    QCOMPARE(frame.wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

void TestEyetechLibrary::calibrates_data() {
    faultColumns();
    faultRow("0", "", "5 targets, status 0, good");
    faultRow("1", "", "9 targets, status 0, good");
    faultRow("2", "", "16 targets, status 0, good");
    faultRow("3", "", "not initialized");
    faultRow("0, fails once", "target-fails-once", "5 targets, status 3, status 0, good");
    faultRow("0, fails", "target-fails", "5 targets, status 3, status 3, no score");
    faultRow("0, distracted", "distracted", "5 targets, status 0, poor");
    faultRow("0, buffer too small", "small-target-buffer", "30 targets, too many");
}

/// A calibration of the type that the row begins with; its second target alone, where faults show, and twice at most.
void TestEyetechLibrary::calibrates() {
    QFETCH(QByteArray, variables);
    const ScopedVariables scope("OCELA_SIM_EYETECH_RATE=200 OCELA_SIM_EYETECH_FAULT=" + variables);
    QCOMPARE(start(), 0);
    QCOMPARE(QLCalibration_Initialize(device_, 9999, 0), 3);
    int id = 0;
    QCOMPARE(QLCalibration_Create(0, &id), 0);
    const int type = QTest::currentDataTag()[0] - '0';
    QTEST(QLCalibration_Initialize(device_, id, type) == 0 ? courseOf(id) : "not initialized", "outcome");
    QVERIFY(QLCalibration_Finalize(id) != 0 && QLDevice_ApplyCalibration(device_, id) != 0);  // targets are left
}

QString TestEyetechLibrary::courseOf(int calibration) {
    std::array<QLTarget, 20> targets{};
    int count = 20, status = 3;
    if (QLCalibration_GetTargets(calibration, &count, targets.data()) == 11)
        return QString("%1 targets, too many").arg(count);
    QString course = QString("%1 targets").arg(count);
    for (int attempt = 0; attempt < 2 && status == 3; ++attempt) {
        QLCalibration_Calibrate(calibration, targets[1].id, 700, attempt == 0);
        while (QLCalibration_GetStatus(calibration, targets[1].id, &status) == 0 && status == 1)
            QTest::qWait(10);
        course += QString(", status %1").arg(status);
    }
    QLScore score{};
    if (QLCalibration_GetScoring(calibration, targets[1].id, 1, &score) != 0)
        return course + ", no score";
    return course + (score.score < 10 ? ", good" : ", poor");
}

void TestEyetechLibrary::keeps_settings() {
    const QByteArray path = folder_.filePath("settings.txt").toLocal8Bit();
    int first = 0, second = 0, number = 0;
    std::int8_t small = 0;
    std::array<char, 8> text{};
    QCOMPARE(QLSettings_Create(0, &first) + QLSettings_SetValueInt(first, "Gain", 300), 0);
    QCOMPARE(QLSettings_SetValueString(first, "Name", "left = 1"), 0);
    QVERIFY(QLSettings_GetValueInt8(first, "Gain", &small) != 0);
    QCOMPARE(QLSettings_Save(path, first) + QLSettings_Load(path, &second), 0);
    QCOMPARE(QLSettings_GetValueInt(second, "Gain", &number), 0);
    QCOMPARE(number, 300);
    QCOMPARE(QLSettings_GetValueString(second, "Name", 8, text.data()), 11);
    QCOMPARE(QLSettings_GetValueStringSize(second, "Name", &number), 0);
    QCOMPARE(number, 9);
    QVERIFY(QLSettings_GetValueInt(second, "Name", &number) != 0);
    QVERIFY(QLSettings_Load("/no/such/file", &second) != 0);
}

OCELA_TEST(TestEyetechLibrary)
#include "tst_eyetech_library.moc"
