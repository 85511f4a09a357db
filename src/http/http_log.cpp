#include "http/http_log.h"

Q_LOGGING_CATEGORY(lcHttp, "ocela.http")

void http_log::failure(const char *what, const char *reason) noexcept {
    try {
        qCCritical(lcHttp, "%s: %s", what, reason);
    } catch (...) {
        // The message is lost.
    }
}
