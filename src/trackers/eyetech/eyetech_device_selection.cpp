#include "trackers/eyetech/eyetech_device_selection.h"

#include "toolkit/platform/console.h"
#include "trackers/eyetech/eyetech_library.h"

#include <QByteArray>
#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace {

using Devices = std::vector<int>;

constexpr int maxDeviceCount = 100;

/// The devices of the last question if the input ended without an answer. Otherwise empty.
Devices &unanswered() {
    static Devices devices;
    return devices;
}

template <typename... Values>
void print(const char *format, Values... values) {
    // Called 100 times per second while the library is missing, so it avoids QString.
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    console::print(text.data());
}

/// Returns the attached devices. If there are none, prints the reason.
Devices attachedDevices() {
    Devices devices(maxDeviceCount);
    int count = maxDeviceCount;
    const int result = quicklink2::QLDevice_Enumerate(&count, devices.data());
    devices.resize(static_cast<std::size_t>(result == 0 ? std::clamp(count, 0, maxDeviceCount) : 0));
    if (result != 0)
        print("QLDevice_Enumerate() failed with error code %d\n", result);
    else if (devices.empty())
        print("No devices present.\n");
    return devices;
}

template <std::size_t size>
QByteArray text(const char (&field)[size]) {
    return QByteArray(field, static_cast<int>(qstrnlen(field, size)));
}

void describe(int index, int device) {
    quicklink2::QLDeviceInfo info{};
    quicklink2::QLDevice_GetInfo(device, &info);
    print("Device %d\n", index);
    print("\tdeviceInfo.modelName = %s\n", text(info.modelName).constData());
    print("\tdeviceInfo.serialNumber = %s\n\n", text(info.serialNumber).constData());
}

int askForDevice(const Devices &devices) {
    if (devices == unanswered())
        return 0;
    const int count = static_cast<int>(devices.size());
    print("QLDevice_Enumerate() found %d devices\n\n", count);
    for (int i = 0; i < count; ++i)
        describe(i, devices[static_cast<std::size_t>(i)]);
    print("Which device would you like to use? ");

    const int character = console::readCharacter();
    unanswered() = character < 0 ? devices : Devices();
    const int index = character - '0';
    if (index >= 0 && index < count)
        return devices[static_cast<std::size_t>(index)];
    print("Invalid device: %d.\n\n", index);
    return 0;
}

void applySettings(int device, const char *settingsFile) {
    int settings = 0;
    quicklink2::QLSettings_Create(0, &settings);
    quicklink2::QLSettings_Load(settingsFile, &settings);
    quicklink2::QLDevice_ImportSettings(device, settings);
    quicklink2::QLAPI_ImportSettings(settings);
}

}  // namespace

int eyetech::selectDevice(const char *settingsFile) {
    const Devices devices = attachedDevices();
    if (devices.empty())
        return 0;
    const int device = devices.size() == 1 ? devices.front() : askForDevice(devices);
    if (device != 0)
        applySettings(device, settingsFile);
    return device;
}
