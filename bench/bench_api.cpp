// Measures the time to answer a request, from the parsed request to the bytes for the connection, without a network.

#include "api/ocela_http_exchange.h"
#include "api/ocela_http_request_handler.h"
#include "api/sample_json.h"
#include "core/eyetracker_interface.h"
#include "http/byte_stream.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "support/typical_samples.h"
#include "toolkit/base/text_helper.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSettings>
#include <QTemporaryDir>
#include <string>

namespace {

constexpr std::size_t windowSize = 500;
constexpr std::size_t answersPerRound = 2000;
constexpr std::size_t slowAnswersPerRound = 20;

class FullWindowTracker : public BareTracker {
public:
    FullWindowTracker() {
        for (const EyeTrackingSample &sample : bench::typicalSamples(windowSize))
            addSample(sample);
    }

    /// Adds one sample, so that the window drops its oldest one.
    void deliver() {
        EyeTrackingSample sample = getLastSample();
        sample.timestamp += sampleWindowMs / static_cast<qint64>(windowSize);
        addSample(sample);
    }
};

/// Discards all output.
class DiscardingOutput : public HttpOutput {
public:
    bool write(const QVector<QByteArray> &pieces) override {
        bench::keep(pieces);
        return true;
    }
    [[nodiscard]] bool isWritable() const override { return true; }
    void limitSendBuffer(int /*bytes*/) override {}
};

/// Calls the request handler as a connection does, always with the same request.
class Client {
public:
    explicit Client(const char *path) {
        const std::string text = "GET " + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
        HttpInput input(text);
        while (!input.isEmpty())
            request_.readFromSocket(input);
    }

    void ask() {
        HttpResponse response(&output_);
        handler_.service(request_, response);
    }

private:
    QSettings group_{QString(), QSettings::IniFormat};
    HttpSettings settings_{&group_};
    HttpRequest request_{settings_};
    OcelaHTTPRequestHandler handler_;
    DiscardingOutput output_;
};

/// Creates the response body of `/lastsamples` with QJsonDocument.
void createLastSamples(FullWindowTracker &tracker) {
    QJsonArray samples;
    for (const EyeTrackingSample &sample : tracker.getSamples())
        samples.append(sample.toJson());
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss-zzz");
    const QJsonObject answer{{"result", true}, {"sampleCount", samples.size()}, {"samples", samples}, {"time", time}};
    bench::keep(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

void createLastSample(FullWindowTracker &tracker) {
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss-zzz");
    const QJsonObject answer{{"result", true}, {"sample", tracker.getLastSample().toJson()}, {"time", time}};
    bench::keep(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

template <typename Work>
bench::Candidate repeated(const char *name, std::size_t times, Work work) {
    const auto run = [times, work] {
        for (std::size_t i = 0; i < times; ++i)
            work();
    };
    return {name, times, run, {}};
}

void measureLastSample(FullWindowTracker &tracker, int rounds) {
    Client client("/lastsample");
    Client hello("/hello");
    bench::print("/lastsample",
                 bench::interleave({repeated("baseline: QJsonDocument, without the HTTP response", answersPerRound,
                                             [&] { createLastSample(tracker); }),
                                    repeated("unchanged sample", answersPerRound, [&] { client.ask(); }),
                                    repeated("new sample before each request, including its delivery", answersPerRound,
                                             [&] {
                                                 tracker.deliver();
                                                 client.ask();
                                             }),
                                    repeated("/hello", answersPerRound, [&] { hello.ask(); })},
                                   rounds));
}

void measureLastSamples(FullWindowTracker &tracker, int rounds) {
    Client client("/lastsamples");
    bench::print(
        "/lastsamples with 500 samples",
        bench::interleave({repeated("baseline: QJsonDocument, without the HTTP response", slowAnswersPerRound,
                                    [&] { createLastSamples(tracker); }),
                           repeated("unchanged window", answersPerRound, [&] { client.ask(); }),
                           repeated("new sample before each request, including its delivery", slowAnswersPerRound,
                                    [&] {
                                        tracker.deliver();
                                        client.ask();
                                    })},
                          rounds));
}

void measureFile(int rounds) {
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    QDir().mkdir("http");
    QFile file("http/file1m.bin");
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(1'000'000, 'x')) < 0 || !file.flush())
        return;
    // The service does not cache the content type of a file that has changed recently.
    file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    file.close();
    Client client("/file1m.bin");
    bench::print("A file of 1 MB",
                 bench::interleave({repeated("baseline: QFile::readAll", slowAnswersPerRound,
                                             [&] {
                                                 file.open(QIODevice::ReadOnly);
                                                 bench::keep(file.readAll());
                                                 file.close();
                                             }),
                                    repeated("/file1m.bin", slowAnswersPerRound, [&] { client.ask(); })},
                                   rounds));
}

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const int rounds = bench::roundsFrom(argc, argv, 51);
    FullWindowTracker tracker;
    OcelaHTTPExchange exchange(nullptr);
    exchange.setTracker(&tracker);
    measureLastSample(tracker, rounds);
    measureLastSamples(tracker, rounds);
    measureFile(rounds);
}
