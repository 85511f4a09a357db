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
    quint16 port = 4242;  ///< 0: any free port
    double rateHz = 60;
    Screen screen;
    bool olderServer = false;
    FaultOptions faults;
    QVector<QByteArray> lines;  ///< sent instead of simulated records, if there are any
    bool once = false;          ///< do not repeat `lines`; the program also applies it to the recording of the subject
};

/// The server of the simulated tracker on 127.0.0.1. Up to maxClientCount clients share one device.
///
/// Like a real tracker, the device measures all the time, even without clients. The caller owns the subject, which must
/// outlive the server.
class Server : public QObject {
    Q_OBJECT

public:
    static constexpr int maxClientCount = 64;

    Server(const ServerOptions &options, Subject &subject, QObject *parent = nullptr);
    ~Server() override;

    /// Returns false on failure, for instance if the port is in use. errorString() then returns the reason.
    [[nodiscard]] bool listen();
    [[nodiscard]] quint16 port() const { return tcp_.serverPort(); }
    [[nodiscard]] QString errorString() const { return tcp_.errorString(); }

    /// Sets the position of the mouse pointer, as fractions of the screen.
    void setCursor(Point position) { device_.setCursor(position); }

private:
    void accept();
    void remove(Client *client);
    void takeSamples();
    [[nodiscard]] double now_s() const;

    ServerOptions options_;
    QElapsedTimer clock_;
    Device device_;
    Pacer pacer_;
    QTimer timer_;
    QTcpServer tcp_;
    std::vector<Client *> clients_;  // children of this object
};

}  // namespace sim::gazepoint
