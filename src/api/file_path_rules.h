#pragma once

#include <QString>

/// Rules for the names of files that are sent. They look only at the text, because asking the file system about another
/// machine can take minutes, and on Windows sends the user's credentials there.
namespace file_path_rules {

enum class System { windows, other };

/// Returns the system that the program runs on.
[[nodiscard]] System currentSystem();

/// Returns false if `fileName` names another machine ("//host/share/file", "\\host\share\file"). On Windows also
/// returns false for a device ("CON", "C:/COM1.txt") and for a stream of a file ("C:/a.txt:b").
[[nodiscard]] bool namesLocalFile(const QString &fileName, System system = currentSystem());

}  // namespace file_path_rules
