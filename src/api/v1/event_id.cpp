#include "api/v1/event_id.h"

#include <QList>
#include <algorithm>

using namespace api_v1;

namespace {

std::optional<quint64> parseNumber(const QByteArray &text) {
    const bool isDigits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool ok = false;
    const quint64 value = text.toULongLong(&ok);
    return isDigits && ok ? std::make_optional(value) : std::nullopt;
}

}  // namespace

std::optional<EventId> EventId::parse(const QByteArray &text) {
    const QList<QByteArray> parts = text.split(':');
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    const std::optional<quint64> sample = parseNumber(parts[1]);
    const std::optional<quint64> markerCount = parts.size() == 3 ? parseNumber(parts[2]) : std::nullopt;
    if (!sample || (parts.size() == 3 && !markerCount))
        return std::nullopt;
    return EventId{parts[0], *sample, markerCount};
}
