#include "gazepoint/command_parser.h"
#include "gazepoint/device.h"
#include "simulators/distinct_eyes.h"
#include "support/loopback_client.h"
#include "support/test_main.h"

#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

namespace {

QByteArrayList commandsIn(const QByteArrayList &segments) {
    QByteArrayList found;
    CommandParser parser;
    for (const QByteArray &segment : segments) {
        parser.feed(segment);
        while (const auto command = parser.next()) {
            found << command->verb + ' ' + command->id;
            for (const Attribute &attribute : command->attributes)
                found.last() += ' ' + attribute.name + '=' + attribute.value;
        }
    }
    return found;
}

/// Returns the answer to the last command.
QByteArray lastAnswer(const QByteArray &commands, bool olderServer = false) {
    Subject subject;
    DeviceOptions options;
    options.olderServer = olderServer;
    Device device(options, subject);
    Device::Answer answer;
    CommandParser parser;
    parser.feed(commands);
    while (const auto command = parser.next())
        answer = device.execute(*command, answer.switches);
    return answer.message;
}

struct Sent {
    double time_s;
    QByteArray message;
};

/// A device at 100 Hz with a person in front of it.
struct Rig {
    void set(const char *id, const QByteArray &state) { (void)device.execute({"SET", id, {{"STATE", state}}}, {}); }

    /// Returns the messages about the calibration.
    QVector<Sent> run(double seconds) {
        QVector<Sent> sent;
        for (const double end_s = now_s + seconds; now_s < end_s;) {
            now_s += 0.01;
            const Device::Step step = device.advance(now_s);
            recordTime_s = step.record.time_s;
            for (const QByteArray &message : step.calibrationMessages)
                sent.append({now_s, message});
        }
        return sent;
    }

    [[nodiscard]] double degreesFrom(Point target) {
        return subject.setup().degreesBetween(subject.at(now_s).left.gaze, target);
    }

    Subject subject;
    Device device{DeviceOptions(), subject};
    double now_s = 5;
    double recordTime_s = 0;
};

}  // namespace

class TestGazepointDevice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void finds_commands();
    void answers_commands();
    void answers_like_a_real_server();
    void shows_the_calibration_points_in_time();
    void reports_the_mean_gaze_at_a_point();
};

void TestGazepointDevice::finds_commands() {
    using List = QByteArrayList;
    const List on{"SET A STATE=1"};
    const List next{"GET B"};
    QCOMPARE(commandsIn({"<SET ID=\"A\" STATE=\"1\" /><GET ID=\"B\" />"}), on + next);
    QCOMPARE(commandsIn({"<SE", "T ID=\"A\" STA", "TE=\"1", "\" /", ">\r\n"}), on);
    QCOMPARE(commandsIn({"<SET ID=\"A STATE=\r\n<SET <GET ID=\"B\" />\r\n"}), next);
    const QByteArray endless(10 * 1000 * 1000, 'x');
    QCOMPARE(commandsIn({"<SET ID=\"" + endless + "\" /><GET ID=\"B\" />"}), next);
}

void TestGazepointDevice::answers_commands() {
    QCOMPARE(lastAnswer("<SET ID='ENABLE_SEND_SMELL' STATE='1'/>"), QByteArray("<NACK ID=\"ENABLE_SEND_SMELL\" />"));
    QCOMPARE(lastAnswer("<SET ID='ENABLE_SEND_TIME' STATE='1'/><GET ID='ENABLE_SEND_TIME' STATE='0'/>"),
             QByteArray("<ACK ID=\"ENABLE_SEND_TIME\" STATE=\"1\" />"));
    QCOMPARE(lastAnswer("<SET ID='CALIBRATE_CLEAR'/><SET ID='CALIBRATE_START' STATE='1'/>"),
             QByteArray("<ACK ID=\"CALIBRATE_START\" STATE=\"0\" />"));
    QCOMPARE(lastAnswer("<SET ID='CALIBRATE_CLEAR'/><SET ID='CALIBRATE_RESET'/>"),
             QByteArray("<ACK ID=\"CALIBRATE_RESET\" PTS=\"5\" />"));
}

