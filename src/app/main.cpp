#include "app/main_window.h"
#include "app/single_instance.h"
#include "app/startup.h"
#include "toolkit/platform/console.h"

#include <QApplication>
#include <QSplashScreen>

namespace {

int runWindow(QSplashScreen &splash) {
    MainWindow window;
    window.setWindowTitle(startup::windowTitle());
    splash.finish(&window);
    if (startup::isDashboardWanted())
        window.openDashboard();
    return window.isClosed() ? 0 : QApplication::exec();
}

}  // namespace

int main(int argc, char *argv[]) {
    console::prepare();
    Q_INIT_RESOURCE(ocela);
    if (!startup::hasDisplay())
        return 1;
    startup::prepareApplication();
    QApplication application(argc, argv);
    startup::setIdentity();
    const SingleInstance instance;
    if (!instance.mayRun())
        return startup::runRefused(instance);
    startup::startLogFile();

    QSplashScreen splash(startup::splashImage());
    splash.show();
    startup::loadIcon();
    startup::loadFonts();
    startup::applyStyle();
    startup::createRecordsFolder();

    const int exitCode = runWindow(splash);
    startup::exitIfTasksBlock(exitCode);
    return exitCode;
}
