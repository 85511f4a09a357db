#include "core/markers.h"

#include "core/eyetracker_interface.h"

Markers::Markers(QObject *parent) : QObject(parent) {
    qRegisterMetaType<Marker>();
}

Marker Markers::add(const QString &text, std::optional<std::chrono::steady_clock::time_point> time) {
    Marker marker{text, time.value_or(std::chrono::steady_clock::now())};
    if (EyetrackerInterface *tracker = selectedTracker_)
        marker.number = tracker->lastNumberedSample().number;
    for (EyetrackerInterface *tracker : trackers_)
        marker.recorded = tracker->addMarker(marker) || marker.recorded;
    Q_EMIT added(marker);
    return marker;
}
