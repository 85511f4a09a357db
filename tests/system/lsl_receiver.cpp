#include "system/lsl_receiver.h"

#include "support/file_content.h"
#include "system/record_file.h"
#include "system/timeout.h"

#include <QTest>
#include <algorithm>
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

qint64 LslReceiver::reportedLoss(const QString &log) {
    static const QRegularExpression report("ocela\\.lsl.* (\\d+) samples or markers were not sent");
    qint64 count = 0;
    for (auto found = report.globalMatch(log); found.hasNext();)
        count += found.next().captured(1).toLongLong();
    return count;
}

QRegularExpression LslReceiver::otherLine() {
    return QRegularExpression("^(?!.*(amples or markers were not sent|The LSL library does not respond))");
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
        const qint64 expected = samples_.empty() ? number : samples_.rbegin()->first + 1;
        if (number < expected)
            return false;
        missedCount_ += number - expected;
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
    const auto numberOf = [](const QStringList &row) { return row[0].toLongLong(); };
    const auto isReceived = [&](const QStringList &row) { return samples_.count(numberOf(row)) > 0; };
    if (samples_.empty() || arrivals.rows.isEmpty() || samples_.rbegin()->first < numberOf(arrivals.rows.last()))
        return std::nullopt;
    const auto firstRow = std::find_if(arrivals.rows.begin(), arrivals.rows.end(), isReceived);
    if (firstRow == arrivals.rows.end())
        return std::nullopt;
    const double arrivedMs = (*firstRow)[1].toDouble();
    const double receivedMs = samples_.at(numberOf(*firstRow)).timeMs;

    Comparison result;
    for (const QStringList &row : arrivals.rows) {
        if (!isReceived(row))
            continue;
        const double passedMs = samples_.at(numberOf(row)).timeMs - receivedMs;
        const double errorMs = std::abs(passedMs - (row[1].toDouble() - arrivedMs));
        result.maxSampleErrorMs = std::max(result.maxSampleErrorMs, errorMs);
        ++result.sampleCount;
    }
    for (const QStringList &event : events.rows) {
        const auto isSame = [&](const Marker &marker) { return marker.text == event[2]; };
        const auto received = std::find_if(markers_.begin(), markers_.end(), isSame);
        if (received == markers_.end())
            return std::nullopt;
        const double passedMs = received->timeMs - receivedMs;
        result.maxMarkerErrorMs = std::max(result.maxMarkerErrorMs, std::abs(passedMs - 1000 * event[0].toDouble()));
        ++result.markerCount;
    }
    return result;
}
