#include "api/access_policy.h"

#include "http/http_request.h"

QByteArray AccessPolicy::refusalOfSimpleRequest(const HttpRequest & /*request*/) const {
    return {};
}

QByteArray AccessPolicy::refusalOfProgramRequest(const HttpRequest &request) const {
    if (request.getHeader("Origin").isEmpty() || !allowedOriginOf(request).isEmpty())
        return {};
    return "Web pages of this origin may not use Ocela. Add the origin to the allowed web origins in the settings.";
}

QByteArray AccessPolicy::allowedOriginOf(const HttpRequest &request) const {
    const QByteArray origin = request.getHeader("Origin");
    return rights().allowedOrigins.contains(QString::fromUtf8(origin)) ? origin : QByteArray();
}
