#pragma once

/// The timeout of every wait, far above what a busy machine needs with sanitizers.
constexpr int timeoutMs = 60000;
