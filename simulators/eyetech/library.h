#pragma once

#include "device/person.h"
#include "eyetech/cable.h"
#include "eyetech/calibration.h"
#include "eyetech/device.h"
#include "eyetech/options.h"
#include "eyetech/results.h"
#include "eyetech/settings.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace sim::eyetech {

/// The simulated library: its devices, groups, settings and calibrations by their ids. Each entry point calls the
/// function of the same name. Thread-safe.
///
/// The only instance is never destroyed, because its threads may run until the process ends.
class Library {
public:
    static Library &instance();

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

private:
    /// A device with its settings and indicators.
    struct Unit {
        Unit(Person &person, Cable &cable);

        Device device;
        Settings settings;
        std::map<int, int> indicators;  // modes by type
    };

    Library() = default;

    [[nodiscard]] Options options();
    /// Returns the id of the first device.
    [[nodiscard]] int firstDevice();
    /// Returns null if there is no such device.
    Unit *unit(int device);
    /// Returns null if there is no such calibration.
    std::shared_ptr<Calibration> calibration(int id);
    static int listDevices(const std::set<int> &ids, int *count, int *devices);
    /// Returns the id of the calibration.
    int addCalibration(const std::shared_ptr<Calibration> &calibration);

    int setValue(int settings, const char *name, const QVariant &value);
    template <typename T>
    int getValue(int settings, const char *name, T *value);
    template <typename T>
    int getBytes(int settings, const char *name, int size, void *value);
    [[nodiscard]] Answer<QVariant> findValue(int settings, const char *name);
    /// Returns null if there is no such container.
    Settings *container(int settings);
    static int transfer(const Settings *from, Settings *to);

    Person person_;
    Cable cable_;
    std::array<Unit, 2> units_{Unit(person_, cable_), Unit(person_, cable_)};

    std::mutex mutex_;  // guards the members below, and the settings and indicators of the units
    Options options_ = Options::fromEnvironment();
    int lastId_ = 0;
    std::map<int, std::set<int>> groups_;  // of devices
    std::map<int, Settings> settings_;
    std::map<int, std::shared_ptr<Calibration>> calibrations_;
    Settings apiSettings_;
};

}  // namespace sim::eyetech
