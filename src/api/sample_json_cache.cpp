#include "api/sample_json_cache.h"

#include "api/sample_json.h"
#include "core/eyetracker_interface.h"

QByteArray SampleJsonCache::lastSample(EyetrackerInterface &tracker) {
    const EyeTrackingSample sample = tracker.getLastSample();
    return last_.with([&](Last &last) {
        if (last.text.isEmpty() || !haveSameJson(last.sample, sample)) {
            char text[sampleJsonRoom];
            const char *end = writeSampleJson(text, sample);
            last = {sample, QByteArray(text, static_cast<int>(end - text))};
        }
        return last.text;
    });
}

SampleJsonBlocks::List SampleJsonCache::samples(EyetrackerInterface &tracker) {
    // The samples are taken under the lock, so that a slow thread cannot come with older ones than the last.
    return blocks_.with([&](SampleJsonBlocks &blocks) { return blocks.update(tracker.getSamples()); });
}
