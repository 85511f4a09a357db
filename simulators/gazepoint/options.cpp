#include "gazepoint/options.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <limits>

namespace sim::gazepoint {

namespace {

constexpr double minRateHz = 1;
constexpr double maxRateHz = 5000;
constexpr double maxTime_s = 1e6;

/// Reads the values of a parser and keeps the first error.
class Values {
public:
    explicit Values(const QCommandLineParser &parser) : parser_(parser) {}

    double number(const QString &option, double min, double max) {
        bool ok = false;
        const double value = parser_.value(option).toDouble(&ok);
        return check(ok && value >= min && value <= max, option, QString("a number from %1 to %2").arg(min).arg(max))
                   ? value
                   : min;
    }

    GazeAngles gazeAngles(const QString &option, double max_deg) {
        const auto angles = parseGazeAngles(parser_.value(option));
        const bool ok =
            angles && std::abs(angles->azimuth_deg) <= max_deg && std::abs(angles->elevation_deg) <= max_deg;
        check(ok, option, QString("one angle or two, separated by a comma, from -%1 to %1").arg(max_deg));
        return angles.value_or(GazeAngles());
    }

    template <typename Unsigned>
    Unsigned whole(const QString &option) {
        bool ok = false;
        const quint64 value = parser_.value(option).toULongLong(&ok);
        const quint64 max = std::numeric_limits<Unsigned>::max();
        check(ok && value <= max, option, QString("a whole number from 0 to %1").arg(max));
        return static_cast<Unsigned>(value);
    }

    Screen screen(const QString &option) {
        const auto screen = parseScreen(parser_.value(option));
        check(screen.has_value(), option, "a size such as 1920x1080 or 1920x1080-1920+0");
        return screen.value_or(Screen());
    }

    QVector<Fault> faults(const QString &option) {
        QVector<Fault> faults;
        const QStringList names = parser_.values(option).join(',').split(',', Qt::SkipEmptyParts);
        for (const QString &name : names) {
            const auto fault = faultOfName(name.trimmed());
            if (fault)
                faults.append(*fault);
            else
                fail(QString("--%1: there is no fault \"%2\"").arg(option, name));
        }
        return faults;
    }

    void fail(const QString &reason) {
        if (error_.isEmpty())
            error_ = reason;
    }

    [[nodiscard]] const QString &error() const { return error_; }

private:
    bool check(bool ok, const QString &option, const QString &expected) {
        if (!ok)
            fail(QString("--%1 takes %2, not \"%3\"").arg(option, expected, parser_.value(option)));
        return ok;
    }

