#include "gazepoint/fixation_detector.h"
#include "gazepoint/pacer.h"
#include "gazepoint/record_builder.h"
#include "gazepoint/record_formatter.h"
#include "simulators/loopback_client.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <cmath>
#include <limits>

using namespace sim;
using namespace sim::gazepoint;

namespace {

/// The records in the lines of real servers, those with other decimals than ours left out.
QByteArrayList capturedRecords() {
    QFile file(OCELA_TEST_DATA "/gazepoint_lines.txt");
    QByteArrayList lines;
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith("<REC") && line.endsWith(" />"))
            lines << line;
    }
    return lines;
}

/// A line with each digit of its values as `9` and integers as `9`: what is left is its form.
QByteArray formOf(const QByteArray &line) {
    static const QRegularExpression integer("\"-?\\d+\""), real("\"-?\\d+\\.(\\d+)\"");
    QString text = QString::fromLatin1(line);
    for (auto match = real.match(text); match.hasMatch(); match = real.match(text))
        text.replace(match.capturedStart(), match.capturedLength(),
                     '"' + QString("f").repeated(match.capturedLength(1)) + '"');
    return text.replace(integer, "\"i\"").toLatin1();
}

/// What must be switched on to get the attributes of a line.
Switches switchesFor(const QByteArray &line) {
    const QList<QPair<QByteArray, FieldGroup>> firstAttributes{
        {"CNT", FieldGroup::Counter},     {"TIME", FieldGroup::Time},     {"TIME_TICK", FieldGroup::TimeTick},
        {"FPOGX", FieldGroup::PogFix},    {"LPOGX", FieldGroup::PogLeft}, {"RPOGX", FieldGroup::PogRight},
        {"BPOGX", FieldGroup::PogBest},   {"APOGX", FieldGroup::PogAac},  {"LPCX", FieldGroup::PupilLeft},
        {"RPCX", FieldGroup::PupilRight}, {"LEYEX", FieldGroup::EyeLeft}, {"REYEX", FieldGroup::EyeRight},
        {"CX", FieldGroup::Cursor},       {"BKID", FieldGroup::Blink},    {"LPMM", FieldGroup::PupilMm},
        {"DIAL", FieldGroup::Dial},       {"USER", FieldGroup::UserData}};
    Switches switches;
    for (const auto &[name, group] : firstAttributes) {
        if (line.contains(' ' + name + "=\""))
            switches.groups.set(static_cast<std::size_t>(group));
    }
    return switches;
}

}  // namespace

class TestGazepointRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void have_the_form_of_captured_ones_data();
    void have_the_form_of_captured_ones();
    void hold_only_what_is_switched_on();
    void keep_the_relations_of_their_fields_data();
    void keep_the_relations_of_their_fields();
    void report_fixations_late_and_date_them_back();
    void keep_the_last_values_of_lost_eyes();
    void count_blinks();
    void count_time_anew_after_a_calibration();
    void come_evenly_and_without_drift_data();
    void come_evenly_and_without_drift();
    void do_not_pile_up_in_a_stall();
};

void TestGazepointRecords::have_the_form_of_captured_ones_data() {
    QTest::addColumn<QByteArray>("line");
    int used = 0;
    for (const QByteArray &line : capturedRecords()) {
        // Six decimals, three decimals and parts that are not plugged in here have another form.
        const bool comparable = !line.contains("PIXX") && !line.contains("HR") && !line.contains("TTL") &&
                                !line.contains("KB=") && formOf(line).indexOf("\"fff\"") < 0;
        if (comparable)
            QTest::addRow("record %d", ++used) << line;
    }
    QVERIFY(used >= 12);
}

void TestGazepointRecords::have_the_form_of_captured_ones() {
    QFETCH(QByteArray, line);
    Subject subject;
    RecordBuilder builder(subject.setup(), 0);
    Record record;
    for (int i = 0; i < 20; ++i)
        record = builder.build(i / 60.0, subject.at(i / 60.0));
    record.userData = attributeOf(line, "USER");
    QCOMPARE(formOf(formatRecord(record, switchesFor(line))), formOf(line));
}

void TestGazepointRecords::hold_only_what_is_switched_on() {
    Switches switches;
    QCOMPARE(formatRecord(Record(), switches), QByteArray("<REC />"));
    switches.groups.set(static_cast<std::size_t>(FieldGroup::UserData));
    switches.groups.set(static_cast<std::size_t>(FieldGroup::Cursor));
    switches.groups.set(static_cast<std::size_t>(FieldGroup::Counter));
    Record record;
    record.count = 7;
    record.cursor = {-0.568229, 0.595};
    record.userData = "A";
    QCOMPARE(formatRecord(record, switches),
             QByteArray("<REC CNT=\"7\" CX=\"-0.56823\" CY=\"0.59500\" CS=\"0\" USER=\"A\" />"));
}

void TestGazepointRecords::keep_the_relations_of_their_fields_data() {
    QTest::addColumn<int>("rate");
    for (const int rate : {60, 150, 1000})
        QTest::addRow("%d Hz", rate) << rate;
}

