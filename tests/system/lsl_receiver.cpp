#include "system/lsl_receiver.h"

#include "support/file_content.h"
#include "system/record_file.h"
#include "system/timeout.h"

#include <QTest>
#include <cmath>

namespace {

constexpr double openTimeout = 30;  // s
constexpr std::int32_t bufferSeconds = 360;
constexpr int numberChannel = gaze_stream::channelCount - 1;

const std::vector<const char *> functionNames = {
    "lsl_resolve_byprop",  "lsl_create_inlet",  "lsl_open_stream",        "lsl_pull_sample_d",
    "lsl_pull_sample_str", "lsl_destroy_inlet", "lsl_destroy_streaminfo", "lsl_destroy_string",
};

enum Function { resolve, createInlet, openInlet, pullNumbers, pullText, destroyInlet, destroyInfo, destroyString };

using Resolve = std::int32_t (*)(void **, std::uint32_t, const char *, const char *, std::int32_t, double);
using CreateInlet = void *(*)(void *, std::int32_t, std::int32_t, std::int32_t);
using OpenInlet = void (*)(void *, double, std::int32_t *);
using PullNumbers = double (*)(void *, double *, std::int32_t, double, std::int32_t *);
using PullText = double (*)(void *, char **, std::int32_t, double, std::int32_t *);
using Destroy = void (*)(void *);

QString beside(const QString &record, const char *suffix) {
    return record.chopped(int(qstrlen(".csv"))) + suffix;
}

}  // namespace

LslReceiver::LslReceiver(const QString &library) : library_(library, functionNames) {}

LslReceiver::~LslReceiver() {
    for (void *inlet : {gaze_, marks_}) {
        if (inlet)
            library_.function<Destroy>(destroyInlet)(inlet);
    }
}

bool LslReceiver::confineTo(const QTemporaryDir &folder) {
    const QString configuration = folder.filePath("lsl_api.cfg");
    return writeFile(configuration,
                     "[multicast]\nResolveScope = machine\n[lab]\nKnownPeers = {127.0.0.1}\n[log]\nlevel = -2\n") &&
           qputenv("LSLAPICFG", configuration.toUtf8());
}

bool LslReceiver::open() {
    gaze_ = openStream("Ocela Gaze");
    marks_ = openStream("Ocela Markers");
    return gaze_ && marks_;
}

void *LslReceiver::openStream(const char *name) {
    void *info = nullptr;
    if (library_.function<Resolve>(resolve)(&info, 1, "name", name, 1, openTimeout) < 1)
        return nullptr;
    void *inlet = library_.function<CreateInlet>(createInlet)(info, bufferSeconds, 0, 1);
    library_.function<Destroy>(destroyInfo)(info);
    std::int32_t error = 0;
    library_.function<OpenInlet>(openInlet)(inlet, openTimeout, &error);
    if (error == 0)
        return inlet;
    library_.function<Destroy>(destroyInlet)(inlet);
    return nullptr;
}

bool LslReceiver::receive() {
    std::int32_t error = 0;
    Sample sample;
    const auto pullSample = [&] {
        const auto pull = library_.function<PullNumbers>(pullNumbers);
        sample.timeMs = 1000 * pull(gaze_, sample.values.data(), gaze_stream::channelCount, 0, &error);
        return sample.timeMs > 0;
    };
    while (pullSample()) {
        const auto number = static_cast<qint64>(sample.values[numberChannel]);
        if (!samples_.empty() && number != samples_.rbegin()->first + 1)
            return false;
        samples_[number] = sample;
    }
    Marker marker;
    const auto pullMarker = [&] {
        char *text = nullptr;
        marker.timeMs = 1000 * library_.function<PullText>(pullText)(marks_, &text, 1, 0, &error);
        // Without a sample, the text is empty.
        marker.text = QString::fromUtf8(text);
        library_.function<Destroy>(destroyString)(text);
        return marker.timeMs > 0;
    };
    while (pullMarker())
        markers_.push_back(marker);
    return true;
}

std::optional<LslReceiver::Comparison> LslReceiver::waitForAllOf(const QString &record) {
    std::optional<Comparison> result;
    (void)QTest::qWaitFor([&] { return receive() && (result = compare(record)); }, timeoutMs);
    if (result)
        qInfo("%d samples and %d markers in a recording and by LSL: times differ by up to %.3f and %.3f ms",
              result->sampleCount, result->markerCount, result->maxSampleErrorMs, result->maxMarkerErrorMs);
    return result;
}

std::optional<LslReceiver::Comparison> LslReceiver::compare(const QString &record) const {
    const RecordFile arrivals(beside(record, "_samples.csv"));
    const RecordFile events(beside(record, "_events.csv"));
    if (arrivals.rows.isEmpty())
        return std::nullopt;
    const auto first = samples_.find(arrivals.rows.first()[0].toLongLong());
    const double firstArrivalMs = arrivals.rows.first()[1].toDouble();
    if (first == samples_.end())
        return std::nullopt;

    Comparison result;
    for (const QStringList &row : arrivals.rows) {
        const auto received = samples_.find(row[0].toLongLong());
        if (received == samples_.end())
            return std::nullopt;
        const double passedMs = received->second.timeMs - first->second.timeMs;
        const double errorMs = std::abs(passedMs - (row[1].toDouble() - firstArrivalMs));
        result.maxSampleErrorMs = std::max(result.maxSampleErrorMs, errorMs);
        ++result.sampleCount;
    }
    for (const QStringList &event : events.rows) {
        const auto isSame = [&](const Marker &marker) { return marker.text == event[2]; };
        const auto received = std::find_if(markers_.begin(), markers_.end(), isSame);
        if (received == markers_.end())
            return std::nullopt;
        const double passedMs = received->timeMs - first->second.timeMs;
        result.maxMarkerErrorMs = std::max(result.maxMarkerErrorMs, std::abs(passedMs - 1000 * event[0].toDouble()));
        ++result.markerCount;
    }
    return result;
}
