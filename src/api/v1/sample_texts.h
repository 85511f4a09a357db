#pragma once

#include "api/v1/program_run.h"
#include "core/guarded.h"
#include "core/numbered_sample.h"

#include <QByteArray>

class EyetrackerInterface;

namespace api_v1 {

/// Consecutive samples of one tracker as JSON text.
struct SampleText {
    QByteArray json;  ///< objects, separated by commas
    int count = 0;
    quint64 firstNumber = 0;                 ///< of the oldest sample
    quint64 lastNumber = 0;                  ///< of the newest sample
    std::optional<quint64> missedCount = 0;  ///< how many samples before these have left the window, if known
};

/// Returns the text of up to `maxCount` samples, oldest first.
[[nodiscard]] SampleText sampleText(const ProgramRun &run, const SamplesSince &samples, int maxCount);

/// The samples that the streams send next. Streams at the same position share one text. Any thread.
class SampleTexts {
public:
    /// Limits the memory of one event.
    static constexpr int maxCount = 10000;

    explicit SampleTexts(const ProgramRun &run) : run_(run) {}

    /// Returns the samples of `tracker` after `number`. The newest ones may be missing; they follow in the next call.
    [[nodiscard]] SampleText after(const EyetrackerInterface &tracker, quint64 number);

private:
    struct Cached {
        const EyetrackerInterface *tracker = nullptr;
        quint64 after = 0;
        SampleText text;
    };

    const ProgramRun &run_;
    Guarded<Cached> cached_;
};

}  // namespace api_v1
