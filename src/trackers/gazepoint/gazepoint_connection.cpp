#include "trackers/gazepoint/gazepoint_connection.h"

#include "trackers/gazepoint/gazepoint_record_reader.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QThread>
#include <utility>

using gazepoint::Connection;

namespace {

Q_LOGGING_CATEGORY(lcGazePoint, "ocela.gazepoint")

constexpr int sendTimeoutMs = 30000;
constexpr int interruptionCheckMs = 100;

/// Limits the memory for unread data. onReadyRead() treats each chunk as one message.
constexpr qint64 maxUnreadBytes = 1 << 20;

/// The cursor switch is sent twice on purpose.
constexpr const char *dataSwitches[] = {
    "ENABLE_SEND_CURSOR",     "ENABLE_SEND_EYE_RIGHT",   "ENABLE_SEND_EYE_LEFT", "ENABLE_SEND_CURSOR",
    "ENABLE_SEND_PUPIL_LEFT", "ENABLE_SEND_PUPIL_RIGHT", "ENABLE_SEND_POG_FIX",  "ENABLE_SEND_POG_LEFT",
    "ENABLE_SEND_POG_RIGHT",  "ENABLE_SEND_PUPILMM",
};

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

Connection::Connection(quint16 port, TakeSample takeSample)
    : port_(port), takeSample_(std::move(takeSample)), socket_(this) {
    socket_.setReadBufferSize(maxUnreadBytes);
    connect(&socket_, &QTcpSocket::connected, this, &Connection::onConnected);
    connect(&socket_, &QTcpSocket::disconnected, this, &Connection::onDisconnected);
    connect(&socket_, &QTcpSocket::readyRead, this, &Connection::onReadyRead);
}

// The socket's destructor emits disconnected(), which must not reach the destroyed members.
Connection::~Connection() {
    socket_.disconnect(this);
}

void Connection::open() {
    screenSize_ = QSize(0, 0);
    // connectToHost() has no effect on a socket that is still connecting or closing.
    if (socket_.state() != QAbstractSocket::UnconnectedState && socket_.state() != QAbstractSocket::ConnectedState)
        socket_.abort();
    socket_.connectToHost("127.0.0.1", port_);
}

void Connection::close() {
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    socket_.disconnectFromHost();
}

void Connection::calibrate() {
    send("<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />");
    send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
}

void Connection::onConnected() {
    qCDebug(lcGazePoint, "GazePoint connected");
    Q_EMIT connected();
    for (const char *name : dataSwitches)
        send(QByteArray("<SET ID=\"").append(name).append("\" STATE=\"1\" />"));
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />");
}

void Connection::onDisconnected() {
    qCDebug(lcGazePoint, "GazePoint disconnected");
    Q_EMIT disconnected();
}

// Each chunk of received data is treated as one message: that is intended. If a chunk has two records, the second
// overwrites the first. The rest of a split record is ignored.
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
    // QTcpSocket does not emit readyRead() for data that arrived during the wait in send().
    if (socket_.bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &Connection::onReadyRead, Qt::QueuedConnection);
}

void Connection::takeRecord(const QByteArray &message) {
    if (screenSize_.width() == 0 || screenSize_.height() == 0) {
        // Do not ask again while the server does not read, because each attempt would block in send().
        if (socket_.bytesToWrite() == 0)
            send("<GET ID=\"SCREEN_SIZE\" />");
        return;
    }
    takeSample_(parseRecord(view(message), screenSize_, QDateTime::currentMSecsSinceEpoch()));
}

void Connection::takeScreenSize(const QByteArray &message) {
    const QSize size = parseScreenSize(view(message));
    if (size != screenSize_ && (size.width() < 0 || size.height() < 0))
        qCWarning(lcGazePoint, "The server reports a screen of %d x %d pixels", size.width(), size.height());
    screenSize_ = size;
}

void Connection::send(const QByteArray &message) {
    if (message.isEmpty() || socket_.state() != QAbstractSocket::ConnectedState)
        return;
    socket_.write(message + "\r\n");
    socket_.flush();
    // Waits only for data that the system has not accepted yet. waitForBytesWritten() also reads, and the handler of
    // that data may call send().
    const QDeadlineTimer deadline(sendTimeoutMs);
    while (socket_.bytesToWrite() > 0 && socket_.state() == QAbstractSocket::ConnectedState && !deadline.hasExpired() &&
           !QThread::currentThread()->isInterruptionRequested())
        socket_.waitForBytesWritten(interruptionCheckMs);
}
