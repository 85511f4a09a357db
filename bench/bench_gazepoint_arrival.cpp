// Measures whether GazePoint records arrive in time while the window's thread is busy: 200 ms of every second.
//
// The baseline is a client of the same server with a blocking socket and a thread of its own. The arrival of each
// record is compared with its arrival there. A second such client shows the differences that the machine causes. A
// record has no sample if the next record was in the same chunk.

#include "support/bare_gazepoint_client.h"
#include "support/rounds.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
/// Identifies a record by its noisy values.
using Key = std::tuple<float, float, float, float>;

struct Arrival {
    Clock::time_point time;
    bool hasOwnChunk;  ///< no later record was in the same chunk
};
using Arrivals = std::map<Key, Arrival>;

constexpr QSize screen(1920, 1080);
constexpr int busyMs = 200;
constexpr int idleMs = 800;

Key keyOf(const EyeTrackingSample &sample) {
    return {sample.l_x, sample.l_y, sample.r_x, sample.r_y};
}

/// The records that a bare client receives until the server closes the connection.
class BareClient {
public:
    explicit BareClient(quint16 port)
        : client_(port, false, [this](std::string_view line, Clock::time_point arrival) { take(line, arrival); }) {}

    /// Waits until the server has closed the connection. Returns the records.
    Arrivals join() {
        client_.join();
        return std::move(arrivals_);
    }

private:
    void take(std::string_view line, Clock::time_point arrival) {
        if (gazepoint::kindOf(line) != gazepoint::Message::Record)
            return;
        if (previous_ && previous_->time == arrival)
            previous_->hasOwnChunk = false;
        previous_ = &arrivals_.insert({keyOf(gazepoint::parseRecord(line, screen, 0)), {arrival, true}}).first->second;
    }

