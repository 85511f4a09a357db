#pragma once

#include "subject/eye_state.h"

#include <QString>
#include <variant>
#include <vector>

namespace sim {

/// A recording that the simulated person plays back, loaded from a CSV record file.
///
/// Columns are found by their names. "Time" (ms), "Valid", "X" and "Y" (percent) are required. "L_X", "L_Y", "R_X",
/// "R_Y", "L_Pupil_mm", "R_Pupil_mm" and "Distance_cm" are optional. All other columns are ignored. An eye without its
/// own gaze gets the combined gaze. A right eye with exchanged axes is corrected, see CrossedEye.
class Recording {
public:
    /// Returns the recording, or an error message that names the file and, for a bad cell, its line and column.
    [[nodiscard]] static std::variant<Recording, QString> load(const QString &path);

    /// Returns the duration of one pass. The duration of the last row is the average of the other rows.
    [[nodiscard]] double duration_s() const;

    /// Returns the last row that is not later than `seconds` after the first one. Pupils and distance are 0 if the file
    /// does not have them.
    [[nodiscard]] const EyeState &at(double seconds) const;

private:
    struct Row {
        double time_s = 0;
        Point combined;
        EyeState state;
    };
    class Reader;

    Recording() = default;
    void uncrossRightEye();
    void fillMissingGaze();

    std::vector<Row> rows_;  // at least one, ordered by time
};

}  // namespace sim
