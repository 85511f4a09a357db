#include "toolkit/platform/app_helper.h"

#include <QApplication>

QStringList AppHelper::getRunningApps() {
    QStringList names;
    for (const RunningApp &app : runningApps())
        names << app.name;
    return names;
}

void AppHelper::warningMessage(const QString &text, const QString &title, QMessageBox::Icon icon) {
    QMessageBox box(icon, title, text, QMessageBox::Ok, QApplication::activeWindow());
    // The text may contain a response of a device, which must not be interpreted as markup.
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
