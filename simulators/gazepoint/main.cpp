#include "gazepoint/line_player.h"
#include "gazepoint/options.h"
#include "gazepoint/server.h"
#include "gazepoint/truth_file.h"
#include "pointer/pointer_source.h"
#include "subject/recording.h"
#include "subject/subject.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace sim;
using namespace sim::gazepoint;

namespace {

constexpr int exitFailed = 1;
constexpr int exitBadOptions = 2;
constexpr int signalPollIntervalMs = 100;

volatile std::sig_atomic_t quitRequested = 0;

void requestQuit(int /*signal*/) {
    quitRequested = 1;
}

/// Prints the reason and returns the exit code.
int fail(const QString &reason, int exitCode = exitFailed) {
    std::fprintf(stderr, "gazepoint-simulator: %s\n", qPrintable(reason));
    return exitCode;
}

/// Quits the event loop on Ctrl-C and SIGTERM. A signal handler must not call Qt, so it sets a flag that a timer polls.
void quitOnSignals(QTimer &poll) {
    std::signal(SIGINT, requestQuit);
    std::signal(SIGTERM, requestQuit);
    QObject::connect(&poll, &QTimer::timeout, &poll, [] {
        if (quitRequested != 0)
            QCoreApplication::quit();
    });
    poll.start(signalPollIntervalMs);
}

/// Replaces Qt's message when it aborts because there is no display.
void explainMissingDisplay(QtMsgType type, const QMessageLogContext & /*context*/, const QString & /*text*/) {
    if (type == QtFatalMsg)
        std::_Exit(fail("--follow-mouse needs a display, but no display can be opened"));
}

std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv, bool withDisplay) {
    if (!withDisplay)
        return std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DisableHighDpiScaling);  // --screen is in device pixels
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

Screen primaryScreen() {
    const QRect area = QGuiApplication::primaryScreen()->geometry();
    return {QByteArray::number(area.x()), QByteArray::number(area.y()), QByteArray::number(area.width()),
            QByteArray::number(area.height())};
}

QRect areaOf(const Screen &screen) {
    return {screen.x.toInt(), screen.y.toInt(), screen.width.toInt(), screen.height.toInt()};
}

int serve(const Options &options, const ServerOptions &serverOptions, Subject &subject) {
    TruthFile truth(options.truthFile);
    Server server(serverOptions, subject);
    if (!options.truthFile.isEmpty()) {
        if (!truth.open())
            return fail(QString("cannot write %1: %2").arg(options.truthFile, truth.errorString()));
        subject.onFixation([&](const PathFixation &fixation) { truth.add(fixation); });
    }
    if (!server.listen())
        return fail(QString("cannot listen on 127.0.0.1:%1: %2").arg(serverOptions.port).arg(server.errorString()));
    std::unique_ptr<PointerSource> pointer;
    if (options.followMouse) {
        pointer = std::make_unique<PointerSource>(areaOf(serverOptions.screen), [&](Point position) {
            subject.follow(position);
            server.setCursor(position);
        });
    }
    QTimer signalPoll;
    quitOnSignals(signalPoll);
    std::printf("listening on 127.0.0.1:%d\n", server.port());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

/// Loads the files that the options name, and runs the server.
int run(const Options &options) {
    Subject subject(options.subject);
    if (!options.recordFile.isEmpty()) {
        const auto recording = Recording::load(options.recordFile);
        if (const auto *error = std::get_if<QString>(&recording))
            return fail(*error);
        subject.play(std::get<Recording>(recording), options.server.once);
    }
    ServerOptions serverOptions = options.server;
    if (options.followMouse && !options.screenIsSet)
        serverOptions.screen = primaryScreen();
    if (!options.linesFile.isEmpty()) {
        const auto lines = LinePlayer::load(options.linesFile);
        if (const auto *error = std::get_if<QString>(&lines))
            return fail(*error);
        serverOptions.lines = std::get<QVector<QByteArray>>(lines);
    }
    return serve(options, serverOptions, subject);
}

}  // namespace

int main(int argc, char *argv[]) {
    const auto parsed = parseOptions(argumentList(argc, argv));
    if (const auto *error = std::get_if<QString>(&parsed))
        return fail(*error + "\nTry --help.", exitBadOptions);
    const Options &options = *std::get_if<Options>(&parsed);

    const auto application = makeApplication(argc, argv, options.followMouse && !options.help);
    if (options.help) {
        std::printf("%s", qPrintable(helpText()));
        return 0;
    }
    return run(options);
}
