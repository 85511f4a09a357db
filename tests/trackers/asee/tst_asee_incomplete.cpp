#include "support/test_main.h"
#include "trackers/asee/asee_sdk.h"

#include <QRegularExpression>
#include <QTest>

class TestAseeIncomplete : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void missing_entries_are_named_once_and_no_call_gets_through();
};

void TestAseeIncomplete::missing_entries_are_named_once_and_no_call_gets_through() {
    for (int missing = 0; missing < 12; ++missing)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("aSeeX.* lacks _7i_(?!stop )"));
    QCOMPARE(asee::_7i_stop(), -1);
    QCOMPARE(asee::_7i_device_connect(), -1);
}

OCELA_TEST(TestAseeIncomplete)
#include "tst_asee_incomplete.moc"
