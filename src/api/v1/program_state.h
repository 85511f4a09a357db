#pragma once

#include "core/guarded.h"
#include "core/sample_signal.h"

#include <QJsonObject>
#include <QString>
#include <memory>
#include <utility>
#include <vector>

class EyetrackerInterface;

namespace api_v1 {

/// The state of the program as of its last change. Immutable, so that connection threads read it without a lock.
struct ProgramState {
    quint64 version = 0;  ///< increases with each change
    QJsonObject json;     ///< the state that clients see, without counters, rates and ages
    std::vector<EyetrackerInterface *> trackers;
    EyetrackerInterface *tracker = nullptr;  ///< the selected one
    /// The newest number of all trackers when the tracker was selected. Only later samples belong to the streams.
    quint64 selectedAfter = 0;
    QString recordsFolder;
};

/// The current state, which the GUI thread publishes and connection threads read.
class PublishedState {
public:
    /// `signal` is set by each change.
    explicit PublishedState(std::shared_ptr<SampleSignal> signal) : signal_(std::move(signal)) {}

    /// Returns the current state, or null before the first publish().
    [[nodiscard]] std::shared_ptr<const ProgramState> get() const { return state_.copy(); }

    void publish(std::shared_ptr<const ProgramState> state) {
        state_.exchange(std::move(state));
        signal_->set();
    }

private:
    const std::shared_ptr<SampleSignal> signal_;
    Guarded<std::shared_ptr<const ProgramState>> state_;
};

}  // namespace api_v1
