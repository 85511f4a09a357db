#pragma once

#include "core/guarded.h"

#include <QByteArray>
#include <QStringList>

class HttpRequest;

/// What other computers, web pages and programs may do. The user sets it in the settings.
struct AccessRights {
    bool otherComputers = true;  ///< whether other computers may send requests
    bool foreignPages = true;    ///< whether web pages of any site may use the simple API and fetch files
    bool anyFile = true;         ///< whether clients may fetch files from, and save recordings to, any folder
    QStringList allowedOrigins;  ///< the web origins that may use both APIs, such as "https://lab.example"
    QString recordsFolder;       ///< the only folder for recordings if `anyFile` is off
};

/// Decides whether a request is answered, by its sender, its origin and its host. Thread-safe: the GUI thread sets the
/// rights, and handler threads ask before each request. A change applies to the next request of every connection.
class AccessPolicy {
public:
    void setRights(const AccessRights &rights) { rights_.exchange(rights); }
    [[nodiscard]] AccessRights rights() const { return rights_.copy(); }

    /// Returns why a request to the simple API or for a file is refused, in English. Returns an empty text if it is
    /// permitted.
    [[nodiscard]] QByteArray refusalOfSimpleRequest(const HttpRequest &request) const;
    /// Returns the same for a request to the API for programs. Pages of other sites may use it only if their origin is
    /// allowed, whatever `foreignPages` is.
    [[nodiscard]] QByteArray refusalOfProgramRequest(const HttpRequest &request) const;
    /// Returns the origin of the request if it is one of the allowed origins or Ocela's own, for the CORS headers of
    /// the response. Otherwise returns an empty text.
    [[nodiscard]] QByteArray allowedOriginOf(const HttpRequest &request) const;

    /// Returns whether a client may start a recording to the file `path`. If the file system hangs, the policy may be
    /// destroyed before the call returns.
    [[nodiscard]] bool mayRecordTo(const QString &path) const;

private:
    Guarded<AccessRights> rights_;
};
