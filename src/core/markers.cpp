#include "core/markers.h"

#include "core/eyetracker_interface.h"

#include <algorithm>

namespace {

/// Returns the index after the code point at `index`.
int next(const QString &text, int index) {
    const bool isPair = text[index].isHighSurrogate() && index + 1 < text.size() && text[index + 1].isLowSurrogate();
    return index + (isPair ? 2 : 1);
}

QString storableText(const QString &text) {
    int end = 0;
    for (int length = 0; length < Markers::maxTextLength && end < text.size(); ++length)
        end = next(text, end);
    return text.left(end).replace(QChar::Null, QChar::ReplacementCharacter);
}

}  // namespace

Markers::Markers(QObject *parent) : QObject(parent) {
    qRegisterMetaType<Marker>();
}

int Markers::lengthOf(const QString &text) {
    int length = 0;
    for (int index = 0; index < text.size(); index = next(text, index))
        ++length;
    return length;
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
