#include "gazepoint/line_player.h"
#include "gazepoint/options.h"
#include "gazepoint/pointer_source.h"
#include "gazepoint/server.h"
#include "subject/recording.h"
#include "subject/subject.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace sim;
using namespace sim::gazepoint;

namespace {

constexpr int kFailed = 1;
constexpr int kBadOptions = 2;
constexpr int kSignalPollMs = 100;

volatile std::sig_atomic_t endRequested = 0;

void requestEnd(int /*signal*/) {
    endRequested = 1;
}

int complain(const QString &reason, int exitCode) {
    std::fprintf(stderr, "gazepoint-simulator: %s\n", qPrintable(reason));
    return exitCode;
}

/// Ends the event loop on Ctrl-C and SIGTERM. A handler may do next to nothing, so a timer looks what it
/// left.
void endOnSignals(QTimer *poll) {
    std::signal(SIGINT, requestEnd);
    std::signal(SIGTERM, requestEnd);
    QObject::connect(poll, &QTimer::timeout, poll, [] {
        if (endRequested != 0)
            QCoreApplication::quit();
    });
    poll->start(kSignalPollMs);
}

/// Qt aborts where it finds no display; say instead what the user can do about it.
void explainMissingDisplay(QtMsgType type, const QMessageLogContext & /*context*/, const QString & /*text*/) {
    if (type == QtFatalMsg)
        std::_Exit(complain("--follow-mouse needs a display, and none can be opened", kFailed));
}

std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv, bool withDisplay) {
    if (!withDisplay)
        return std::make_unique<QCoreApplication>(argc, argv);
    const QtMessageHandler previous = qInstallMessageHandler(explainMissingDisplay);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(previous);
    return application;
}

QStringList argumentList(int argc, char **argv) {
    QStringList list;
    for (int i = 0; i < argc; ++i)
        list << QString::fromLocal8Bit(argv[i]);
    return list;
}

/// Reads the files that the options name; false with the reason in `error`.
bool loadFiles(Options *options, Subject *subject, QString *error) {
    if (!options->recordFile.isEmpty()) {
        const auto recording = Recording::load(options->recordFile, error);
        if (!recording)
            return false;
        subject->play(*recording, options->server.once);
    }
    if (!options->linesFile.isEmpty()) {
        const auto lines = LinePlayer::load(options->linesFile, error);
        if (!lines)
            return false;
        options->server.lines = *lines;
    }
    return true;
}

int serve(const Options &options, Subject *subject) {
    Server server(options.server, subject);
    if (!server.listen()) {
        const QString address = QString("127.0.0.1:%1").arg(options.server.port);
        return complain(QString("cannot listen on %1: %2").arg(address, server.errorString()), kFailed);
    }
    std::unique_ptr<PointerSource> pointer;
    if (options.followMouse) {
        pointer = std::make_unique<PointerSource>([&](Point position) {
            subject->follow(position);
            server.setCursor(position);
        });
    }
    QTimer signalPoll;
    endOnSignals(&signalPoll);
    std::printf("listening on 127.0.0.1:%d\n", server.port());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char *argv[]) {
    const auto parsed = parseOptions(argumentList(argc, argv));
    if (const auto *error = std::get_if<QString>(&parsed))
        return complain(*error + "\nTry --help.", kBadOptions);
    auto options = std::get<Options>(parsed);

    const auto application = makeApplication(argc, argv, options.followMouse && !options.help);
    if (options.help) {
        std::printf("%s", qPrintable(helpText()));
        return 0;
    }
    Subject subject(options.subject);
    QString error;
    if (!loadFiles(&options, &subject, &error))
        return complain(error, kFailed);
    return serve(options, &subject);
}
