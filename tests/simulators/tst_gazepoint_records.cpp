#include "gazepoint/blink_counter.h"
#include "gazepoint/fixation_detector.h"
#include "gazepoint/pacer.h"
#include "gazepoint/record_builder.h"
#include "gazepoint/record_formatter.h"
#include "simulators/distinct_eyes.h"
#include "support/loopback_client.h"
#include "support/test_main.h"

#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

namespace {

/// Returns the switches that give the attributes of a line.
Switches switchesFor(const QByteArray &line) {
    Switches switches;
    for (std::size_t group = 0; group < switches.groups.size(); ++group) {
        Switches one;
        one.groups.set(group);
        const QByteArray record = formatRecord(Record(), one);  // starts with the name of the group's first field
        switches.groups.set(group, line.contains(record.mid(4, record.indexOf('"') - 3)));
    }
    return switches;
}

}  // namespace

class TestGazepointRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void have_the_format_of_captured_records();
    void have_each_value_in_its_field();
    void report_fixations_late_with_their_real_start();
    void report_blinks();
    void are_taken_evenly_without_drift();
};

void TestGazepointRecords::have_the_format_of_captured_records() {
    int compared = 0;
    for (const QByteArray &line : capturedLines("<REC")) {
        // Skips records with other decimals, and those of trackers with a keyboard or a heart rate sensor.
        const QByteArray form = formOf(line);
        if (form.contains('.') || line.contains(" KB=") || line.contains(" HR="))
            continue;
        Record record;
        record.userData = attributeOf(line, "USER");
        QCOMPARE(formOf(formatRecord(record, switchesFor(line))), form);
        ++compared;
    }
    QVERIFY(compared >= 12);
}

void TestGazepointRecords::have_each_value_in_its_field() {
    EyeState eyes = distinctEyes();
    RecordBuilder builder({}, 1000);
    Record record;
    for (const double seconds : {1.00, 1.02, 1.04, 1.06})
        record = builder.build(seconds, eyes);
    record.cursor = {0.9, -0.1};
    record.userData = "mark";
    const QByteArray line =
        "<REC CNT=\"4\" TIME=\"1.06000\" TIME_TICK=\"10601000\""
        " FPOGX=\"0.30000\" FPOGY=\"0.40000\" FPOGS=\"1.00000\" FPOGD=\"0.06000\" FPOGID=\"1\" FPOGV=\"1\""
        " LPOGX=\"0.10000\" LPOGY=\"0.20000\" LPOGV=\"1\" RPOGX=\"0.50000\" RPOGY=\"0.60000\" RPOGV=\"1\""
        " BPOGX=\"0.30000\" BPOGY=\"0.40000\" BPOGV=\"1\""
        " LPCX=\"0.30000\" LPCY=\"0.40000\" LPD=\"17.11200\" LPS=\"1.24000\" LPV=\"1\""
        " RPCX=\"0.70000\" RPCY=\"0.80000\" RPD=\"22.81600\" RPS=\"1.24000\" RPV=\"1\""
        " LEYEX=\"-0.03150\" LEYEY=\"0.00500\" LEYEZ=\"0.50000\" LPUPILD=\"0.00300\" LPUPILV=\"1\""
        " REYEX=\"0.03150\" REYEY=\"0.00500\" REYEZ=\"0.50000\" RPUPILD=\"0.00400\" RPUPILV=\"1\""
        " CX=\"0.90000\" CY=\"-0.10000\" CS=\"0\""
        " LPMM=\"3.00000\" LPMMV=\"1\" RPMM=\"4.00000\" RPMMV=\"1\" USER=\"mark\" />";
    QCOMPARE(formatRecord(record, switchesFor(line)), line);

    eyes.left = Eye();  // a lost eye keeps its last values
    const QByteArray lost =
        "<REC LPOGX=\"0.10000\" LPOGY=\"0.20000\" LPOGV=\"0\" BPOGX=\"0.50000\" BPOGY=\"0.60000\" BPOGV=\"1\""
        " LPMM=\"3.00000\" LPMMV=\"0\" RPMM=\"4.00000\" RPMMV=\"1\" />";
    QCOMPARE(formatRecord(builder.build(1.08, eyes), switchesFor(lost)), lost);
}

void TestGazepointRecords::report_fixations_late_with_their_real_start() {
    FixationDetector detector({});
    double time_s = 1;
    const auto look = [&](double x) { return detector.add(time_s += 0.0164, {{x, 0.5}, true}); };
    QVERIFY(!look(0.2).valid && !look(0.201).valid && !look(0.199).valid);
    const Fixation first = look(0.2);
    QVERIFY(first.valid);
    QCOMPARE(first.id, 1);
    QCOMPARE(first.start_s, 1.0164);
    QVERIFY(std::abs(first.duration_s - 3 * 0.0164) < 1e-9);
    QVERIFY(!look(0.8).valid && !look(0.8).valid && !look(0.8).valid);  // after a saccade
    QCOMPARE(look(0.8).id, 2);
    QVERIFY(!detector.add(time_s += 0.0164, {{0.8, 0.5}, false}).valid);  // a blink ends the fixation
}

void TestGazepointRecords::report_blinks() {
    BlinkCounter counter;
    const auto add = [&](double seconds, bool eyeSeen) {
        const Blink blink = counter.add(seconds, eyeSeen);
        return QString("id %1, %2 s, %3 per minute").arg(blink.id).arg(blink.duration_s).arg(blink.perMinute);
    };
    QCOMPARE(add(1, true), QString("id 0, 0 s, 0 per minute"));
    QCOMPARE(add(2, false), QString("id 1, 0 s, 0 per minute"));
    QCOMPARE(add(2.25, true), QString("id 0, 0.25 s, 1 per minute"));
    QCOMPARE(add(3, false), QString("id 2, 0 s, 1 per minute"));
    QCOMPARE(add(4, true), QString("id 0, 0 s, 1 per minute"));  // too long for a blink
    QCOMPARE(add(63, true), QString("id 0, 0 s, 0 per minute"));
}

void TestGazepointRecords::are_taken_evenly_without_drift() {
    const double rateHz = 60.9;  // measured with a real tracker of 60 Hz
    Pacer pacer(60);
    int count = 0;
    // The timer is late by up to 18 ms.
    for (int tick = 0; tick < 100000; ++tick) {
        while (const auto moment_s = pacer.next(tick * 0.006 + (tick % 7) * 0.003))
            QVERIFY(std::abs(*moment_s * rateHz - ++count) < 0.05);
    }
    QVERIFY(std::abs(count - rateHz * 600) < rateHz * 0.05);
    QVERIFY(std::abs(*pacer.next(9000) - 9000) < 0.05);  // no records for the time that the machine was suspended
}

OCELA_TEST(TestGazepointRecords)
#include "tst_gazepoint_records.moc"
