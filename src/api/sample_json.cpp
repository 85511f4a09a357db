#include "api/sample_json.h"

#include "toolkit/number_text.h"

#include <QByteArray>
#include <QLocale>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

/// Up to here doubles hold every whole number, and beyond it QJsonDocument writes fewer digits than a whole number has.
constexpr double wholeNumberLimit = 9007199254740992.0;  // 2^53
/// Whole numbers below this are written without an exponent.
constexpr double plainLimit = 18446744073709551616.0;  // 2^64

/// Appends to memory of the caller's.
class Writer {
public:
    explicit Writer(char *to) : end_(to) {}

    template <std::size_t size, typename Value>
    Writer &field(const char (&key)[size], Value value) {
        text(key);
        write(value);
        return *this;
    }

    template <std::size_t size>
    Writer &text(const char (&characters)[size]) {
        end_ = std::copy_n(characters, size - 1, end_);
        return *this;
    }

    [[nodiscard]] char *end() const { return end_; }

private:
    void write(bool value) {
        if (value)
            text("true");
        else
            text("false");
    }
    void write(qint32 value) { end_ = writeNumber(end_, qint64(value)); }
    void write(qint64 value) {
        // All numbers of JSON are doubles to QJsonDocument.
        if (std::fabs(static_cast<double>(value)) < wholeNumberLimit)
            end_ = writeNumber(end_, value);
        else
            writeAsQtDoes(static_cast<double>(value));
    }
    void write(float value) {
        const auto number = static_cast<double>(value);
        if (!std::isfinite(number))
            text("null");
        else if (std::fabs(number) < wholeNumberLimit && number == std::trunc(number))
            end_ = writeNumber(end_, static_cast<qint64>(number));
        else if (std::fabs(number) < wholeNumberLimit)
            end_ = writeNumber(end_, number);
        else
            writeAsQtDoes(number);
    }
    void writeAsQtDoes(double number) {
        const char format = std::fabs(number) < plainLimit ? 'f' : 'g';
        const QByteArray digits = QByteArray::number(number, format, QLocale::FloatingPointShortest);
        end_ = std::copy(digits.begin(), digits.end(), end_);
    }

    char *end_;
};

}  // namespace

char *writeSampleJson(char *to, const EyeTrackingSample &sample) {
    return Writer(to)
        .field(R"({"distance_cm":)", sample.distance_cm)
        .field(R"(,"focus":)", sample.focus)
        .field(R"(,"l_pupil_mm":)", sample.l_pupil_mm)
        .field(R"(,"l_pupil_x":)", sample.l_pupil_x)
        .field(R"(,"l_pupil_y":)", sample.l_pupil_y)
        .field(R"(,"l_x":)", sample.l_x)
        .field(R"(,"l_x_px":)", sample.l_x_px)
        .field(R"(,"l_y":)", sample.l_y)
        .field(R"(,"l_y_px":)", sample.l_y_px)
        .field(R"(,"r_pupil_mm":)", sample.r_pupil_mm)
        .field(R"(,"r_pupil_x":)", sample.r_pupil_x)
        .field(R"(,"r_pupil_y":)", sample.r_pupil_y)
        .field(R"(,"r_x":)", sample.r_x)
        .field(R"(,"r_x_px":)", sample.r_x_px)
        .field(R"(,"r_y":)", sample.r_y)
        .field(R"(,"r_y_px":)", sample.r_y_px)
        .field(R"(,"timestamp":)", sample.timestamp)
        .field(R"(,"valid":)", sample.valid)
        .field(R"(,"x":)", sample.x)
        .field(R"(,"x_px":)", sample.x_px)
        .field(R"(,"y":)", sample.y)
        .field(R"(,"y_px":)", sample.y_px)
        .text("}")
        .end();
}

bool haveSameJson(const EyeTrackingSample &a, const EyeTrackingSample &b) {
    // From the first to the last of the numbers there is no gap.
    constexpr std::size_t from = offsetof(EyeTrackingSample, x);
    constexpr std::size_t size = offsetof(EyeTrackingSample, distance_cm) + sizeof(a.distance_cm) - from;
    static_assert(size == 20 * sizeof(float));
    const auto numbers = [](const EyeTrackingSample &sample) { return reinterpret_cast<const char *>(&sample) + from; };
    return a.timestamp == b.timestamp && a.valid == b.valid && std::memcmp(numbers(a), numbers(b), size) == 0;
}
