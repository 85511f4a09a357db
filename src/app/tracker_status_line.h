#pragma once

#include "app/tracker_monitor.h"
#include "core/eyetracker_interface.h"
#include "views/base_eyetracker_widget.h"

#include <QDeadlineTimer>
#include <optional>

class ElidedLabel;
class QToolButton;

/// The part of the status bar for the selected tracker. Shows its state, and for 15 s the result of its last
/// calibration. While the tracker is not connected or delivers no samples, a button opens it again. After a calibration
/// that has not failed, a button opens the page that measures its accuracy. GUI thread.
class TrackerStatusLine : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit TrackerStatusLine(QWidget *parent = nullptr);

    /// Updates the text and the button.
    void refresh();

    /// Sets whether the validation page can be opened in the browser.
    void setValidationAvailable(bool available);

protected:
    void eyetrackerChanged() override;

private:
    void reconnect();
    void forgetCalibration();
    void showCalibration(EyetrackerInterface::CalibrationResult result);
    [[nodiscard]] QString calibrationText() const;

    std::optional<TrackerMonitor> monitor_;
    EyetrackerInterface::CalibrationResult calibration_ = EyetrackerInterface::CalibrationResult::Unknown;
    QDeadlineTimer calibrationShown_{0};  ///< the result of a calibration is shown until it expires
    bool mayValidate_ = false;            ///< from the end of a calibration until the next one or a lost connection
    bool validationAvailable_ = true;
    ElidedLabel *label_;
    QToolButton *validateButton_;
    QToolButton *reconnectButton_;
};
