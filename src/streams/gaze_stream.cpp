#include "streams/gaze_stream.h"

#include "core/numbered_sample.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QSysInfo>
#include <limits>

using lsl::DescriptionElement;

namespace {

constexpr double notMeasured = std::numeric_limits<double>::quiet_NaN();

struct Channel {
    const char *label;
    const char *eye;
    const char *type;
    const char *unit;
};

// In the order of the values. Types and units are those of the XDF convention for gaze.
constexpr Channel channels[] = {
    {"Left_ScreenX", "left", "ScreenX", "normalized"},
    {"Left_ScreenY", "left", "ScreenY", "normalized"},
    {"Left_Diameter", "left", "Diameter", "mm"},
    {"Left_Confidence", "left", "Confidence", "normalized"},
    {"Right_ScreenX", "right", "ScreenX", "normalized"},
    {"Right_ScreenY", "right", "ScreenY", "normalized"},
    {"Right_Diameter", "right", "Diameter", "mm"},
    {"Right_Confidence", "right", "Confidence", "normalized"},
    {"Both_ScreenX", "both", "ScreenX", "normalized"},
    {"Both_ScreenY", "both", "ScreenY", "normalized"},
    {"Both_Diameter", "both", "Diameter", "mm"},
    {"Both_Confidence", "both", "Confidence", "normalized"},
    {"Distance", "both", "Distance", "cm"},
    {"SampleNumber", "both", "SampleNumber", "count"},
};
static_assert(std::size(channels) == gaze_stream::channelCount);

DescriptionElement number(const char *name, int value) {
    return {name, QByteArray::number(value), {}};
}

DescriptionElement describe(const Channel &channel) {
    return {"channel",
            {},
            {{"label", channel.label, {}},
             {"eye", channel.eye, {}},
             {"type", channel.type, {}},
             {"unit", channel.unit, {}}}};
}

DescriptionElement describeChannels() {
    DescriptionElement element{"channels", {}, {}};
    for (const Channel &channel : channels)
        element.children.push_back(describe(channel));
    return element;
}

DescriptionElement describeAcquisition(const gaze_stream::Source &source) {
    DescriptionElement element{"acquisition", {}, {}};
    if (!source.manufacturer.isEmpty())
        element.children.push_back({"manufacturer", source.manufacturer.toUtf8(), {}});
    if (!source.model.isEmpty())
        element.children.push_back({"model", source.model.toUtf8(), {}});
    element.children.push_back({"tracker", source.tracker.toUtf8(), {}});
    element.children.push_back({"program", "Ocela", {}});
    element.children.push_back({"program_version", QCoreApplication::applicationVersion().toUtf8(), {}});
    // The samples of such a tracker have these axes exchanged, also in its record files.
    element.children.push_back({"right_eye_axes", source.rightEyeExchanged ? "corrected" : "as delivered", {}});
    return element;
}

DescriptionElement describeScreen(const gaze_stream::Source &source) {
    DescriptionElement element{"screen", {}, {}};
    if (source.screen) {
        element.children = {number("number", source.screen->number), number("width_px", source.screen->pixels.width()),
                            number("height_px", source.screen->pixels.height())};
    }
    const QRect &area = source.area;
    element.children.push_back({"calibrated_area",
                                {},
                                {number("x_px", area.x()), number("y_px", area.y()), number("width_px", area.width()),
                                 number("height_px", area.height())}});
    return element;
}

double measured(bool isMeasured, float value) {
    return isMeasured ? static_cast<double>(value) : notMeasured;
}

double share(bool isMeasured, float percent) {
    constexpr double percentOfWhole = 100;
    return measured(isMeasured, percent) / percentOfWhole;
}

}  // namespace

lsl::StreamDescription gaze_stream::description(const Source &source) {
    lsl::StreamDescription result;
    result.name = "Ocela Gaze";
    result.type = "Gaze";
    result.sourceId = lslSourceId("gaze " + source.tracker);
    result.format = lsl::doubleFormat;
    result.channelCount = channelCount;
    result.elements = {describeAcquisition(source), describeChannels()};
    if (!source.area.isEmpty())
        result.elements.push_back(describeScreen(source));
    return result;
}

gaze_stream::Values gaze_stream::valuesOf(const NumberedSample &numbered, bool rightEyeExchanged) {
    const EyeTrackingSample &sample = numbered.sample;
    const float rightX = rightEyeExchanged ? sample.r_y : sample.r_x;
    const float rightY = rightEyeExchanged ? sample.r_x : sample.r_y;
    const double leftPupil = measured(sample.l_valid && sample.l_pupil_mm > 0, sample.l_pupil_mm);
    const double rightPupil = measured(sample.r_valid && sample.r_pupil_mm > 0, sample.r_pupil_mm);
    const bool hasDistance = (sample.l_valid || sample.r_valid) && sample.distance_cm > 0;
    return {share(sample.l_valid, sample.l_x),
            share(sample.l_valid, sample.l_y),
            leftPupil,
            sample.l_valid ? 1.0 : 0.0,
            share(sample.r_valid, rightX),
            share(sample.r_valid, rightY),
            rightPupil,
            sample.r_valid ? 1.0 : 0.0,
            share(sample.valid, sample.x),
            share(sample.valid, sample.y),
            (leftPupil + rightPupil) / 2,
            sample.valid ? 1.0 : 0.0,
            measured(hasDistance, sample.distance_cm),
            static_cast<double>(numbered.number)};
}

QByteArray lslSourceId(const QString &name) {
    constexpr int idLength = 16;
    QByteArray machine = QSysInfo::machineUniqueId();
    if (machine.isEmpty())
        machine = QSysInfo::machineHostName().toUtf8();
    const QByteArray hash = QCryptographicHash::hash("Ocela LSL " + machine, QCryptographicHash::Sha256).toHex();
    return "Ocela " + hash.left(idLength) + ' ' + name.toUtf8();
}
