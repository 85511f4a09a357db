#pragma once

#include <QByteArrayList>
#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>
#include <algorithm>

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
    void enable(const QByteArray &group) { send("<SET ID=\"ENABLE_SEND_" + group + "\" STATE=\"1\" />"); }
    /// Asks for records with these groups of fields.
    void stream(const QByteArrayList &groups) {
        for (const QByteArray &group : groups)
            enable(group);
        enable("DATA");
    }

    /// All complete lines so far that begin like this.
    [[nodiscard]] QByteArrayList lines(const QByteArray &beginning) const {
        QByteArrayList found;
        for (const QByteArray &line : received.left(received.lastIndexOf("\r\n") + 1).split('\n')) {
            if (line.startsWith(beginning))
                found << line.trimmed();
        }
        return found;
    }

    /// The first line that begins like this, waited for; empty when it does not come.
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
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the captured lines are missing");
    QByteArrayList lines = file.readAll().split('\n');
    lines.erase(std::remove_if(lines.begin(), lines.end(), [&](auto &line) { return !line.startsWith(beginning); }),
                lines.end());
    return lines;
}

/// The value of an attribute of a message; empty when it is missing.
inline QByteArray attributeOf(const QByteArray &line, const QByteArray &name) {
    const int start = line.indexOf(' ' + name + "=\"");
    if (start < 0)
        return {};
    const int value = start + name.size() + 3;
    return line.mid(value, line.indexOf('"', value) - value);
}

/// The names of the attributes in their order.
inline QByteArrayList attributeNames(const QByteArray &line) {
    QByteArrayList names;
    for (int quote = line.indexOf("=\""); quote >= 0; quote = line.indexOf("=\"", line.indexOf('"', quote + 2)))
        names << line.mid(line.lastIndexOf(' ', quote) + 1, quote - line.lastIndexOf(' ', quote) - 1);
    return names;
}
