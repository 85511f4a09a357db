#pragma once

#include <QPixmap>

/// The steps that main() takes around the life of the window, in the order of their use. GUI thread only.
namespace startup {

/// Whether windows can be shown; if not, the console has been told why.
[[nodiscard]] bool hasDisplay();

/// What Qt wants to know before the application object exists.
void prepareApplication();

/// Names that decide where per-user data lies.
void setIdentity();

/// Whether another copy of the program runs already; then the user has been told.
[[nodiscard]] bool refuseSecondInstance();

/// From here on the log goes to a file in the data folder as well; not before, so that a second instance does not write
/// into the log of the first.
void startLogFile();

[[nodiscard]] QPixmap splashImage();
void loadIcon();
void loadFonts();
void applyStyle();

/// Makes the folder that records go to when no path is given, so that a first record lands.
void createRecordsFolder();

/// Title of the main window.
[[nodiscard]] QString windowTitle();

/// When the window is gone and everything is saved: ends the program at once, with this exit code, if a call into a
/// vendor's library still holds a thread of the global pool. Left to itself the application object would wait for it,
/// and such a call may take 10 s.
void endInSpiteOfTasks(int exitCode);

}  // namespace startup
