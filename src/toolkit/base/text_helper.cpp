#include "toolkit/base/text_helper.h"

#include <array>

namespace {

constexpr qint64 msPerSecond = 1000;

/// Each response of the HTTP API contains the current time, and formatting it takes microseconds. Therefore each thread
/// caches the text of the current second.
QString cachedSecondText(qint64 secondsSinceEpoch) {
    thread_local qint64 cachedSecond = -1;
    // Not a QString: MinGW frees the memory of thread_local objects before it calls their destructors.
    thread_local std::array<char, 32> text{};
    if (secondsSinceEpoch != cachedSecond) {
        const QDateTime second = QDateTime::fromMSecsSinceEpoch(secondsSinceEpoch * msPerSecond);
        qstrncpy(text.data(), second.toString("yyyy-MM-dd_HH-mm-ss").toLatin1().constData(), text.size());
        cachedSecond = secondsSinceEpoch;
    }
    return QString::fromLatin1(text.data());
}

void appendMilliseconds(QString &text, int milliseconds) {
    text += QLatin1Char('-');
    for (int unit = 100; unit > 0; unit /= 10)
        text += QLatin1Char(static_cast<char>('0' + milliseconds / unit % 10));
}

}  // namespace

QString TextHelper::DateTimeFileString(const QDateTime &moment, bool withMilliseconds) {
    const qint64 ms = moment.isNull() ? QDateTime::currentMSecsSinceEpoch() : moment.toMSecsSinceEpoch();
    const auto withinSecond = static_cast<int>((ms % msPerSecond + msPerSecond) % msPerSecond);
    QString text = cachedSecondText((ms - withinSecond) / msPerSecond);
    if (withMilliseconds)
        appendMilliseconds(text, withinSecond);
    return text;
}
