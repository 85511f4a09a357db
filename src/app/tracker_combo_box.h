#pragma once

#include "views/wheel_proof_combo_box.h"

#include <vector>

class EyetrackerInterface;

/// The list of the trackers. The entry of a tracker that records has a record icon. GUI thread.
class TrackerComboBox : public WheelProofComboBox {
    Q_OBJECT

public:
    explicit TrackerComboBox(QWidget *parent = nullptr) : WheelProofComboBox(parent) {}

    /// Adds an entry for a tracker, which is not owned.
    void addTracker(EyetrackerInterface *tracker);

private:
    void showRecordings();

    std::vector<EyetrackerInterface *> trackers_;  ///< in the order of the list
};
