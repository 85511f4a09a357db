// A minimal Qt program with a window. It is the baseline for the start of Ocela.
//
// usage: bench_window_baseline [INTERVAL]
// With an interval in ms, it also has a timer that does nothing.

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
