#pragma once

#include "subject/subject.h"

#include <chrono>
#include <mutex>

namespace sim {

/// Returns the options in the environment variables OCELA_SIM_* of the person, which docs/simulators.md describes.
SubjectOptions personFromEnvironment();

/// The simulated person in real time, for a device with several threads. Thread-safe.
///
/// The constructor reads the environment. With OCELA_SIM_FOLLOW_MOUSE=N, the person looks at the mouse pointer on
/// screen N. Its position is read in the main thread, as long as the application exists. The person must then outlive
/// the application.
class Person {
public:
    Person();

    EyeState now();
    void lookAt(Point target);
    void release();

    [[nodiscard]] const PhysicalSetup &setup() const { return setup_; }

private:
    explicit Person(const SubjectOptions &options);
    void followMouse(int screenNumber);
    void follow(Point pointer);
    [[nodiscard]] double seconds() const;

    const PhysicalSetup setup_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    Subject subject_;  // guarded by mutex_
};

}  // namespace sim
