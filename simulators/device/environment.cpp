#include "device/environment.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

namespace sim::environment {

namespace {

/// Once for each value, as the variables are read again and again.
void complain(const char *name, const QString &value) {
    static std::mutex mutex;
    static auto *const said = new std::set<QString>;
    const std::lock_guard lock(mutex);
    if (said->insert(name + value).second)
        qWarning("%s: \"%s\" makes no sense and is passed over", name, qPrintable(value));
}

}  // namespace

double number(const char *name, double fallback, double low, double high) {
    const QString value = text(name);
    if (value.isEmpty())
        return fallback;
    bool ok = false;
    const double result = value.toDouble(&ok);
    if (!ok || !std::isfinite(result)) {
        complain(name, value);
        return fallback;
    }
    return std::clamp(result, low, high);
}

int integer(const char *name, int fallback, int low, int high) {
    return static_cast<int>(number(name, fallback, low, high));
}

int anyInteger(const char *name) {
    return integer(name, 0, -std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
}

QString text(const char *name) {
    return qEnvironmentVariable(name);
}

std::set<std::string> words(const char *name, std::initializer_list<std::string_view> known) {
    std::set<std::string> result;
    for (const QString &word : text(name).split(',', Qt::SkipEmptyParts)) {
        if (std::find(known.begin(), known.end(), word.toStdString()) != known.end())
            result.insert(word.toStdString());
        else
            complain(name, word);
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
        complain(name, value);
    return std::nullopt;
}

Size size(const char *name, Size fallback, int low, int high) {
    const Size size = environment::size(name).value_or(fallback);
    return {std::clamp(size.width, low, high), std::clamp(size.height, low, high)};
}

}  // namespace sim::environment
