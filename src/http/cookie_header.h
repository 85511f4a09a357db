#pragma once

#include <QByteArray>
#include <QMap>

/// What clients send back of the cookies that they were given.
namespace cookie_header {

/// Adds the cookies in the value of one "cookie" header to `cookies`; a later one of a name replaces an earlier one.
/// Intended: a part without "=" is the value of the empty name, a part that begins with "=" is a name without value.
void addCookies(const QByteArray &headerValue, QMap<QByteArray, QByteArray> &cookies);

}  // namespace cookie_header
