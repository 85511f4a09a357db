#pragma once

#include "subject/eye_state.h"

#include <QString>
#include <optional>
#include <vector>

namespace sim {

/// A recorded session that the simulated person acts out again.
///
/// Read from the comma-separated files that the service writes (a header row, decimal points). Columns are
/// found by their names: "Time" (ms), "Valid", "X" and "Y" (percent) must be there; "L_X", "L_Y", "R_X",
/// "R_Y", "L_Pupil_mm", "R_Pupil_mm" and "Distance_cm" are used when they are; all others are passed over.
class Recording {
public:
    /// Nothing, and the reason in `error`, when the file cannot be read or is no such table.
    static std::optional<Recording> load(const QString &path, QString *error);

    /// Seconds that one pass takes; the last row lasts as long as the others on average.
    [[nodiscard]] double duration() const;

    /// What was recorded at `seconds` after the start of the recording: the last row that is not later.
    /// Pupils and distance that the file does not tell are 0.
    [[nodiscard]] const EyeState &at(double seconds) const;

private:
    struct Row {
        double time = 0;
        Point combined;
        EyeState state;
    };
    class Reader;

    void uncrossRightEye();

    std::vector<Row> rows_;
};

}  // namespace sim
