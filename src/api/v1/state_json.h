#pragma once

#include "api/v1/program_run.h"
#include "api/v1/program_state.h"

#include <optional>

namespace api_v1 {

/// Writes the state of the program as JSON, with the current counters, rates and ages. Any thread.
class StateJson {
public:
    /// `run` must outlive the object.
    explicit StateJson(const ProgramRun &run) : run_(run) {}

    [[nodiscard]] QJsonObject write(const ProgramState &state);

private:
    /// The figures of the samples of the last two seconds.
    struct Rates {
        std::optional<double> sampleRateHz;
        std::optional<double> validShare;
    };
    struct CachedRates {
        const EyetrackerInterface *tracker = nullptr;
        ProgramRun::TimePoint time;
        Rates rates;
    };

    [[nodiscard]] static Rates ratesOf(const EyetrackerInterface &tracker, ProgramRun::TimePoint now);
    [[nodiscard]] Rates cachedRates(const EyetrackerInterface &tracker, ProgramRun::TimePoint now);
    void addTracker(QJsonObject &json, const EyetrackerInterface &tracker);
    [[nodiscard]] static QJsonArray recordings(const std::vector<EyetrackerInterface *> &trackers);

    const ProgramRun &run_;
    Guarded<CachedRates> rates_;
};

}  // namespace api_v1
