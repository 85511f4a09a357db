#pragma once

#include "system/child_process.h"

#include <QTcpServer>
#include <QTcpSocket>

/// Where a tracker's server listens.
constexpr quint16 gazepointPort = 4242;

/// The simulated tracker's server, as a process of its own.
class Simulator : public ChildProcess {
    Q_OBJECT

public:
    [[nodiscard]] bool listen(const QStringList &arguments);
};

/// A second client of the server: it is sent the same records as the program.
class Tap {
public:
    /// Has the data switched on and waits until they flow.
    [[nodiscard]] bool open();
    /// The records so far.
    [[nodiscard]] QList<QByteArray> records();

private:
    QTcpSocket socket_;
    QByteArray received_;
};

/// The server in the test's own hands: it writes down what the program sends and says what it is told to.
class ScriptedServer {
public:
    ScriptedServer();

    [[nodiscard]] bool listen() { return server_.listen(QHostAddress::LocalHost, gazepointPort); }
    [[nodiscard]] bool isConnected() const { return client_ && client_->state() == QAbstractSocket::ConnectedState; }
    [[nodiscard]] QByteArray received();
    void send(const QByteArray &line);

private:
    QTcpServer server_;
    QTcpSocket *client_ = nullptr;
    QByteArray received_;
};
