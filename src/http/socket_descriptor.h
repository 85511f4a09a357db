#pragma once

#include <QtGlobal>

/// A connection of the operating system, as it travels between threads.
using tSocketDescriptor = qint64;
