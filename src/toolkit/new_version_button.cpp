#include "toolkit/new_version_button.h"

#include "toolkit/toolkit_log.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QVersionNumber>

namespace {

constexpr qint64 maxAnswerBytes = 64LL * 1024;
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
    // Packed, a small answer could unpack to any size.
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
        ask(QUrl(releaseInfoUrl));
}

void NewVersionButton::ask(const QUrl &url) {
    if (!isWebAddress(url) && !url.isLocalFile())
        return logFailure(url, "not an http, https or file address");
    // Both end with the button, and a running request with them.
    auto *network = new QNetworkAccessManager(this);
    QNetworkReply *reply = network->get(requestFor(url));
    reply->setReadBufferSize(2 * maxAnswerBytes);
    connect(reply, &QNetworkReply::readyRead, this, [this, reply] { stopWhenTooLong(reply); });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { answered(reply); });
}

void NewVersionButton::stopWhenTooLong(QNetworkReply *reply) {
    if (reply->bytesAvailable() <= maxAnswerBytes)
        return;
    logFailure(reply->url(), "the answer is too long");
    disconnect(reply, nullptr, this, nullptr);
    reply->abort();
    reply->deleteLater();
}

void NewVersionButton::answered(QNetworkReply *reply) {
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError)
        return logFailure(reply->url(), reply->errorString());
    const QJsonObject release = QJsonDocument::fromJson(reply->readAll()).object();
    const QVersionNumber version = QVersionNumber::fromString(release["version"].toString());
    if (version.isNull())
        return logFailure(reply->url(), "the answer names no version");
    if (isNewer(version))
        offer(version.toString(), QUrl(release["page"].toString()));
}

void NewVersionButton::offer(const QString &version, const QUrl &page) {
    // Another scheme could start a program; without a page the button only tells.
    if (isWebAddress(page))
        page_ = page;
    setEnabled(!page_.isEmpty());
    setToolTip(version);
    show();
}
