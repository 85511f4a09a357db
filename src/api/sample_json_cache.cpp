#include "api/sample_json_cache.h"

#include "api/sample_json.h"
#include "core/eyetracker_interface.h"

QByteArray SampleJsonCache::lastSample(const EyetrackerInterface &tracker) {
    const NumberedSample newest = tracker.lastNumberedSample();
    return last_.with([&](Last &last) {
        if (last.text.isEmpty() || last.number != newest.number)
            last = {newest.number, SampleJson(newest.sample).toByteArray()};
        return last.text;
    });
}

SampleJsonBlocks::List SampleJsonCache::samples(const EyetrackerInterface &tracker) {
    return all_.with([&](All &all) {
        if (all.tracker != &tracker)
            all = {&tracker, {}};
        // Under the lock, so that the samples follow those of the previous update.
        return all.blocks.update(tracker.samplesSince(all.blocks.lastNumber()));
    });
}
