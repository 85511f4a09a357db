#pragma once

/// Chooses one of the attached EyeTech devices and gives it the settings of the QuickLink2 settings file
/// `settingsFile`; a file that is missing has none. Returns the device's id, or 0 when none could be chosen.
///
/// What it finds, and why it chooses none, goes to standard output. Among several devices the person at the console
/// chooses by typing a digit, and the GUI thread waits for it. Where nobody can type, the input being at its end, that
/// counts as an invalid choice; such devices are not asked about again until others are there. GUI thread.
[[nodiscard]] int selectDevice(const char *settingsFile);
