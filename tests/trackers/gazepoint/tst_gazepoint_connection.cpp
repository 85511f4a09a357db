#include "support/gazepoint_wire.h"
#include "support/test_main.h"
#include "trackers/gazepoint/gazepoint_connection.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

constexpr qint64 halfSendTimeoutMs = 15000;

/// Tests the connection with a server on a loopback socket, on one thread.
class TestGazePointConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void record_before_the_switches_does_not_block();
    void asks_for_the_screen_size_until_it_is_known();
    void asks_for_no_screen_size_while_the_server_does_not_read();
    void split_record_yields_the_fields_of_its_first_part();
    void reopens_while_a_message_waits_for_the_server();
    void each_calibration_has_one_result();
    void screen_area_is_bounded();
    void invalid_messages_are_ignored_data();
    void invalid_messages_are_ignored();
    void endless_line_does_not_stop_the_samples();

private:
    void connectServer();
    void sendScreenSize();
    void serve(const QByteArray &bytes);
    [[nodiscard]] QByteArray received(int bytes);

    std::unique_ptr<QTcpServer> server_;
    std::unique_ptr<gazepoint::Connection> connection_;
    QVector<EyeTrackingSample> samples_;
    QVector<EyetrackerInterface::CalibrationResult> results_;
    bool isConnected_ = false;
    QTcpSocket *peer_ = nullptr;
};

void TestGazePointConnection::init() {
    server_ = std::make_unique<QTcpServer>();
    QVERIFY(server_->listen(QHostAddress::LocalHost));
    samples_.clear();
    results_.clear();
    isConnected_ = false;
    connection_ = std::make_unique<gazepoint::Connection>(
        server_->serverPort(), [this](const EyeTrackingSample &sample) { samples_ << sample; });
    connect(connection_.get(), &gazepoint::Connection::connected, this, [this] { isConnected_ = true; });
    connect(connection_.get(), &gazepoint::Connection::disconnected, this, [this] { isConnected_ = false; });
    connect(connection_.get(), &gazepoint::Connection::calibrationFinished, this,
            [this](EyetrackerInterface::CalibrationResult result) { results_ << result; });
}

void TestGazePointConnection::cleanup() {
    connection_.reset();
    server_.reset();
}

void TestGazePointConnection::connectServer() {
    connection_->open();
    QTRY_VERIFY(server_->hasPendingConnections());
    peer_ = server_->nextPendingConnection();
    QCOMPARE(received(sizeof wire::enableData - 1), QByteArray(wire::enableData));
    QVERIFY(isConnected_);
}

void TestGazePointConnection::sendScreenSize() {
    serve("<REC FPOGX=\"0.5\" />\r\n");
    QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    serve(wire::screenSize);
}

void TestGazePointConnection::serve(const QByteArray &bytes) {
    // Waits until the connection has read the chunk, so that the next one is separate.
    QSignalSpy chunks(connection_->findChild<QTcpSocket *>(), &QTcpSocket::readyRead);
    peer_->write(bytes);
    peer_->flush();
    QVERIFY(chunks.wait(test_support::longWaitMs));
}

QByteArray TestGazePointConnection::received(int bytes) {
    (void)QTest::qWaitFor([&] { return peer_->bytesAvailable() >= bytes; }, test_support::longWaitMs);
    return peer_->readAll();
}

void TestGazePointConnection::record_before_the_switches_does_not_block() {
    connection_->open();
    QVERIFY(server_->waitForNewConnection(test_support::longWaitMs));
    peer_ = server_->nextPendingConnection();
    peer_->write("<REC FPOGX=\"0.5\" />\r\n");
    QVERIFY(peer_->flush());

    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY(isConnected_);
    QVERIFY(received(sizeof wire::enableData + sizeof wire::askScreenSize - 2).contains(wire::askScreenSize));
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
}

void TestGazePointConnection::asks_for_the_screen_size_until_it_is_known() {
    connectServer();
    for (const char *earlierAnswer :
         {"<ACK ID=\"SCREEN_SIZE\" />\r\n", "<ACK ID=\"SCREEN_SIZE\" WIDTH=\"1920\" />\r\n"}) {
        serve(earlierAnswer);
        serve("<REC FPOGX=\"0.5\" />\r\n");
        QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    }
    QCOMPARE(samples_.size(), 0);

    sendScreenSize();
    serve("<REC FPOGX=\"0.5\" FPOGV=\"1\" />\r\n");
    QTRY_COMPARE(samples_.size(), 1);
    QCOMPARE(samples_[0].x_px, 960);
    QVERIFY(samples_[0].valid);
    const qint64 age = QDateTime::currentMSecsSinceEpoch() - samples_[0].timestamp;
    QVERIFY(age >= 0 && age < 60000);

    // The next server may track another screen.
    connection_->close();
    connectServer();
    sendScreenSize();
}

void TestGazePointConnection::asks_for_no_screen_size_while_the_server_does_not_read() {
    connectServer();
    peer_->setReadBufferSize(1);
    auto &socket = *connection_->findChild<QTcpSocket *>();
    socket.write(QByteArray(32 << 20, ' '));
    QElapsedTimer timer;
    timer.start();
    serve("<REC FPOGX=\"0.5\" />\r\n");
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
    QVERIFY(socket.bytesToWrite() > 0);
}

