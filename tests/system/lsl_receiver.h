#pragma once

#include "streams/gaze_stream.h"
#include "toolkit/platform/vendor_library.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <map>
#include <optional>

/// The receiving part of the LSL library. Both streams are on this computer.
class LslReceiver {
public:
    /// `library` is the path of the library.
    explicit LslReceiver(const QString &library);
    ~LslReceiver();
    Q_DISABLE_COPY(LslReceiver)

    /// Confines the library to this computer, in this process and its later children. The isolated network of a test
    /// has no multicast. Call it before load(), and keep `folder` until the programs have ended.
    [[nodiscard]] static bool confineTo(const QTemporaryDir &folder);

    /// Returns how many samples and markers the program could not send, as it says in its log at the end. It loses some
    /// if the machine stops for two seconds.
    [[nodiscard]] static qint64 reportedLoss(const QString &log);
    /// Matches every line of a log except the warnings of the streams after such a stop.
    [[nodiscard]] static QRegularExpression otherLine();

    [[nodiscard]] bool load() { return library_.load(); }
    /// Waits for both streams.
    [[nodiscard]] bool open();
    /// Takes all samples and markers that have arrived. Returns false after a sample that came twice or out of order.
    [[nodiscard]] bool receive();
    /// Returns how many samples are missing between the first one and the newest one.
    [[nodiscard]] qint64 missedCount() const { return missedCount_; }

    struct Sample {
        gaze_stream::Values values{};
        double timeMs = 0;
    };
    struct Marker {
        QString text;
        double timeMs = 0;
    };
    /// Returns all samples by number. The times are those of this computer's LSL clock.
    [[nodiscard]] const std::map<qint64, Sample> &samples() const { return samples_; }
    [[nodiscard]] const std::vector<Marker> &markers() const { return markers_; }

    /// The largest differences between the times that a recording and the receiver have for the same moments.
    struct Comparison {
        int sampleCount = 0;
        int markerCount = 0;
        double maxSampleErrorMs = 0;
        double maxMarkerErrorMs = 0;
    };
    /// Waits until the last sample and all markers of a recording have been received, compares the samples file and the
    /// events file beside the record file at `record` with all received ones, and prints the result. Returns nothing
    /// after a timeout.
    [[nodiscard]] std::optional<Comparison> waitForAllOf(const QString &record);

private:
    /// Returns nothing if the last sample or a marker of the recording was not received.
    [[nodiscard]] std::optional<Comparison> compare(const QString &record) const;
    [[nodiscard]] void *openStream(const char *name);

    VendorLibrary library_;
    void *gaze_ = nullptr;
    void *marks_ = nullptr;
    std::map<qint64, Sample> samples_;
    qint64 missedCount_ = 0;
    std::vector<Marker> markers_;
};
