#pragma once

#include <Qt>
#include <cstdint>
#include <optional>

/// The Qt key of an X11 keysym: F1 to F35, Latin letters, digits (also the keypad's), and the keys for
/// editing and moving about. Nothing for any other.
std::optional<Qt::Key> keyFromKeysym(std::uint32_t keysym);
