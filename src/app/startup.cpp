#include "app/startup.h"

#include "api/ocela_http_exchange.h"
#include "app/dashboard.h"
#include "app/settings.h"
#include "app/single_instance.h"
#include "http/http_listener.h"
#include "streams/lsl_worker.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/base/log_file.h"
#include "toolkit/platform/app_helper.h"
#include "toolkit/settings/settings_file.h"
#include "toolkit/settings/ui_language.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QFontDatabase>
#include <QHostAddress>
#include <QIcon>
#include <QLocale>
#include <QStandardPaths>
#include <QTcpSocket>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr char applicationName[] = "Ocela";

/// The splash image has twice its displayed size, for scaled displays.
constexpr qreal splashPixelRatio = 2.0;

constexpr int taskTimeoutMs = 300;

constexpr int refusalPollIntervalMs = 500;
constexpr int refusalExitCode = -1;

constexpr int maxServerStartMs = 10000;
constexpr int serverPollIntervalMs = 100;

/// Returns the language in the settings file. Settings::reload() is not used, because it may rename the file.
QString storedLanguage() {
    const QStringList languages = Settings::supportedLanguages();
    for (const settings_file::Entry &entry : settings_file::read(Settings::defaultFilePath()).entries) {
        if (entry.name == "Language" && languages.contains(entry.text))
            return entry.text;
    }
    return UiLanguage::preferred(languages, QLocale::system().uiLanguages());
}

/// Waits for the server of another instance, which may still be starting.
void waitForServer() {
    const QDeadlineTimer deadline(maxServerStartMs);
    while (!deadline.hasExpired()) {
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, OcelaHTTPExchange::port);
        if (client.waitForConnected(static_cast<int>(deadline.remainingTime())))
            return;
        QThread::msleep(serverPollIntervalMs);
    }
}

}  // namespace

bool startup::hasDisplay() {
    const QString problem = AppHelper::displayProblem();
    if (!problem.isEmpty())
        std::fprintf(stderr, "%s: %s\n", applicationName, qPrintable(problem));
    return problem.isEmpty();
}

void startup::prepareApplication() {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // A window that hides instead of closing would cancel the logout of the user.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
}

void startup::setIdentity() {
    QApplication::setOrganizationName("Velmora");
    QApplication::setOrganizationDomain("velmora.example");
    QApplication::setApplicationName(applicationName);
    QApplication::setApplicationVersion(OCELA_VERSION);
    // MainWindow::closeEvent() quits the program.
    QApplication::setQuitOnLastWindowClosed(false);
}

bool startup::isDashboardWanted() {
    return QApplication::arguments().contains("--dashboard");
}

int startup::runRefused(const SingleInstance &instance) {
    UiLanguage language;
    language.use(storedLanguage());
    if (isDashboardWanted()) {
        waitForServer();
        dashboard::open();
        return 0;
    }
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget *box = QApplication::activeModalWidget();
        if (box != nullptr && !instance.isAnotherRunning())
            box->close();
    });
    timer.start(refusalPollIntervalMs);
    AppHelper::warningMessage(QCoreApplication::translate("Generic", "Ocela уже запущена"), QString(),
                              QMessageBox::Warning);
    return refusalExitCode;
}

void startup::startLogFile() {
    LogFile::install(FileUtilities::FolderSlash(Settings::dataFolder()) + applicationName + ".log");
}

QPixmap startup::splashImage() {
    QPixmap image(":/images/ocela-splash.png");
    image.setDevicePixelRatio(splashPixelRatio);
    return image;
}

void startup::loadIcon() {
    QApplication::setWindowIcon(QIcon(":/images/ocela.png"));
}

void startup::loadFonts() {
    for (const char *weight : {"Regular", "Bold", "Light"})
        QFontDatabase::addApplicationFont(QString(":/fonts/JetBrainsMono-%1.ttf").arg(weight));
}

void startup::applyStyle() {
    qApp->setStyleSheet(
        "* { font-family: 'JetBrains Mono'; font-size: 12px; font-weight: 300; } "
        "#propertyHeaderLabel { color: #666; }");
}

void startup::createRecordsFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    FileUtilities::createIfNotExists(FileUtilities::FolderSlash(documents) + applicationName);
}

QString startup::windowTitle() {
    return QCoreApplication::translate("MainWindow", "Ocela") + ' ' + QApplication::applicationVersion();
}

void startup::exitIfTasksBlock(int exitCode) {
    if (!QThreadPool::globalInstance()->waitForDone(taskTimeoutMs) || HttpListener::leftThreadCount() > 0 ||
        LslWorker::leftThreadCount() > 0)
        std::_Exit(exitCode);
}
