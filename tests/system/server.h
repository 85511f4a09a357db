#pragma once

#include "system/child_process.h"

#include <QTcpServer>
#include <QTcpSocket>

constexpr quint16 gazepointPort = 4242;

/// The GazePoint simulator in a process of its own.
class Simulator : public ChildProcess {
    Q_OBJECT

public:
    [[nodiscard]] bool listen(const QStringList &arguments);
};

/// A second client of the simulator, which receives the same records as the program.
class SecondClient {
public:
    /// Connects, enables the data and waits for the first record.
    [[nodiscard]] bool open();
    /// Returns all records received so far.
    [[nodiscard]] QList<QByteArray> records();

private:
    QTcpSocket socket_;
    QByteArray received_;
};

/// A GazePoint server that sends only the lines of the test.
class ScriptedServer {
public:
    ScriptedServer();

    [[nodiscard]] bool listen() { return server_.listen(QHostAddress::LocalHost, gazepointPort); }
    /// Returns all bytes received so far.
    [[nodiscard]] QByteArray received();
    void send(const QByteArray &line);

private:
    QTcpServer server_;
    QTcpSocket *client_ = nullptr;
    QByteArray received_;
};
