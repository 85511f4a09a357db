#pragma once

#include "subject/subject.h"

#include <chrono>
#include <mutex>

namespace sim {

/// The simulated person as a device in real time sees them, from any of its threads.
///
/// Who it is, OCELA_SIM_SEED, OCELA_SIM_BLINK_INTERVAL and OCELA_SIM_DISTANCE tell at construction.
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
