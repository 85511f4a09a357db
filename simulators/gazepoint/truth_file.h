#pragma once

#include "subject/scan_path.h"

#include <QFile>
#include <QString>

namespace sim::gazepoint {

/// Writes the true fixations of the simulated person to a CSV file, one row at the end of each fixation.
///
/// Times are ms since 1970 UTC, like the timestamps of a GazePoint record. Time 0 of the person is the moment at which
/// this object is created. A change of the system clock after that moment is ignored.
class TruthFile {
public:
    explicit TruthFile(const QString &path);

    /// Replaces the file. Returns false on failure; errorString() then returns the reason.
    [[nodiscard]] bool open();
    [[nodiscard]] QString errorString() const { return file_.errorString(); }

    /// Writes a row immediately, so that other programs can read it while the simulator runs.
    void add(const PathFixation &fixation);

private:
    QFile file_;
    double startUtc_ms_;
};

}  // namespace sim::gazepoint
