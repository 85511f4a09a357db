// The least that a Qt program needs to show a window: what Ocela's start is compared with.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[]) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Baseline");
    window.resize(640, 480);
    window.show();
    return QApplication::exec();
}
