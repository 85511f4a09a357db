#include "gazepoint/calibration.h"
#include "gazepoint/device.h"
#include "simulators/loopback_client.h"
#include "support/test_main.h"

#include <QTest>
#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

class TestGazepointCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void goes_through_the_points_in_time();
    void ends_with_a_plausible_result();
    void starts_again_at_the_first_point();
    void stops_in_the_middle();
    void gives_no_result_for_eyes_that_are_away();
    void takes_a_bounded_list_of_points();
};

namespace {

struct Sent {
    double time;
    QByteArray message;
};

/// Runs the device at 100 Hz and collects what it tells about the calibration.
QVector<Sent> run(Device *device, double *now, double seconds) {
    QVector<Sent> sent;
    for (const double end = *now + seconds; *now < end;) {
        *now += 0.01;
        for (const QByteArray &message : device->advance(*now).calibrationMessages)
            sent.append({*now, message});
    }
    return sent;
}

QByteArray pointMessage(const char *id, int number, const char *x, const char *y) {
    return QByteArray("<CAL ID=\"") + id + "\" PT=\"" + QByteArray::number(number) + "\" CALX=\"" + x + "\" CALY=\"" +
           y + "\" />";
}

void set(Device *device, const char *id, const QVector<Attribute> &attributes) {
    Switches switches;
    device->execute({"SET", id, attributes}, &switches);
}

}  // namespace

void TestGazepointCalibration::goes_through_the_points_in_time() {
    Subject subject;
    Device device(DeviceOptions(), &subject);
    double now = 5;
    set(&device, "CALIBRATE_START", {{"STATE", "1"}});
    const QVector<Sent> sent = run(&device, &now, 12);
    QCOMPARE(sent.size(), 11);
    const char *points[][2] = {
        {"0.5000", "0.5000"}, {"0.8500", "0.1500"}, {"0.8500", "0.8500"}, {"0.1500", "0.8500"}, {"0.1500", "0.1500"}};
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(sent[2 * i].message, pointMessage("CALIB_START_PT", i + 1, points[i][0], points[i][1]));
        QCOMPARE(sent[2 * i + 1].message, pointMessage("CALIB_RESULT_PT", i + 1, points[i][0], points[i][1]));
        QVERIFY(std::abs(sent[2 * i + 1].time - sent[2 * i].time - 2) < 0.02);
        QVERIFY(sent[2 * i + 2].time - sent[2 * i + 1].time < 0.005);
    }
}

void TestGazepointCalibration::ends_with_a_plausible_result() {
    Subject subject;
    Device device(DeviceOptions(), &subject);
    double now = 0;
    set(&device, "CALIBRATE_CLEAR", {});
    set(&device, "CALIBRATE_ADDPOINT", {{"X", "0.1"}, {"Y", "0.9"}});
    set(&device, "CALIBRATE_ADDPOINT", {{"X", "0.7"}, {"Y", "0.3"}});
    set(&device, "CALIBRATE_START", {{"STATE", "1"}});
    const QVector<Sent> sent = run(&device, &now, 5);
    QCOMPARE(sent.size(), 5);
    const QByteArray result = sent.last().message;
    QByteArrayList names{"ID"};
    for (const char *number : {"1", "2"}) {
        for (const char *name : {"CALX", "CALY", "LX", "LY", "LV", "RX", "RY", "RV"})
            names << QByteArray(name) + number;
    }
    QCOMPARE(attributeNames(result), names);
    QCOMPARE(attributeOf(result, "CALX1"), QByteArray("0.10000"));
    QCOMPARE(attributeOf(result, "CALY2"), QByteArray("0.30000"));
    for (const char *eye : {"L", "R"}) {
        QCOMPARE(attributeOf(result, eye + QByteArray("V1")), QByteArray("1"));
        const double x = attributeOf(result, eye + QByteArray("X1")).toDouble();
        const double y = attributeOf(result, eye + QByteArray("Y2")).toDouble();
        QVERIFY(std::abs(x - 0.1) < 0.03 && x != 0.1);
        QVERIFY(std::abs(y - 0.3) < 0.05 && y != 0.3);
    }
    Switches switches;
    const QByteArray summary = device.execute({"GET", "CALIBRATE_RESULT_SUMMARY", {}}, &switches);
    QCOMPARE(attributeOf(summary, "VALID_POINTS"), QByteArray("2"));
    const double error = attributeOf(summary, "AVE_ERROR").toDouble();
    QVERIFY(error > 1 && error < 60);
    QVERIFY(device.advance(now + 0.01).record.time < 2);  // TIME counts from here
}

void TestGazepointCalibration::starts_again_at_the_first_point() {
    Subject subject;
    Device device(DeviceOptions(), &subject);
    double now = 0;
    set(&device, "CALIBRATE_START", {{"STATE", "1"}});
    QVERIFY(run(&device, &now, 3).last().message.contains("START_PT\" PT=\"2\""));
    set(&device, "CALIBRATE_START", {{"STATE", "1"}});
    const QVector<Sent> sent = run(&device, &now, 12);
    QCOMPARE(sent.size(), 11);
    QVERIFY(sent.first().message.contains("START_PT\" PT=\"1\""));
    QVERIFY(sent.last().message.contains("CALX5=") && !sent.last().message.contains("CALX6="));
}

void TestGazepointCalibration::stops_in_the_middle() {
    Subject subject;
    Device device(DeviceOptions(), &subject);
    double now = 0;
    set(&device, "CALIBRATE_START", {{"STATE", "1"}});
    QCOMPARE(run(&device, &now, 3).size(), 3);
    set(&device, "CALIBRATE_START", {{"STATE", "0"}});
    QVERIFY(run(&device, &now, 10).isEmpty());
    double furthest = 0;  // the person looks around again
    for (int i = 0; i < 500; ++i) {
        const Record record = device.advance(now += 0.01).record;
        furthest = std::max(furthest, std::hypot(record.best.point.x - 0.85, record.best.point.y - 0.15));
    }
    QVERIFY(furthest > 0.1);
}

void TestGazepointCalibration::gives_no_result_for_eyes_that_are_away() {
    Calibration calibration;
    calibration.clearPoints();
    calibration.addPoint({0.5, 0.5});
    calibration.start();
    EyeState eyes;
    eyes.right.visible = true;
    eyes.right.gaze = {0.52, 0.5};
    std::vector<QByteArray> messages;
    for (double now = 0; calibration.running(); now += 0.01)
        messages = calibration.advance(now, eyes);
    QCOMPARE(messages.back(), QByteArray("<CAL ID=\"CALIB_RESULT\" CALX1=\"0.50000\" CALY1=\"0.50000\" LX1=\"0.00000\" "
                                         "LY1=\"0.00000\" LV1=\"0\" RX1=\"0.52000\" RY1=\"0.50000\" RV1=\"1\" />"));
    QCOMPARE(calibration.summary(1920, 1080).validPoints, 0);
}

void TestGazepointCalibration::takes_a_bounded_list_of_points() {
    Calibration calibration;
    for (int i = 0; i < 100000; ++i)
        calibration.addPoint({0.5, 0.5});
    QCOMPARE(static_cast<int>(calibration.points().size()), Calibration::kMostPoints);
}

OCELA_TEST(TestGazepointCalibration)
#include "tst_gazepoint_calibration.moc"