    const QCommandLineParser &parser_;
    QString error_;
};

QString faultHelp() {
    QString text = "Faults of the data stream, separated by commas:";
    for (const FaultDescription &description : faultDescriptions())
        text += QString("\n%1: %2").arg(description.name, description.help);
    return text;
}

void declareOptions(QCommandLineParser &parser) {
    parser.setApplicationDescription(
        "Simulates the server of a GazePoint tracker. A simulated person looks around, and\n"
        "programs read the gaze from 127.0.0.1 as from the real server.");
    parser.addOption({{"h", "help"}, "Show this help."});
    parser.addOptions({
        {"port", "TCP port on 127.0.0.1; 0 selects a free port.", "PORT", "4242"},
        {"rate", "Records per second, 1 to 5000. 60 sends 60.9 per second, like a real 60 Hz tracker.", "HZ", "60"},
        {"screen", "Screen that SCREEN_SIZE reports: WxH or WxH+X+Y. Any integers, even invalid sizes.", "SIZE",
         "1920x1080"},
        {"older-server", "Report SCREEN_SIZE without X and Y, like older servers."},
        {"seed", "Seed of the simulated person. The same seed gives the same gaze.", "NUMBER", "1"},
        {"blink-interval", "Median seconds between blinks; 0: no blinks.", "SECONDS", "4"},
        {"offset",
         "Error of both eyes in degrees: horizontal,vertical, or one number for both. Positive is right and down.\n"
         "Without it, each eye has its own random error.",
         "H[,V]"},
        {"noise", "Standard deviation in degrees of white noise on each axis of each eye, instead of natural noise.",
         "DEGREES"},
        {"follow-mouse",
         "The person looks at the mouse pointer on --screen, or on the primary screen, whose size is then reported.\n"
         "Needs a display."},
        {"record", "The person plays back a record file.", "FILE"},
        {"lines",
         "Send the <REC .../> lines of a file instead of simulated records. ENABLE_SEND_DATA starts them;\n"
         "the other switches have no effect.",
         "FILE"},
        {"truth",
         "Write the true fixations of the person to a CSV file: start and end in ms since 1970 UTC, position in\n"
         "percent of the screen. Not with --record or --lines.",
         "FILE"},
        {"once", "With --record or --lines: do not start again at the end."},
        {"fault", faultHelp(), "NAME[,NAME...]"},
        {"fault-after", "Seconds of good data before the faults start.", "SECONDS", "2"},
    });
}

Options optionsOf(const QCommandLineParser &parser, Values &values) {
    Options options;
    options.help = parser.isSet("help");
    options.server.port = values.whole<quint16>("port");
    options.server.rateHz = values.number("rate", minRateHz, maxRateHz);
    options.server.screen = values.screen("screen");
    options.screenIsSet = parser.isSet("screen");
    options.server.olderServer = parser.isSet("older-server");
    options.server.faults.faults = values.faults("fault");
    options.server.faults.after_s = values.number("fault-after", 0, maxTime_s);
    options.server.once = parser.isSet("once");
    options.subject.seed = values.whole<quint64>("seed");
    options.subject.blinkInterval_s = values.number("blink-interval", 0, maxTime_s);
    if (parser.isSet("offset"))
        options.subject.offset = values.gazeAngles("offset", maxOffset_deg);
    if (parser.isSet("noise"))
        options.subject.noise_deg = values.number("noise", 0, maxNoise_deg);
    options.recordFile = parser.value("record");
    options.linesFile = parser.value("lines");
    options.truthFile = parser.value("truth");
    options.followMouse = parser.isSet("follow-mouse");
    return options;
}

int countSet(const QCommandLineParser &parser, const QStringList &names) {
    return static_cast<int>(
        std::count_if(names.begin(), names.end(), [&](const QString &name) { return parser.isSet(name); }));
}

}  // namespace

std::variant<Options, QString> parseOptions(const QStringList &arguments) {
    QCommandLineParser parser;
    declareOptions(parser);
    if (!parser.parse(arguments))
        return parser.errorText();
    if (!parser.positionalArguments().isEmpty())
        return QString("unexpected argument \"%1\"").arg(parser.positionalArguments().first());
    if (countSet(parser, {"follow-mouse", "record", "lines"}) > 1)
        return QString("--follow-mouse, --record and --lines exclude each other");
    if (parser.isSet("truth") && countSet(parser, {"record", "lines"}) > 0)
        return QString("--truth needs a simulated person, not --record or --lines");
    Values values(parser);
    const Options options = optionsOf(parser, values);
    if (!values.error().isEmpty())
        return values.error();
    return options;
}

QString helpText() {
    QCommandLineParser parser;
    declareOptions(parser);
    return parser.helpText();
}

std::optional<Screen> parseScreen(const QString &text) {
    static const QRegularExpression pattern(R"re(^(-?\d+)x(-?\d+)(?:(\+-?\d+|-\d+)(\+-?\d+|-\d+))?$)re");
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Screen screen;
    screen.width = match.captured(1).toLatin1();
    screen.height = match.captured(2).toLatin1();
    if (match.lastCapturedIndex() < 4)
        return screen;
    screen.x = match.captured(3).remove('+').toLatin1();
    screen.y = match.captured(4).remove('+').toLatin1();
    return screen;
}

}  // namespace sim::gazepoint
