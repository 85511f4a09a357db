#pragma once

#include <memory>

class HttpSettings;
class QSslConfiguration;

/// What "sslKeyFile", "sslCertFile", "caCertFile" and "verifyPeer" ask for; null without key and certificate, or if one
/// of them cannot be read, which the log tells.
[[nodiscard]] std::unique_ptr<const QSslConfiguration> loadTlsConfiguration(const HttpSettings &settings);
