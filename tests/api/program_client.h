#pragma once

#include "api/ocela_http_exchange.h"
#include "support/test_main.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTest>
#include <optional>

/// The response to a request of the API for programs.
struct ProgramReply {
    int status = 0;
    QByteArray head;
    QByteArray body;

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

/// A connection to the API for programs. It processes the events of this thread while it waits.
class ProgramClient {
public:
    ProgramClient() { socket_.connectToHost("127.0.0.1", OcelaHTTPExchange::port); }

    /// Sends a request. `body` is JSON, if it is not empty. `headers` are complete lines.
    void send(const QByteArray &method, const QByteArray &target, const QByteArray &body = {},
              const QByteArray &headers = {}) {
        QByteArray request = method + " /api/v1" + target + " HTTP/1.1\r\nHost: localhost\r\n" + headers;
        if (!body.isEmpty() && !headers.contains("Content-Type"))
            request += "Content-Type: application/json\r\n";
        request += "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
        (void)QTest::qWaitFor([this] { return socket_.state() == QAbstractSocket::ConnectedState; },
                              test_support::longWaitMs);
        socket_.write(request);
    }

    /// Waits for a response with a "Content-Length" header, or with the status 204 or 304, without a body.
    [[nodiscard]] ProgramReply receive() {
        ProgramReply reply;
        const auto isComplete = [&] {
            received_ += socket_.readAll();
            const int end = received_.indexOf("\r\n\r\n") + 4;
            const int length = received_.indexOf("Content-Length: ");
            const bool hasBody = received_.mid(9, 3) != "204" && received_.mid(9, 3) != "304";
            if (end < 4 || (hasBody && length < 0))
                return false;
            const int size =
                hasBody ? received_.mid(length + 16, received_.indexOf('\r', length) - length - 16).toInt() : 0;
            if (received_.size() < end + size)
                return false;
            reply = {received_.mid(9, 3).toInt(), received_.left(end), received_.mid(end, size)};
            received_.remove(0, end + size);
            return true;
        };
        (void)QTest::qWaitFor(isComplete, waitMs);
        return reply;
    }

    ProgramReply ask(const QByteArray &method, const QByteArray &target, const QByteArray &body = {},
                     const QByteArray &headers = {}) {
        send(method, target, body, headers);
        return receive();
    }

    [[nodiscard]] QTcpSocket &socket() { return socket_; }

protected:
    static constexpr int waitMs = 30000;

    QTcpSocket socket_;
    QByteArray received_;
};

/// A stream of server-sent events.
class StreamClient : public ProgramClient {
public:
    struct Event {
        QByteArray name;
        QByteArray id;
        QJsonDocument data;
    };

    explicit StreamClient(const QByteArray &query = {}, const QByteArray &lastEventId = {}) {
        send("GET", "/stream" + query, {},
             lastEventId.isEmpty() ? QByteArray() : "Last-Event-ID: " + lastEventId + "\r\n");
    }

    /// Waits for the status of the response. Call it before the other functions.
    [[nodiscard]] int status() {
        (void)QTest::qWaitFor([this] { return (received_ += socket_.readAll()).contains("\r\n\r\n"); }, waitMs);
        return received_.mid(9, 3).toInt();
    }

    /// Waits for the next event. After a timeout, its name is empty.
    [[nodiscard]] Event next() {
        Event event;
        (void)QTest::qWaitFor([&] { return takeEvent(event); }, waitMs);
        return event;
    }

    /// Waits for the next event of one kind.
    [[nodiscard]] Event next(const QByteArray &name) {
        Event event = next();
        while (!event.name.isEmpty() && event.name != name)
            event = next();
        return event;
    }

    /// Collects the numbers of the samples until there are `count`.
    [[nodiscard]] QVector<int> numbers(int count) {
        QVector<int> numbers;
        while (numbers.size() < count) {
            const Event event = next("samples");
            if (event.name.isEmpty())
                break;
            numbers += numbersOf(event);
        }
        return numbers;
    }

    [[nodiscard]] static QVector<int> numbersOf(const Event &event) {
        QVector<int> numbers;
        for (const QJsonValue sample : event.data.array())
            numbers.append(sample["number"].toInt());
        return numbers;
    }

    [[nodiscard]] bool isOver() {
        return QTest::qWaitFor([this] { return socket_.state() == QAbstractSocket::UnconnectedState; }, waitMs);
    }

private:
    bool takeEvent(Event &event) {
        received_ += socket_.readAll();
        takeChunks();
        for (int end = text_.indexOf("\n\n"); end >= 0; end = text_.indexOf("\n\n")) {
            const QList<QByteArray> lines = text_.left(end).split('\n');
            text_.remove(0, end + 2);
            event = Event();
            for (const QByteArray &line : lines) {
                if (line.startsWith("event: "))
                    event.name = line.mid(7);
                else if (line.startsWith("id: "))
                    event.id = line.mid(4);
                else if (line.startsWith("data: "))
                    event.data = QJsonDocument::fromJson(line.mid(6));
            }
            if (!event.name.isEmpty())
                return true;
        }
        return false;
    }

    void takeChunks() {
        if (!hasHead_) {
            const int end = received_.indexOf("\r\n\r\n");
            if (end < 0)
                return;
            received_.remove(0, end + 4);
            hasHead_ = true;
        }
        for (int end = received_.indexOf("\r\n"); end > 0; end = received_.indexOf("\r\n")) {
            const int size = received_.left(end).toInt(nullptr, 16);
            if (received_.size() < end + 2 + size + 2)
                return;
            text_ += received_.mid(end + 2, size);
            received_.remove(0, end + 2 + size + 2);
        }
    }

    bool hasHead_ = false;
    QByteArray text_;
};
