#pragma once

/// The timeout of every wait. A busy machine with sanitizers needs far less.
constexpr int timeoutMs = 60000;
