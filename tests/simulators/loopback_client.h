#pragma once

#include <QByteArrayList>
#include <QFile>
#include <QHostAddress>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

/// The complete lines of a text that begin like this.
inline QByteArrayList linesOf(const QByteArray &text, const QByteArray &beginning) {
    QByteArrayList found;
    for (const QByteArray &line : text.left(text.lastIndexOf('\n')).split('\n')) {
        if (line.startsWith(beginning))
            found << line.trimmed();
    }
    return found;
}

/// A client of the simulated server that talks in whole lines and keeps everything it was sent.
class LoopbackClient {
public:
    explicit LoopbackClient(quint16 port) {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] {
            chunks << socket.readAll();
            received += chunks.last();
        });
        socket.connectToHost(QHostAddress::LocalHost, port);
    }

    void send(const QByteArray &line) { socket.write(line + "\r\n"); }
    /// Asks for records with these groups of fields.
    void stream(const QByteArrayList &groups) {
        for (const QByteArray &group : groups + QByteArrayList{"DATA"})
            send("<SET ID=\"ENABLE_SEND_" + group + "\" STATE=\"1\" />");
    }

    [[nodiscard]] QByteArrayList lines(const QByteArray &beginning) const { return linesOf(received, beginning); }

    /// The line with this number of those that begin like this, waited for; empty when it does not come.
    QByteArray waitFor(const QByteArray &beginning, int count = 1) {
        const bool came = QTest::qWaitFor([&] { return lines(beginning).size() >= count; }, 10000);
        return came ? lines(beginning).at(count - 1) : QByteArray();
    }

    QTcpSocket socket;
    QByteArrayList chunks;
    QByteArray received;
};

/// What servers of real trackers sent, the lines that begin like this.
inline QByteArrayList capturedLines(const QByteArray &beginning) {
    QFile file(OCELA_TEST_DATA "/gazepoint_lines.txt");
    return file.open(QIODevice::ReadOnly) ? linesOf(file.readAll(), beginning) : QByteArrayList();
}

/// The value of an attribute of a message; empty when it is missing.
inline QByteArray attributeOf(const QByteArray &line, const QByteArray &name) {
    return QRegularExpression(' ' + name + "=\"([^\"]*)\"").match(line).captured(1).toLatin1();
}

/// A line with the values of five decimals and the integers taken out: what is left is its form.
inline QByteArray formOf(const QByteArray &line) {
    static const QRegularExpression integer("\"-?\\d+\""), real("\"-?\\d+\\.\\d{5}\"");
    return QString::fromLatin1(line).replace(real, "real").replace(integer, "integer").toLatin1();
}
