#pragma once

#include "gazepoint/command_parser.h"
#include "gazepoint/device.h"
#include "gazepoint/faults.h"
#include "gazepoint/field_groups.h"
#include "gazepoint/line_player.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>
#include <optional>

class QTcpSocket;

namespace sim::gazepoint {

/// One connection to the server: answers its commands and sends it what it switched on.
///
/// Owned by the server, lives on the server's thread, and owns the socket. A client that does not read is
/// disconnected once kMostUnread bytes wait for it, so that it cannot make the server's memory grow.
class Client : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 kMostUnread = 4LL * 1024 * 1024;

    Client(QTcpSocket *socket, Device *device, const FaultOptions &faults, const LinePlayer &player, QObject *parent);

    /// Sends what one sample brought, taken at `seconds` of the server's clock.
    void deliver(const Device::Step &step, double seconds);

Q_SIGNALS:
    /// The connection is over; delete this object from the event loop.
    void finished();

private:
    void answerCommands();
    std::optional<QByteArray> dataLine(const Record &record);
    void sendSegment(const Delivery::Segment &segment);
    void sendHeldBack();
    void write(const QByteArray &bytes);
    [[nodiscard]] double sinceEnabled() const;

    QTcpSocket *socket_;
    Device *device_;
    CommandParser parser_;
    Switches switches_;
    FaultInjector faults_;
    LinePlayer player_;
    std::optional<double> enabledAt_;  // when the data stream was switched on
    double now_ = 0;
    QByteArray heldBack_;  // the second half of a split record
    QTimer heldBackTimer_;
};

}  // namespace sim::gazepoint
