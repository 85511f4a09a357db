#include "api/v1/marker_log.h"

#include <algorithm>

using namespace api_v1;

void MarkerLog::add(const Marker &marker, const std::function<quint64()> &newestNumber) {
    log_.with([&](Log &log) {
        log.entries.push_back({marker, newestNumber()});
        if (log.entries.size() > maxMarkers) {
            log.entries.pop_front();
            ++log.droppedCount;
        }
    });
    signal_->set();
}

quint64 MarkerLog::count() const {
    return log_.with([](const Log &log) { return log.droppedCount + log.entries.size(); });
}

MarkerLog::Since MarkerLog::since(quint64 first) const {
    return log_.with([first](const Log &log) {
        Since result;
        result.next = log.droppedCount + log.entries.size();
        result.missedCount = log.droppedCount > first ? log.droppedCount - first : 0;
        for (quint64 index = std::max(first, log.droppedCount); index < result.next; ++index)
            result.markers.push_back(log.entries[index - log.droppedCount].marker);
        return result;
    });
}

quint64 MarkerLog::firstAfter(quint64 number) const {
    return log_.with([number](const Log &log) {
        const auto isSent = [number](const Entry &entry) { return entry.newestNumber < number; };
        const auto first = std::find_if_not(log.entries.begin(), log.entries.end(), isSent);
        return log.droppedCount + static_cast<quint64>(first - log.entries.begin());
    });
}
