#include "eyetech/calibration.h"

#include <algorithm>

namespace sim::eyetech {

namespace {

using namespace std::chrono_literals;

// The time that the person needs to look at a new target. At most half of the duration is used for it.
constexpr std::chrono::steady_clock::duration settlingTime = 400ms;
constexpr int minSampleCount = 3;
constexpr int faultyTarget = 2;

constexpr float gridEdge_percent = 10;
constexpr float gridExtent_percent = 80;

std::vector<quicklink2::QLTarget> corners() {
    return {{1, 50, 50}, {2, 10, 10}, {3, 90, 10}, {4, 90, 90}, {5, 10, 90}};
}

std::vector<quicklink2::QLTarget> grid(int side) {
    std::vector<quicklink2::QLTarget> targets;
    const float step = gridExtent_percent / static_cast<float>(side - 1);
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const int id = row * side + column + 1;
            targets.push_back({id, gridEdge_percent + step * static_cast<float>(column),
                               gridEdge_percent + step * static_cast<float>(row)});
        }
    }
    return targets;
}

std::vector<quicklink2::QLTarget> targetsOfType(int type) {
    switch (type) {
        case 0:
            return corners();
        case 1:
            return grid(3);
        case 2:
            return grid(4);
        default:
            return {};
    }
}

quicklink2::QLScore scoreOf(const TargetMeasurement::Result &result) {
    const auto percent = [](double fraction) { return static_cast<float>(fraction * 100); };
    return {percent(result.offset.x), percent(result.offset.y), percent(result.error)};
}

}  // namespace

Calibration::Calibration(const Calibration &other) : state_(other.state()) {}

Calibration::State Calibration::state() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

bool Calibration::initialize(int device, int type, const Options &options) {
    State state;
    state.device = device;
    state.options = options;
    for (const quicklink2::QLTarget &place : targetsOfType(type))
        state.targets.push_back({place, NotYet, 0, {}});
    if (state.targets.empty())
        return false;
    const std::lock_guard lock(mutex_);
    state_ = state;
    return true;
}

int Calibration::device() const {
    return state().device;
}

std::vector<quicklink2::QLTarget> Calibration::targets() const {
    std::vector<quicklink2::QLTarget> places;
    for (const Target &target : state().targets)
        places.push_back(target.place);
    return places;
}

Answer<Point> Calibration::start(int target, Clock::duration duration) {
    const std::lock_guard lock(mutex_);
    finishDueRun();
    const auto found = find(target);
    if (found == state_.targets.end())
        return {BadArgument};
    if (state_.run)
        return {Busy};
    found->status = Running;
    ++found->attemptCount;
    const Point place{static_cast<double>(found->place.x) / 100, static_cast<double>(found->place.y) / 100};
    const auto now = Clock::now();
    state_.run = Run{target, now + std::min(settlingTime, duration / 2), now + duration, TargetMeasurement(place)};
    return {Ok, place};
}

void Calibration::observe(const EyeState &eyes) {
    const std::lock_guard lock(mutex_);
    finishDueRun();
    if (state_.run && Clock::now() >= state_.run->settled)
        state_.run->measurement.add(eyes);
}

void Calibration::finishDueRun() {
    if (!state_.run || Clock::now() < state_.run->end)
        return;
    const auto target = find(state_.run->target);
    const auto left = state_.run->measurement.left();
    const auto right = state_.run->measurement.right();
    const bool seen = std::max(left.sampleCount, right.sampleCount) >= minSampleCount;
    target->status = seen && !fails(*target) ? Done : Failed;
    target->scores = {scoreOf(left), scoreOf(right)};
    state_.run.reset();
}

bool Calibration::fails(const Target &target) const {
    if (target.place.id != faultyTarget)
        return false;
    return state_.options.has("target-fails") || (state_.options.has("target-fails-once") && target.attemptCount == 1);
}

void Calibration::cancel() {
    const std::lock_guard lock(mutex_);
    if (state_.run)
        find(state_.run->target)->status = NotYet;
    state_.run.reset();
}

std::optional<int> Calibration::status(int target) {
    const std::lock_guard lock(mutex_);
    finishDueRun();
    const auto found = find(target);
    return found == state_.targets.end() ? std::nullopt : std::make_optional(found->status);
}

Answer<quicklink2::QLScore> Calibration::score(int target, int eye) {
    const std::lock_guard lock(mutex_);
    finishDueRun();
    const auto found = find(target);
    if (found == state_.targets.end() || eye < 0 || eye > 1)
        return {BadArgument};
    if (found->status != Done)
        return {NotCalibrated};
    return {Ok, found->scores[static_cast<std::size_t>(eye)]};
}

bool Calibration::complete() {
    const std::lock_guard lock(mutex_);
    finishDueRun();
    const auto done = [](const Target &target) { return target.status == Done; };
    return !state_.targets.empty() && std::all_of(state_.targets.begin(), state_.targets.end(), done);
}

void Calibration::addBias(int eye, Point percent) {
    const std::lock_guard lock(mutex_);
    Point &bias = state_.bias[static_cast<std::size_t>(eye)];
    bias = bias + percent * 0.01;
}

Calibration::Eyes Calibration::bias() const {
    return state().bias;
}

std::vector<Calibration::Target>::iterator Calibration::find(int target) {
    return std::find_if(state_.targets.begin(), state_.targets.end(),
                        [target](const Target &candidate) { return candidate.place.id == target; });
}

}  // namespace sim::eyetech
