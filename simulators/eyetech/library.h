#pragma once

#include "device/person.h"
#include "eyetech/cable.h"
#include "eyetech/calibration.h"
#include "eyetech/device.h"
#include "eyetech/options.h"
#include "eyetech/settings.h"
#include "trackers/eyetech/quicklink2.h"

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace sim::eyetech {

/// The library behind its entry points, each of which has its operation here under its name: what there is of
/// devices, groups, settings and calibrations, by their ids. Callable from any thread.
///
/// There is one, and it is never destroyed, because its threads may live as long as the process.
class Library {
public:
    static Library &instance();

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

private:
    /// A device with what programs leave with it.
    struct Unit {
        Unit(Person *person, Cable *cable);

        Device device;
        Settings settings;
        std::map<int, int> indicators;  // modes by type
    };

    Library() = default;

    [[nodiscard]] Options options();
    Unit *unit(int device);
    std::shared_ptr<Calibration> calibration(int id);
    static int listDevices(const std::set<int> &ids, int *count, int *devices);
    int addCalibration(const std::shared_ptr<Calibration> &calibration, int *id);

    int setValue(int settings, const char *name, const QVariant &value);
    template <typename T>
    int getValue(int settings, const char *name, T *value);
    template <typename T>
    int getBytes(int settings, const char *name, int size, void *value);
    int findValue(int settings, const char *name, QVariant *value);
    Settings *container(int settings);
    static int transfer(const Settings *from, Settings *to);

    Person person_;
    Cable cable_;
    std::array<Unit, 2> units_{Unit(&person_, &cable_), Unit(&person_, &cable_)};

    std::mutex mutex_;  // guards what follows, and the units' settings and indicators
    Options options_ = Options::fromEnvironment();
    int lastId_ = 0;
    std::map<int, std::set<int>> groups_;  // of devices
    std::map<int, Settings> settings_;
    std::map<int, std::shared_ptr<Calibration>> calibrations_;
    Settings apiSettings_;
};

}  // namespace sim::eyetech
