#pragma once

#include "app/tracker_monitor.h"
#include "core/eyetracker_interface.h"
#include "views/base_eyetracker_widget.h"

#include <QDeadlineTimer>
#include <optional>

class ElidedLabel;
class QToolButton;

/// The part of the status bar for the selected tracker. Shows its state, and for 15 s the result of its last
/// calibration. While the tracker is not connected or delivers no samples, a button opens it again. GUI thread.
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
    QDeadlineTimer calibrationShown_{0};  ///< the result of a calibration is shown until it expires
    ElidedLabel *label_;
    QToolButton *reconnectButton_;
};
