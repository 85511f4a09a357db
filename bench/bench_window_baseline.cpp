// The least that a Qt program needs to show a window: what Ocela's start is compared with. With an argument it has a
// timer of so many milliseconds, too, which does nothing.

#include <QApplication>
#include <QMainWindow>
#include <QTimer>
#include <cstdlib>

int main(int argc, char *argv[]) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Baseline");
    window.resize(640, 480);
    window.show();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    if (argc > 1)
        timer.start(std::atoi(argv[1]));
    return QApplication::exec();
}
