#pragma once

/// Adds rows about what looks like a file to this system and is none: a path, whether the answer says that there is
/// such a file, and the warning (a regular expression). Makes such a file in the folder http, where the system lets it.
void addSpecialFileRows();
