#include "gazepoint/calibration.h"
#include "gazepoint/device.h"
#include "simulators/loopback_client.h"
#include "support/test_main.h"

#include <QTest>
#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

namespace {

struct Sent {
    double time;
    QByteArray message;
};

/// A device at 100 Hz with a person in front of it.
struct Rig {
    void set(const char *id, const QVector<Attribute> &attributes) { device.execute({"SET", id, attributes}, &unused); }
    void start() { set("CALIBRATE_START", {{"STATE", "1"}}); }

    /// What the device tells about the calibration.
    QVector<Sent> run(double seconds) {
        QVector<Sent> sent;
        for (const double end = now + seconds; now < end;) {
            now += 0.01;
            for (const QByteArray &message : device.advance(now).calibrationMessages)
                sent.append({now, message});
        }
        return sent;
    }

    Subject subject;
    Device device{DeviceOptions(), &subject};
    Switches unused;
    double now = 5;
};

}  // namespace

class TestGazepointCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void goes_through_the_points_in_time();
    void ends_with_a_plausible_result();
    void starts_again_and_stops_in_the_middle();
    void gives_no_result_for_eyes_that_are_away();
    void takes_a_bounded_list_of_points();
};

void TestGazepointCalibration::goes_through_the_points_in_time() {
    Rig rig;
    rig.start();
    const QVector<Sent> sent = rig.run(12);
    QCOMPARE(sent.size(), 11);
    const QByteArrayList captured = capturedLines("<CAL");
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(sent[i].message, captured[i]);
        // A point is shown for two seconds; then the next one follows at once.
        QVERIFY(std::abs(sent[i + 1].time - sent[i].time - (i % 2 == 0 ? 2 : 0)) < 0.02);
    }
    QCOMPARE(attributeNames(sent[10].message), attributeNames(captured[10]));
}

void TestGazepointCalibration::ends_with_a_plausible_result() {
    Rig rig;
    rig.set("CALIBRATE_CLEAR", {});
    rig.set("CALIBRATE_ADDPOINT", {{"X", "0.1"}, {"Y", "0.9"}});
    rig.set("CALIBRATE_ADDPOINT", {{"X", "0.7"}, {"Y", "0.3"}});
    rig.start();
    const QByteArray result = rig.run(5).last().message;
    QCOMPARE(attributeOf(result, "CALX1"), QByteArray("0.10000"));
    for (const QByteArray &eye : {QByteArray("L"), QByteArray("R")}) {
        QCOMPARE(attributeOf(result, eye + "V1"), QByteArray("1"));
        const double x = attributeOf(result, eye + "X1").toDouble(), y = attributeOf(result, eye + "Y2").toDouble();
        QVERIFY(std::abs(x - 0.1) < 0.03 && x != 0.1);
        QVERIFY(std::abs(y - 0.3) < 0.05 && y != 0.3);
    }
    const QByteArray summary = rig.device.execute({"GET", "CALIBRATE_RESULT_SUMMARY", {}}, &rig.unused);
    QCOMPARE(attributeOf(summary, "VALID_POINTS"), QByteArray("2"));
    const double error = attributeOf(summary, "AVE_ERROR").toDouble();
    QVERIFY(error > 1 && error < 60);
    QVERIFY(rig.device.advance(rig.now + 0.01).record.time < 2);  // TIME counts from here
}

void TestGazepointCalibration::starts_again_and_stops_in_the_middle() {
    Rig rig;
    rig.start();
    QCOMPARE(rig.run(3).size(), 3);
    rig.start();
    QCOMPARE(rig.run(3).first().message, capturedLines("<CAL").first());
    rig.set("CALIBRATE_START", {{"STATE", "0"}});
    double furthest = 0;  // the person looks around again
    for (int i = 0; i < 500; ++i) {
        QVERIFY(rig.run(0.01).isEmpty());
        const Point gaze = rig.device.advance(rig.now).record.best.point;
        furthest = std::max(furthest, std::hypot(gaze.x - 0.85, gaze.y - 0.15));
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
    for (double now = 0; calibration.running(); now += 0.01) {
        eyes.left.visible = now < 0.8;  // and away for most of the time that counts
        messages = calibration.advance(now, eyes);
    }
    QCOMPARE(messages.back(), QByteArray("<CAL ID=\"CALIB_RESULT\" CALX1=\"0.50000\" CALY1=\"0.50000\" LX1=\"0.00000\" "
                                         "LY1=\"0.00000\" LV1=\"0\" RX1=\"0.52000\" RY1=\"0.50000\" RV1=\"1\" />"));
    QCOMPARE(calibration.summary(1920, 1080).validPoints, 0);
}

void TestGazepointCalibration::takes_a_bounded_list_of_points() {
    Calibration calibration;
    for (int i = 0; i < 100000; ++i)
        calibration.addPoint({0.5, 0.5});
    QVERIFY(calibration.points().size() < 1000);
}

OCELA_TEST(TestGazepointCalibration)
#include "tst_gazepoint_calibration.moc"
