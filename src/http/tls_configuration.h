#pragma once

#include <memory>

class HttpSettings;
class QSslConfiguration;

namespace tls_configuration {

/// Returns the TLS configuration that "sslKeyFile", "sslCertFile", "caCertFile" and "verifyPeer" describe. Returns null
/// if no key or no certificate is set. Logs an error and returns null if one of the two files cannot be read.
[[nodiscard]] std::unique_ptr<const QSslConfiguration> load(const HttpSettings &settings);

}  // namespace tls_configuration
