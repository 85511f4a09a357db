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

/// The contents of the PEM file that a setting names.
std::optional<QByteArray> readPem(const HttpSettings &settings, const char *key) {
    const QString path = settings.resolvedPath(settings.text(key));
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return file.readAll();
    qCCritical(lcHttp, "HttpConnectionHandlerPool: cannot open %s %s", key, qUtf8Printable(path));
    return std::nullopt;
}

/// Adds what decides whether and against what a client's certificate is checked.
void addPeerVerification(QSslConfiguration &configuration, const HttpSettings &settings) {
    if (!settings.text("caCertFile").isEmpty()) {
        const std::optional<QByteArray> authority = readPem(settings, "caCertFile");
        // Intended: encryption stays on, with the library's own choice whether clients are checked.
        if (!authority)
            return;
        configuration.addCaCertificate(QSslCertificate(*authority));
    }
    configuration.setPeerVerifyMode(settings.flag("verifyPeer") ? QSslSocket::VerifyPeer : QSslSocket::VerifyNone);
    qCDebug(lcHttp, "HttpConnectionHandlerPool: SSL settings loaded");
}

}  // namespace

std::unique_ptr<const QSslConfiguration> loadTlsConfiguration(const HttpSettings &settings) {
    if (settings.text("sslKeyFile").isEmpty() || settings.text("sslCertFile").isEmpty())
        return nullptr;
    const std::optional<QByteArray> certificate = readPem(settings, "sslCertFile");
    if (!certificate)
        return nullptr;
    const std::optional<QByteArray> key = readPem(settings, "sslKeyFile");
    if (!key)
        return nullptr;

    auto configuration = std::make_unique<QSslConfiguration>();
    configuration->setProtocol(QSsl::AnyProtocol);
    configuration->setLocalCertificate(QSslCertificate(*certificate));
    configuration->setPrivateKey(QSslKey(*key, QSsl::Rsa));
    // No client will get through, but nothing is sent unencrypted either.
    if (configuration->localCertificate().isNull() || configuration->privateKey().isNull())
        qCCritical(lcHttp, "HttpConnectionHandlerPool: no certificate or no RSA key in the files given");
    addPeerVerification(*configuration, settings);
    return configuration;
}
