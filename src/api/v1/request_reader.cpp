#include "api/v1/request_reader.h"

#include "http/byte_text.h"
#include "http/http_request.h"
#include "http/url_encoding.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cmath>

using namespace api_v1;

namespace {

/// Texts of the client are quoted in answers only up to this length.
constexpr int maxQuotedLength = 100;

QString quoted(const QString &text) {
    return '"' + text.left(maxQuotedLength) + '"';
}

QString allowed(const QStringList &names) {
    return names.isEmpty() ? QStringLiteral("This request takes none.") : "Known are: " + names.join(", ") + '.';
}

/// QJsonDocument accepts only objects and arrays.
bool isJsonScalar(const QByteArray &text) {
    return QJsonDocument::fromJson('[' + text + ']').array().size() == 1;
}

bool isDigits(const QByteArray &text) {
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void RequestReader::fail(int status, const QString &detail) {
    if (!problem_)
        problem_ = api_v1::problem(status, detail);
}

void RequestReader::readQuery(const QStringList &names) {
    const QByteArray &target = request_.getRawPath();
    const int question = target.indexOf('?');
    if (question < 0)
        return;
    const std::string_view text = byte_text::view(target).substr(static_cast<std::size_t>(question) + 1);
    const QMultiMap<QByteArray, QByteArray> parameters = url_encoding::parseParameters(text);
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
        const QString name = QString::fromUtf8(parameter.key());
        if (name.isEmpty() && parameter.value().isEmpty())
            continue;
        if (!names.contains(name))
            fail(422, "The query has an unknown parameter " + quoted(name) + ". " + allowed(names));
        else if (query_.contains(name))
            fail(400, "The query has the parameter " + quoted(name) + " more than once.");
        query_.insert(name, parameter.value());
    }
}

bool RequestReader::hasJsonType() const {
    const QByteArray type = request_.getHeader("Content-Type");
    return byte_text::equalsIgnoringCase(type.split(';').first().trimmed(), "application/json");
}

void RequestReader::readBody(const QStringList &keys) {
    const QByteArray &body = request_.getBody();
    if (!hasJsonType() && !(body.isEmpty() && request_.getHeader("Content-Type").isEmpty())) {
        fail(415, "The body must be JSON. Send it with the header Content-Type: application/json.");
        return;
    }
    if (body.size() > maxBodyBytes) {
        fail(413, QString("The body has more than %1 bytes.").arg(maxBodyBytes));
        return;
    }
    if (body.isEmpty())
        return;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (document.isNull() && !isJsonScalar(body)) {
        fail(400, QString("The body is not JSON: %1 at byte %2.").arg(error.errorString()).arg(error.offset));
        return;
    }
    if (!document.isObject())
        fail(422, "The body must be a JSON object.");
    body_ = document.object();
    for (const QString &key : body_.keys()) {
        if (!keys.contains(key))
            fail(422, "The body has an unknown key " + quoted(key) + ". " + allowed(keys));
    }
}

std::optional<quint64> RequestReader::number(const QString &name, quint64 min, quint64 max) {
    if (!query_.contains(name))
        return std::nullopt;
    const QByteArray text = this->text(name);
    bool ok = isDigits(text);
    const quint64 value = ok ? text.toULongLong(&ok) : 0;
    if (!isDigits(text))
        fail(400, "The parameter " + name + " must be a whole number.");
    else if (!ok || value < min || value > max)
        fail(422, QString("The parameter %1 must be from %2 to %3.").arg(name).arg(min).arg(max));
    return value;
}

QString RequestReader::bodyText(const QString &key) {
    if (!body_[key].isString())
        fail(422, quoted(key) + " must be a text.");
    return body_[key].toString();
}

int RequestReader::bodyInteger(const QString &key, int min, int max) {
    const double value = bodyNumber(key);
    if (value != std::floor(value) || value < min || value > max) {
        fail(422, QString("%1 must be a whole number from %2 to %3.").arg(quoted(key)).arg(min).arg(max));
        return min;
    }
    return static_cast<int>(value);
}

double RequestReader::bodyNumber(const QString &key) {
    const double value = body_[key].toDouble();
    if (!body_[key].isDouble() || !std::isfinite(value))
        fail(422, quoted(key) + " must be a number.");
    return value;
}
