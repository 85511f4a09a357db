#include "trackers/gazepoint/gazepoint_tracker.h"

#include "trackers/gazepoint/gazepoint_record_reader.h"

#include <QDateTime>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcGazePoint, "ocela.gazepoint")

constexpr int pollIntervalMs = 1000;
constexpr int sendTimeoutMs = 30000;

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

GazePoint::GazePoint(const QString &dataFolder, QObject *parent, quint16 port)
    : EyetrackerInterface(dataFolder, parent), port_(port), socket_(this) {
    setPixelUnit(PixelUnit::Device);
    socket_.setReadBufferSize(maxUnreadBytes);
    connectionHelper_ << connect(&socket_, &QTcpSocket::connected, &socket_, [this] { onConnected(); })
                      << connect(&socket_, &QTcpSocket::disconnected, &socket_, [this] { onDisconnected(); })
                      << connect(&socket_, &QTcpSocket::readyRead, &socket_, [this] { onReadyRead(); })
                      // The timer has no effect: that is intended.
                      << connect(&pollTimer_, &QTimer::timeout, this, [] {});
    pollTimer_.start(pollIntervalMs);
}

// The socket's destructor emits disconnected(), which must not reach the destroyed members.
GazePoint::~GazePoint() {
    connectionHelper_.clear();
}

bool GazePoint::start() {
    screenSize_ = QSize(0, 0);
    // connectToHost() has no effect on a socket that is still connecting or closing.
    if (socket_.state() != QAbstractSocket::UnconnectedState && socket_.state() != QAbstractSocket::ConnectedState)
        socket_.abort();
    socket_.connectToHost("127.0.0.1", port_);
    return true;
}

void GazePoint::stop() {
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    socket_.disconnectFromHost();
}

void GazePoint::calibrate(QRect) {
    send("<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />");
    send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
}

void GazePoint::onConnected() {
    qCDebug(lcGazePoint, "GazePoint connected");
    setConnected(true);
    for (const char *name : dataSwitches)
        send(QByteArray("<SET ID=\"").append(name).append("\" STATE=\"1\" />"));
    send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />");
}

void GazePoint::onDisconnected() {
    qCDebug(lcGazePoint, "GazePoint disconnected");
    setConnected(false);
}

// Each chunk of received data is treated as one message: that is intended. If a chunk has two records, the second
// overwrites the first. The rest of a split record is ignored.
void GazePoint::onReadyRead() {
    const QByteArray message = socket_.readAll();
    switch (gazepoint::kindOf(view(message))) {
        case gazepoint::Message::Record:
            takeRecord(message);
            break;
        case gazepoint::Message::ScreenSize:
            takeScreenSize(message);
            break;
        case gazepoint::Message::Other:
            break;
    }
    // QTcpSocket does not emit readyRead() for data that arrived during the wait in send().
    if (socket_.bytesAvailable() > 0)
        QMetaObject::invokeMethod(
            &socket_, [this] { onReadyRead(); }, Qt::QueuedConnection);
}

void GazePoint::takeRecord(const QByteArray &message) {
    if (screenSize_.width() == 0 || screenSize_.height() == 0) {
        // Do not ask again while the server does not read, because each attempt would block in send().
        if (socket_.bytesToWrite() == 0)
            send("<GET ID=\"SCREEN_SIZE\" />");
        return;
    }
    addSample(gazepoint::parseRecord(view(message), screenSize_, QDateTime::currentMSecsSinceEpoch()));
}

void GazePoint::takeScreenSize(const QByteArray &message) {
    const QSize size = gazepoint::parseScreenSize(view(message));
    if (size != screenSize_ && (size.width() < 0 || size.height() < 0))
        qCWarning(lcGazePoint, "The server reports a screen of %d x %d pixels", size.width(), size.height());
    screenSize_ = size;
}

void GazePoint::send(const QByteArray &text) {
    if (text.isEmpty() || socket_.state() != QAbstractSocket::ConnectedState)
        return;
    socket_.write(text + "\r\n");
    socket_.flush();
    // Waits only for data that the system has not accepted yet. waitForBytesWritten() also reads, and the handler of
    // that data may call send(). If that nested call writes all data, the outer call waits until its timeout.
    if (socket_.bytesToWrite() > 0)
        socket_.waitForBytesWritten(sendTimeoutMs);
}
