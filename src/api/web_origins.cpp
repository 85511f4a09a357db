#include "api/web_origins.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

constexpr int httpPort = 80;
constexpr int httpsPort = 443;

bool hasDefaultPort(const QUrl &url) {
    return (url.scheme() == "http" && url.port() == httpPort) || (url.scheme() == "https" && url.port() == httpsPort);
}

/// Returns an empty text if `text` is not an origin.
QString normalized(const QString &text) {
    QUrl url(text, QUrl::StrictMode);
    if (url.path() == "/")
        url.setPath(QString());
    const bool hasMore = !url.path().isEmpty() || url.hasQuery() || url.hasFragment() || !url.userInfo().isEmpty();
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty() || hasMore)
        return {};
    if (hasDefaultPort(url))
        url.setPort(-1);
    return url.toString(QUrl::FullyEncoded);
}

}  // namespace

WebOrigins WebOrigins::parse(const QString &text) {
    WebOrigins origins;
    for (const QString &word : text.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts)) {
        const QString origin = normalized(word);
        if (origin.isEmpty())
            origins.invalid << word;
        else
            origins.valid << origin;
    }
    return origins;
}