void TestGazepointRecords::keep_the_relations_of_their_fields() {
    QFETCH(int, rate);
    Subject subject;
    RecordBuilder builder(subject.setup(), 1000);
    Record before;
    double validTime = 0, worst = 0;
    for (int i = 0; i < 60 * rate; ++i) {
        const Record record = builder.build(static_cast<double>(i) / rate, subject.at(static_cast<double>(i) / rate));
        QCOMPARE(record.count, before.count + 1);
        QCOMPARE(record.best.valid, record.left.valid);
        QCOMPARE(record.best.point.x, (record.left.point.x + record.right.point.x) / 2);
        if (record.fixation.valid) {
            QVERIFY(std::abs(record.fixation.duration - (record.time - record.fixation.start)) < 1e-9);
            worst = std::max(worst, subject.setup().degreesBetween(record.fixation.centre, record.best.point));
            validTime += 1.0 / rate;
        } else {
            QCOMPARE(record.fixation.id, before.fixation.id);
            QCOMPARE(record.fixation.centre.x, before.fixation.centre.x);
            QCOMPARE(record.fixation.start, before.fixation.start);
            QCOMPARE(record.fixation.duration, before.fixation.duration);
        }
        before = record;
    }
    QVERIFY(validTime > 60 * 0.6 && validTime < 60 * 0.95);
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

    const Fixation between = look(0.5);  // a saccade
    QVERIFY(!between.valid);
    QCOMPARE(between.id, 1);
    QCOMPARE(between.duration, first.duration);
    look(0.8);
    const double begin = time;
    QVERIFY(!look(0.8).valid && !look(0.8).valid);
    const Fixation second = look(0.8);
    QVERIFY(second.valid);
    QCOMPARE(second.id, 2);
    QCOMPARE(second.start, begin);
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
    QVERIFY(!lost.best.valid && !lost.leftPupil.valid);
    QCOMPARE(lost.best.point.x, half.best.point.x);
    QCOMPARE(lost.rightPupil.diameter_mm, seen.rightPupil.diameter_mm);
}

void TestGazepointRecords::count_blinks() {
    BlinkCounter counter;
    QCOMPARE(counter.add(0, true).id, 0);
    QCOMPARE(counter.add(1, false).id, 1);
    QCOMPARE(counter.add(1.1, false).id, 1);
    const Blink over = counter.add(1.15, true);
    QCOMPARE(over.id, 0);
    QVERIFY(std::abs(over.duration - 0.15) < 1e-9);
    QCOMPARE(over.perMinute, 1);
    QCOMPARE(counter.add(1.2, true).duration, 0.0);
    QCOMPARE(counter.add(2, false).id, 2);
    const Blink returned = counter.add(9, true);  // away for seven seconds is no blink
    QCOMPARE(returned.duration, 0.0);
    QCOMPARE(returned.perMinute, 1);
    QCOMPARE(counter.add(62, true).perMinute, 0);
}

void TestGazepointRecords::count_time_anew_after_a_calibration() {
    Subject subject;
    RecordBuilder builder(subject.setup(), 1000);
    Record record;
    for (int i = 0; i < 100; ++i)
        record = builder.build(i * 0.01, subject.at(i * 0.01));
    const std::int64_t tick = record.tick;
    QCOMPARE(tick, 1000 + 9900000);
    builder.restartTime(0.99);
    for (int i = 100; i < 150; ++i) {
        record = builder.build(i * 0.01, subject.at(i * 0.01));
        QVERIFY(!record.fixation.valid || record.fixation.start >= 0);
    }
    QVERIFY(std::abs(record.time - 0.5) < 1e-9);
    QCOMPARE(record.count, std::int64_t(150));
    QVERIFY(record.tick > tick);
}

void TestGazepointRecords::come_evenly_and_without_drift_data() {
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("perSecond");
    QTest::addColumn<double>("shortest");
    QTest::addColumn<double>("longest");
    QTest::newRow("60 Hz as measured") << 60.0 << 60.9 << 0.0157 << 0.0172;
    QTest::newRow("150 Hz") << 150.0 << 150.0 << 0.0063 << 0.0070;
    QTest::newRow("1000 Hz") << 1000.0 << 1000.0 << 0.00095 << 0.00105;
}

void TestGazepointRecords::come_evenly_and_without_drift() {
    QFETCH(double, rate);
    QFETCH(double, perSecond);
    QFETCH(double, shortest);
    QFETCH(double, longest);
    Pacer pacer(rate);
    int count = 0;
    double last = 0;
    // A timer that is late by anything up to 20 ms.
    for (int tick = 0; tick < 100000; ++tick) {
        const double now = tick * 0.006 + (tick % 7) * 0.003;
        while (const auto moment = pacer.next(now)) {
            QVERIFY(*moment <= now);
            if (count++ > 0)
                QVERIFY(*moment - last >= shortest && *moment - last <= longest);
            last = *moment;
        }
    }
    QVERIFY(std::abs(count - perSecond * 600) < perSecond * 0.05);
}

void TestGazepointRecords::do_not_pile_up_in_a_stall() {
    Pacer pacer(1000);
    while (pacer.next(1)) {
    }
    int count = 0;
    while (pacer.next(3600))
        ++count;
    QVERIFY(count <= 2);
    QVERIFY(pacer.wait(3600) < 0.002);
}

OCELA_TEST(TestGazepointRecords)
#include "tst_gazepoint_records.moc"
