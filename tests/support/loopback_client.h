#pragma once

#include "support/test_main.h"

#include <QByteArrayList>
#include <QFile>
#include <QHostAddress>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

/// Returns the complete lines of a text that start with `prefix`.
inline QByteArrayList linesOf(const QByteArray &text, const QByteArray &prefix) {
    QByteArrayList found;
    for (const QByteArray &line : text.left(text.lastIndexOf('\n')).split('\n')) {
        if (line.startsWith(prefix))
            found << line.trimmed();
    }
    return found;
}

/// A client of the simulated server that sends lines and keeps all received bytes.
class LoopbackClient {
public:
    explicit LoopbackClient(quint16 port) {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { received += socket.readAll(); });
        socket.connectToHost(QHostAddress::LocalHost, port);
    }

    void send(const QByteArray &line) { socket.write(line + "\r\n"); }
    /// Enables records with these groups of fields.
    void stream(const QByteArrayList &groups) {
        for (const QByteArray &group : groups + QByteArrayList{"DATA"})
            send("<SET ID=\"ENABLE_SEND_" + group + "\" STATE=\"1\" />");
    }

    [[nodiscard]] QByteArrayList lines(const QByteArray &prefix) const { return linesOf(received, prefix); }

    /// Waits for `count` lines that start with `prefix`. Returns the last one, or an empty line after a timeout.
    QByteArray waitFor(const QByteArray &prefix, int count = 1) {
        const bool found = QTest::qWaitFor([&] { return lines(prefix).size() >= count; }, test_support::longWaitMs);
        return found ? lines(prefix).at(count - 1) : QByteArray();
    }

    QTcpSocket socket;
    QByteArray received;
};

/// Returns the lines of real servers that start with `prefix`.
inline QByteArrayList capturedLines(const QByteArray &prefix) {
    QFile file(OCELA_TEST_DATA "/gazepoint_lines.txt");
    return file.open(QIODevice::ReadOnly) ? linesOf(file.readAll(), prefix) : QByteArrayList();
}

/// Returns the value of an attribute of a message; empty if it is missing.
inline QByteArray attributeOf(const QByteArray &line, const QByteArray &name) {
    return QRegularExpression(' ' + name + "=\"([^\"]*)\"").match(line).captured(1).toLatin1();
}

/// Replaces the numbers of a line with their types.
inline QByteArray formOf(const QByteArray &line) {
    static const QRegularExpression integer("\"-?\\d+\""), real("\"-?\\d+\\.\\d{5}\"");
    return QString::fromLatin1(line).replace(real, "real").replace(integer, "integer").toLatin1();
}
