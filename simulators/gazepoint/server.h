#pragma once

#include "gazepoint/device.h"
#include "gazepoint/faults.h"
#include "gazepoint/line_player.h"
#include "gazepoint/pacer.h"
#include "subject/subject.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTcpServer>
#include <QTimer>
#include <QVector>
#include <vector>

namespace sim::gazepoint {

class Client;

struct ServerOptions {
    quint16 port = 4242;  ///< 0: any free one
    double rate = 60;     ///< samples a second
    Screen screen;
    bool olderServer = false;
    FaultOptions faults;
    QVector<QByteArray> lines;  ///< records to send in place of measured ones, if any
    bool once = false;          ///< send `lines` once instead of over and over
};

/// The simulated tracker's server on 127.0.0.1: any number of clients up to kMostClients, one device for all.
///
/// The device measures all the time, as a real one does, whether anybody listens or not. The subject is owned
/// by the caller and outlives the server.
class Server : public QObject {
    Q_OBJECT

public:
    static constexpr int kMostClients = 64;

    Server(const ServerOptions &options, Subject *subject, QObject *parent = nullptr);
    ~Server() override;

    /// False when the port is taken; errorString() then says why.
    [[nodiscard]] bool listen();
    [[nodiscard]] quint16 port() const { return tcp_.serverPort(); }
    [[nodiscard]] QString errorString() const { return tcp_.errorString(); }

    /// Where the mouse pointer is, in fractions of the screen.
    void setCursor(Point position) { device_.setCursor(position); }

private:
    void accept();
    void remove(Client *client);
    void takeSamples();
    [[nodiscard]] double now() const;

    ServerOptions options_;
    QElapsedTimer clock_;
    Device device_;
    Pacer pacer_;
    QTimer timer_;
    QTcpServer tcp_;
    std::vector<Client *> clients_;  // children of this object
};

}  // namespace sim::gazepoint
