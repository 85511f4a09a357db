#include "gazepoint/client.h"

#include "gazepoint/record_formatter.h"

#include <QLoggingCategory>
#include <QTcpSocket>

Q_LOGGING_CATEGORY(lcGazepointSimulator, "ocela.simulator.gazepoint", QtWarningMsg)

namespace sim::gazepoint {

namespace {

const QByteArray lineEnd = QByteArrayLiteral("\r\n");
constexpr qint64 readBufferBytes = 64LL * 1024;
constexpr int heldBackMs = 4;  // long enough for a client to read the first half of a split record

}  // namespace

Client::Client(QTcpSocket *socket, Device &device, const FaultOptions &faults, const LinePlayer &player,
               QObject *parent)
    : QObject(parent), socket_(socket), device_(device), faults_(faults, 1), player_(player) {
    socket_->setParent(this);
    socket_->setReadBufferSize(readBufferBytes);
    // Sends each record as a separate segment. By default, the system joins small writes.
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
        const Device::Answer answer = device_.execute(*command, switches_);
        switches_ = answer.switches;
        if (!switches_.data)
            enabledAt_s_.reset();
        write(answer.message + lineEnd);
    }
}

void Client::deliver(const Device::Step &step, double seconds) {
    now_s_ = seconds;
    for (const QByteArray &message : step.calibrationMessages)
        write(message + lineEnd);
    if (!switches_.data)
        return;
    if (!enabledAt_s_)
        enabledAt_s_ = seconds;
    const auto line = dataLine(step.record);
    if (!line)
        return;
    const Delivery delivery = faults_.deliver(*line + lineEnd, secondsSinceEnabled());
    for (const Delivery::Segment &segment : delivery.segments)
        sendSegment(segment);
    if (delivery.drop)
        socket_->disconnectFromHost();
}

std::optional<QByteArray> Client::dataLine(const Record &record) {
    return player_.isActive() ? player_.next() : formatRecord(record, switches_);
}

double Client::secondsSinceEnabled() const {
    return enabledAt_s_ ? now_s_ - *enabledAt_s_ : -1;
}

void Client::sendSegment(const Delivery::Segment &segment) {
    if (!segment.later)
        return write(segment.bytes);
    heldBack_ += segment.bytes;
    heldBackTimer_.start(heldBackMs);
}

void Client::sendHeldBack() {
    heldBackTimer_.stop();
    QByteArray bytes;
    bytes.swap(heldBack_);
    write(bytes);
}

/// Sends held back bytes first, to keep the order.
void Client::write(const QByteArray &bytes) {
    if (!heldBack_.isEmpty())
        sendHeldBack();
    if (bytes.isEmpty() || socket_->state() != QAbstractSocket::ConnectedState ||
        faults_.isSilent(secondsSinceEnabled()))
        return;
    if (socket_->bytesToWrite() > maxUnreadBytes) {
        qCWarning(lcGazepointSimulator) << "a client does not read its data and is disconnected";
        socket_->abort();
        return;
    }
    socket_->write(bytes);
    socket_->flush();
}

}  // namespace sim::gazepoint
