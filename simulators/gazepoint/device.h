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

/// The screen that SCREEN_SIZE reports. The values are text, so that clients can be tested with values that do not fit
/// an integer.
struct Screen {
    QByteArray x = "0";
    QByteArray y = "0";
    QByteArray width = "1920";
    QByteArray height = "1080";
};

struct DeviceOptions {
    Screen screen;
    bool olderServer = false;      ///< SCREEN_SIZE has no X and Y
    int rateHz = 60;               ///< reported by PRODUCT_ID
    std::int64_t ticksAtZero = 0;  ///< TIME_TICK at time 0
};

/// The tracker and its server without the network: answers commands and takes samples.
///
/// All clients share the device. Each client has switches of its own. The caller owns the subject, which must outlive
/// the device.
class Device {
public:
    Device(const DeviceOptions &options, Subject &subject);

    struct Answer {
        QByteArray message;  ///< an ACK with the current values, or a NACK
        Switches switches;   ///< of the client, after the command
    };
    /// Executes a command of a client that has these switches.
    [[nodiscard]] Answer execute(const Command &command, Switches switches);

    struct Step {
        Record record;
        std::vector<QByteArray> calibrationMessages;  ///< for all clients
    };
    /// Takes the next sample at `seconds` of the monotonic clock.
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
    std::optional<Attributes> valuesAfter(const Command &command);
    static Attributes assign(const Command &command, Variable &variable);
    void guideSubject(bool targetChanged);

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

    Subject &subject_;
    RecordBuilder builder_;
    Calibration calibration_;
    QMap<QByteArray, Variable> variables_;  // the values that SET and GET access, by id
    Point cursor_;
    bool guided_ = false;  // the subject looks at the targets of a calibration
};

}  // namespace sim::gazepoint
