#pragma once

#include "api/sample_json_blocks.h"
#include "core/guarded.h"

class EyetrackerInterface;

/// The JSON text of a tracker's samples, made once for each sample, however many clients ask for it. Any thread may
/// call it; no lock is held any more when it returns.
class SampleJsonCache {
public:
    /// Of the tracker's newest sample.
    [[nodiscard]] QByteArray lastSample(EyetrackerInterface &tracker);

    /// Of all samples that the tracker holds.
    [[nodiscard]] SampleJsonBlocks::List samples(EyetrackerInterface &tracker);

private:
    struct Last {
        EyeTrackingSample sample;
        QByteArray text;  ///< empty before the first
    };

    Guarded<Last> last_;
    Guarded<SampleJsonBlocks> blocks_;
};
