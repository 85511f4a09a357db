#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace eyetech {

/// Model and serial number as the device reports them, without control characters.
struct DeviceDescription {
    QString model;
    QString serialNumber;
};

/// The result of selectDevice().
struct DeviceSelection {
    int device = 0;              ///< the chosen device, or 0
    std::vector<int> undecided;  ///< several devices of which the user must choose one in another way
};

/// Chooses one of the attached devices: the only one, the first one with one of the `serialNumbers`, or the one that
/// the user chooses on the console. Returns `undecided` devices if no console can answer. GUI thread.
///
/// If there is no device, or if the answer is invalid, prints the reason to standard output. A console is asked for a
/// digit. If it is a terminal, the function waits for the digit.
[[nodiscard]] DeviceSelection selectDevice(const QStringList &serialNumbers);

/// Returns the ids of the attached devices. A failing call of the library returns the maximum number of ids, all 0.
[[nodiscard]] std::vector<int> enumerateDevices();

/// Returns an empty description if the device does not report one.
[[nodiscard]] DeviceDescription describeDevice(int device);

/// Applies the QuickLink2 settings file `settingsFile` to a device. A missing file is treated as empty, and logged.
void applySettings(int device, const char *settingsFile);

}  // namespace eyetech
