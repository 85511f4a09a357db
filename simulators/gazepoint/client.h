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

/// One connection to the server: answers commands, and sends the records that the client has enabled.
///
/// Owned by the server, and lives in the server's thread. Owns the socket. A client that does not read is disconnected
/// when more than maxUnreadBytes are queued for it. This limits the memory of the server.
class Client : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 maxUnreadBytes = 4LL * 1024 * 1024;

    Client(QTcpSocket *socket, Device &device, const FaultOptions &faults, const LinePlayer &player, QObject *parent);

    /// Sends the messages for one sample, which was taken at `seconds` of the server's clock.
    void deliver(const Device::Step &step, double seconds);

Q_SIGNALS:
    /// The connection is closed. The receiver must delete this object from the event loop.
    void finished();

private:
    void answerCommands();
    std::optional<QByteArray> dataLine(const Record &record);
    void sendSegment(const Delivery::Segment &segment);
    void sendHeldBack();
    void write(const QByteArray &bytes);
    [[nodiscard]] double secondsSinceEnabled() const;

    QTcpSocket *socket_;
    Device &device_;
    CommandParser parser_;
    Switches switches_;
    FaultInjector faults_;
    LinePlayer player_;
    std::optional<double> enabledAt_s_;  // the time of the first record after the data was enabled
    double now_s_ = 0;
    QByteArray heldBack_;  // the second half of a split record
    QTimer heldBackTimer_;
};

}  // namespace sim::gazepoint
