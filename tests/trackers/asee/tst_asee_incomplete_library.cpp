#include "support/test_main.h"
#include "trackers/asee/asee_library.h"

#include <QRegularExpression>

class TestAseeIncomplete : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void is_named_in_the_log_and_not_called();
};

void TestAseeIncomplete::is_named_in_the_log_and_not_called() {
    const auto expectLine = [] {
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("aSee Pro .*aSeeX.* lacks the entry point _7i_device_connect$"));
    };
    expectLine();
    QCOMPARE(asee_sdk::_7i_stop(), -1);
    QCOMPARE(asee_sdk::_7i_device_connect(), -1);
    expectLine();
    asee::loadLibrary();
    QCOMPARE(asee_sdk::_7i_stop(), -1);
}

OCELA_TEST(TestAseeIncomplete)
#include "tst_asee_incomplete_library.moc"
