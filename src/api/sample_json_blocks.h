#pragma once

#include "core/eye_tracking_sample.h"

#include <QVector>
#include <deque>
#include <vector>

/// The JSON texts of a window of samples that moves on: a sample that is still there keeps its text.
///
/// The texts stand in blocks of many samples, so that neither the moving on costs more than a block or two, nor a
/// window of very many samples outgrows a byte array. Its owner guards it. Blocks that were handed out are
/// read by other threads and therefore never changed, only replaced.
class SampleJsonBlocks {
public:
    static constexpr int samplesPerBlock = 128;

    struct List {
        int sampleCount = 0;
        QVector<QByteArray> pieces;  ///< the samples' texts with commas in between; nothing when there are no samples
    };

    /// Moves on to these samples and returns their text.
    [[nodiscard]] List update(const QList<EyeTrackingSample> &samples);

private:
    struct Block {
        QByteArray text;
        std::vector<int> ends;  ///< of each sample's text
    };

    [[nodiscard]] int dropOutdated(const QList<EyeTrackingSample> &samples);
    void drop(int count);
    void append(const QList<EyeTrackingSample> &samples, int from);
    static void append(Block &block, const EyeTrackingSample &sample);
    void collectPieces();

    QList<EyeTrackingSample> samples_;
    std::deque<Block> blocks_;  ///< the texts of `samples_`
    List list_;
};