    Arrivals arrivals_;
    Arrival *previous_ = nullptr;
    bench::BareGazepointClient client_;  ///< calls take() until join() returns
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

struct Received {
    Arrivals samples;  ///< of the tracker
    Arrivals records;  ///< of the bare client
    Arrivals others;   ///< of the second bare client
};

/// The server serves its clients in the order in which they connect, so the last one has a disadvantage.
Received receive(QProcess &server, quint16 port, int seconds, bool trackerFirst) {
    Received received;
    std::atomic<bool> measuring{false};
    auto tracker = std::make_unique<GazePoint>(QString(), nullptr, port);
    // Called on the thread of the connection.
    const auto take = [&](const EyeTrackingSample &sample) {
        if (measuring)
            received.samples.insert({keyOf(sample), {Clock::now(), true}});
    };
    QObject::connect(tracker.get(), &GazePoint::newSample, tracker.get(), take, Qt::DirectConnection);
    const auto connectTracker = [&] {
        tracker->start();
        keepThreadBusy(1);
    };
    if (trackerFirst)
        connectTracker();
    BareClient bare(port);
    BareClient second(port);
    if (!trackerFirst)
        connectTracker();
    keepThreadBusy(1);

    measuring = true;
    keepThreadBusy(seconds);
    tracker.reset();
    server.kill();
    server.waitForFinished();
    received.records = bare.join();
    received.others = second.join();
    return received;
}

/// Returns the difference in ms that 99 % of the arrivals do not exceed.
double difference_ms(const Arrivals &some, const Arrivals &records) {
    std::vector<double> result;
    for (const auto &[key, arrival] : some) {
        const auto record = records.find(key);
        if (record == records.end())
            continue;
        const std::chrono::duration<double, std::milli> difference = arrival.time - record->second.time;
        result.push_back(std::abs(difference.count()));
    }
    std::sort(result.begin(), result.end());
    return result.at(result.size() * 99 / 100);
}

/// The figures of one receiver in one round.
struct Figures {
    double missingCount = 0;   ///< records that did not arrive, or not in a chunk of their own
    double lostCount = 0;      ///< those of them with a chunk of their own at the bare client
    double difference_ms = 0;  ///< 99 % of the arrivals differ less from those at the bare client
};

Figures figuresOf(const Arrivals &arrivals, const Arrivals &records) {
    Figures figures;
    for (const auto &[key, record] : records) {
        const auto arrival = arrivals.find(key);
        if (arrival != arrivals.end() && arrival->second.hasOwnChunk)
            continue;
        figures.missingCount += 1;
        figures.lostCount += record.hasOwnChunk ? 1 : 0;
    }
    figures.difference_ms = difference_ms(arrivals, records);
    return figures;
}

/// Removes the records before the first sample and after the last one.
void limit(Arrivals &records, const Arrivals &samples) {
    auto from = Clock::time_point::max();
    auto to = Clock::time_point::min();
    for (const auto &[key, sample] : samples) {
        const auto record = records.find(key);
        if (record == records.end())
            continue;  // the first part of a split record
        from = std::min(from, record->second.time);
        to = std::max(to, record->second.time);
    }
    for (auto record = records.begin(); record != records.end();)
        record = record->second.time < from || record->second.time > to ? records.erase(record) : std::next(record);
}

struct Round {
    double recordCount = 0;
    Figures bare;    ///< of the bare client
    Figures second;  ///< of the second bare client
    Figures tracker;
};

Round measure(int rate, int seconds, bool trackerFirst) {
    QProcess server;
    const quint16 port = start(server, rate);
    Received received = receive(server, port, seconds, trackerFirst);
    if (received.samples.empty())
        qFatal("No samples");
    limit(received.records, received.samples);
    return {static_cast<double>(received.records.size()), figuresOf(received.records, received.records),
            figuresOf(received.others, received.records), figuresOf(received.samples, received.records)};
}

void print(int rate, const char *name, const Round &round) {
    std::printf("%5d Hz %7s %8.0f", rate, name, round.recordCount);
    for (const Figures &figures : {round.bare, round.second, round.tracker})
        std::printf("  | %7.0f %7.0f %8.3f ms", figures.missingCount, figures.lostCount, figures.difference_ms);
    std::printf("\n");
}

/// Returns the median of each figure.
Round medianOf(const std::vector<Round> &rounds) {
    const auto median = [&](auto figureOf) {
        std::vector<double> values(rounds.size());
        std::transform(rounds.begin(), rounds.end(), values.begin(), figureOf);
        return bench::median(values);
    };
    const auto medians = [&](Figures Round::*receiver) {
        return Figures{median([&](const Round &round) { return (round.*receiver).missingCount; }),
                       median([&](const Round &round) { return (round.*receiver).lostCount; }),
                       median([&](const Round &round) { return (round.*receiver).difference_ms; })};
    };
    return {median([](const Round &round) { return round.recordCount; }), medians(&Round::bare),
            medians(&Round::second), medians(&Round::tracker)};
}

}  // namespace

int main(int argc, char *argv[]) {
    const int rounds = bench::roundsFrom(argc, argv, 6);
    const QCoreApplication application(argc, argv);
    std::printf("%8s %7s %8s", "", "round", "records");
    for (const char *receiver : {"bare client", "second bare client", "GazePoint back-end"})
        std::printf("  | %-27s", receiver);
    std::printf("\n%25s", "");
    for (int i = 0; i < 3; ++i)
        std::printf("  | %7s %7s %11s", "merged", "lost", "99 % below");
    std::printf("\n");

    std::map<int, std::vector<Round>> results;
    for (int round = 1; round <= rounds; ++round) {
        for (const int rate : {150, 1000}) {
            results[rate].push_back(measure(rate, 20, round % 2 == 0));
            print(rate, std::to_string(round).c_str(), results[rate].back());
        }
    }
    for (const auto &[rate, roundsOfRate] : results)
        print(rate, "median", medianOf(roundsOfRate));
}
