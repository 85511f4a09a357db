#pragma once

#include "core/numbered_sample.h"

#include <QVector>
#include <deque>
#include <vector>

/// The JSON texts of the samples in one tracker's window. Each sample is converted once, while it is in the window.
///
/// The texts are stored in blocks of many samples. An update therefore copies at most two blocks, and the samples may
/// take more bytes than the maximum size of a QByteArray. The owner guards the object with a lock. Other threads read
/// the returned blocks without the lock, so a block is never modified, only replaced.
class SampleJsonBlocks {
public:
    static constexpr int samplesPerBlock = 128;

    struct List {
        int sampleCount = 0;
        QVector<QByteArray> pieces;  ///< concatenated: the JSON objects, separated by commas
    };

    /// Returns the number of the newest sample, or 0 before the first sample.
    [[nodiscard]] quint64 lastNumber() const { return lastNumber_; }

    /// Adds and drops the same samples as the window. `news` is the result of samplesSince(lastNumber()).
    [[nodiscard]] List update(const SamplesSince &news);

private:
    struct Block {
        QByteArray text;
        std::vector<int> ends;  ///< the end of each sample in `text`
    };

    void drop(int count);
    void append(const std::vector<NumberedSample> &samples);
    static void append(Block &block, const EyeTrackingSample &sample);
    void updateList(int sampleCount);

    quint64 lastNumber_ = 0;
    std::deque<Block> blocks_;
    List list_;  ///< the last result of update()
};
