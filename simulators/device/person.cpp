#include "device/person.h"

#include "device/environment.h"
#include "pointer/pointer_source.h"

#include <QGuiApplication>
#include <QScreen>

namespace sim {

namespace {

constexpr int maxScreenNumber = 99;

}  // namespace

SubjectOptions personFromEnvironment() {
    SubjectOptions options;
    options.seed = static_cast<std::uint64_t>(environment::number("OCELA_SIM_SEED", 1, 0, 0x1p53));
    options.blinkInterval_s = environment::number("OCELA_SIM_BLINK_INTERVAL", options.blinkInterval_s, 0, 3600);
    options.setup.distance_cm = environment::number("OCELA_SIM_DISTANCE", options.setup.distance_cm, 20, 150);
    options.offset = environment::gazeAngles("OCELA_SIM_OFFSET", maxOffset_deg);
    options.noise_deg = environment::number("OCELA_SIM_NOISE", 0, maxNoise_deg);
    return options;
}

Person::Person() : Person(personFromEnvironment()) {
    const int screenNumber = environment::integer("OCELA_SIM_FOLLOW_MOUSE", 0, 0, maxScreenNumber);
    if (screenNumber > 0)
        followMouse(screenNumber);
}

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

/// The library may be loaded in any thread, but only the main thread may ask for the position of the pointer.
void Person::followMouse(int screenNumber) {
    auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!application) {
        qWarning("OCELA_SIM_FOLLOW_MOUSE needs a program with a display, and is ignored");
        return;
    }
    const auto start = [this, application, screenNumber] {
        const QScreen *screen = QGuiApplication::screens().value(screenNumber - 1);
        if (!screen) {
            qWarning("OCELA_SIM_FOLLOW_MOUSE is ignored, because there is no screen %d", screenNumber);
            return;
        }
        auto *source = new PointerSource(screen->geometry(), [this](Point pointer) { follow(pointer); });
        source->setParent(application);
    };
    QMetaObject::invokeMethod(application, start, Qt::QueuedConnection);
}

void Person::follow(Point pointer) {
    const std::lock_guard lock(mutex_);
    subject_.at(seconds());
    subject_.follow(pointer);
}

double Person::seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

}  // namespace sim
