#include "trackers/gazepoint/gazepoint_connection.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QThread>
#include <algorithm>
#include <utility>

using gazepoint::Connection;
using CalibrationResult = EyetrackerInterface::CalibrationResult;

namespace {

Q_LOGGING_CATEGORY(lcGazePoint, "ocela.gazepoint")

constexpr int sendTimeoutMs = 30000;
constexpr int interruptionCheckMs = 100;

/// The server sends a message at the start and at the end of each point. A point takes 2 s by default.
constexpr int calibrationTimeoutMs = 60000;

/// Limits the memory for unread data. onReadyRead() treats each chunk as one message.
constexpr qint64 maxUnreadBytes = 1 << 20;

/// The cursor switch is sent twice on purpose.
constexpr const char *dataSwitches[] = {
    "ENABLE_SEND_CURSOR",     "ENABLE_SEND_EYE_RIGHT",   "ENABLE_SEND_EYE_LEFT", "ENABLE_SEND_CURSOR",
    "ENABLE_SEND_PUPIL_LEFT", "ENABLE_SEND_PUPIL_RIGHT", "ENABLE_SEND_POG_FIX",  "ENABLE_SEND_POG_LEFT",
    "ENABLE_SEND_POG_RIGHT",  "ENABLE_SEND_PUPILMM",
};

/// Limits the numbers in screenArea(), so that calculations with the area do not overflow.
constexpr int maxPixels = 1 << 24;

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QRect areaOf(const gazepoint::Screen &screen) {
    const auto bounded = [](int pixels, int min) { return std::clamp(pixels, min, maxPixels); };
    return {bounded(screen.origin.x(), -maxPixels), bounded(screen.origin.y(), -maxPixels),
            bounded(screen.size.width(), 0), bounded(screen.size.height(), 0)};
}

}  // namespace

Connection::Connection(quint16 port, TakeSample takeSample)
    : port_(port), takeSample_(std::move(takeSample)), socket_(this), calibrationTimer_(this) {
    socket_.setReadBufferSize(maxUnreadBytes);
    connect(&socket_, &QTcpSocket::connected, this, &Connection::onConnected);
    connect(&socket_, &QTcpSocket::disconnected, this, &Connection::onDisconnected);
    connect(&socket_, &QTcpSocket::errorOccurred, this, &Connection::onError);
    connect(&socket_, &QTcpSocket::readyRead, this, &Connection::onReadyRead);
    calibrationTimer_.setSingleShot(true);
    calibrationTimer_.setInterval(calibrationTimeoutMs);
    connect(&calibrationTimer_, &QTimer::timeout, this, [this] { finishCalibration(CalibrationResult::Unknown); });
}

// The socket's destructor emits disconnected(), which must not reach the destroyed members.
Connection::~Connection() {
    socket_.disconnect(this);
}

void Connection::open() {
    screen_ = Screen();
    // connectToHost() has no effect on a socket that is still connecting or closing.
    if (socket_.state() != QAbstractSocket::UnconnectedState && socket_.state() != QAbstractSocket::ConnectedState)
        socket_.abort();
    socket_.connectToHost("127.0.0.1", port_);
}

void Connection::reopen() {
    sendIsInterrupted_ = false;
    socket_.abort();
    open();
}

void Connection::close() {
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    socket_.disconnectFromHost();
}

void Connection::calibrate() {
    if (isAbandoned())
        return;
    if (calibration_.isRunning()) {
        Q_EMIT calibrationFinished(CalibrationResult::Cancelled);
        Q_EMIT calibrationStarted();
    }
    if (!isOpen_) {
        Q_EMIT calibrationFinished(CalibrationResult::Failed);
        return;
    }
    calibration_.start();
    calibrationTimer_.start();
    send("<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />");
    send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
}

void Connection::onConnected() {
    qCDebug(lcGazePoint, "GazePoint connected");
    isOpen_ = true;
    Q_EMIT connected();
    for (const char *name : dataSwitches)
        send(QByteArray("<SET ID=\"").append(name).append("\" STATE=\"1\" />"));
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />");
}

void Connection::onDisconnected() {
    qCDebug(lcGazePoint, "GazePoint disconnected");
    isOpen_ = false;
    Q_EMIT disconnected();
    if (calibration_.isRunning())
        finishCalibration(CalibrationResult::Unknown);
}

/// Reports only errors while connecting. The loss of an open connection is reported by disconnected().
void Connection::onError(QAbstractSocket::SocketError error) {
    if (!isOpen_)
        Q_EMIT failed(error == QAbstractSocket::ConnectionRefusedError, socket_.errorString());
}

// Each chunk of received data is treated as one message: that is intended. If a chunk has two records, the second
// overwrites the first. The rest of a split record is ignored. Only the messages about a calibration are split.
void Connection::onReadyRead() {
    const QByteArray message = socket_.readAll();
    switch (kindOf(view(message))) {
        case Message::Record:
            takeRecord(message);
            break;
        case Message::ScreenSize:
            takeScreenSize(message);
            break;
        case Message::Other:
            break;
    }
    watchCalibration(message);
    // QTcpSocket does not emit readyRead() for data that arrived during the wait in send().
    if (socket_.bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &Connection::onReadyRead, Qt::QueuedConnection);
}

void Connection::takeRecord(const QByteArray &message) {
    if (screen_.size.width() == 0 || screen_.size.height() == 0) {
        // Do not ask again while the server does not read, because each attempt would block in send().
        if (socket_.bytesToWrite() == 0)
            send("<GET ID=\"SCREEN_SIZE\" />");
        return;
    }
    takeSample_(parseRecord(view(message), screen_.size, QDateTime::currentMSecsSinceEpoch()));
}

void Connection::takeScreenSize(const QByteArray &message) {
    const Screen screen = parseScreen(view(message));
    const QSize size = screen.size;
    if (size != screen_.size && (size.width() < 0 || size.height() < 0))
        qCWarning(lcGazePoint, "The server reports a screen of %d x %d pixels", size.width(), size.height());
    screen_ = screen;
    screenArea_.exchange(areaOf(screen));
}

void Connection::watchCalibration(const QByteArray &bytes) {
    const CalibrationWatch::News news = calibration_.take(view(bytes));
    if (news.isAlive)
        calibrationTimer_.start();
    if (news.result)
        finishCalibration(*news.result);
}

void Connection::finishCalibration(CalibrationResult result) {
    calibration_.stop();
    calibrationTimer_.stop();
    Q_EMIT calibrationFinished(result);
}

bool Connection::isAbandoned() const {
    return QThread::currentThread()->isInterruptionRequested() && socket_.bytesToWrite() > 0;
}

void Connection::send(const QByteArray &message) {
    if (message.isEmpty() || sendIsInterrupted_ || isAbandoned() || socket_.state() != QAbstractSocket::ConnectedState)
        return;
    socket_.write(message + "\r\n");
    socket_.flush();
    // Waits only for data that the system has not accepted yet. waitForBytesWritten() also reads, and the handler of
    // that data may call send().
    const QDeadlineTimer deadline(sendTimeoutMs);
    while (socket_.bytesToWrite() > 0 && socket_.state() == QAbstractSocket::ConnectedState && !deadline.hasExpired() &&
           !sendIsInterrupted_ && !QThread::currentThread()->isInterruptionRequested())
        socket_.waitForBytesWritten(interruptionCheckMs);
}
