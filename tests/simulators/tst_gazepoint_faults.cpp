#include "gazepoint/faults.h"
#include "support/test_main.h"

#include <QTest>

using namespace sim::gazepoint;

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
    void begin_after_their_time();
    void splitting_and_joining_lose_nothing();
};

void TestGazepointFaults::begin_after_their_time() {
    for (const FaultDescription &description : faultDescriptions()) {
        FaultInjector injector({{description.fault}, 1.5}, 1);
        const bool delayed = description.fault == Fault::DelayStart;
        QCOMPARE(bytesOf(injector.deliver(kLine, 1.4)), delayed ? QByteArrayList{} : QByteArrayList{kLine});
        bool spoilt = false;
        for (int i = 0; i < 5; ++i) {
            const Delivery delivery = injector.deliver(kLine, 1.6);
            spoilt = spoilt || delivery.drop || bytesOf(delivery) != QByteArrayList{kLine};
        }
        QVERIFY2(spoilt != delayed, description.name);
    }
}

void TestGazepointFaults::splitting_and_joining_lose_nothing() {
    FaultInjector injector({{Fault::Split, Fault::Join}, 0}, 1);
    QByteArrayList segments;
    for (int i = 0; i < 100; ++i)
        segments += bytesOf(injector.deliver(kLine, 1));
    QVERIFY(segments.size() > 40 && segments.size() < 100);
    const QByteArray all = segments.join();
    QVERIFY(all.size() >= 97 * kLine.size());  // the last ones may still be held back
    QCOMPARE(all, kLine.repeated(all.size() / kLine.size()));
}

OCELA_TEST(TestGazepointFaults)
#include "tst_gazepoint_faults.moc"
