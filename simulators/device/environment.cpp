#include "device/environment.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

namespace sim::environment {

namespace {

constexpr int minImageSide = 16;
constexpr int maxImageSide = 8192;

/// Logs each value once, because the variables are read repeatedly.
void warnOnce(const char *name, const QString &value) {
    static std::mutex mutex;
    static auto *const logged = new std::set<QString>;
    const std::lock_guard lock(mutex);
    if (logged->insert(name + value).second)
        qWarning("%s: \"%s\" is invalid and ignored", name, qPrintable(value));
}

}  // namespace

std::optional<double> number(const char *name, double min, double max) {
    const QString value = text(name);
    if (value.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double result = value.toDouble(&ok);
    if (!ok || !std::isfinite(result)) {
        warnOnce(name, value);
        return std::nullopt;
    }
    return std::clamp(result, min, max);
}

double number(const char *name, double fallback, double min, double max) {
    return number(name, min, max).value_or(fallback);
}

int integer(const char *name, int fallback, int min, int max) {
    return static_cast<int>(number(name, fallback, min, max));
}

int anyInteger(const char *name) {
    return integer(name, 0, -std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
}

QString text(const char *name) {
    return qEnvironmentVariable(name);
}

std::optional<GazeAngles> gazeAngles(const char *name, double max_deg) {
    const QString value = text(name);
    const std::optional<GazeAngles> angles = parseGazeAngles(value);
    if (!angles && !value.isEmpty())
        warnOnce(name, value);
    if (!angles)
        return std::nullopt;
    return GazeAngles{std::clamp(angles->azimuth_deg, -max_deg, max_deg),
                      std::clamp(angles->elevation_deg, -max_deg, max_deg)};
}

std::set<std::string> words(const char *name, std::initializer_list<std::string_view> known) {
    std::set<std::string> result;
    for (const QString &word : text(name).split(',', Qt::SkipEmptyParts)) {
        if (std::find(known.begin(), known.end(), word.toStdString()) != known.end())
            result.insert(word.toStdString());
        else
            warnOnce(name, word);
    }
    return result;
}

std::optional<Size> size(const char *name) {
    const QString value = text(name);
    const QStringList sides = value.split('x');
    bool widthOk = false;
    bool heightOk = false;
    const Size size{sides.first().toInt(&widthOk), sides.last().toInt(&heightOk)};
    if (widthOk && heightOk && sides.size() == 2)
        return size;
    if (!value.isEmpty())
        warnOnce(name, value);
    return std::nullopt;
}

Size imageSize(const char *name, Size fallback) {
    const Size image = size(name).value_or(fallback);
    return {std::clamp(image.width, minImageSide, maxImageSide), std::clamp(image.height, minImageSide, maxImageSide)};
}

}  // namespace sim::environment
