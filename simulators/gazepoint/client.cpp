#include "gazepoint/client.h"

#include "gazepoint/record_formatter.h"

#include <QLoggingCategory>
#include <QTcpSocket>

Q_LOGGING_CATEGORY(lcGazepointSimulator, "ocela.simulator.gazepoint", QtWarningMsg)

namespace sim::gazepoint {

namespace {

const QByteArray kLineEnd = QByteArrayLiteral("\r\n");
constexpr qint64 kReadBuffer = 64LL * 1024;
constexpr int kHeldBackMs = 4;  // long enough for a client to have read the first half

}  // namespace

Client::Client(QTcpSocket *socket, Device *device, const FaultOptions &faults, const LinePlayer &player,
               QObject *parent)
    : QObject(parent), socket_(socket), device_(device), faults_(faults, 1), player_(player) {
    socket_->setParent(this);
    socket_->setReadBufferSize(kReadBuffer);
    // One record, one segment: without this the system joins small writes.
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    heldBackTimer_.setSingleShot(true);
    heldBackTimer_.setTimerType(Qt::PreciseTimer);
    connect(&heldBackTimer_, &QTimer::timeout, this, &Client::sendHeldBack);
    connect(socket_, &QTcpSocket::readyRead, this, &Client::answerCommands);
    connect(socket_, &QTcpSocket::disconnected, this, &Client::finished);
}

void Client::answerCommands() {
    parser_.feed(socket_->readAll());
    while (const auto command = parser_.next()) {
        const QByteArray answer = device_->execute(*command, &switches_);
        if (!switches_.data)
            enabledAt_.reset();
        write(answer + kLineEnd);
    }
}

void Client::deliver(const Device::Step &step, double seconds) {
    now_ = seconds;
    for (const QByteArray &message : step.calibrationMessages)
        write(message + kLineEnd);
    if (!switches_.data)
        return;
    if (!enabledAt_)
        enabledAt_ = seconds;
    const auto line = dataLine(step.record);
    if (!line)
        return;
    const Delivery delivery = faults_.deliver(*line + kLineEnd, sinceEnabled());
    for (const Delivery::Segment &segment : delivery.segments)
        sendSegment(segment);
    if (delivery.drop)
        socket_->disconnectFromHost();
}

std::optional<QByteArray> Client::dataLine(const Record &record) {
    return player_.isActive() ? player_.next() : formatRecord(record, switches_);
}

double Client::sinceEnabled() const {
    return enabledAt_ ? now_ - *enabledAt_ : -1;
}

void Client::sendSegment(const Delivery::Segment &segment) {
    if (!segment.later)
        return write(segment.bytes);
    heldBack_ += segment.bytes;
    heldBackTimer_.start(kHeldBackMs);
}

void Client::sendHeldBack() {
    heldBackTimer_.stop();
    QByteArray bytes;
    bytes.swap(heldBack_);
    write(bytes);
}

/// Keeps the order: what was held back goes first.
void Client::write(const QByteArray &bytes) {
    if (!heldBack_.isEmpty())
        sendHeldBack();
    if (bytes.isEmpty() || socket_->state() != QAbstractSocket::ConnectedState || faults_.isSilent(sinceEnabled()))
        return;
    if (socket_->bytesToWrite() > kMostUnread) {
        qCWarning(lcGazepointSimulator) << "a client does not read what it asked for; it is disconnected";
        socket_->abort();
        return;
    }
    socket_->write(bytes);
    socket_->flush();
}

}  // namespace sim::gazepoint
