// What answering a request costs, from the parsed request to the bytes on their way, without a network.

#include "api/ocela_http_exchange.h"
#include "api/ocela_http_request_handler.h"
#include "api/sample_json.h"
#include "core/eyetracker_interface.h"
#include "http/http_output.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "support/typical_samples.h"
#include "toolkit/text_helper.h"

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

class FedTracker : public BareTracker {
public:
    FedTracker() {
        for (const EyeTrackingSample &sample : bench::typicalSamples(windowSize))
            addSample(sample);
    }

    /// The window moves on by one sample.
    void deliver() {
        EyeTrackingSample sample = getLastSample();
        sample.timestamp += sampleWindowMs / static_cast<qint64>(windowSize);
        addSample(sample);
    }
};

/// Looks at what is sent and drops it.
class Nowhere : public HttpOutput {
public:
    bool write(const QVector<QByteArray> &pieces) override {
        bench::keep(pieces);
        return true;
    }
};

/// The handler as a connection calls it, with one request again and again.
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
    Nowhere output_;
};

/// The same answer with documents all the way.
void answerWithDocuments(FedTracker &tracker) {
    QJsonArray samples;
    for (const EyeTrackingSample &sample : tracker.getSamples())
        samples.append(sample.toJson());
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss-zzz");
    const QJsonObject answer{{"result", true}, {"sampleCount", samples.size()}, {"samples", samples}, {"time", time}};
    bench::keep(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

void answerLastWithDocuments(FedTracker &tracker) {
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss-zzz");
    const QJsonObject answer{{"result", true}, {"sample", tracker.getLastSample().toJson()}, {"time", time}};
    bench::keep(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

template <typename Work>
bench::Contender repeated(const char *name, std::size_t times, Work work) {
    const auto run = [times, work] {
        for (std::size_t i = 0; i < times; ++i)
            work();
    };
    return {name, times, run, {}};
}

void measureLastSample(FedTracker &tracker, int rounds) {
    Client client("/lastsample");
    Client hello("/hello");
    bench::print("/lastsample",
                 bench::interleave({repeated("baseline: documents, without the response", answersPerRound,
                                             [&] { answerLastWithDocuments(tracker); }),
                                    repeated("the same sample again", answersPerRound, [&] { client.ask(); }),
                                    repeated("a new sample each time, delivery included", answersPerRound,
                                             [&] {
                                                 tracker.deliver();
                                                 client.ask();
                                             }),
                                    repeated("/hello", answersPerRound, [&] { hello.ask(); })},
                                   rounds));
}

void measureLastSamples(FedTracker &tracker, int rounds) {
    Client client("/lastsamples");
    constexpr std::size_t few = 20;
    bench::print("/lastsamples, 500 of them",
                 bench::interleave(
                     {repeated("baseline: documents, without the response", few, [&] { answerWithDocuments(tracker); }),
                      repeated("the same samples again", answersPerRound, [&] { client.ask(); }),
                      repeated("one sample further each time, delivery included", few,
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
    // Types of files that have just changed are not remembered.
    file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    file.close();
    Client client("/file1m.bin");
    bench::print("A file of 1 MB", bench::interleave({repeated("baseline: QFile::readAll", 20,
                                                               [&] {
                                                                   file.open(QIODevice::ReadOnly);
                                                                   bench::keep(file.readAll());
                                                                   file.close();
                                                               }),
                                                      repeated("/file1m.bin", 20, [&] { client.ask(); })},
                                                     rounds));
}

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const int rounds = bench::roundsFrom(argc, argv, 51);
    FedTracker tracker;
    OcelaHTTPExchange exchange(nullptr);
    exchange.setTracker(&tracker);
    measureLastSample(tracker, rounds);
    measureLastSamples(tracker, rounds);
    measureFile(rounds);
}
