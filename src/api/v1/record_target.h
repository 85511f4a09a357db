#pragma once

#include "api/v1/reply.h"

#include <variant>

class AccessPolicy;

namespace api_v1 {

/// Returns whether `name` can be the name of a file on all supported systems.
[[nodiscard]] bool isFileName(const QString &name);

/// The path of the record file that a client has asked for, or the response that refuses it.
using RecordTarget = std::variant<QString, Reply>;

/// Returns the target for the file `name` in `folder`. An empty name is the default name of the program. May block, if
/// the folder is on a network drive.
[[nodiscard]] RecordTarget targetInFolder(const QString &folder, const QString &name);

/// Returns the target for an absolute path on this computer, if `access` permits it. May block, too.
[[nodiscard]] RecordTarget targetAt(const QString &path, const AccessPolicy &access);

}  // namespace api_v1
