#pragma once

namespace eyetech {

/// Chooses one of the attached devices, and applies the QuickLink2 settings file `settingsFile` to it. A missing file
/// is treated as empty. Returns the device's id, or 0 if no device was chosen. GUI thread.
///
/// If no device is chosen, prints the reason to standard output. If several devices are attached, asks on the console
/// and waits for a digit. The end of the input is an invalid choice. After it, the question is not repeated until other
/// devices are attached.
[[nodiscard]] int selectDevice(const char *settingsFile);

}  // namespace eyetech
