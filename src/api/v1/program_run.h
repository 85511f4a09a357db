#pragma once

#include "core/arrival_clock.h"

#include <QByteArray>
#include <QUuid>

namespace api_v1 {

/// One run of the program: its id and its clock. Created when the program starts. Any thread.
class ProgramRun {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// A random id. It tells clients that the numbers of an earlier run have no meaning any more.
    [[nodiscard]] const QByteArray &id() const { return id_; }
    [[nodiscard]] TimePoint start() const { return start_; }

    /// Returns a time in ms since 1970 UTC, with three decimals. It never jumps, because the system clock is read only
    /// at the start.
    [[nodiscard]] QByteArray timeText(TimePoint time) const {
        return QByteArray::fromStdString(clock_.utcMsText(time));
    }
    [[nodiscard]] double timeMs(TimePoint time) const {
        return std::chrono::duration<double, std::milli>(clock_.utc(time)).count();
    }
    /// Returns the inverse of timeMs().
    [[nodiscard]] TimePoint timePoint(double timeMs) const {
        const std::chrono::duration<double, std::milli> sinceStart(timeMs - this->timeMs(start_));
        return start_ + std::chrono::duration_cast<TimePoint::duration>(sinceStart);
    }

private:
    const QByteArray id_ = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    const TimePoint start_ = std::chrono::steady_clock::now();
    const ArrivalClock clock_{std::chrono::system_clock::now(), start_};
};

}  // namespace api_v1
