#include "gazepoint/faults.h"
#include "support/test_main.h"

#include <QTest>

using namespace sim::gazepoint;

Q_DECLARE_METATYPE(sim::gazepoint::Fault)

namespace {

const QByteArray kLine = "<REC CNT=\"12\" FPOGX=\"0.50000\" FPOGY=\"0.25000\" FPOGV=\"1\" />\r\n";

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
    void begin_after_their_time_data();
    void begin_after_their_time();
    void splitting_and_joining_lose_nothing();
    void odd_values_are_of_all_kinds();
    void an_endless_line_has_ten_megabytes();
};

void TestGazepointFaults::begin_after_their_time_data() {
    QTest::addColumn<Fault>("fault");
    for (const FaultDescription &description : faultDescriptions())
        QTest::newRow(description.name) << description.fault;
}

void TestGazepointFaults::begin_after_their_time() {
    QFETCH(Fault, fault);
    FaultInjector injector({{fault}, 1.5}, 1);
    const bool delayed = fault == Fault::DelayStart;
    QCOMPARE(bytesOf(injector.deliver(kLine, 1.4)), delayed ? QByteArrayList{} : QByteArrayList{kLine});
    bool spoilt = false;
    for (int i = 0; i < 5; ++i) {
        const Delivery delivery = injector.deliver(kLine, 1.6);
        spoilt = spoilt || delivery.drop || bytesOf(delivery) != QByteArrayList{kLine};
    }
    QCOMPARE(spoilt, !delayed);
}

void TestGazepointFaults::splitting_and_joining_lose_nothing() {
    FaultInjector injector({{Fault::Split, Fault::Join}, 0}, 1);
    QByteArray all;
    int segments = 0;
    for (int i = 0; i < 100; ++i) {
        for (const QByteArray &bytes : bytesOf(injector.deliver(kLine, 1))) {
            QVERIFY(bytes.size() >= kLine.size());
            all += bytes;
            ++segments;
        }
    }
    QVERIFY(segments > 40 && segments < 100);
    QCOMPARE(all, kLine.repeated(all.size() / kLine.size()));
    QVERIFY(all.size() >= 97 * kLine.size());
}

void TestGazepointFaults::odd_values_are_of_all_kinds() {
    FaultInjector injector({{Fault::Nan}, 0}, 1);
    QByteArray all;
    for (int i = 0; i < 200; ++i) {
        const QByteArray line = bytesOf(injector.deliver(kLine, 1)).value(0);
        QVERIFY(line != kLine && line.startsWith("<REC") && line.endsWith(" />\r\n"));
        all += line;
    }
    for (const char *part :
         {"\"NaN\"", "\"inf\"", "\"1e999\"", "=\"\"", "XYZZY", "<REC FPOGX", "FPOGV=\"1\" FPOGV=\"1\""})
        QVERIFY2(all.contains(part), part);
}

void TestGazepointFaults::an_endless_line_has_ten_megabytes() {
    FaultInjector injector({{Fault::Endless}, 0}, 1);
    QByteArray all;
    for (int i = 0; i < 100; ++i)
        all += bytesOf(injector.deliver(kLine, 1)).value(0);
    QCOMPARE(all.size(), 10 * 1000 * 1000);
    QVERIFY(all.startsWith("<REC CNT=\"7") && !all.contains('\n') && !all.contains('>'));
}

OCELA_TEST(TestGazepointFaults)
#include "tst_gazepoint_faults.moc"
