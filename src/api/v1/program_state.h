#pragma once

#include "core/guarded.h"
#include "core/sample_signal.h"

#include <QJsonObject>
#include <QString>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class EyetrackerInterface;

namespace api_v1 {

/// A tracker that is or was selected. Only its samples with a number above `after` belong to the selection, and only up
/// to the `after` of the next selection.
struct Selection {
    quint64 index = 0;                       ///< counts all selections of this run
    EyetrackerInterface *tracker = nullptr;  ///< null for none
    quint64 after = 0;                       ///< the newest number of all trackers at the time of the selection
};

/// The state of the program as of its last change. Immutable, so that connection threads read it without a lock.
struct ProgramState {
    /// Selections before these are forgotten.
    static constexpr std::size_t maxSelections = 100;

    quint64 version = 0;  ///< increases with each change
    QJsonObject json;     ///< the state that clients see, without counters, rates and ages
    std::vector<EyetrackerInterface *> trackers;
    EyetrackerInterface *tracker = nullptr;  ///< the selected one
    QString recordsFolder;
    std::vector<Selection> selections;  ///< oldest first; the last one is that of `tracker`

    [[nodiscard]] const Selection &selection() const { return selections.back(); }
    /// Returns the selection that has followed `earlier`, or null if it is forgotten.
    [[nodiscard]] const Selection *selectionAfter(const Selection &earlier) const;
    /// Returns how many samples after `number` belong to earlier selections than the last one. Returns nothing if that
    /// is not known any more.
    [[nodiscard]] std::optional<quint64> countInEarlierSelections(quint64 number) const;
};

/// Returns the newest number of all trackers.
[[nodiscard]] quint64 newestNumber(const ProgramState &state);

/// The current state, which the GUI thread publishes and connection threads read.
///
/// A thread that reads samples of the selected tracker must check isSelected() after that. Otherwise it may have
/// samples that were delivered after another tracker was selected.
class PublishedState {
public:
    /// `signal` is set by each change.
    explicit PublishedState(std::shared_ptr<SampleSignal> signal) : signal_(std::move(signal)) {}

    /// Returns the current state, or null before the first publish().
    [[nodiscard]] std::shared_ptr<const ProgramState> get() const { return state_.copy(); }
    /// Returns whether `selection` is still the last one.
    [[nodiscard]] bool isSelected(const Selection &selection) const {
        return get()->selection().index == selection.index;
    }

    /// Publishes `next`, whose version and selections are set here.
    void publish(ProgramState next);

private:
    const std::shared_ptr<SampleSignal> signal_;
    Guarded<std::shared_ptr<const ProgramState>> state_;
};

}  // namespace api_v1
