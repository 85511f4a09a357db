#include "http/tls_configuration.h"

#include "http/http_log.h"
#include "http/http_settings.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <optional>

namespace {

/// Returns the contents of the PEM file that the setting `key` names. Logs an error if it cannot be read.
std::optional<QByteArray> readPem(const HttpSettings &settings, const char *key) {
    const QString path = settings.resolvedPath(settings.text(key));
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return file.readAll();
    qCCritical(lcHttp, "HttpConnectionHandlerPool: cannot open %s %s", key, qUtf8Printable(path));
    return std::nullopt;
}

/// Returns `configuration` with the peer verification mode and the CA certificate of the settings.
QSslConfiguration withPeerVerification(QSslConfiguration configuration, const HttpSettings &settings) {
    if (!settings.text("caCertFile").isEmpty()) {
        const std::optional<QByteArray> authority = readPem(settings, "caCertFile");
        // Intended: TLS stays on, with Qt's default peer verification mode.
        if (!authority)
            return configuration;
        configuration.addCaCertificate(QSslCertificate(*authority));
    }
    configuration.setPeerVerifyMode(settings.flag("verifyPeer") ? QSslSocket::VerifyPeer : QSslSocket::VerifyNone);
    qCDebug(lcHttp, "HttpConnectionHandlerPool: SSL settings loaded");
    return configuration;
}

}  // namespace

std::unique_ptr<const QSslConfiguration> tls_configuration::load(const HttpSettings &settings) {
    if (settings.text("sslKeyFile").isEmpty() || settings.text("sslCertFile").isEmpty())
        return nullptr;
    const std::optional<QByteArray> certificate = readPem(settings, "sslCertFile");
    if (!certificate)
        return nullptr;
    const std::optional<QByteArray> key = readPem(settings, "sslKeyFile");
    if (!key)
        return nullptr;

    QSslConfiguration configuration;
    configuration.setProtocol(QSsl::AnyProtocol);
    configuration.setLocalCertificate(QSslCertificate(*certificate));
    configuration.setPrivateKey(QSslKey(*key, QSsl::Rsa));
    // All handshakes will fail, but nothing is sent unencrypted.
    if (configuration.localCertificate().isNull() || configuration.privateKey().isNull())
        qCCritical(lcHttp, "HttpConnectionHandlerPool: no certificate or no RSA key in the files given");
    return std::make_unique<const QSslConfiguration>(withPeerVerification(configuration, settings));
}
