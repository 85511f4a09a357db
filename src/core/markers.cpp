#include "core/markers.h"

#include "core/eyetracker_interface.h"

#include <algorithm>

namespace {

QString storableText(const QString &text) {
    QString result = text.left(Markers::maxTextLength);
    if (result.size() < text.size() && result.at(result.size() - 1).isHighSurrogate())
        result.chop(1);
    return result.replace(QChar::Null, QChar::ReplacementCharacter);
}

}  // namespace

Markers::Markers(QObject *parent) : QObject(parent) {
    qRegisterMetaType<Marker>();
}

Marker Markers::add(const QString &text, std::optional<std::chrono::steady_clock::time_point> time) {
    const auto now = std::chrono::steady_clock::now();
    Marker marker{storableText(text), std::clamp(time.value_or(now), now - maxTimeDifference, now + maxTimeDifference)};
    if (EyetrackerInterface *tracker = selectedTracker_)
        marker.number = tracker->lastNumberedSample().number;
    for (EyetrackerInterface *tracker : trackers_)
        marker.recorded = tracker->addMarker(marker) || marker.recorded;
    Q_EMIT added(marker);
    return marker;
}
