#include "toolkit/widgets/new_version_button.h"

#include "toolkit/base/toolkit_log.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QVersionNumber>

namespace {

constexpr qint64 maxResponseBytes = 64LL * 1024;
constexpr int timeoutMs = 15000;

bool isWebAddress(const QUrl &url) {
    return url.isValid() && (url.scheme() == "http" || url.scheme() == "https");
}

bool isNewer(const QVersionNumber &version) {
    return version > QVersionNumber::fromString(QCoreApplication::applicationVersion());
}

void logFailure(const QUrl &url, const QString &reason) {
    qCDebug(lcToolkit).noquote() << "No release information from" << url.toDisplayString() + ": " + reason;
}

QNetworkRequest requestFor(const QUrl &url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    // A compressed response could exceed the size limit after decompression.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(timeoutMs);
    return request;
}

}  // namespace

NewVersionButton::NewVersionButton(const QString &text, const QString &releaseInfoUrl, QWidget *parent)
    : VPushButton(text, parent) {
    hide();
    connect(this, &QPushButton::clicked, this, [this] { QDesktopServices::openUrl(page_); });
    if (!releaseInfoUrl.isEmpty())
        request(QUrl(releaseInfoUrl));
}

void NewVersionButton::request(const QUrl &url) {
    if (!isWebAddress(url) && !url.isLocalFile())
        return logFailure(url, "not an http, https or file address");
    // The button owns both objects, so a running request is aborted when the button is destroyed.
    auto *network = new QNetworkAccessManager(this);
    QNetworkReply *reply = network->get(requestFor(url));
    reply->setReadBufferSize(2 * maxResponseBytes);
    connect(reply, &QNetworkReply::readyRead, this, [this, reply] { abortIfTooLarge(reply); });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { handleResponse(reply); });
}

void NewVersionButton::abortIfTooLarge(QNetworkReply *reply) {
    if (reply->bytesAvailable() <= maxResponseBytes)
        return;
    logFailure(reply->url(), "the response is too large");
    disconnect(reply, nullptr, this, nullptr);
    reply->abort();
    reply->deleteLater();
}

void NewVersionButton::handleResponse(QNetworkReply *reply) {
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError)
        return logFailure(reply->url(), reply->errorString());
    const QJsonObject release = QJsonDocument::fromJson(reply->readAll()).object();
    const QVersionNumber version = QVersionNumber::fromString(release["version"].toString());
    if (version.isNull())
        return logFailure(reply->url(), "the response contains no version");
    if (isNewer(version))
        offer(version.toString(), QUrl(release["page"].toString()));
}

void NewVersionButton::offer(const QString &version, const QUrl &page) {
    // Other schemes could start a program. Without a page, the button is visible but disabled.
    if (isWebAddress(page))
        page_ = page;
    setEnabled(!page_.isEmpty());
    setToolTip(version);
    show();
}
