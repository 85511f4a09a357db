#include "support/gazepoint_wire.h"
#include "support/test_main.h"
#include "trackers/gazepoint/gaze_point.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

/// The back-end against a real socket; the far side does just what each test says.
class TestGazePoint : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void record_that_comes_before_the_switches_holds_nothing_up();
    void asks_for_the_screen_until_it_knows_it();
    void split_record_yields_what_its_first_part_holds();
    void stop_switches_the_data_off_and_disconnects();
    void lost_server_is_seen();
    void nothing_from_the_far_side_breaks_it_data();
    void nothing_from_the_far_side_breaks_it();
    void endless_line_is_not_kept();

private:
    void connectServer();
    void tellScreen();
    void serve(const QByteArray &bytes);
    [[nodiscard]] QByteArray received(int bytes);

    std::unique_ptr<QTcpServer> server_;
    std::unique_ptr<GazePoint> tracker_;
    QTcpSocket *far_ = nullptr;
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
    far_ = server_->nextPendingConnection();
    QCOMPARE(received(sizeof wire::enableData - 1), QByteArray(wire::enableData));
    QVERIFY(tracker_->isConnected());
}

void TestGazePoint::tellScreen() {
    serve("<REC FPOGX=\"0.5\" />\r\n");
    QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    serve(wire::screenSize);
}

void TestGazePoint::serve(const QByteArray &bytes) {
    // Read before the next one is sent, so that each is a chunk of its own.
    QSignalSpy chunks(tracker_->findChild<QTcpSocket *>(), &QTcpSocket::readyRead);
    far_->write(bytes);
    far_->flush();
    QVERIFY(chunks.wait());
}

QByteArray TestGazePoint::received(int bytes) {
    (void)QTest::qWaitFor([&] { return far_->bytesAvailable() >= bytes; });
    return far_->readAll();
}

void TestGazePoint::record_that_comes_before_the_switches_holds_nothing_up() {
    constexpr qint64 halfTheSendLimitMs = 15000;
    QVERIFY(tracker_->start());
    QVERIFY(server_->waitForNewConnection(5000));
    far_ = server_->nextPendingConnection();
    far_->write("<REC FPOGX=\"0.5\" />\r\n");
    QVERIFY(far_->flush());

    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY(tracker_->isConnected());
    QVERIFY(received(sizeof wire::enableData + sizeof wire::askScreenSize - 2).contains(wire::askScreenSize));
    QVERIFY(timer.elapsed() < halfTheSendLimitMs);
}

void TestGazePoint::asks_for_the_screen_until_it_knows_it() {
    connectServer();
    QSignalSpy samples(tracker_.get(), &EyetrackerInterface::newSample);
    for (const char *earlierAnswer :
         {"<ACK ID=\"SCREEN_SIZE\" />\r\n", "<ACK ID=\"SCREEN_SIZE\" WIDTH=\"1920\" />\r\n"}) {
        serve(earlierAnswer);
        serve("<REC FPOGX=\"0.5\" />\r\n");
        QCOMPARE(received(sizeof wire::askScreenSize - 1), QByteArray(wire::askScreenSize));
    }
    QCOMPARE(samples.count(), 0);

    tellScreen();
    serve("<REC FPOGX=\"0.5\" FPOGV=\"1\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x_px, 960);
    QVERIFY(tracker_->getLastSample().valid);
    const qint64 age = QDateTime::currentMSecsSinceEpoch() - tracker_->getLastSample().timestamp;
    QVERIFY(age >= 0 && age < 60000);
}

void TestGazePoint::split_record_yields_what_its_first_part_holds() {
    connectServer();
    tellScreen();
    serve("<REC FPOGX=\"0.5\" FPO");
    QTRY_COMPARE(tracker_->getLastSample().x, 50.0F);
    const int before = tracker_->getSamples().size();
    serve("GY=\"0.5\" />\r\n");
    serve("<REC FPOGX=\"0.25\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x, 25.0F);
    QCOMPARE(tracker_->getLastSample().y, 0.0F);
    QVERIFY(tracker_->getSamples().size() <= before + 1);
}

void TestGazePoint::stop_switches_the_data_off_and_disconnects() {
    connectServer();
    QSignalSpy gone(far_, &QTcpSocket::disconnected);
    tracker_->stop();
    QTRY_COMPARE(gone.count(), 1);
    QCOMPARE(far_->readAll(), QByteArray("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />\r\n"));
    QVERIFY(!tracker_->isConnected());
    tracker_->stop();
}

void TestGazePoint::lost_server_is_seen() {
    connectServer();
    far_->write("<REC FPOGX=\"0.5");
    far_->abort();
    QTRY_VERIFY(!tracker_->isConnected());
}

void TestGazePoint::nothing_from_the_far_side_breaks_it_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("binary zeros") << QByteArray(5000, '\0');
    QTest::newRow("invalid UTF-8") << QByteArray("<REC FPOGX=\"\xff\xfe\" \xc3=\x28 />\r\n");
    QTest::newRow("nothing but separators") << QByteArray("<REC") + QByteArray(5000, ' ') + QByteArray(5000, '=');
    QTest::newRow("numbers that are none") << QByteArray("<REC FPOGX=\"NaN\" FPOGY=\"1e999\" LPMM=\"\" RPMM= />\r\n");
    QTest::newRow("screen of no size") << QByteArray("<ACK ID=\"SCREEN_SIZE\" WIDTH=\"0\" HEIGHT=\"0\" />\r\n");
}

void TestGazePoint::nothing_from_the_far_side_breaks_it() {
    QFETCH(QByteArray, bytes);
    connectServer();
    tellScreen();
    serve(bytes);
    serve(wire::screenSize);
    serve("<REC FPOGX=\"0.125\" />\r\n");
    QTRY_COMPARE(tracker_->getLastSample().x, 12.5F);
    QCOMPARE(tracker_->getLastSample().x_px, 240);
}

void TestGazePoint::endless_line_is_not_kept() {
    connectServer();
    tellScreen();
    far_->write("<REC FPOGX=\"" + QByteArray(10 << 20, '1'));
    // A record counts when it is read by itself, not with the rest of the line.
    const auto arrives = [this] {
        serve("<REC FPOGX=\"0.125\" />\r\n");
        return qFuzzyCompare(tracker_->getLastSample().x, 12.5F);
    };
    QVERIFY(QTest::qWaitFor(arrives, 60000));
}

OCELA_TEST(TestGazePoint)
#include "tst_gaze_point.moc"
