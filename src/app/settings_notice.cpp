#include "app/settings_notice.h"

#include "toolkit/settings/vt_settings.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QMessageBox>

void SettingsNotice::addSettings(const VTSettings *settings) {
    settings_.push_back(settings);
    refresh();
}

void SettingsNotice::showMessage(QWidget *window) const {
    if (text().isEmpty())
        return;
    auto *box = new QMessageBox(QMessageBox::Warning, QApplication::applicationName(), text(), QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setModal(false);
    box->show();
}

void SettingsNotice::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QLabel::changeEvent(event);
}

void SettingsNotice::refresh() {
    QStringList lines;
    for (const VTSettings *settings : settings_) {
        if (settings->readProblem().isEmpty())
            continue;
        const QString problem = QCoreApplication::translate("VTSettings", settings->readProblem().toUtf8().constData());
        lines << tr("The settings file %1 cannot be read: %2")
                     .arg(QDir::toNativeSeparators(settings->filePath()), problem);
    }
    if (!lines.isEmpty())
        lines << tr("The defaults apply, and changes are not saved. Start Ocela again to use the file.");
    setText(lines.join('\n'));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setVisible(!lines.isEmpty());
}
