#pragma once

#include <QByteArray>
#include <optional>

namespace api_v1 {

/// A position in a stream, as clients send it back to resume: `RUN:NUMBER:MARKERS`.
struct EventId {
    QByteArray run;
    quint64 number = 0;  ///< of the last sample that the client has
    /// How many markers were set in the run until the last one that the client has. A client that composes the id
    /// itself may leave it out.
    std::optional<quint64> markerCount;

    /// Returns nothing if `text` is not an id.
    [[nodiscard]] static std::optional<EventId> parse(const QByteArray &text);
};

}  // namespace api_v1
