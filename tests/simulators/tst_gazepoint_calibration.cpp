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
    QCOMPARE(formOf(sent[10].message), formOf(captured[10]));
}

void TestGazepointCalibration::ends_with_a_plausible_result() {
    Rig rig;
    rig.set("CALIBRATE_CLEAR", {});
    rig.set("CALIBRATE_ADDPOINT", {{"X", "0.1"}, {"Y", "0.9"}});
    rig.start();
    const QByteArray result = rig.run(3).last().message;
    QCOMPARE(attributeOf(result, "CALX1"), QByteArray("0.10000"));
    const double x = attributeOf(result, "LX1").toDouble();
    QVERIFY(std::abs(x - 0.1) < 0.03 && x != 0.1);
    const QByteArray summary = rig.device.execute({"GET", "CALIBRATE_RESULT_SUMMARY", {}}, &rig.unused);
    QCOMPARE(attributeOf(summary, "VALID_POINTS"), QByteArray("1"));
}

void TestGazepointCalibration::starts_again_and_stops_in_the_middle() {
    Rig rig;
    rig.start();
    QCOMPARE(rig.run(3).size(), 3);
    rig.start();
    QCOMPARE(rig.run(3).first().message, capturedLines("<CAL").first());
    rig.set("CALIBRATE_START", {{"STATE", "0"}});
    QVERIFY(rig.run(5).isEmpty());
}

OCELA_TEST(TestGazepointCalibration)
#include "tst_gazepoint_calibration.moc"
