#include "gazepoint/options.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <algorithm>
#include <limits>

namespace sim::gazepoint {

namespace {

constexpr double kSlowestRate = 1;
constexpr double kFastestRate = 5000;
constexpr double kLongestTime = 1e6;  // seconds

/// Takes the values out of the parser and remembers the first that makes no sense.
class Values {
public:
    explicit Values(const QCommandLineParser &parser) : parser_(parser) {}

    double number(const QString &option, double low, double high) {
        bool ok = false;
        const double value = parser_.value(option).toDouble(&ok);
        return check(ok && value >= low && value <= high, option, QString("a number from %1 to %2").arg(low).arg(high))
                   ? value
                   : low;
    }

    template <typename Unsigned>
    Unsigned whole(const QString &option) {
        bool ok = false;
        const quint64 value = parser_.value(option).toULongLong(&ok);
        const quint64 most = std::numeric_limits<Unsigned>::max();
        check(ok && value <= most, option, QString("a whole number from 0 to %1").arg(most));
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
    bool check(bool ok, const QString &option, const QString &wanted) {
        if (!ok)
            fail(QString("--%1 takes %2, not \"%3\"").arg(option, wanted, parser_.value(option)));
        return ok;
    }

    const QCommandLineParser &parser_;
    QString error_;
};

QString faultHelp() {
    QString text = "Faults to show, separated by commas:";
    for (const FaultDescription &description : faultDescriptions())
        text += QString("\n%1: %2").arg(description.name, description.help);
    return text;
}

void declare(QCommandLineParser *parser) {
    parser->setApplicationDescription(
        "Stands in for a GazePoint tracker's server: a simulated person looks around,\n"
        "and programs read the gaze from 127.0.0.1 as from the real server.");
    parser->addOption({{"h", "help"}, "Show this help."});
    parser->addOptions({
        {"port", "TCP port on 127.0.0.1; 0 takes any free one.", "PORT", "4242"},
        {"rate", "Records a second, 1 to 5000. 60 gives the 60.9 of a real 60 Hz tracker.", "HZ", "60"},
        {"screen", "Screen as SCREEN_SIZE tells it: WxH or WxH+X+Y. Any numbers, sensible or not.", "SIZE",
         "1920x1080"},
        {"older-server", "Tell SCREEN_SIZE without X and Y, as older servers do."},
        {"seed", "What the person does and when; the same number, the same person.", "NUMBER", "1"},
        {"blink-interval", "Seconds between blinks; 0: no blinks.", "SECONDS", "4"},
        {"follow-mouse", "The person looks at the mouse pointer (needs a display)."},
        {"record", "The person acts out a recorded CSV file.", "FILE"},
        {"lines", "Send the <REC .../> lines of a file, whatever is switched on, in place of the person's.", "FILE"},
        {"once", "With --record or --lines: do not start again at the end."},
        {"fault", faultHelp(), "NAME[,NAME...]"},
        {"fault-after", "Seconds of good data before the faults begin.", "SECONDS", "2"},
    });
}

Options optionsOf(const QCommandLineParser &parser, Values *values) {
    Options options;
    options.help = parser.isSet("help");
    options.server.port = values->whole<quint16>("port");
    options.server.rate = values->number("rate", kSlowestRate, kFastestRate);
    options.server.screen = values->screen("screen");
    options.server.olderServer = parser.isSet("older-server");
    options.server.faults.faults = values->faults("fault");
    options.server.faults.after = values->number("fault-after", 0, kLongestTime);
    options.server.once = parser.isSet("once");
    options.subject.seed = values->whole<quint64>("seed");
    options.subject.blinkInterval = values->number("blink-interval", 0, kLongestTime);
    options.recordFile = parser.value("record");
    options.linesFile = parser.value("lines");
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
    declare(&parser);
    if (!parser.parse(arguments))
        return parser.errorText();
    if (!parser.positionalArguments().isEmpty())
        return QString("unexpected argument \"%1\"").arg(parser.positionalArguments().first());
    if (countSet(parser, {"follow-mouse", "record", "lines"}) > 1)
        return QString("--follow-mouse, --record and --lines exclude each other");
    Values values(parser);
    const Options options = optionsOf(parser, &values);
    if (!values.error().isEmpty())
        return values.error();
    return options;
}

QString helpText() {
    QCommandLineParser parser;
    declare(&parser);
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
