#include "api/access_policy.h"

#include "api/confined_file.h"
#include "api/ocela_http_exchange.h"
#include "http/http_request.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QRegularExpression>
#include <QSet>
#include <QUrl>

namespace {

const char otherComputerRefused[] =
    "Other computers may not use this Ocela. To allow them, turn on \"Other computers may use Ocela\" in Ocela's "
    "settings, tab \"Access\".";
const char hostRefused[] = "The host name is not a name of this computer. Use its IP address, its name or localhost.";
const char pageRefused[] =
    "Web pages of this origin may not use Ocela. To allow them, add the origin to \"Allowed web origins\" in Ocela's "
    "settings, tab \"Access\".";

/// Returns the names in lower case, as browsers send them.
QSet<QString> findMachineNames() {
    const QString name = QHostInfo::localHostName();
    const QString domain = QHostInfo::localDomainName();
    const QString shortName = name.section('.', 0, 0);
    QSet<QString> names{"localhost"};
    for (const QString &each : {name, shortName, shortName + ".local", shortName + '.' + domain}) {
        names.insert(each.toLower());
        names.insert(QString::fromLatin1(QUrl::toAce(each)));
    }
    names.remove(QString());
    return names;
}

bool isNameOfThisMachine(const QString &host) {
    static const QSet<QString> names = findMachineNames();
    return names.contains(host);
}

/// Returns the lower-cased host name or IP address of a "Host" header, or an empty text if the header is invalid.
QString hostOf(const QByteArray &header) {
    static const QRegularExpression pattern(R"(^(?:\[([0-9a-f:.]+)\]|([^\s:/?#@\[\]]+))(?::\d*)?$)");
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(header).toLower());
    return match.captured(1) + match.captured(2);
}

/// Returns whether the host is an IP address or a name of this machine. A web site whose host name resolves to this
/// machine (DNS rebinding) could otherwise use Ocela as if its pages were Ocela's own.
bool isKnownHost(const QByteArray &header) {
    const QString host = hostOf(header);
    return isNameOfThisMachine(host) || QHostAddress().setAddress(host);
}

/// Returns whether the page comes from this server. Its port differs from that of the server if a port is forwarded. A
/// page may send its requests to another name of this machine than the one in its own address.
bool isOwnOrigin(const QByteArray &origin, const QByteArray &host) {
    if (origin == "http://" + host)
        return true;
    const QUrl url(QString::fromLatin1(origin), QUrl::StrictMode);
    const bool isThisMachine = isNameOfThisMachine(url.host()) || QHostAddress(url.host()).isLoopback();
    return url.scheme() == "http" && url.port() == OcelaHTTPExchange::port && isThisMachine;
}

QByteArray refusalOfPeer(const HttpRequest &request, const AccessRights &rights) {
    return rights.otherComputers || request.getPeerAddress().isLoopback() ? QByteArray() : otherComputerRefused;
}

QByteArray refusalOfPage(const HttpRequest &request, const AccessRights &rights) {
    const QByteArray host = request.getHeader("Host");
    // Browsers always send the header. Some programs do not.
    if (!host.isEmpty() && !isKnownHost(host))
        return hostRefused;
    const QByteArray origin = request.getHeader("Origin");
    if (rights.allowedOrigins.contains(QString::fromLatin1(origin)))
        return {};
    // Browsers send no origin with some requests, for example for images.
    const bool isForeign =
        origin.isEmpty() ? request.getHeader("Sec-Fetch-Site") == "cross-site" : !isOwnOrigin(origin, host);
    return isForeign ? pageRefused : QByteArray();
}

}  // namespace

QByteArray AccessPolicy::refusalOfSimpleRequest(const HttpRequest &request) const {
    const AccessRights rights = this->rights();
    const QByteArray refusal = refusalOfPeer(request, rights);
    return refusal.isEmpty() && !rights.foreignPages ? refusalOfPage(request, rights) : refusal;
}

QByteArray AccessPolicy::refusalOfProgramRequest(const HttpRequest &request) const {
    const AccessRights rights = this->rights();
    const QByteArray refusal = refusalOfPeer(request, rights);
    return refusal.isEmpty() ? refusalOfPage(request, rights) : refusal;
}

QByteArray AccessPolicy::allowedOriginOf(const HttpRequest &request) const {
    const QByteArray origin = request.getHeader("Origin");
    const bool isAllowed =
        rights().allowedOrigins.contains(QString::fromLatin1(origin)) || isOwnOrigin(origin, request.getHeader("Host"));
    return isAllowed ? origin : QByteArray();
}

bool AccessPolicy::mayRecordTo(const QString &path) const {
    const AccessRights rights = this->rights();
    return rights.anyFile || confined_file::mayCreate(path, rights.recordsFolder);
}
