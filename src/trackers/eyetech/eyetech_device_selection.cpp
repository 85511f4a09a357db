#include "trackers/eyetech/eyetech_device_selection.h"

#include "toolkit/platform/console.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/eyetech_log.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cstdio>

namespace {

using Devices = std::vector<int>;

constexpr int maxDeviceCount = 100;

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

/// Returns the text without characters that a settings file cannot contain.
QString printable(const QByteArray &text) {
    QString result;
    for (const QChar character : QString::fromLocal8Bit(text))
        result += character.isPrint() ? QString(character) : QString();
    return result;
}

quicklink2::QLDeviceInfo infoOf(int device) {
    quicklink2::QLDeviceInfo info{};
    quicklink2::QLDevice_GetInfo(device, &info);
    return info;
}

void print(int index, const quicklink2::QLDeviceInfo &info) {
    print("Device %d\n", index);
    print("\tdeviceInfo.modelName = %s\n", text(info.modelName).constData());
    print("\tdeviceInfo.serialNumber = %s\n\n", text(info.serialNumber).constData());
}

eyetech::DeviceSelection askOnConsole(const Devices &devices) {
    const int count = static_cast<int>(devices.size());
    print("QLDevice_Enumerate() found %d devices\n\n", count);
    for (int i = 0; i < count; ++i)
        print(i, infoOf(devices[static_cast<std::size_t>(i)]));
    print("Which device would you like to use? ");

    const int character = console::readCharacter();
    const int index = character - '0';
    if (index >= 0 && index < count)
        return {devices[static_cast<std::size_t>(index)], {}};
    print("Invalid device: %d.\n\n", index);
    // At the end of the input, the console would otherwise be asked again at each poll.
    return {0, character < 0 ? devices : Devices()};
}

/// Returns the device with the first of the serial numbers that is attached, or 0. Ignores empty numbers.
int deviceWith(const QStringList &serialNumbers, const Devices &devices) {
    for (const QString &number : serialNumbers) {
        const auto found = std::find_if(devices.begin(), devices.end(), [&](int device) {
            return !number.isEmpty() && eyetech::describeDevice(device).serialNumber == number;
        });
        if (found != devices.end())
            return *found;
    }
    return 0;
}

}  // namespace

eyetech::DeviceSelection eyetech::selectDevice(const QStringList &serialNumbers) {
    const Devices devices = attachedDevices();
    if (devices.size() <= 1)
        return {devices.empty() ? 0 : devices.front(), {}};
    if (const int device = deviceWith(serialNumbers, devices))
        return {device, {}};
    return console::canAnswer() ? askOnConsole(devices) : DeviceSelection{0, devices};
}

std::vector<int> eyetech::enumerateDevices() {
    Devices devices(maxDeviceCount);
    int count = maxDeviceCount;
    quicklink2::QLDevice_Enumerate(&count, devices.data());
    devices.resize(static_cast<std::size_t>(std::clamp(count, 0, maxDeviceCount)));
    return devices;
}

eyetech::DeviceDescription eyetech::describeDevice(int device) {
    const quicklink2::QLDeviceInfo info = infoOf(device);
    return {printable(text(info.modelName)), printable(text(info.serialNumber))};
}

void eyetech::applySettings(int device, const char *settingsFile) {
    if (const QFileInfo file(settingsFile); !file.exists())
        qCInfo(lcEyetech).noquote() << QDir::toNativeSeparators(file.absoluteFilePath())
                                    << "does not exist: the tracker keeps its own settings";
    int settings = 0;
    quicklink2::QLSettings_Create(0, &settings);
    quicklink2::QLSettings_Load(settingsFile, &settings);
    quicklink2::QLDevice_ImportSettings(device, settings);
    quicklink2::QLAPI_ImportSettings(settings);
}
