#pragma once

#include <QLoggingCategory>

/// "ocela.http": messages of the HTTP engine and of the API.
Q_DECLARE_LOGGING_CATEGORY(lcHttp)

namespace http_log {

/// Logs the error "`what`: `reason`". If there is no memory for the message, it is lost.
void failure(const char *what, const char *reason) noexcept;

}  // namespace http_log
