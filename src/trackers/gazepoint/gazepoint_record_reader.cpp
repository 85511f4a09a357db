#include "trackers/gazepoint/gazepoint_record_reader.h"

#include "core/pixels.h"
#include "trackers/gazepoint/gazepoint_attributes.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr std::string_view recordPrefix = "<REC";
constexpr std::string_view screenSizePrefix = "<ACK ID=\"SCREEN_SIZE\"";

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

/// Returns the number, or 0 if `text` contains anything else. Surrounding whitespace and a plus sign are allowed.
template <typename T>
T numberOr0(std::string_view text) {
    text = trimmed(text);
    if (startsWith(text, "+") && !startsWith(text, "+-"))
        text.remove_prefix(1);
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : T{};
}

float fraction(std::string_view text) {
    const auto number = numberOr0<float>(text);
    return std::isfinite(number) ? number : 0.0F;
}

struct Axis {
    float EyeTrackingSample::*percent;
    qint32 EyeTrackingSample::*pixel;
    bool horizontal;
};

struct GazeKey {
    std::string_view key;
    Axis axis;
};

// The right eye is stored crossed: RPOGX fills the Y fields and RPOGY the X fields. That is intended.
constexpr GazeKey gazeKeys[] = {
    {"FPOGX", {&EyeTrackingSample::x, &EyeTrackingSample::x_px, true}},
    {"FPOGY", {&EyeTrackingSample::y, &EyeTrackingSample::y_px, false}},
    {"LPOGX", {&EyeTrackingSample::l_x, &EyeTrackingSample::l_x_px, true}},
    {"LPOGY", {&EyeTrackingSample::l_y, &EyeTrackingSample::l_y_px, false}},
    {"RPOGX", {&EyeTrackingSample::r_y, &EyeTrackingSample::r_y_px, false}},
    {"RPOGY", {&EyeTrackingSample::r_x, &EyeTrackingSample::r_x_px, true}},
};

struct FlagKey {
    std::string_view key;
    bool EyeTrackingSample::*flag;
};

constexpr FlagKey flagKeys[] = {
    {"FPOGV", &EyeTrackingSample::valid},
    {"LPV", &EyeTrackingSample::l_valid},
    {"RPV", &EyeTrackingSample::r_valid},
};

struct LengthKey {
    std::string_view key;
    float EyeTrackingSample::*millimetres;
};

constexpr LengthKey lengthKeys[] = {
    {"LPMM", &EyeTrackingSample::l_pupil_mm},
    {"RPMM", &EyeTrackingSample::r_pupil_mm},
};

template <typename Table>
auto find(const Table &table, std::string_view key) {
    return std::find_if(std::begin(table), std::end(table), [key](const auto &entry) { return entry.key == key; });
}

void setGaze(EyeTrackingSample &sample, const Axis &axis, QSize screen, float value) {
    // A finite fraction can overflow as a percentage.
    if (!std::isfinite(value * 100.0F))
        value = 0.0F;
    const auto side = static_cast<float>(axis.horizontal ? screen.width() : screen.height());
    sample.*axis.percent = value * 100.0F;
    sample.*axis.pixel = pixels::truncated(side * value);
}

void setField(EyeTrackingSample &sample, QSize screen, std::string_view key, std::string_view value) {
    if (const auto *gaze = find(gazeKeys, key); gaze != std::end(gazeKeys))
        setGaze(sample, gaze->axis, screen, fraction(value));
    else if (const auto *flag = find(flagKeys, key); flag != std::end(flagKeys))
        sample.*flag->flag = value == "1";
    else if (const auto *length = find(lengthKeys, key); length != std::end(lengthKeys))
        sample.*length->millimetres = fraction(value);
}

}  // namespace

gazepoint::Message gazepoint::kindOf(std::string_view message) {
    if (startsWith(message, recordPrefix))
        return Message::Record;
    return startsWith(message, screenSizePrefix) ? Message::ScreenSize : Message::Other;
}

EyeTrackingSample gazepoint::parseRecord(std::string_view message, QSize screen, qint64 timestampMs) {
    EyeTrackingSample sample;
    sample.timestamp = timestampMs;
    forEachAttribute(message,
                     [&](std::string_view key, std::string_view value) { setField(sample, screen, key, value); });
    return sample;
}

gazepoint::Screen gazepoint::parseScreen(std::string_view message) {
    Screen screen;
    forEachAttribute(message, [&](std::string_view key, std::string_view value) {
        if (key == "X")
            screen.origin.setX(numberOr0<int>(value));
        else if (key == "Y")
            screen.origin.setY(numberOr0<int>(value));
        else if (key == "WIDTH")
            screen.size.setWidth(numberOr0<int>(value));
        else if (key == "HEIGHT")
            screen.size.setHeight(numberOr0<int>(value));
    });
    return screen;
}
