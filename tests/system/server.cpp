#include "system/server.h"

#include "system/timeout.h"

#include <QTest>

bool Simulator::listen(const QStringList &arguments) {
    start(OCELA_SIMULATOR, arguments);
    return waitForLog("listening on");
}

bool SecondClient::open() {
    socket_.connectToHost(QHostAddress::LocalHost, gazepointPort);
    if (!socket_.waitForConnected(timeoutMs))
        return false;
    for (const char *name : {"POG_FIX", "POG_LEFT", "POG_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "PUPILMM", "DATA"})
        socket_.write(QByteArray("<SET ID=\"ENABLE_SEND_") + name + "\" STATE=\"1\" />\r\n");
    return QTest::qWaitFor([this] { return !records().isEmpty(); }, timeoutMs);
}

QList<QByteArray> SecondClient::records() {
    // Read everything that has arrived since the last call.
    while (socket_.waitForReadyRead(0)) {
    }
    received_ += socket_.readAll();
    QList<QByteArray> records;
    for (const QByteArray &line : received_.left(received_.lastIndexOf('\n')).split('\n')) {
        if (line.startsWith("<REC"))
            records << line;
    }
    return records;
}

ScriptedServer::ScriptedServer() {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_,
                     [this] { client_ = server_.nextPendingConnection(); });
}

QByteArray ScriptedServer::received() {
    if (client_)
        received_ += client_->readAll();
    return received_;
}

void ScriptedServer::send(const QByteArray &line) {
    client_->write(line + "\r\n");
    client_->flush();
}
