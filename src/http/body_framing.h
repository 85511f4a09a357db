#pragma once

#include <QByteArray>
#include <QMultiMap>

/// How the end of a request's body is found.
struct BodyFraming {
    enum class Kind { none, counted, chunked, invalid };

    Kind kind = Kind::none;
    qint64 sizeBytes = 0;  ///< of a counted body; never 0

    /// Reads "content-length" and "transfer-encoding". `headers` have lower-case names.
    ///
    /// Headers that another server or a proxy could read differently are invalid, because the rest of the body would be
    /// read as a request: another transfer coding than "chunked", a transfer coding beside a length, different lengths,
    /// and a length that contains digits but is not a decimal number. A length without any digit counts as 0. A length
    /// out of range counts as 4 GiB - 1, which exceeds every size limit.
    [[nodiscard]] static BodyFraming of(const QMultiMap<QByteArray, QByteArray> &headers);
};
