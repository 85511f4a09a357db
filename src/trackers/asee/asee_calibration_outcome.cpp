#include "trackers/asee/asee_calibration_outcome.h"

#include "trackers/asee/asee_calibration_layout.h"
#include "trackers/asee/asee_library.h"

#include <QStringList>

using asee::CalibrationOutcome;

namespace {

QString number(float score) {
    return QString::number(static_cast<double>(score), 'f', 2);
}

}  // namespace

QString CalibrationOutcome::text() const {
    QStringList lines;
    if (isSuccess())
        lines << tr("The calibration is finished and saved");
    else if (failure == Failure::Saving)
        lines << failureText();
    else
        lines << tr("The calibration has failed") << failureText();
    if (scores)
        lines << tr("Scores: left eye %1, right eye %2").arg(number(scores->left), number(scores->right));
    return lines.join('\n');
}

QString CalibrationOutcome::failureText() const {
    switch (failure) {
        case Failure::Start:
            return tr("The tracker did not start the calibration (%1)").arg(errorText());
        case Failure::Point:
            return tr("The tracker refused point %1 of %2 (%3)")
                .arg(QString::number(point), QString::number(calibration_layout::points.size()), errorText());
        case Failure::Computation:
            return tr("The tracker could not compute the calibration (%1)").arg(errorText());
        case Failure::Tracking:
            return tr("The tracker refused the new calibration (%1)").arg(errorText());
        case Failure::Saving:
            return tr("The calibration is used, but not saved, see Ocela.log");
        case Failure::None:
            break;
    }
    return {};
}

QString CalibrationOutcome::errorText() const {
    return error == asee_sdk::notAvailable ? tr("its library is not available") : tr("error %1").arg(error);
}
