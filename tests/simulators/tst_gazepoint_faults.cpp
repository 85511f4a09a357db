#include "gazepoint/faults.h"
#include "support/test_main.h"

using namespace sim::gazepoint;

namespace {

const QByteArray line = "<REC CNT=\"12\" FPOGX=\"0.50000\" FPOGY=\"0.25000\" FPOGV=\"1\" />\r\n";

QByteArrayList bytesOf(const Delivery &delivery) {
    QByteArrayList bytes;
    for (const Delivery::Segment &segment : delivery.segments)
        bytes << segment.bytes;
    return bytes;
}

}  // namespace

class TestGazepointFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void replace_a_record();
    void start_after_the_given_time();
    void splitting_and_joining_keep_all_records();
    void odd_values_take_turns();
};

void TestGazepointFaults::replace_a_record() {
    const auto deliver = [](Fault fault) { return FaultInjector({{fault}, 0}, 1).deliver(line, 0); };
    const int middle = line.size() / 2;
    const Delivery split = deliver(Fault::Split);
    QCOMPARE(bytesOf(split), (QByteArrayList{line.left(middle), line.mid(middle)}));
    QVERIFY(!split.drop && !split.segments[0].later && split.segments[1].later);
    QCOMPARE(bytesOf(deliver(Fault::Drop)), QByteArrayList{line.left(middle)});
    QVERIFY(deliver(Fault::Drop).drop);
    QCOMPARE(bytesOf(deliver(Fault::Zeros)), (QByteArrayList{line, QByteArray(512, '\0')}));
    QCOMPARE(bytesOf(deliver(Fault::Silent)), QByteArrayList());
    QVERIFY(FaultInjector({{Fault::Silent}, 0}, 1).isSilent(0));
}

void TestGazepointFaults::start_after_the_given_time() {
    for (const FaultDescription &description : faultDescriptions()) {
        FaultInjector injector({{description.fault}, 1.5}, 1);
        const bool delayed = description.fault == Fault::DelayStart;
        QCOMPARE(bytesOf(injector.deliver(line, 1.4)), delayed ? QByteArrayList{} : QByteArrayList{line});
        QVERIFY2((bytesOf(injector.deliver(line, 1.6)) == QByteArrayList{line}) == delayed, description.name);
        QVERIFY(faultOfName(description.name) == description.fault);
    }
}

void TestGazepointFaults::splitting_and_joining_keep_all_records() {
    FaultInjector injector({{Fault::Split, Fault::Join}, 0}, 1);
    QByteArrayList segments;
    for (int i = 0; i < 100; ++i)
        segments += bytesOf(injector.deliver(line, 1));
    QVERIFY(segments.size() > 40 && segments.size() < 100);
    const QByteArray all = segments.join();
    QVERIFY(all.size() >= 97 * line.size());  // the last records may still be held back
    QCOMPARE(all, line.repeated(all.size() / line.size()));
}

void TestGazepointFaults::odd_values_take_turns() {
    FaultInjector injector({{Fault::Nan}, 0}, 1);
    QByteArray all;
    for (int i = 0; i < 13; ++i) {
        all += bytesOf(injector.deliver(line, 0)).first();
    }
    for (const char *value : {"\"NaN\"", "\"-inf\"", "\"1e999\"", "\"\"", "\"1,5\"", "XYZZY"})
        QVERIFY2(all.contains(value), value);
}

OCELA_TEST(TestGazepointFaults)
#include "tst_gazepoint_faults.moc"
