#include "gazepoint/device.h"

#include "gazepoint/messages.h"

#include <cmath>

namespace sim::gazepoint {

namespace {

constexpr double maxCalibrationTime_s = 60;  // of the delay and of the timeout
constexpr int listDecimals = 5;
constexpr int errorDecimals = 2;

bool isSet(const Command &command) {
    return command.verb == "SET";
}

QByteArray stateText(bool on) {
    return on ? "1" : "0";
}

/// Returns the state that a SET requests, or the current state if there is no valid request.
bool requestedState(const Command &command, bool current) {
    bool ok = false;
    const int state = command.value("STATE").value_or(QByteArray()).toInt(&ok);
    return isSet(command) && ok ? state != 0 : current;
}

std::optional<double> number(const Command &command, const char *name, double low, double high) {
    bool ok = false;
    const double value = command.value(name).value_or(QByteArray()).toDouble(&ok);
    if (!isSet(command) || !ok || !(value >= low && value <= high))
        return std::nullopt;
    return value;
}

QVector<Attribute> screenAttributes(const Screen &screen, bool olderServer) {
    QVector<Attribute> size{{"WIDTH", screen.width}, {"HEIGHT", screen.height}};
    if (!olderServer)
        size = QVector<Attribute>{{"X", screen.x}, {"Y", screen.y}} + size;
    return size;
}

}  // namespace

Device::Device(const DeviceOptions &options, Subject &subject)
    : subject_(subject), builder_(subject.setup(), options.ticksAtZero) {
    variables_ = {
        {"SCREEN_SIZE", {screenAttributes(options.screen, options.olderServer), true}},
        {"CALIBRATE_SHOW", {{{"STATE", "0"}}, true}},
        {"CALIBRATE_DELAY", {{{"VALUE", "0.5"}}, true}},
        {"CALIBRATE_TIMEOUT", {{{"VALUE", "1.25"}}, true}},
        {"TRACKER_DISPLAY", {{{"STATE", "0"}}, true}},
        {"USER_DATA", {{{"VALUE", "0"}}, true}},
        {"TRACKER_ID", {{{"ACTIVE_ID", "1"}, {"MAX_ID", "1"}, {"SEARCH", "NONE"}}, true}},
        {"AAC_FILTER", {{{"VALUE", "15"}}, true}},
        {"TTL_WRITE", {{{"CHANNEL", "0"}, {"VALUE", "0"}}, true}},
        {"CAMERA_SIZE", {{{"WIDTH", "752"}, {"HEIGHT", "480"}}}},
        {"PRODUCT_ID", {{{"VALUE", "GP3"}, {"BUS", "USB2"}, {"RATE", QByteArray::number(options.rateHz)}}}},
        {"SERIAL_ID", {{{"VALUE", "123456789"}}}},
        {"COMPANY_ID", {{{"VALUE", "GAZEPOINT"}}}},
        {"API_ID", {{{"VALUE", "2.4"}}}},
        {"TIME_TICK_FREQUENCY", {{{"FREQ", QByteArray::number(qlonglong(RecordBuilder::ticksPerSecond))}}}},
    };
}

Device::Answer Device::execute(const Command &command, Switches switches) {
    if (!isSet(command) && command.verb != "GET")
        return {message("NACK", command.id), switches};
    if (const auto state = switches.state(command.id)) {
        const bool on = requestedState(command, *state);
        switches.set(command.id, on);
        return {message("ACK", command.id, {{"STATE", stateText(on)}}), switches};
    }
    const auto values = valuesAfter(command);
    return {values ? message("ACK", command.id, *values) : message("NACK", command.id), switches};
}

Device::Step Device::advance(double seconds) {
    const EyeState eyes = subject_.at(seconds);
    Step step;
    step.record = builder_.build(seconds, eyes);
    step.record.cursor = cursor_;
    step.record.userData = variables_["USER_DATA"].values.first().value;

    const bool calibrating = calibration_.running();
    step.calibrationMessages = calibration_.advance(seconds, eyes);
    if (calibrating && !calibration_.running())
        builder_.restartTime(seconds);
    guideSubject(!step.calibrationMessages.empty());
    return step;
}

void Device::guideSubject(bool targetChanged) {
    const auto target = calibration_.target();
    if (target && targetChanged)
        subject_.lookAt(*target);
    else if (!calibration_.running() && guided_)
        subject_.release();
    guided_ = calibration_.running();
}

std::optional<Device::Attributes> Device::valuesAfter(const Command &command) {
    if (const auto handler = calibrationCommands().value(command.id))
        return (this->*handler)(command);
    const auto variable = variables_.find(command.id);
    if (variable == variables_.end())
        return std::nullopt;
    return assign(command, variable.value());
}

/// Assigns the attributes that the variable has, and ignores the other attributes of the command.
Device::Attributes Device::assign(const Command &command, Variable &variable) {
    if (!isSet(command) || !variable.writable)
        return variable.values;
    for (Attribute &attribute : variable.values) {
        if (attribute.name == "STATE")
            attribute.value = stateText(requestedState(command, attribute.value == "1"));
        else
            attribute.value = command.value(attribute.name.constData()).value_or(attribute.value);
    }
    return variable.values;
}

const QMap<QByteArray, Device::CalibrationCommand> &Device::calibrationCommands() {
    static const QMap<QByteArray, CalibrationCommand> commands{
        {"CALIBRATE_START", &Device::calibrateStart},
        {"CALIBRATE_CLEAR", &Device::calibrateClear},
        {"CALIBRATE_RESET", &Device::calibrateReset},
        {"CALIBRATE_ADDPOINT", &Device::calibrateAddPoint},
        {"CALIBRATE_DELAY", &Device::calibrateDelay},
        {"CALIBRATE_TIMEOUT", &Device::calibrateTimeout},
        {"CALIBRATE_RESULT_SUMMARY", &Device::calibrateResultSummary},
    };
    return commands;
}

Device::Attributes Device::calibrateStart(const Command &command) {
    const bool wanted = requestedState(command, calibration_.running());
    if (!wanted)
        calibration_.stop();
    else if (isSet(command))
        calibration_.start();
    return {{"STATE", stateText(calibration_.running())}};
}

Device::Attributes Device::calibrateClear(const Command &command) {
    if (isSet(command))
        calibration_.clearPoints();
    return {pointCount()};
}

Device::Attributes Device::calibrateReset(const Command &command) {
    if (isSet(command))
        calibration_.resetPoints();
    return {pointCount()};
}

Device::Attributes Device::calibrateAddPoint(const Command &command) {
    const auto x = number(command, "X", 0, 1), y = number(command, "Y", 0, 1);
    if (x && y)
        calibration_.addPoint({*x, *y});
    Attributes list{pointCount()};
    int index = 0;
    for (const Point point : calibration_.points()) {
        const QByteArray suffix = QByteArray::number(++index);
        list << Attribute{"X" + suffix, decimals(point.x, listDecimals)}
             << Attribute{"Y" + suffix, decimals(point.y, listDecimals)};
    }
    return list;
}

Device::Attributes Device::calibrateDelay(const Command &command) {
    return calibrationTime(command, &Calibration::setDelay);
}

Device::Attributes Device::calibrateTimeout(const Command &command) {
    return calibrationTime(command, &Calibration::setTimeout);
}

Device::Attributes Device::calibrationTime(const Command &command, void (Calibration::*set)(double seconds)) {
    Variable &variable = variables_[command.id];
    const auto seconds = number(command, "VALUE", 0, maxCalibrationTime_s);
    if (!seconds)
        return variable.values;
    (calibration_.*set)(*seconds);
    return assign(command, variable);
}

Device::Attributes Device::calibrateResultSummary(const Command & /*command*/) {
    const auto summary = calibration_.summary(screenValue("WIDTH"), screenValue("HEIGHT"));
    return {{"AVE_ERROR", decimals(summary.averageError_px, errorDecimals)},
            {"VALID_POINTS", QByteArray::number(summary.validPointCount)}};
}

Attribute Device::pointCount() const {
    return {"PTS", QByteArray::number(static_cast<qulonglong>(calibration_.points().size()))};
}

double Device::screenValue(const char *name) const {
    for (const Attribute &attribute : variables_["SCREEN_SIZE"].values) {
        if (attribute.name == name)
            return attribute.value.toDouble();
    }
    return 0;
}

}  // namespace sim::gazepoint
