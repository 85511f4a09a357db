#include "app/startup.h"

#include "app/settings.h"
#include "toolkit/app_helper.h"
#include "toolkit/file_utilities.h"
#include "toolkit/log_file.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QStandardPaths>
#include <QThreadPool>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr char applicationName[] = "Ocela";

/// The splash image is drawn twice as large as it is shown, for screens that are scaled.
constexpr qreal splashPixelRatio = 2.0;

/// For tasks that are about to end by themselves.
constexpr int patienceWithTasksMs = 300;

bool isAlreadyRunning() {
    const QString executable = AppHelper::executableName(applicationName);
    int count = 0;
    for (const QString &name : AppHelper::getRunningApps()) {
        // This process is one of them.
        if (name.compare(executable, Qt::CaseInsensitive) == 0 && ++count > 1)
            return true;
    }
    return false;
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
    // A window that hides instead of closing must not hold up the end of the user's session.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
}

void startup::setIdentity() {
    QApplication::setOrganizationName("Velmora");
    QApplication::setOrganizationDomain("velmora.example");
    QApplication::setApplicationName(applicationName);
    QApplication::setApplicationVersion(OCELA_VERSION);
    // The main window decides when the program ends; see MainWindow::closeEvent().
    QApplication::setQuitOnLastWindowClosed(false);
}

bool startup::refuseSecondInstance() {
    if (!isAlreadyRunning())
        return false;
    // The box speaks the language that these settings bring with them.
    Settings settings(Settings::defaultFilePath(), Settings::supportedLanguages(), nullptr);
    settings.reload();
    AppHelper::warningMessage(QCoreApplication::translate("Generic", "Ocela уже запущена"), QString(),
                              QMessageBox::Warning);
    return true;
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

void startup::endInSpiteOfTasks(int exitCode) {
    if (!QThreadPool::globalInstance()->waitForDone(patienceWithTasksMs))
        std::_Exit(exitCode);
}
