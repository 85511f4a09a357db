#include "system/server.h"

#include "support/gazepoint_wire.h"
#include "system/timeout.h"

#include <QTest>

bool Simulator::listen(const QStringList &arguments) {
    start(OCELA_SIMULATOR, arguments);
    return waitForLog("listening on");
}

ScriptedServer::ScriptedServer() {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_,
                     [this] { client_ = server_.nextPendingConnection(); });
}

bool ScriptedServer::connectProgram(const QByteArray &firstLine) {
    // Nothing else is sent before.
    if (!waitFor(wire::enableData) || received_ != wire::enableData)
        return false;
    send(firstLine);
    if (!waitFor(wire::askScreenSize))
        return false;
    send(QByteArray(wire::screenSize).trimmed());
    return true;
}

void ScriptedServer::send(const QByteArray &line) {
    client_->write(line + "\r\n");
    client_->flush();
}

void ScriptedServer::disconnectProgram() {
    server_.close();
    client_->disconnectFromHost();
}

bool ScriptedServer::waitFor(const QByteArray &end) {
    return QTest::qWaitFor([&] { return client_ && (received_ += client_->readAll()).endsWith(end); }, timeoutMs);
}
