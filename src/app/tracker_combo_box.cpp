#include "app/tracker_combo_box.h"

#include "core/eyetracker_interface.h"

#include <QIcon>

namespace {

constexpr int iconMargin = 12;

}  // namespace

void TrackerComboBox::addTracker(EyetrackerInterface *tracker) {
    trackers_.push_back(tracker);
    addItem(tracker->name());
    // Otherwise, the first tracker would determine the size.
    setSizeAdjustPolicy(AdjustToContents);
    // Room for the icon, so that the list does not become wider or cut off the name when a recording starts.
    setMinimumWidth(QComboBox::sizeHint().width() + iconSize().width() + iconMargin);
    connect(tracker, &EyetrackerInterface::recordStarted, this, &TrackerComboBox::showRecordings);
    connect(tracker, &EyetrackerInterface::recordStopped, this, &TrackerComboBox::showRecordings);
}

void TrackerComboBox::showRecordings() {
    for (int index = 0; index < count(); ++index) {
        const bool records = trackers_[static_cast<std::size_t>(index)]->isRecording();
        setItemIcon(index, records ? QIcon(":/icons/record.svg") : QIcon());
    }
}
