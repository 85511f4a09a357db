#pragma once

#include "api/v1/reply.h"

#include <QStringList>
#include <optional>

class HttpRequest;

namespace api_v1 {

/// Reads the query parameters or the JSON body of a request, and remembers the first error.
///
/// Read all values first, then call problem(), and use the values only if it returns nothing.
class RequestReader {
public:
    static constexpr int maxBodyBytes = 64 * 1024;

    explicit RequestReader(const HttpRequest &request) : request_(request) {}

    /// Reads the query. Each parameter must be in `names`, and may be given once.
    void readQuery(const QStringList &names);
    /// Reads the body, a JSON object with any of the keys `keys`. A body that is missing is an empty object.
    void readBody(const QStringList &keys);

    /// Returns a whole number of the query, or nothing if it is not given.
    [[nodiscard]] std::optional<quint64> number(const QString &name, quint64 min, quint64 max);
    /// Returns the undecoded text of a parameter, or an empty text.
    [[nodiscard]] QByteArray text(const QString &name) const { return query_.value(name).toByteArray(); }

    [[nodiscard]] bool has(const QString &key) const { return body_.contains(key); }
    [[nodiscard]] bool hasArray(const QString &key) const { return body_[key].isArray(); }
    /// Returns a text, a whole number or a number of the body. Call them only for a key that the body has.
    [[nodiscard]] QString bodyText(const QString &key);
    [[nodiscard]] int bodyInteger(const QString &key, int min, int max);
    [[nodiscard]] double bodyNumber(const QString &key);

    /// Stores an error unless there is an earlier one.
    void fail(int status, const QString &detail);
    [[nodiscard]] const std::optional<Reply> &problem() const { return problem_; }

private:
    [[nodiscard]] bool hasJsonType() const;

    const HttpRequest &request_;
    QVariantMap query_;
    QJsonObject body_;
    std::optional<Reply> problem_;
};

}  // namespace api_v1
