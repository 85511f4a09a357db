#include "device/person.h"

#include "device/environment.h"

namespace sim {

namespace {

SubjectOptions optionsFromEnvironment() {
    SubjectOptions options;
    options.seed = static_cast<std::uint64_t>(environment::number("OCELA_SIM_SEED", 1, 0, 0x1p53));
    options.blinkInterval_s = environment::number("OCELA_SIM_BLINK_INTERVAL", options.blinkInterval_s, 0, 3600);
    options.setup.distance_cm = environment::number("OCELA_SIM_DISTANCE", options.setup.distance_cm, 20, 150);
    return options;
}

}  // namespace

Person::Person() : Person(optionsFromEnvironment()) {}

Person::Person(const SubjectOptions &options) : setup_(options.setup), subject_(options) {}

EyeState Person::now() {
    const std::lock_guard lock(mutex_);
    return subject_.at(seconds());
}

void Person::lookAt(Point target) {
    const std::lock_guard lock(mutex_);
    subject_.at(seconds());
    subject_.lookAt(target);
}

void Person::release() {
    const std::lock_guard lock(mutex_);
    subject_.at(seconds());
    subject_.release();
}

double Person::seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

}  // namespace sim
