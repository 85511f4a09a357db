#pragma once

#include <QPixmap>

class SingleInstance;

/// The steps of main() before and after the lifetime of the main window, in order. GUI thread.
namespace startup {

/// Returns whether windows can be shown. If not, prints the reason to standard error.
[[nodiscard]] bool hasDisplay();

/// Sets the attributes of Qt that must be set before QApplication is constructed.
void prepareApplication();

/// Sets the names of the organisation and the application, which determine the folders for the user's data.
void setIdentity();

/// Returns whether the command line has the option --dashboard, which opens the dashboard.
[[nodiscard]] bool isDashboardWanted();

/// Runs an instance that was refused, and returns its exit code. If the dashboard is wanted, opens that of the other
/// instance, for whose server it waits up to 10 s. Otherwise tells the user that another instance is running, and
/// returns when the user closes the message, or when the other instance has ended. Changes no file of the user, because
/// the other instance uses the same files.
[[nodiscard]] int runRefused(const SingleInstance &instance);

/// Starts the log file in the data folder. Call it only if SingleInstance::mayRun(), so that a refused instance does
/// not write to the log file of the running one.
void startLogFile();

[[nodiscard]] QPixmap splashImage();
void loadIcon();
void loadFonts();
void applyStyle();

/// Creates the default folder for record files.
void createRecordsFolder();

/// Returns the title of the main window.
[[nodiscard]] QString windowTitle();

/// Exits the process immediately if a task of the global thread pool is still running after 300 ms, if a request of
/// the HTTP API hangs, or if the LSL library does not respond. A call of a vendor library may take 10 s, and the
/// destructor of QApplication would wait for it. A request hangs while the file system does, for example after a
/// network share was lost. Call it last, when everything is saved.
void exitIfTasksBlock(int exitCode);

}  // namespace startup