void TestGazePointConnection::split_record_yields_the_fields_of_its_first_part() {
    connectServer();
    sendScreenSize();
    serve("<REC FPOGX=\"0.5\" FPO");
    QTRY_COMPARE(samples_.size(), 1);
    QCOMPARE(samples_[0].x, 50.0F);
    serve("GY=\"0.5\" />\r\n");
    serve("<REC FPOGX=\"0.25\" />\r\n");
    QTRY_COMPARE(samples_.size(), 2);
    QCOMPARE(samples_[1].x, 25.0F);
    QCOMPARE(samples_[1].y, 0.0F);
}

void TestGazePointConnection::reopens_while_a_message_waits_for_the_server() {
    connectServer();
    peer_->setReadBufferSize(1);
    connection_->findChild<QTcpSocket *>()->write(QByteArray(32 << 20, ' '));
    QElapsedTimer timer;
    timer.start();
    const std::unique_ptr<QThread> user(QThread::create([this] { connection_->interruptSend(); }));
    user->start();
    connection_->calibrate();
    QVERIFY(timer.elapsed() < halfSendTimeoutMs);
    QVERIFY(user->wait());

    connection_->reopen();
    QCOMPARE(results_,
             QVector<EyetrackerInterface::CalibrationResult>({EyetrackerInterface::CalibrationResult::Unknown}));
    QTRY_VERIFY(server_->hasPendingConnections());
    peer_ = server_->nextPendingConnection();
    QCOMPARE(received(sizeof wire::enableData - 1), QByteArray(wire::enableData));
}

void TestGazePointConnection::each_calibration_has_one_result() {
    using Result = EyetrackerInterface::CalibrationResult;
    const QByteArray started = "<ACK ID=\"CALIBRATE_START\" STATE=\"1\" />\r\n";
    const auto lastResult = [this] { return results_.isEmpty() ? Result(-1) : results_.last(); };
    connection_->calibrate();  // without a connection
    QCOMPARE(results_, QVector<Result>({Result::Failed}));
    connectServer();
    sendScreenSize();

    connection_->calibrate();
    connection_->calibrate();
    QCOMPARE(lastResult(), Result::Cancelled);
    serve(started + started);
    serve("<REC FPOGX=\"0.5\" />\r\n<CAL ID=\"CALIB_RESULT\" LV1=\"1\" RV1=\"1\" />\r\n");
    QTRY_COMPARE(lastResult(), Result::Done);
    QCOMPARE(samples_.size(), 1);

    auto &timer = *connection_->findChild<QTimer *>();
    QVERIFY(timer.interval() >= 60000 && !timer.isActive());
    timer.setInterval(1);
    connection_->calibrate();
    QTRY_COMPARE(lastResult(), Result::Unknown);
    timer.setInterval(60000);

    results_.clear();
    connection_->calibrate();
    serve(started);
    peer_->abort();
    QTRY_COMPARE(results_, QVector<Result>({Result::Unknown}));
}

void TestGazePointConnection::screen_area_is_bounded() {
    connectServer();
    QVERIFY(connection_->screenArea().isEmpty());
    serve("<ACK ID=\"SCREEN_SIZE\" X=\"-1920\" Y=\"9\" WIDTH=\"800\" HEIGHT=\"600\" />\r\n");
    QTRY_COMPARE(connection_->screenArea(), QRect(-1920, 9, 800, 600));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("2147483647 x -1 pixels$"));
    serve("<ACK ID=\"SCREEN_SIZE\" X=\"2147483647\" Y=\"-2147483648\" WIDTH=\"2147483647\" HEIGHT=\"-1\" />\r\n");
    QTRY_VERIFY(connection_->screenArea().isEmpty());
    QVERIFY(connection_->screenArea().right() > 0);
}

void TestGazePointConnection::invalid_messages_are_ignored_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("binary zeros") << QByteArray(5000, '\0');
    QTest::newRow("invalid UTF-8") << QByteArray("<REC FPOGX=\"\xff\xfe\" \xc3=\x28 />\r\n");
    QTest::newRow("separators only") << QByteArray("<REC") + QByteArray(5000, ' ') + QByteArray(5000, '=');
    QTest::newRow("screen size of 0") << QByteArray("<ACK ID=\"SCREEN_SIZE\" WIDTH=\"0\" HEIGHT=\"0\" />\r\n");
}

void TestGazePointConnection::invalid_messages_are_ignored() {
    QFETCH(QByteArray, bytes);
    connectServer();
    sendScreenSize();
    serve(bytes);
    serve(wire::screenSize);
    serve("<REC FPOGX=\"0.125\" />\r\n");
    QTRY_VERIFY(!samples_.isEmpty() && samples_.last().x_px == 240);
    QCOMPARE(samples_.last().x, 12.5F);
}

void TestGazePointConnection::endless_line_does_not_stop_the_samples() {
    connectServer();
    sendScreenSize();
    peer_->write("<REC FPOGX=\"" + QByteArray(10 << 20, '1'));
    // Repeats until a record is read separately from the rest of the line.
    const auto arrives = [this] {
        serve("<REC FPOGX=\"0.125\" />\r\n");
        return !samples_.isEmpty() && qFuzzyCompare(samples_.last().x, 12.5F);
    };
    QVERIFY(QTest::qWaitFor(arrives, 60000));
}

OCELA_TEST(TestGazePointConnection)
#include "tst_gazepoint_connection.moc"
