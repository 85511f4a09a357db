#include "api/sample_json_blocks.h"

#include "api/sample_json.h"

SampleJsonBlocks::List SampleJsonBlocks::update(const SamplesSince &news) {
    const int outdatedCount = list_.sampleCount + static_cast<int>(news.samples.size()) - news.windowCount;
    if (news.samples.empty() && outdatedCount == 0)
        return list_;
    drop(outdatedCount);
    append(news.samples);
    updateList(news.windowCount);
    return list_;
}

void SampleJsonBlocks::drop(int count) {
    while (!blocks_.empty() && count >= static_cast<int>(blocks_.front().ends.size())) {
        count -= static_cast<int>(blocks_.front().ends.size());
        blocks_.pop_front();
    }
    if (count == 0)
        return;
    Block &first = blocks_.front();
    const int cut = first.ends[static_cast<std::size_t>(count) - 1] + 1;  // including the comma
    first.text = first.text.mid(cut);
    first.ends.erase(first.ends.begin(), first.ends.begin() + count);
    for (int &end : first.ends)
        end -= cut;
}

void SampleJsonBlocks::append(const std::vector<NumberedSample> &samples) {
    if (samples.empty())
        return;
    if (!blocks_.empty()) {
        // A deep copy to append to: other threads may read the old text.
        const QByteArray &text = blocks_.back().text;
        blocks_.back().text = QByteArray(text.constData(), text.size());
    }
    for (const NumberedSample &entry : samples) {
        if (blocks_.empty() || blocks_.back().ends.size() == samplesPerBlock)
            blocks_.emplace_back();
        append(blocks_.back(), entry.sample);
    }
    lastNumber_ = samples.back().number;
}

void SampleJsonBlocks::append(Block &block, const EyeTrackingSample &sample) {
    const SampleJson json(sample);
    if (!block.ends.empty())
        block.text.append(',');
    block.text.append(json.data(), json.size());
    block.ends.push_back(block.text.size());
}

void SampleJsonBlocks::updateList(int sampleCount) {
    list_ = {sampleCount, {}};
    for (const Block &block : blocks_) {
        if (!list_.pieces.isEmpty())
            list_.pieces.append(QByteArrayLiteral(","));
        list_.pieces.append(block.text);
    }
}
