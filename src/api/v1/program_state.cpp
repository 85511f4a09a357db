#include "api/v1/program_state.h"

#include "core/eyetracker_interface.h"

#include <algorithm>

using namespace api_v1;

namespace {

void select(ProgramState &state) {
    std::vector<Selection> &selections = state.selections;
    const quint64 index = selections.empty() ? 0 : selections.back().index + 1;
    selections.push_back({index, state.tracker, newestNumber(state)});
    if (selections.size() > ProgramState::maxSelections)
        selections.erase(selections.begin());
}

}  // namespace

quint64 api_v1::newestNumber(const ProgramState &state) {
    quint64 newest = 0;
    for (const EyetrackerInterface *tracker : state.trackers)
        newest = std::max(newest, tracker->lastNumberedSample().number);
    return newest;
}

const Selection *ProgramState::selectionAfter(const Selection &earlier) const {
    const auto isNext = [&earlier](const Selection &selection) { return selection.index == earlier.index + 1; };
    const auto next = std::find_if(selections.begin(), selections.end(), isNext);
    return next == selections.end() ? nullptr : &*next;
}

std::optional<quint64> ProgramState::countInEarlierSelections(quint64 number) const {
    if (number < selections.front().after && selections.front().index > 0)
        return std::nullopt;
    quint64 sum = 0;
    for (std::size_t i = 0; i + 1 < selections.size(); ++i) {
        const Selection &selection = selections[i];
        if (!selection.tracker)
            continue;
        const std::optional<quint64> count =
            selection.tracker->countBetween(std::max(number, selection.after), selections[i + 1].after);
        if (!count)
            return std::nullopt;
        sum += *count;
    }
    return sum;
}

void PublishedState::publish(ProgramState next) {
    state_.with([&next](std::shared_ptr<const ProgramState> &current) {
        next.version = current ? current->version + 1 : 1;
        if (current)
            next.selections = current->selections;
        // Under the lock: what a thread has read before its isSelected() returns true, is not newer than the selection.
        if (next.selections.empty() || next.selection().tracker != next.tracker)
            select(next);
        current = std::make_shared<const ProgramState>(std::move(next));
    });
    signal_->set();
}
