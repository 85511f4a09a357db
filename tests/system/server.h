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

/// A GazePoint server that sends only the lines of the test.
class ScriptedServer {
public:
    ScriptedServer();

    [[nodiscard]] bool listen() { return server_.listen(QHostAddress::LocalHost, gazepointPort); }
    /// Waits for the program, sends a first line and answers the program's request for the screen size.
    [[nodiscard]] bool connectProgram(const QByteArray &firstLine);
    void send(const QByteArray &line);
    /// Closes the connection to the program, and accepts no other one.
    void disconnectProgram();

private:
    [[nodiscard]] bool waitFor(const QByteArray &end);

    QTcpServer server_;
    QTcpSocket *client_ = nullptr;
    QByteArray received_;
};
