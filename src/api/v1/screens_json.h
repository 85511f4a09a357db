#pragma once

#include <QJsonArray>
#include <QJsonValue>

class EyetrackerInterface;

namespace api_v1 {

/// Returns the screens in the order of their numbers. Sizes are in device pixels and in mm. GUI thread.
[[nodiscard]] QJsonArray screensJson();

/// Returns the area to which percent and pixels of a tracker's samples are relative, or null if it is not known. GUI
/// thread.
[[nodiscard]] QJsonValue areaJson(const EyetrackerInterface &tracker);

}  // namespace api_v1
