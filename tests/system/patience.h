#pragma once

/// How long a condition may take to come true, in ms: far more than it does, on a busy machine and with
/// sanitizers too.
constexpr int patienceMs = 60000;
