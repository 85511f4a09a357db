#pragma once

#include "api/sample_json_blocks.h"
#include "core/guarded.h"

class EyetrackerInterface;

/// The JSON texts of a tracker's samples. Each sample is converted once, for all clients. All functions may be called
/// from any thread.
class SampleJsonCache {
public:
    /// Returns the tracker's newest sample.
    [[nodiscard]] QByteArray lastSample(const EyetrackerInterface &tracker);

    /// Returns all samples in the tracker's window.
    [[nodiscard]] SampleJsonBlocks::List samples(const EyetrackerInterface &tracker);

private:
    struct Last {
        quint64 number = 0;
        QByteArray text;  ///< empty before the first call of lastSample()
    };
    struct All {
        const EyetrackerInterface *tracker = nullptr;
        SampleJsonBlocks blocks;
    };

    Guarded<Last> last_;
    Guarded<All> all_;
};
