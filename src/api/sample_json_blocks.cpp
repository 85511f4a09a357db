#include "api/sample_json_blocks.h"

#include "api/sample_json.h"

#include <algorithm>

SampleJsonBlocks::List SampleJsonBlocks::update(const QList<EyeTrackingSample> &samples) {
    // The tracker hands out the same list until the next sample comes. It cannot be another one at the old place, as
    // the old one is kept here.
    if (samples.constBegin() == samples_.constBegin() && samples.size() == samples_.size())
        return list_;
    append(samples, dropOutdated(samples));
    samples_ = samples;
    collectPieces();
    return list_;
}

/// Keeps the blocks of the samples that are still there; returns how many these are.
int SampleJsonBlocks::dropOutdated(const QList<EyeTrackingSample> &samples) {
    const auto isFirst = [&](const EyeTrackingSample &old) { return haveSameJson(old, samples.first()); };
    const auto firstKept =
        samples.isEmpty() ? samples_.constEnd() : std::find_if(samples_.constBegin(), samples_.constEnd(), isFirst);
    const bool kept = samples_.constEnd() - firstKept <= samples.size() &&
                      std::equal(firstKept, samples_.constEnd(), samples.constBegin(), haveSameJson);
    const auto dropped = kept ? static_cast<int>(firstKept - samples_.constBegin()) : samples_.size();
    drop(dropped);
    return samples_.size() - dropped;
}

void SampleJsonBlocks::drop(int count) {
    while (!blocks_.empty() && count >= static_cast<int>(blocks_.front().ends.size())) {
        count -= static_cast<int>(blocks_.front().ends.size());
        blocks_.pop_front();
    }
    if (count == 0)
        return;
    Block &first = blocks_.front();
    const int cut = first.ends[static_cast<std::size_t>(count) - 1] + 1;  // with the comma
    first.text = first.text.mid(cut);
    first.ends.erase(first.ends.begin(), first.ends.begin() + count);
    for (int &end : first.ends)
        end -= cut;
}

void SampleJsonBlocks::append(const QList<EyeTrackingSample> &samples, int from) {
    if (from < samples.size() && !blocks_.empty()) {
        // A copy to append to, as the block may have been handed out.
        const QByteArray handedOut = blocks_.back().text;
        blocks_.back().text = QByteArray(handedOut.constData(), handedOut.size());
    }
    for (int i = from; i < samples.size(); ++i) {
        if (blocks_.empty() || blocks_.back().ends.size() == samplesPerBlock)
            blocks_.emplace_back();
        append(blocks_.back(), samples[i]);
    }
}

void SampleJsonBlocks::append(Block &block, const EyeTrackingSample &sample) {
    char text[sampleJsonRoom];
    const char *end = writeSampleJson(text, sample);
    if (!block.ends.empty())
        block.text.append(',');
    block.text.append(text, static_cast<int>(end - text));
    block.ends.push_back(block.text.size());
}

void SampleJsonBlocks::collectPieces() {
    list_ = {samples_.size(), {}};
    for (const Block &block : blocks_) {
        if (!list_.pieces.isEmpty())
            list_.pieces.append(QByteArrayLiteral(","));
        list_.pieces.append(block.text);
    }
}
