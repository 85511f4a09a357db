#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QVector>
#include <utility>

namespace api_v1 {

/// A complete response.
struct Reply {
    int status = 200;
    QByteArray contentType;  ///< empty for a response without a body
    QVector<QByteArray> body;
    QVector<std::pair<QByteArray, QByteArray>> headers;

    [[nodiscard]] bool isProblem() const { return status >= 400; }
};

/// Returns the reason phrase of a status.
[[nodiscard]] QByteArray statusText(int status);

[[nodiscard]] Reply jsonReply(int status, const QJsonObject &object);
[[nodiscard]] Reply emptyReply(int status);

/// Returns an error response in the format of RFC 9457. `detail` says what is wrong and what to do.
[[nodiscard]] Reply problem(int status, const QString &detail);

}  // namespace api_v1
