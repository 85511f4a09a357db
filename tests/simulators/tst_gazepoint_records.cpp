#include "gazepoint/fixation_detector.h"
#include "gazepoint/pacer.h"
#include "gazepoint/record_builder.h"
#include "gazepoint/record_formatter.h"
#include "simulators/loopback_client.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QRegularExpression>
#include <QTest>
#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

namespace {

/// A line with the values of five decimals and the integers taken out: what is left is its form.
QByteArray formOf(const QByteArray &line) {
    static const QRegularExpression integer("\"-?\\d+\""), real("\"-?\\d+\\.\\d{5}\"");
    return QString::fromLatin1(line).replace(real, "real").replace(integer, "integer").toLatin1();
}

/// What must be switched on to get the attributes of a line.
Switches switchesFor(const QByteArray &line) {
    Switches switches;
    for (std::size_t group = 0; group < switches.groups.size(); ++group) {
        Switches one;
        one.groups.set(group);
        const QByteArray firstName = attributeNames(formatRecord(Record(), one)).value(0);
        switches.groups.set(group, line.contains(' ' + firstName + "=\""));
    }
    return switches;
}

}  // namespace

class TestGazepointRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void have_the_form_of_captured_ones();
    void hold_the_values_that_are_switched_on();
    void keep_the_relations_of_their_fields();
    void report_fixations_late_and_date_them_back();
    void keep_the_last_values_of_lost_eyes();
    void count_blinks();
    void come_evenly_and_without_drift();
};

void TestGazepointRecords::have_the_form_of_captured_ones() {
    Subject subject;
    RecordBuilder builder(subject.setup(), 0);
    Record record = builder.build(0, subject.at(0));
    int compared = 0;
    for (const QByteArray &line : capturedLines("<REC")) {
        // Other decimals and parts that are not plugged in here have another form.
        const QByteArray form = formOf(line);
        if (form.contains('.') || line.contains(" KB=") || line.contains(" HR="))
            continue;
        record.userData = attributeOf(line, "USER");
        QCOMPARE(formOf(formatRecord(record, switchesFor(line))), form);
        ++compared;
    }
    QVERIFY(compared >= 12);
}

void TestGazepointRecords::hold_the_values_that_are_switched_on() {
    Switches switches;
    for (const FieldGroup group : {FieldGroup::UserData, FieldGroup::Cursor, FieldGroup::Counter})
        switches.groups.set(static_cast<std::size_t>(group));
    Record record;
    record.count = 7;
    record.cursor = {-0.568229, 0.595};
    record.userData = "A";
    QCOMPARE(formatRecord(record, switches),
             QByteArray("<REC CNT=\"7\" CX=\"-0.56823\" CY=\"0.59500\" CS=\"0\" USER=\"A\" />"));
}

void TestGazepointRecords::keep_the_relations_of_their_fields() {
    Subject subject;
    RecordBuilder builder(subject.setup(), 1000);
    Record before;
    int valid = 0;
    double worst = 0;
    for (int i = 0; i < 9000; ++i) {
        const Record record = builder.build(i / 150.0, subject.at(i / 150.0));
        QCOMPARE(record.count, before.count + 1);
        QCOMPARE(record.best.point.x, (record.left.point.x + record.right.point.x) / 2);
        if (record.fixation.valid) {
            QVERIFY(std::abs(record.fixation.duration - (record.time - record.fixation.start)) < 1e-9);
            worst = std::max(worst, subject.setup().degreesBetween(record.fixation.centre, record.best.point));
            ++valid;
        } else {
            QCOMPARE(record.fixation.id, before.fixation.id);
        }
        before = record;
    }
    QVERIFY(valid > 9000 * 0.6 && valid < 9000 * 0.95);
    QVERIFY(before.fixation.id > 60 * 2 && before.fixation.id < 60 * 5);
    QVERIFY(worst < 2);
}

void TestGazepointRecords::report_fixations_late_and_date_them_back() {
    FixationDetector detector({});
    double time = 1;
    const auto look = [&](double x) { return detector.add(time += 0.0164, {{x, 0.5}, true}); };
    QVERIFY(!look(0.2).valid && !look(0.201).valid && !look(0.199).valid);
    const Fixation first = look(0.2);
    QVERIFY(first.valid);
    QCOMPARE(first.id, 1);
    QCOMPARE(first.start, 1.0164);
    QVERIFY(std::abs(first.duration - 3 * 0.0164) < 1e-9);
    QVERIFY(std::abs(first.centre.x - 0.2) < 1e-9);
    QVERIFY(!look(0.5).valid);  // a saccade
    QVERIFY(!look(0.8).valid && !look(0.8).valid && !look(0.8).valid);
    QCOMPARE(look(0.8).id, 2);
    QVERIFY(!detector.add(time += 0.0164, {{0.8, 0.5}, false}).valid);  // a blink ends it, too
}

void TestGazepointRecords::keep_the_last_values_of_lost_eyes() {
    Subject subject;
    RecordBuilder builder(subject.setup(), 0);
    EyeState eyes = subject.at(0);
    const Record seen = builder.build(0, eyes);
    eyes.left = Eye();
    const Record half = builder.build(0.01, eyes);
    QVERIFY(!half.left.valid && half.right.valid && half.best.valid);
    QCOMPARE(half.left.point.x, seen.left.point.x);
    QCOMPARE(half.best.point.x, half.right.point.x);
    eyes.right = Eye();
    const Record lost = builder.build(0.02, eyes);
    QVERIFY(!lost.best.valid && !lost.rightPupil.valid);
    QCOMPARE(lost.best.point.x, half.best.point.x);
    QCOMPARE(lost.rightPupil.diameter_mm, seen.rightPupil.diameter_mm);
}

void TestGazepointRecords::count_blinks() {
    BlinkCounter counter;
    QCOMPARE(counter.add(1, false).id, 1);
    QCOMPARE(counter.add(1.1, false).id, 1);
    const Blink over = counter.add(1.15, true);
    QCOMPARE(over.id, 0);
    QVERIFY(std::abs(over.duration - 0.15) < 1e-9);
    QCOMPARE(counter.add(2, false).id, 2);
    const Blink returned = counter.add(9, true);  // away for seven seconds is no blink
    QCOMPARE(returned.duration, 0.0);
    QCOMPARE(returned.perMinute, 1);
    QCOMPARE(counter.add(62, true).perMinute, 0);
}

void TestGazepointRecords::come_evenly_and_without_drift() {
    const double perSecond = 60.9;  // what a real device of 60 Hz was measured at
    Pacer pacer(60);
    int count = 0;
    double last = 0;
    // A timer that is late by anything up to 20 ms.
    for (int tick = 0; tick < 100000; ++tick) {
        const double now = tick * 0.006 + (tick % 7) * 0.003;
        while (const auto moment = pacer.next(now)) {
            QVERIFY(*moment <= now);
            QVERIFY(count++ == 0 || std::abs((*moment - last) * perSecond - 1) < 0.05);
            last = *moment;
        }
    }
    QVERIFY(std::abs(count - perSecond * 600) < perSecond * 0.05);
}

OCELA_TEST(TestGazepointRecords)
#include "tst_gazepoint_records.moc"
