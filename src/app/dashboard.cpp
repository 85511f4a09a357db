#include "app/dashboard.h"

#include "api/ocela_http_exchange.h"
#include "toolkit/platform/app_helper.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

namespace {

/// The path is percent-encoded.
void openPage(const QByteArray &path) {
    const QByteArray address = "http://localhost:" + QByteArray::number(OcelaHTTPExchange::port) + path;
    if (QDesktopServices::openUrl(QUrl::fromEncoded(address)))
        return;
    const QString problem = QCoreApplication::translate("Dashboard", "The browser cannot be opened. Open this page:");
    AppHelper::warningMessage(problem + '\n' + address, QString(), QMessageBox::Warning);
}

}  // namespace

void dashboard::open() {
    openPage("/");
}

void dashboard::openRecording(const QString &fileName) {
    openPage("/record.html?recording=" + QUrl::toPercentEncoding(fileName));
}

void dashboard::openValidation() {
    openPage("/validate.html");
}
