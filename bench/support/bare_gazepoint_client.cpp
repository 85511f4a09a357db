#include "support/bare_gazepoint_client.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

using bench::BareGazepointClient;

namespace {

QByteArray enable(const char *name) {
    return QByteArray("<SET ID=\"ENABLE_SEND_").append(name).append("\" STATE=\"1\" />\r\n");
}

}  // namespace

BareGazepointClient::BareGazepointClient(quint16 port, bool withTicks, TakeLine take)
    : socket_(::socket(AF_INET, SOCK_STREAM, 0)), take_(std::move(take)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("The bare client cannot connect");
    if (withTicks)
        sendLine(enable("TIME_TICK"));
    for (const char *name :
         {"EYE_LEFT", "EYE_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "POG_FIX", "POG_LEFT", "POG_RIGHT", "DATA"})
        sendLine(enable(name));
    thread_ = std::thread([this] { read(); });
}

BareGazepointClient::~BareGazepointClient() {
    ::close(socket_);
}

void BareGazepointClient::sendLine(const QByteArray &line) const {
    if (::send(socket_, line.constData(), static_cast<std::size_t>(line.size()), 0) != line.size())
        qFatal("The bare client cannot send");
}

void BareGazepointClient::read() const {
    QByteArray pending;
    char chunk[65536];
    for (ssize_t size = 0; (size = ::recv(socket_, chunk, sizeof chunk, 0)) > 0;) {
        const auto arrival = std::chrono::steady_clock::now();
        pending.append(chunk, static_cast<int>(size));
        for (int end = 0; (end = pending.indexOf("\r\n")) >= 0; pending.remove(0, end + 2))
            take_({pending.constData(), static_cast<std::size_t>(end)}, arrival);
    }
}
