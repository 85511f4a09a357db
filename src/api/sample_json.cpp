#include "api/sample_json.h"

#include "toolkit/table/number_text.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace {

/// A double represents all whole numbers up to 2^53 exactly. QJsonDocument rounds the digits of larger numbers.
constexpr double maxWholeNumber = 9007199254740992.0;
/// QJsonDocument writes numbers from 2^64 on with an exponent.
constexpr double minExponentNumber = 18446744073709551616.0;

/// Appends text to a buffer of sufficient size.
class Writer {
public:
    explicit Writer(char *begin) : end_(begin) {}

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
    void write(qint32 value) { end_ = number_text::write(end_, qint64(value)); }
    void write(qint64 value) {
        // QJsonDocument stores all numbers as double.
        if (std::fabs(static_cast<double>(value)) < maxWholeNumber)
            end_ = number_text::write(end_, value);
        else
            writeLargeNumber(static_cast<double>(value));
    }
    void write(float value) {
        const auto number = static_cast<double>(value);
        if (!std::isfinite(number))
            text("null");
        else if (std::fabs(number) < maxWholeNumber && number == std::trunc(number))
            end_ = number_text::write(end_, static_cast<qint64>(number));
        else if (std::fabs(number) < maxWholeNumber)
            end_ = number_text::write(end_, number);
        else
            writeLargeNumber(number);
    }
    void writeLargeNumber(double number) {
        const char format = std::fabs(number) < minExponentNumber ? 'f' : 'g';
        const QByteArray digits = QByteArray::number(number, format, QLocale::FloatingPointShortest);
        end_ = std::copy(digits.begin(), digits.end(), end_);
    }

    char *end_;
};

}  // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): clearing the buffer would take longer than writing the text.
SampleJson::SampleJson(const EyeTrackingSample &sample) {
    const char *end = Writer(text_.data())
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
    sizeBytes_ = static_cast<int>(end - text_.data());
}
