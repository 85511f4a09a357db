#pragma once

namespace special_files {

/// Adds test rows for paths that are not regular files on this system: the path, whether the answer says that the file
/// exists, and the expected warning (a regular expression). Creates such a file in the folder `http` if possible.
void addRows();

}  // namespace special_files
