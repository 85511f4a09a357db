#pragma once

#include <QByteArray>

namespace hanging_files {

/// Returns whether this system lets the tests intercept calls to the file system.
[[nodiscard]] bool isSupported();

/// While the object exists, all threads but the main thread block as soon as they ask for the properties of a file
/// whose path contains `part`, as in a lost network share.
class Hang {
public:
    explicit Hang(const QByteArray &part);
    // NOLINTNEXTLINE(performance-trivially-destructible): where files can hang, it ends that.
    ~Hang();
    Hang(const Hang &) = delete;
    Hang &operator=(const Hang &) = delete;

    [[nodiscard]] int blockedThreadCount() const;
};

}  // namespace hanging_files
