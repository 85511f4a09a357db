// Measures whether GazePoint records arrive in time while the window's thread is busy: 200 ms of every second.
//
// The baseline is a client of the same server with a blocking socket and a thread of its own. The arrival of each
// record is compared with its arrival there. A record without a sample was in the same chunk as the next one.

#include "support/rounds.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <sys/socket.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
/// Identifies a record by its noisy values.
using Key = std::tuple<float, float, float, float>;
using Arrivals = std::map<Key, Clock::time_point>;

constexpr QSize screen(1920, 1080);
constexpr int busyMs = 200;
constexpr int idleMs = 800;

Key keyOf(const EyeTrackingSample &sample) {
    return {sample.l_x, sample.l_y, sample.r_x, sample.r_y};
}

/// A client that reads with a blocking socket until the server closes the connection.
class BareClient {
public:
    explicit BareClient(quint16 port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            qFatal("The bare client cannot connect");
        for (const char *name :
             {"EYE_LEFT", "EYE_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "POG_FIX", "POG_LEFT", "POG_RIGHT", "DATA"})
            sendLine(QByteArray("<SET ID=\"ENABLE_SEND_").append(name).append("\" STATE=\"1\" />\r\n"));
        thread_ = std::thread([this] { read(); });
    }
    ~BareClient() { ::close(socket_); }
    BareClient(const BareClient &) = delete;
    BareClient &operator=(const BareClient &) = delete;

    /// Waits until the server has closed the connection.
    void join() { thread_.join(); }

    // Valid after join().
    Arrivals arrivals;
    int mergedCount = 0;  ///< records in the same chunk as an earlier one

private:
    void sendLine(const QByteArray &line) {
        if (::send(socket_, line.constData(), static_cast<std::size_t>(line.size()), 0) != line.size())
            qFatal("The bare client cannot send");
    }

    void read() {
        QByteArray pending;
        char chunk[65536];
        for (ssize_t size = 0; (size = ::recv(socket_, chunk, sizeof chunk, 0)) > 0;) {
            const auto now = Clock::now();
            pending.append(chunk, static_cast<int>(size));
            takeLines(pending, now);
        }
    }

    void takeLines(QByteArray &pending, Clock::time_point now) {
        int recordCount = 0;
        for (int end = 0; (end = pending.indexOf("\r\n")) >= 0; pending.remove(0, end + 2)) {
            const std::string_view line(pending.constData(), static_cast<std::size_t>(end));
            if (gazepoint::kindOf(line) != gazepoint::Message::Record)
                continue;
            arrivals.emplace(keyOf(gazepoint::parseRecord(line, screen, 0)), now);
            ++recordCount;
        }
        mergedCount += std::max(0, recordCount - 1);
    }

    const int socket_;
    std::thread thread_;
};

/// Starts a server on a free port. Returns the port.
quint16 start(QProcess &server, int rate) {
    server.start(OCELA_BENCH_SIMULATOR, {"--port", "0", "--rate", QString::number(rate)});
    if (!server.waitForStarted() || !server.waitForReadyRead())
        qFatal("The simulator does not start");
    return server.readLine().split(':').last().trimmed().toUShort();
}

/// Processes events, except for 200 ms of every second.
void keepThreadBusy(int seconds) {
    QTimer wakeUp;  // ends each wait for events
    wakeUp.start(10);
    for (int i = 0; i < seconds; ++i) {
        QThread::msleep(busyMs);
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < idleMs;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, idleMs);
    }
}

/// Returns the samples of a tracker during some seconds, and the records that the bare client received.
std::pair<Arrivals, Arrivals> receive(QProcess &server, quint16 port, int seconds, int &mergedCount) {
    Arrivals samples;  // filled on the tracker's thread
    std::atomic<bool> measuring{false};
    BareClient bare(port);
    {
        GazePoint tracker(QString(), nullptr, port);
        QObject::connect(
            &tracker, &GazePoint::newSample, &tracker,
            [&](const EyeTrackingSample &sample) {
                if (measuring)
                    samples.emplace(keyOf(sample), Clock::now());
            },
            Qt::DirectConnection);
        tracker.start();
        keepThreadBusy(1);
        measuring = true;
        keepThreadBusy(seconds);
    }
    server.kill();
    server.waitForFinished();
    bare.join();
    mergedCount = bare.mergedCount;
    return {samples, bare.arrivals};
}

/// Returns the differences of the arrivals in ms, sorted.
std::vector<double> differences(const Arrivals &samples, const Arrivals &records) {
    std::vector<double> result;
    for (const auto &[key, arrival] : samples) {
        const auto record = records.find(key);
        if (record != records.end())
            result.push_back(std::abs(std::chrono::duration<double, std::milli>(arrival - record->second).count()));
    }
    std::sort(result.begin(), result.end());
    return result;
}

/// Returns how many records arrived from the first to the last sample.
std::size_t countDuring(const Arrivals &samples, const Arrivals &records) {
    const auto earlier = [](const auto &one, const auto &other) { return one.second < other.second; };
    const auto [first, last] = std::minmax_element(samples.begin(), samples.end(), earlier);
    const auto from = records.at(first->first);
    const auto to = records.at(last->first);
    return static_cast<std::size_t>(std::count_if(records.begin(), records.end(), [&](const auto &record) {
        return record.second >= from && record.second <= to;
    }));
}

void measure(int rate, int seconds) {
    QProcess server;
    const quint16 port = start(server, rate);
    int mergedCount = 0;
    const auto [samples, records] = receive(server, port, seconds, mergedCount);
    if (samples.empty())
        qFatal("No samples");
    const std::vector<double> difference_ms = differences(samples, records);
    const std::size_t recordCount = countDuring(samples, records);
    std::printf("%5d Hz: %zu records, %zu without a sample; in the same chunk for the bare client: %d\n", rate,
                recordCount, recordCount - difference_ms.size(), mergedCount);
    std::printf("          difference of the arrivals: median %.3f ms, 99 %% below %.3f ms, maximum %.3f ms\n",
                difference_ms[difference_ms.size() / 2], difference_ms[difference_ms.size() * 99 / 100],
                difference_ms.back());
}

}  // namespace

int main(int argc, char *argv[]) {
    const int rounds = bench::roundsFrom(argc, argv, 3);
    const QCoreApplication application(argc, argv);
    for (int round = 0; round < rounds; ++round) {
        for (const int rate : {150, 1000})
            measure(rate, 20);
    }
}
