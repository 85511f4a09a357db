#include "support/test_main.h"
#include "trackers/eyetech/eyetech_grabber.h"
#include "trackers/eyetech/quicklink2_binding.h"

#include <QLibrary>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// With a library that lacks a single entry point, the last one.
class TestIncompleteLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void counts_as_none();
};

void TestIncompleteLibrary::counts_as_none() {
    QVERIFY2(QLibrary("QuickLink2").load(), "it is to be found");
    QTest::ignoreMessage(QtDebugMsg, "QL not loaded");
    QTemporaryDir folder;
    EyetechGrabber tracker(folder.path(), nullptr);
    const QSignalSpy connections(&tracker, &EyetrackerInterface::connectedChanged);
    const QSignalSpy frames(&tracker, &EyetechGrabber::newFrame);
    QCOMPARE(quicklink2::QLDevice_Start(1), ql_not_loaded);
    QTRY_COMPARE(frames.count(), 1);
    QVERIFY(frames.first().first().value<QLFrameData>().image.isNull());
    tracker.calibrate(QRect(0, 0, 100, 100));
    QTest::ignoreMessage(QtDebugMsg, "Device not started successfully!");
    QVERIFY(!tracker.start());
    QCOMPARE(connections.count(), 0);
}

OCELA_TEST(TestIncompleteLibrary)
#include "tst_incomplete_library.moc"
