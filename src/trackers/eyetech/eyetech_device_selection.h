#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace eyetech {

/// Model and serial number as the device reports them, without characters that cannot be printed.
struct DeviceDescription {
    QString model;
    QString serialNumber;
};

/// The result of selectDevice().
struct DeviceSelection {
    int device = 0;              ///< the id of the chosen device, or 0
    std::vector<int> undecided;  ///< the ids of several devices, if no console can answer which one to use
};

/// Chooses one of the attached devices: the only one, the first one with one of the `serialNumbers`, or the one that
/// the user chooses on the console. Returns `undecided` devices if no console can answer. GUI thread.
///
/// If there is no device, or if the answer is invalid, prints the reason to standard output. The answer is a digit. In
/// a terminal, the function waits for it.
[[nodiscard]] DeviceSelection selectDevice(const QStringList &serialNumbers);

/// Returns the ids of the attached devices. A failing call of the library returns the maximum number of ids, all 0.
[[nodiscard]] std::vector<int> enumerateDevices();

/// Returns the description of a device. It is empty if the device does not report it.
[[nodiscard]] DeviceDescription describeDevice(int device);

/// Applies the QuickLink2 settings file `settingsFile` to a device. A missing file is treated as empty, and logged.
void applySettings(int device, const char *settingsFile);

}  // namespace eyetech
