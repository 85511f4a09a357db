#include "app/dashboard.h"

#include "api/ocela_http_exchange.h"
#include "toolkit/platform/app_helper.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

void dashboard::open() {
    const QString address = QString("http://localhost:%1/").arg(OcelaHTTPExchange::port);
    if (QDesktopServices::openUrl(QUrl(address)))
        return;
    const QString problem = QCoreApplication::translate("Dashboard", "The browser cannot be opened. Open this page:");
    AppHelper::warningMessage(problem + '\n' + address, QString(), QMessageBox::Warning);
}
