#pragma once

#include <Qt>
#include <cstdint>
#include <optional>

/// The Qt key of a Windows virtual-key code: F1 to F24, Latin letters, digits (also the keypad's), and the
/// keys for editing and moving about. Nothing for any other. `extended` is the flag that tells the keypad's
/// Enter from the main one.
std::optional<Qt::Key> keyFromVirtualKey(std::uint32_t code, bool extended);
