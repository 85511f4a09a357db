#include "gazepoint/server.h"

#include "gazepoint/client.h"

#include <QTcpSocket>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace sim::gazepoint {

namespace {

/// Returns the time of the machine's monotonic clock, so that other programs can compare TIME_TICK with it.
std::int64_t ticksNow() {
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count() *
           (RecordBuilder::ticksPerSecond / 1'000'000) / 1000;
}

DeviceOptions deviceOptions(const ServerOptions &options) {
    return {options.screen, options.olderServer, static_cast<int>(std::lround(options.rateHz)), ticksNow()};
}

}  // namespace

Server::Server(const ServerOptions &options, Subject &subject, QObject *parent)
    : QObject(parent), options_(options), device_(deviceOptions(options), subject), pacer_(options.rateHz) {
    clock_.start();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Server::takeSamples);
    connect(&tcp_, &QTcpServer::newConnection, this, &Server::accept);
}

Server::~Server() = default;

bool Server::listen() {
    if (!tcp_.listen(QHostAddress::LocalHost, options_.port))
        return false;
    takeSamples();
    return true;
}

void Server::accept() {
    while (QTcpSocket *socket = tcp_.nextPendingConnection()) {
        if (clients_.size() >= maxClientCount) {
            socket->deleteLater();
            continue;
        }
        const LinePlayer player(options_.lines, options_.once);
        auto *client = new Client(socket, device_, options_.faults, player, this);
        clients_.push_back(client);
        // Queued, because writing to a client can close its connection while takeSamples() iterates over the clients.
        connect(
            client, &Client::finished, this, [this, client] { remove(client); }, Qt::QueuedConnection);
    }
}

void Server::remove(Client *client) {
    clients_.erase(std::remove(clients_.begin(), clients_.end(), client), clients_.end());
    client->deleteLater();
}

/// Several samples may be due at high rates, because the timer has a resolution of one millisecond.
void Server::takeSamples() {
    const double until_s = now_s();
    while (const auto moment = pacer_.next(until_s)) {
        const Device::Step step = device_.advance(*moment);
        for (Client *client : clients_)
            client->deliver(step, *moment);
    }
    timer_.start(static_cast<int>(std::ceil(pacer_.wait_s(now_s()) * 1000)));
}

double Server::now_s() const {
    return static_cast<double>(clock_.nsecsElapsed()) * 1e-9;
}

}  // namespace sim::gazepoint
