#pragma once

#include "http/http_request.h"
#include "http/http_settings.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <functional>

/// Settings with the size limits of requests, in bytes.
class RequestLimits {
public:
    /// Keeps the default limits.
    RequestLimits() = default;
    RequestLimits(int maxRequestSize, int maxMultiPartSize) { set(maxRequestSize, maxMultiPartSize); }

    void set(int maxRequestSize, int maxMultiPartSize) {
        stored_.setValue("maxRequestSize", maxRequestSize);
        stored_.setValue("maxMultiPartSize", maxMultiPartSize);
    }
    [[nodiscard]] const HttpSettings &settings() const { return settings_; }

private:
    const QTemporaryDir folder_;
    QSettings stored_{folder_.filePath("settings.ini"), QSettings::IniFormat};
    const HttpSettings settings_{&stored_};
};

namespace request_outcome {

inline std::string_view restOf(HttpInput input) {
    return input.take(std::string_view::npos);
}

/// The piece size for an input that arrives in one piece.
inline std::size_t wholeInput() {
    return std::string_view::npos;
}

/// Feeds `bytes` to `request` until its status is final. Calls `pieceSize` for the size of each piece. Returns the
/// bytes that remain. Aborts the program if a call consumes no input, because the loop would never end.
inline std::string_view feed(HttpRequest &request, std::string_view bytes,
                             const std::function<std::size_t()> &pieceSize = wholeInput) {
    const auto isFinal = [&request] { return request.getStatus() >= HttpRequest::complete; };
    HttpInput all(bytes);
    HttpInput piece;
    while (!isFinal() && !all.isEmpty()) {
        piece = HttpInput(all.take(pieceSize()), QHostAddress::LocalHost);
        while (!isFinal() && !piece.isEmpty()) {
            const std::size_t before = restOf(piece).size();
            request.readFromSocket(piece);
            if (!isFinal() && restOf(piece).size() == before)
                qFatal("the request does not consume its input");
        }
    }
    return bytes.substr(bytes.size() - restOf(all).size() - restOf(piece).size());
}

/// Returns the properties of a request, one per line: status, first line, headers, parameters, cookies, body, uploaded
/// files.
inline QList<QByteArray> describe(const HttpRequest &request) {
    static const char *const names[] = {"first line", "headers", "body", "complete", "too large", "broken", "busy"};
    QList<QByteArray> lines{names[request.getStatus()]};
    if (!request.getMethod().isEmpty())
        lines << request.getMethod() + ' ' + request.getPath() + ' ' + request.getVersion();
    const auto add = [&lines](const auto &map, const QByteArray &start, const QByteArray &middle) {
        for (auto entry = map.begin(); entry != map.end(); ++entry)
            lines << start + entry.key() + middle + entry.value();
    };
    add(request.getHeaderMap(), "", ": ");
    add(request.getParameterMap(), "", "=");
    add(request.getCookieMap(), "cookie ", "=");
    if (!request.getBody().isEmpty())
        lines << "body " + request.getBody();
    for (const QByteArray &field : request.getParameterMap().uniqueKeys())
        if (QTemporaryFile *file = request.getUploadedFile(field))
            lines << "file " + field + ": " + file->readAll();
    return lines;
}

}  // namespace request_outcome
