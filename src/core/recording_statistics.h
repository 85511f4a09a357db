#pragma once

#include "gaze/crossed_eye.h"

#include <QtGlobal>
#include <chrono>
#include <optional>
#include <string_view>

class NumericRows;

/// The data quality of a recording. docs/records.md defines the figures. One thread.
///
/// Times are those of arrival, because some trackers have no timestamps. A figure is missing if there are not enough
/// samples for it.
class RecordingStatistics {
public:
    /// The cells of a row of a record file that the figures need.
    struct Row {
        bool valid = false;
        ScreenPoint combined;
        ScreenPoint right;
    };

    /// The data about a sample that the record file does not contain.
    struct Origin {
        std::chrono::microseconds arrival{0};  ///< since any moment that is the same for all samples
        bool l_valid = false;
        bool r_valid = false;
    };

    /// Takes the next row, and the origin of its sample if that is known.
    void add(const Row &row, const std::optional<Origin> &origin);

    /// Returns the row at `index` of a recording.
    [[nodiscard]] static Row rowOf(const NumericRows &rows, std::size_t index);
    /// Reads a line of a record file.
    [[nodiscard]] static Row parseRow(std::string_view line);

    [[nodiscard]] quint64 sampleCount() const { return count_; }

    /// Returns the time from the first to the last sample.
    [[nodiscard]] std::optional<double> durationMs() const;
    /// Returns the number of intervals between samples divided by the duration.
    [[nodiscard]] std::optional<double> rateHz() const;
    /// Returns the longest interval between two samples.
    [[nodiscard]] std::optional<double> longestGapMs() const;

    /// Return the share of samples, from 0 to 1, whose combined gaze is valid, or in which the eye was detected.
    [[nodiscard]] std::optional<double> validShare() const { return share(validCount_, count_); }
    [[nodiscard]] std::optional<double> leftValidShare() const { return share(leftValidCount_, originCount_); }
    [[nodiscard]] std::optional<double> rightValidShare() const { return share(rightValidCount_, originCount_); }

    /// Returns whether the tracker delivers the right eye with its axes exchanged.
    [[nodiscard]] bool isRightEyeCrossed() const { return rightEye_.crossed(); }

private:
    [[nodiscard]] static std::optional<double> share(quint64 part, quint64 whole);
    void addOrigin(const Origin &origin);

    quint64 count_ = 0;
    quint64 validCount_ = 0;
    quint64 originCount_ = 0;
    quint64 leftValidCount_ = 0;
    quint64 rightValidCount_ = 0;
    std::chrono::microseconds firstArrival_{0};
    std::chrono::microseconds lastArrival_{0};
    std::chrono::microseconds longestGap_{0};
    CrossedEye rightEye_;
};
