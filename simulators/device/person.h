#pragma once

#include "subject/subject.h"

#include <chrono>
#include <mutex>

namespace sim {

/// The simulated person in real time, for a device with several threads. Thread-safe.
///
/// The constructor reads OCELA_SIM_SEED, OCELA_SIM_BLINK_INTERVAL and OCELA_SIM_DISTANCE.
class Person {
public:
    Person();

    EyeState now();
    void lookAt(Point target);
    void release();

    [[nodiscard]] const PhysicalSetup &setup() const { return setup_; }

private:
    explicit Person(const SubjectOptions &options);
    [[nodiscard]] double seconds() const;

    const PhysicalSetup setup_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    Subject subject_;  // guarded by mutex_
};

}  // namespace sim
