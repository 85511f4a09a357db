#pragma once

#include "toolkit/v_push_button.h"

#include <QUrl>

class QNetworkReply;

/// A button that reports a newer release: hidden until one is known; a click opens the release's web page.
///
/// It asks once, when made, at `releaseInfoUrl` (http, https or file) for the JSON text
/// `{"version": "1.4.0", "page": "https://..."}` and compares with the application's version. An empty
/// address: it never asks. Being offline is normal, so whatever goes wrong is one debug line. GUI thread.
class NewVersionButton : public VPushButton {
    Q_OBJECT

public:
    NewVersionButton(const QString &text, const QString &releaseInfoUrl, QWidget *parent = nullptr);

private:
    void ask(const QUrl &url);
    void stopWhenTooLong(QNetworkReply *reply);
    void answered(QNetworkReply *reply);
    void offer(const QString &version, const QUrl &page);

    QUrl page_;
};
