#include "toolkit/app_helper.h"

#include <QApplication>

void AppHelper::warningMessage(const QString &text, const QString &title, QMessageBox::Icon icon) {
    QMessageBox box(icon, title, text, QMessageBox::Ok, QApplication::activeWindow());
    // The text may hold what a device answered; none of it is markup.
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
