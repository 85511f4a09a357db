#pragma once

#include <QByteArray>
#include <chrono>
#include <functional>
#include <string_view>
#include <thread>

namespace bench {

/// A client of the GazePoint server that reads with a blocking socket on a thread of its own, until the server closes
/// the connection.
class BareGazepointClient {
public:
    using TakeLine = std::function<void(std::string_view line, std::chrono::steady_clock::time_point arrival)>;

    /// `take` is called on the thread for each line. All lines of one chunk have the same arrival. The server sends
    /// TIME_TICK only if `withTicks` is set.
    BareGazepointClient(quint16 port, bool withTicks, TakeLine take);
    ~BareGazepointClient();
    BareGazepointClient(const BareGazepointClient &) = delete;
    BareGazepointClient &operator=(const BareGazepointClient &) = delete;

    /// Waits until the server has closed the connection. Must be called once.
    void join() { thread_.join(); }

private:
    void sendLine(const QByteArray &line) const;
    void read() const;

    const int socket_;
    const TakeLine take_;
    std::thread thread_;
};

}  // namespace bench
