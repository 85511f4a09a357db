#pragma once

#include "toolkit/widgets/v_push_button.h"

#include <QUrl>

class QNetworkReply;

/// A button that is visible only if there is a newer release. A click opens the web page of the release. GUI thread.
///
/// The constructor requests `releaseInfoUrl` (http, https or file) once, unless it is empty. The response is JSON,
/// for example `{"version": "1.4.0", "page": "https://..."}`. Its version is compared with the application's version.
/// Errors are logged as debug messages, because it is normal to be offline.
class NewVersionButton : public VPushButton {
    Q_OBJECT

public:
    NewVersionButton(const QString &text, const QString &releaseInfoUrl, QWidget *parent = nullptr);

private:
    void request(const QUrl &url);
    void abortIfTooLarge(QNetworkReply *reply);
    void handleResponse(QNetworkReply *reply);
    void offer(const QString &version, const QUrl &page);

    QUrl page_;
};
