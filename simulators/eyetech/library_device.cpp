#include "eyetech/library.h"
#include "eyetech/results.h"

#include <QByteArray>

namespace sim::eyetech {

namespace {

constexpr int initialFirstDevice = 101;
constexpr int newIdOffset = 10;
constexpr float eyeRadius_cm = 1.2F;

}  // namespace

Library::Unit::Unit(Person &person, Cable &cable) : device(person, cable) {
    for (const char *name : {"FrameRate", "ImageHeight", "ImageWidth"})
        settings.add(name);
}

int Library::firstDevice() {
    return initialFirstDevice + (options().has("new-ids") ? newIdOffset * cable_.replugCount() : 0);
}

Library::Unit *Library::unit(int device) {
    const int index = device - firstDevice();
    return index >= 0 && index < options().deviceCount ? &units_[static_cast<std::size_t>(index)] : nullptr;
}

int Library::QLDevice_Enumerate(int *count, int *devices) {
    const Options options = Options::fromEnvironment();
    cable_.setOptions(options);
    {
        const std::lock_guard lock(mutex_);
        options_ = options;
    }
    if (options.enumerateError != Ok)
        return options.enumerateError;
    const int first = firstDevice();
    std::set<int> ids;
    for (int i = 0; i < options.deviceCount && cable_.pluggedIn(); ++i)
        ids.insert(first + i);
    return listDevices(ids, count, devices);
}

int Library::listDevices(const std::set<int> &ids, int *count, int *devices) {
    if (count == nullptr)
        return BadArgument;
    const int capacity = std::exchange(*count, static_cast<int>(ids.size()));
    if (capacity < *count)
        return BufferTooSmall;
    if (!ids.empty() && devices == nullptr)
        return BadArgument;
    std::copy(ids.begin(), ids.end(), devices);
    return Ok;
}

int Library::QLDevice_GetInfo(int device, quicklink2::QLDeviceInfo *info) {
    if (unit(device) == nullptr || info == nullptr)
        return BadArgument;
    qstrncpy(info->modelName, "Simulated tracker", sizeof info->modelName);
    qstrncpy(info->serialNumber, QByteArray("SIM-" + QByteArray::number(initialFirstDevice + device - firstDevice())),
             sizeof info->serialNumber);
    return Ok;
}

int Library::QLDevice_GetStatus(int device, int *status) {
    Unit *const found = unit(device);
    if (found == nullptr || status == nullptr)
        return BadArgument;
    if (const int error = options().statusError; error != Ok)
        return error;
    *status = found->device.status();
    return Ok;
}

int Library::QLDevice_ExportSettings(int device, int settings) {
    Unit *const found = unit(device);
    const std::lock_guard lock(mutex_);
    return found != nullptr ? transfer(&found->settings, container(settings)) : BadArgument;
}

int Library::QLDevice_ImportSettings(int device, int settings) {
    Unit *const found = unit(device);
    const std::lock_guard lock(mutex_);
    return found != nullptr ? transfer(container(settings), &found->settings) : BadArgument;
}

int Library::QLDevice_IsSettingSupported(int device, const char *setting) {
    Unit *const found = unit(device);
    if (found == nullptr || setting == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    return found->settings.contains(setting) ? Ok : NotFound;
}

int Library::QLDevice_Start(int device) {
    Unit *const found = unit(device);
    return found != nullptr ? found->device.start(options()) : BadArgument;
}

int Library::QLDevice_Stop(int device) {
    Unit *const found = unit(device);
    if (found == nullptr)
        return BadArgument;
    person_.release();
    found->device.stop();
    return Ok;
}

int Library::QLDevice_Stop_All() {
    person_.release();
    for (Unit &unit : units_)
        unit.device.stop();
    return Ok;
}

int Library::QLDevice_SetIndicator(int device, int type, int mode) {
    Unit *const found = unit(device);
    if (found == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    found->indicators[type] = mode;
    return Ok;
}

int Library::QLDevice_GetIndicator(int device, int type, int *mode) {
    Unit *const found = unit(device);
    if (found == nullptr || mode == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    *mode = found->indicators[type];
    return Ok;
}

int Library::QLDevice_GetFrame(int device, int waitMs, quicklink2::QLFrameRecord *frame) {
    Unit *const found = unit(device);
    if (found == nullptr || frame == nullptr)
        return BadArgument;
    const Answer<quicklink2::QLFrameRecord> answer = found->device.frame(waitMs);
    if (answer.result == Ok)
        *frame = answer.value;
    return answer.result;
}

int Library::QLDevice_ApplyCalibration(int device, int calibration) {
    Unit *const found = unit(device);
    const auto applied = this->calibration(calibration);
    if (found == nullptr)
        return BadArgument;
    if (!applied)
        return UnknownCalibration;
    if (!applied->complete())
        return NotCalibrated;
    found->device.applyBias(applied->bias());
    return Ok;
}

int Library::QLDevice_CalibrateEyeRadius(int device, float distance, float *left, float *right) {
    Unit *const found = unit(device);
    if (found == nullptr || !(distance > 0) || left == nullptr || right == nullptr)
        return BadArgument;
    if (!found->device.running())
        return NotRunning;
    *left = *right = eyeRadius_cm;
    return Ok;
}

}  // namespace sim::eyetech
