#pragma once

#include <QString>
#include <QStringList>

/// Web origins, such as "https://lab.example:8443": the scheme, host and port of a web site.
struct WebOrigins {
    QStringList valid;    ///< in the form in which browsers send them
    QStringList invalid;  ///< the texts that are not origins, unchanged

    /// Parses origins that are separated by white space. A slash after an origin is ignored.
    [[nodiscard]] static WebOrigins parse(const QString &text);
};
