#include "gazepoint/fixation_detector.h"
#include "gazepoint/pacer.h"
#include "gazepoint/record_builder.h"
#include "gazepoint/record_formatter.h"
#include "simulators/loopback_client.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QTest>
#include <cmath>

using namespace sim;
using namespace sim::gazepoint;

namespace {

/// What must be switched on to get the attributes of a line.
Switches switchesFor(const QByteArray &line) {
    Switches switches;
    for (std::size_t group = 0; group < switches.groups.size(); ++group) {
        Switches one;
        one.groups.set(group);
        const QByteArray record = formatRecord(Record(), one);  // begins with the name of the group's first field
        switches.groups.set(group, line.contains(record.mid(4, record.indexOf('"') - 3)));
    }
    return switches;
}

}  // namespace

class TestGazepointRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void have_the_form_of_captured_ones();
    void keep_the_relations_of_their_fields();
    void report_fixations_late_and_date_them_back();
    void keep_the_last_values_of_lost_eyes();
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

void TestGazepointRecords::keep_the_relations_of_their_fields() {
    Subject subject;
    RecordBuilder builder(subject.setup(), 1000);
    Record before;
    int valid = 0;
    double worst = 0;
    for (int i = 0; i < 9000; ++i) {
        const Record record = builder.build(i / 150.0, subject.at(i / 150.0));
        QCOMPARE(record.count, before.count + 1);
        if (record.fixation.valid) {
            QVERIFY(std::abs(record.fixation.duration - (record.time - record.fixation.start)) < 1e-9);
            worst = std::max(worst, subject.setup().degreesBetween(record.fixation.centre, record.best.point));
            ++valid;
        }
        before = record;
    }
    QVERIFY(valid > 9000 * 0.6 && valid < 9000 * 0.95 && worst < 2);
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
    QVERIFY(!look(0.8).valid && !look(0.8).valid && !look(0.8).valid);  // after a saccade
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
}

void TestGazepointRecords::come_evenly_and_without_drift() {
    const double perSecond = 60.9;  // what a real device of 60 Hz was measured at
    Pacer pacer(60);
    int count = 0;
    // A timer that is late by anything up to 20 ms.
    for (int tick = 0; tick < 100000; ++tick) {
        while (const auto moment = pacer.next(tick * 0.006 + (tick % 7) * 0.003))
            QVERIFY(std::abs(*moment * perSecond - ++count) < 0.05);
    }
    QVERIFY(std::abs(count - perSecond * 600) < perSecond * 0.05);
}

OCELA_TEST(TestGazepointRecords)
#include "tst_gazepoint_records.moc"
