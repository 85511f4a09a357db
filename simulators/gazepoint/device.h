#pragma once

#include "gazepoint/calibration.h"
#include "gazepoint/command_parser.h"
#include "gazepoint/field_groups.h"
#include "gazepoint/record_builder.h"
#include "subject/subject.h"

#include <QByteArray>
#include <QMap>
#include <QVector>
#include <vector>

namespace sim::gazepoint {

/// The screen as SCREEN_SIZE tells it. Texts, so that sizes which make no sense reach the clients as they
/// were given.
struct Screen {
    QByteArray x = "0";
    QByteArray y = "0";
    QByteArray width = "1920";
    QByteArray height = "1080";
};

struct DeviceOptions {
    Screen screen;
    bool olderServer = false;  ///< SCREEN_SIZE is told without X and Y
    int rate = 60;             ///< as PRODUCT_ID tells it
    std::int64_t ticksAtZero = 0;
};

/// The tracker and its server without the network: answers commands and turns time into records.
///
/// Shared by all clients; what is a client's own (its switches) is handed in with each command. The subject
/// is owned by the caller and outlives the device.
class Device {
public:
    Device(const DeviceOptions &options, Subject *subject);

    /// Does what the command says and returns the answer, an ACK with the values that are now in force or a
    /// NACK.
    QByteArray execute(const Command &command, Switches *switches);

    struct Step {
        Record record;
        std::vector<QByteArray> calibrationMessages;  ///< for all clients
    };
    /// The next sample, taken at `seconds` of the monotonic clock.
    Step advance(double seconds);

    void setCursor(Point position) { cursor_ = position; }

private:
    using Attributes = QVector<Attribute>;
    using CalibrationCommand = Attributes (Device::*)(const Command &);
    struct Variable {
        Attributes values;
        bool writable = false;
    };

    static const QMap<QByteArray, CalibrationCommand> &calibrationCommands();
    std::optional<Attributes> valuesAfter(const Command &command, Switches *switches);
    Attributes assign(const Command &command, Variable *variable);
    void guideSubject(bool newTarget);

    Attributes calibrateStart(const Command &command);
    Attributes calibrateClear(const Command &command);
    Attributes calibrateReset(const Command &command);
    Attributes calibrateAddPoint(const Command &command);
    Attributes calibrateDelay(const Command &command);
    Attributes calibrateTimeout(const Command &command);
    Attributes calibrationTime(const Command &command, void (Calibration::*set)(double seconds));
    Attributes calibrateResultSummary(const Command &command);
    [[nodiscard]] Attribute pointCount() const;
    [[nodiscard]] double screenValue(const char *name) const;

    Subject *subject_;
    RecordBuilder builder_;
    Calibration calibration_;
    QMap<QByteArray, Variable> variables_;  // what is only kept and told
    Point cursor_;
    bool guided_ = false;  // the calibration tells the subject where to look
};

}  // namespace sim::gazepoint
