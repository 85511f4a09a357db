#include "support/gazepoint_wire.h"
#include "support/test_main.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

constexpr qint64 halfSendTimeoutMs = 15000;

/// Tests the back-end with a server on a loopback socket.
class TestGazePoint : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void record_before_the_switches_does_not_block();
    void asks_for_the_screen_size_until_it_is_known();
    void asks_for_no_screen_size_while_the_server_does_not_read();
    void split_record_yields_the_fields_of_its_first_part();
    void stop_disables_the_data_and_disconnects();
    void calibrate_starts_the_calibration_of_the_server();
    void lost_connection_is_reported();
    void invalid_messages_are_ignored_data();
    void invalid_messages_are_ignored();
    void endless_line_does_not_stop_the_samples();

private:
    void connectServer();
    void sendScreenSize();
    void serve(const QByteArray &bytes);
    [[nodiscard]] QByteArray received(int bytes);

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
    QTRY_VERIFY(server_->hasPendingConnections());
    peer_ = server_->nextPendingConnection();
    QCOMPARE(received(sizeof wire::enableData - 1), QByteArray(wire::enableData));
    QVERIFY(tracker_->isConnected());
}

void TestGazePoint::sendScreenSize() {
    serve("<REC FPOGX=\"0.5\" />\r\n");
    QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    serve(wire::screenSize);
}

void TestGazePoint::serve(const QByteArray &bytes) {
    // Waits until the back-end has read the chunk, so that the next one is separate.
    QSignalSpy chunks(tracker_->findChild<QTcpSocket *>(), &QTcpSocket::readyRead);
    peer_->write(bytes);
    peer_->flush();
    QVERIFY(chunks.wait());
}

QByteArray TestGazePoint::received(int bytes) {
    (void)QTest::qWaitFor([&] { return peer_->bytesAvailable() >= bytes; });
    return peer_->readAll();
}

void TestGazePoint::record_before_the_switches_does_not_block() {
    QVERIFY(tracker_->start());
    QVERIFY(server_->waitForNewConnection(5000));
    peer_ = server_->nextPendingConnection();
    peer_->write("<REC FPOGX=\"0.5\" />\r\n");
    QVERIFY(peer_->flush());

    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY(tracker_->isConnected());
    QVERIFY(received(sizeof wire::enableData + sizeof wire::askScreenSize - 2).contains(wire::askScreenSize));
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
}

void TestGazePoint::asks_for_the_screen_size_until_it_is_known() {
    connectServer();
    QCOMPARE(tracker_->pixelUnit(), EyetrackerInterface::PixelUnit::Device);
    QSignalSpy samples(tracker_.get(), &EyetrackerInterface::newSample);
    for (const char *earlierAnswer :
         {"<ACK ID=\"SCREEN_SIZE\" />\r\n", "<ACK ID=\"SCREEN_SIZE\" WIDTH=\"1920\" />\r\n"}) {
        serve(earlierAnswer);
        serve("<REC FPOGX=\"0.5\" />\r\n");
        QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    }
    QCOMPARE(samples.count(), 0);

    sendScreenSize();
    serve("<REC FPOGX=\"0.5\" FPOGV=\"1\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x_px, 960);
    QVERIFY(tracker_->getLastSample().valid);
    const qint64 age = QDateTime::currentMSecsSinceEpoch() - tracker_->getLastSample().timestamp;
    QVERIFY(age >= 0 && age < 60000);

    // The next server may track another screen.
    tracker_->stop();
    connectServer();
    sendScreenSize();
}

void TestGazePoint::asks_for_no_screen_size_while_the_server_does_not_read() {
    connectServer();
    peer_->setReadBufferSize(1);
    auto &socket = *tracker_->findChild<QTcpSocket *>();
    socket.write(QByteArray(32 << 20, ' '));
    QElapsedTimer timer;
    timer.start();
    serve("<REC FPOGX=\"0.5\" />\r\n");
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
    QVERIFY(socket.bytesToWrite() > 0);
}

void TestGazePoint::split_record_yields_the_fields_of_its_first_part() {
    connectServer();
    sendScreenSize();
    serve("<REC FPOGX=\"0.5\" FPO");
    QTRY_COMPARE(tracker_->getLastSample().x, 50.0F);
    const int before = tracker_->getSamples().size();
    serve("GY=\"0.5\" />\r\n");
    serve("<REC FPOGX=\"0.25\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x, 25.0F);
    QCOMPARE(tracker_->getLastSample().y, 0.0F);
    QVERIFY(tracker_->getSamples().size() <= before + 1);
}

void TestGazePoint::stop_disables_the_data_and_disconnects() {
    connectServer();
    QSignalSpy disconnections(peer_, &QTcpSocket::disconnected);
    tracker_->stop();
    QTRY_COMPARE(disconnections.count(), 1);
    QCOMPARE(peer_->readAll(), QByteArray(wire::disableData));
    QVERIFY(!tracker_->isConnected());
    tracker_->stop();
}

void TestGazePoint::calibrate_starts_the_calibration_of_the_server() {
    tracker_->calibrate(QRect());  // without a connection
    connectServer();
    tracker_->calibrate(QRect());
    QCOMPARE(received(sizeof wire::calibrate - 1), QByteArray(wire::calibrate));
}

void TestGazePoint::lost_connection_is_reported() {
    connectServer();
    peer_->write("<REC FPOGX=\"0.5");
    peer_->abort();
    QTRY_VERIFY(!tracker_->isConnected());
}

void TestGazePoint::invalid_messages_are_ignored_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("binary zeros") << QByteArray(5000, '\0');
    QTest::newRow("invalid UTF-8") << QByteArray("<REC FPOGX=\"\xff\xfe\" \xc3=\x28 />\r\n");
    QTest::newRow("separators only") << QByteArray("<REC") + QByteArray(5000, ' ') + QByteArray(5000, '=');
    QTest::newRow("screen size of 0") << QByteArray("<ACK ID=\"SCREEN_SIZE\" WIDTH=\"0\" HEIGHT=\"0\" />\r\n");
}

void TestGazePoint::invalid_messages_are_ignored() {
    QFETCH(QByteArray, bytes);
    connectServer();
    sendScreenSize();
    serve(bytes);
    serve(wire::screenSize);
    serve("<REC FPOGX=\"0.125\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x, 12.5F);
    QCOMPARE(tracker_->getLastSample().x_px, 240);
}

void TestGazePoint::endless_line_does_not_stop_the_samples() {
    connectServer();
    sendScreenSize();
    peer_->write("<REC FPOGX=\"" + QByteArray(10 << 20, '1'));
    // Repeats until a record is read separately from the rest of the line.
    const auto arrives = [this] {
        serve("<REC FPOGX=\"0.125\" />\r\n");
        return qFuzzyCompare(tracker_->getLastSample().x, 12.5F);
    };
    QVERIFY(QTest::qWaitFor(arrives, 60000));
}

OCELA_TEST(TestGazePoint)
#include "tst_gazepoint_tracker.moc"
