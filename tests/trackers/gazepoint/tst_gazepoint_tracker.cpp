#include "support/gazepoint_wire.h"
#include "support/test_main.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

/// Tests the back-end, whose connection has a thread of its own.
class TestGazePoint : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void sends_the_commands_and_reports_the_connection();
    void receives_every_record_while_its_thread_is_busy();
    void reconnects_to_a_server_that_was_started_later();
    void reconnects_while_connected_and_recording();
    void is_destroyed_while_the_server_does_not_read();

private:
    void connectServer();
    void acceptConnection();
    [[nodiscard]] QByteArray received(int bytes);
    [[nodiscard]] bool sendRecord(int percent);

    std::unique_ptr<QTcpServer> server_;
    std::unique_ptr<GazePoint> tracker_;
    QTcpSocket *peer_ = nullptr;
};

void TestGazePoint::init() {
    server_ = std::make_unique<QTcpServer>();
    QVERIFY(server_->listen(QHostAddress::LocalHost));
    tracker_ = std::make_unique<GazePoint>(QString(), nullptr, server_->serverPort());
}

void TestGazePoint::cleanup() {
    tracker_.reset();
    server_.reset();
}

void TestGazePoint::connectServer() {
    QVERIFY(tracker_->start());
    acceptConnection();
}

void TestGazePoint::acceptConnection() {
    QTRY_VERIFY(server_->hasPendingConnections());
    peer_ = server_->nextPendingConnection();
    QCOMPARE(received(sizeof wire::enableData - 1), QByteArray(wire::enableData));
}

QByteArray TestGazePoint::received(int bytes) {
    (void)QTest::qWaitFor([&] { return peer_->bytesAvailable() >= bytes; }, test_support::longWaitMs);
    return peer_->readAll();
}

/// Returns whether the sample of the record arrives, without processing events on this thread.
bool TestGazePoint::sendRecord(int percent) {
    peer_->write("<REC FPOGX=\"" + QByteArray::number(percent / 100.0) + "\" />\r\n");
    (void)peer_->flush();
    const QDeadlineTimer deadline(test_support::longWaitMs);
    while (qRound(tracker_->getLastSample().x) != percent && !deadline.hasExpired())
        QThread::msleep(1);
    return qRound(tracker_->getLastSample().x) == percent;
}

void TestGazePoint::sends_the_commands_and_reports_the_connection() {
    QCOMPARE(tracker_->pixelUnit(), EyetrackerInterface::PixelUnit::Device);
    QSignalSpy changes(tracker_.get(), &EyetrackerInterface::connectedChanged);
    QString calibrations;
    connect(tracker_.get(), &GazePoint::calibrationStarted, this, [&] { calibrations += "started "; });
    connect(tracker_.get(), &GazePoint::calibrationFinished, this, [&] { calibrations += "finished "; });
    tracker_->calibrate(QRect());  // without a connection
    connectServer();
    QTRY_COMPARE(changes, (QList<QVariantList>{{true}}));
    QTRY_COMPARE(calibrations, QString("started finished "));
    tracker_->calibrate(QRect());
    QCOMPARE(received(sizeof wire::calibrate - 1), QByteArray(wire::calibrate));
    QCOMPARE(calibrations, QString("started finished started "));
    tracker_->calibrate(QRect());  // instead of the running one
    QCOMPARE(received(sizeof wire::calibrate - 1), QByteArray(wire::calibrate));
    QTRY_COMPARE(calibrations, QString("started finished started started finished started "));

    QSignalSpy disconnections(peer_, &QTcpSocket::disconnected);
    tracker_->stop();
    QTRY_COMPARE(disconnections.count(), 1);
    QTRY_VERIFY(calibrations.endsWith("started finished "));
    QCOMPARE(peer_->readAll(), QByteArray(wire::disableData));
    QTRY_COMPARE(changes, (QList<QVariantList>{{true}, {false}}));
    tracker_->stop();
}

void TestGazePoint::receives_every_record_while_its_thread_is_busy() {
    connectServer();
    peer_->write(wire::screenSize);
    (void)peer_->flush();
    QTRY_VERIFY(!tracker_->pixelArea().isEmpty());
    for (int percent = 1; percent <= 6; ++percent)
        QVERIFY(sendRecord(percent));
}

void TestGazePoint::reconnects_to_a_server_that_was_started_later() {
    const quint16 port = server_->serverPort();
    const QString refused = QString("server not running at 127.0.0.1:%1").arg(port);
    connectServer();
    server_->close();
    peer_->abort();
    QTRY_VERIFY(!tracker_->isConnected());
    QSignalSpy failures(tracker_.get(), &EyetrackerInterface::connectionFailed);
    for (int count = 1; count <= 2; ++count) {
        tracker_->reconnect();
        QTRY_COMPARE(failures.count(), count);
        QCOMPARE(tracker_->connectionProblem(), refused);
    }
    QVERIFY(server_->listen(QHostAddress::LocalHost, port));
    tracker_->reconnect();
    acceptConnection();
    QTRY_VERIFY(tracker_->isConnected());
    QCOMPARE(tracker_->connectionProblem(), QString());
}

void TestGazePoint::reconnects_while_connected_and_recording() {
    connectServer();
    QTRY_VERIFY(tracker_->isConnected());
    tracker_->startRecord("unused.csv");
    QSignalSpy changes(tracker_.get(), &EyetrackerInterface::connectedChanged);
    tracker_->reconnect();
    acceptConnection();
    QTRY_COMPARE(changes, (QList<QVariantList>{{false}, {true}}));

    peer_->write("<ACK ID=\"SCREEN_SIZE\" X=\"-800\" Y=\"0\" WIDTH=\"800\" HEIGHT=\"600\" />\r\n");
    QTRY_COMPARE(tracker_->pixelArea(), QRect(-800, 0, 800, 600));
    QVERIFY(sendRecord(5));
    QVERIFY(tracker_->isRecording());
    QVERIFY(tracker_->recordLength().sampleCount > 0);
    tracker_->discardRecord();
}

void TestGazePoint::is_destroyed_while_the_server_does_not_read() {
    constexpr qint64 halfSendTimeoutMs = 15000;
    connectServer();
    peer_->setReadBufferSize(1);
    constexpr int callCount = 100000;
    int sent = 0;
    connect(tracker_.get(), &GazePoint::calibrationFinished, this, [&sent] { ++sent; });
    for (int i = 0; i < callCount; ++i)
        tracker_->calibrate(QRect());
    // Until nothing more is sent, because the buffers of the connection are full.
    for (int before = -1; sent != before; QTest::qWait(1000))
        before = sent;
    QVERIFY(sent > 0 && sent < callCount - 1);
    QElapsedTimer timer;
    timer.start();
    tracker_.reset();
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
}

OCELA_TEST(TestGazePoint)
#include "tst_gazepoint_tracker.moc"