void TestGazepointDevice::answers_like_a_real_server() {
    const QByteArray screen = "<GET ID='SCREEN_SIZE'/>";
    QCOMPARE(lastAnswer(screen),
             QByteArray("<ACK ID=\"SCREEN_SIZE\" X=\"0\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\" />"));
    QCOMPARE(lastAnswer(screen, true), QByteArray("<ACK ID=\"SCREEN_SIZE\" WIDTH=\"1920\" HEIGHT=\"1080\" />"));
    for (const char *id : {"ENABLE_SEND_", "CALIBRATE_DELAY", "CALIBRATE_SHOW", "CALIBRATE_TIMEOUT", "CAMERA_SIZE",
                           "PRODUCT_ID", "SCREEN_SIZE", "SERIAL_ID", "TRACKER_DISPLAY"}) {
        const QByteArrayList captured = capturedLines(QByteArray("<ACK ID=\"") + id);
        QVERIFY2(!captured.isEmpty(), id);
        for (const QByteArray &answer : captured)
            QCOMPARE(lastAnswer(QByteArray(answer).replace("<ACK", "<SET")), answer);
    }
}

void TestGazepointDevice::shows_the_calibration_points_in_time() {
    Rig rig;
    rig.set("CALIBRATE_START", "1");
    QVector<Sent> sent = rig.run(3);
    QVERIFY(rig.degreesFrom({0.85, 0.15}) < 2.5);  // the person looks at the second point
    sent += rig.run(9);
    QCOMPARE(sent.size(), 11);
    const QByteArrayList captured = capturedLines("<CAL");
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(sent[i].message, captured[i]);
        // A point is shown for two seconds, and the next one follows immediately.
        QVERIFY(std::abs(sent[i + 1].time_s - sent[i].time_s - (i % 2 == 0 ? 2 : 0)) < 0.02);
    }
    QCOMPARE(formOf(sent[10].message), formOf(captured[10]));
    QVERIFY(std::abs(rig.recordTime_s - (rig.now_s - sent[10].time_s)) < 0.02);  // TIME restarts at the end
}

void TestGazepointDevice::reports_the_mean_gaze_at_a_point() {
    Calibration calibration;
    calibration.clearPoints();
    calibration.addPoint({0.2, 0.3});
    calibration.setDelay(0.1);
    calibration.setTimeout(0.2);
    const auto resultOf = [&](bool rightEyeVisible) {
        EyeState eyes = distinctEyes();
        eyes.right.visible = rightEyeVisible;
        EyeState elsewhere = eyes;
        elsewhere.left.gaze = elsewhere.right.gaze = {0.9, 0.9};
        std::vector<QByteArray> messages;
        calibration.start();
        for (double now_s = 0; calibration.running(); now_s += 0.01)
            messages = calibration.advance(now_s, now_s > 0.095 && now_s < 0.305 ? eyes : elsewhere);
        return messages.back();
    };
    const QByteArray left =
        "<CAL ID=\"CALIB_RESULT\" CALX1=\"0.20000\" CALY1=\"0.30000\""
        " LX1=\"0.10000\" LY1=\"0.20000\" LV1=\"1\"";
    QCOMPARE(resultOf(true), left + " RX1=\"0.50000\" RY1=\"0.60000\" RV1=\"1\" />");
    QCOMPARE(calibration.summary(300, 400).validPointCount, 1);
    QCOMPARE(calibration.summary(300, 400).averageError_px, 50.0);  // the mean gaze is (0.3, 0.4)
    QCOMPARE(resultOf(false), left + " RX1=\"0.00000\" RY1=\"0.00000\" RV1=\"0\" />");
    QCOMPARE(calibration.summary(300, 400).validPointCount, 0);
}

OCELA_TEST(TestGazepointDevice)
#include "tst_gazepoint_device.moc"
