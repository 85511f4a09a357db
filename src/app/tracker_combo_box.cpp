#include "app/tracker_combo_box.h"

#include "core/eyetracker_interface.h"

#include <QIcon>

void TrackerComboBox::addTracker(EyetrackerInterface *tracker) {
    trackers_.push_back(tracker);
    addItem(tracker->name());
    connect(tracker, &EyetrackerInterface::recordStarted, this, &TrackerComboBox::showRecordings);
    connect(tracker, &EyetrackerInterface::recordStopped, this, &TrackerComboBox::showRecordings);
}

void TrackerComboBox::showRecordings() {
    for (int index = 0; index < count(); ++index) {
        const bool records = trackers_[static_cast<std::size_t>(index)]->isRecording();
        setItemIcon(index, records ? QIcon(":/icons/record.svg") : QIcon());
    }
}
