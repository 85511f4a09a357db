#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

namespace asee {

/// The outcome of a calibration that was not cancelled. The calibration sequence creates it on its thread, and passes a
/// copy to the screen on the GUI thread.
struct CalibrationOutcome {
    Q_DECLARE_TR_FUNCTIONS(asee::CalibrationOutcome)

public:
    /// The step that failed.
    enum class Failure { None, Start, Point, Computation, Tracking, Saving };

    /// The library's scores of the eyes. Their unit is not known.
    struct Scores {
        float left;
        float right;
    };

    [[nodiscard]] bool isSuccess() const { return failure == Failure::None; }

    /// Returns the lines that the screen shows, in the language of the user interface.
    [[nodiscard]] QString text() const;

    Failure failure = Failure::None;
    int error = 0;                 ///< the result of the function of the library that failed
    int point = 0;                 ///< the refused point, from 1
    std::optional<Scores> scores;  ///< if the library has computed them

private:
    [[nodiscard]] QString failureText() const;
    [[nodiscard]] QString errorText() const;
};

}  // namespace asee
