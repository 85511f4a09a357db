#include "support/test_main.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/eyetech_tracker.h"

#include <QLibrary>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

/// Uses a library without the last entry point.
class TestIncompleteLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void is_not_used();
};

void TestIncompleteLibrary::is_not_used() {
    QVERIFY2(QLibrary("QuickLink2").load(), "the test library is not found");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("EyeTech .*QuickLink2.* lacks .* QLCalibration_AddBias$"));
    QTest::ignoreMessage(QtDebugMsg, "QL not loaded");
    QTemporaryDir folder;
    EyetechGrabber tracker(folder.path(), nullptr);
    const QSignalSpy connections(&tracker, &EyetrackerInterface::connectedChanged);
    const QSignalSpy frames(&tracker, &EyetechGrabber::newFrame);
    QCOMPARE(quicklink2::QLDevice_Start(1), quicklink2::notLoaded);
    QTRY_COMPARE(frames.count(), 1);
    QVERIFY(frames.first().first().value<QLFrameData>().image.isNull());
    tracker.calibrate(QRect(0, 0, 100, 100));
    QTest::ignoreMessage(QtDebugMsg, "Device not started successfully!");
    QVERIFY(!tracker.start());
    QCOMPARE(connections.count(), 0);
}

OCELA_TEST(TestIncompleteLibrary)
#include "tst_eyetech_incomplete_library.moc"
