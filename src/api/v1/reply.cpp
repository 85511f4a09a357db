#include "api/v1/reply.h"

#include <QJsonDocument>

QByteArray api_v1::statusText(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 201:
            return "Created";
        case 202:
            return "Accepted";
        case 204:
            return "No Content";
        case 206:
            return "Partial Content";
        case 304:
            return "Not Modified";
        case 400:
            return "Bad Request";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 409:
            return "Conflict";
        case 413:
            return "Content Too Large";
        case 415:
            return "Unsupported Media Type";
        case 416:
            return "Range Not Satisfiable";
        case 422:
            return "Unprocessable Content";
        case 429:
            return "Too Many Requests";
        case 503:
            return "Service Unavailable";
        default:
            return "Internal Server Error";
    }
}

api_v1::Reply api_v1::jsonReply(int status, const QJsonObject &object) {
    return {status, "application/json", {QJsonDocument(object).toJson(QJsonDocument::Compact)}, {}};
}

api_v1::Reply api_v1::emptyReply(int status) {
    return {status, {}, {}, {}};
}

api_v1::Reply api_v1::problem(int status, const QString &detail) {
    Reply reply =
        jsonReply(status, {{"title", QString::fromLatin1(statusText(status))}, {"status", status}, {"detail", detail}});
    reply.contentType = "application/problem+json";
    return reply;
}
