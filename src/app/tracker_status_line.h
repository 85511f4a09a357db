#pragma once

#include "app/tracker_monitor.h"
#include "core/eyetracker_interface.h"
#include "views/base_eyetracker_widget.h"

#include <QDeadlineTimer>
#include <optional>

class ElidedLabel;
class QToolButton;

/// Says what the selected tracker is doing, and for some seconds how its last calibration has ended. While the tracker
/// is not connected or delivers no samples, a button opens it again. GUI thread.
class TrackerStatusLine : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit TrackerStatusLine(QWidget *parent = nullptr);

    /// Updates the text and the button.
    void refresh();

protected:
    void eyetrackerChanged() override;

private:
    void reconnect();
    void showCalibration(EyetrackerInterface::CalibrationResult result);
    [[nodiscard]] QString calibrationText() const;

    std::optional<TrackerMonitor> monitor_;
    EyetrackerInterface::CalibrationResult calibration_ = EyetrackerInterface::CalibrationResult::Unknown;
    QDeadlineTimer calibrationShown_{0};  ///< expires when the result of the calibration is no longer shown
    ElidedLabel *label_;
    QToolButton *reconnectButton_;
};
