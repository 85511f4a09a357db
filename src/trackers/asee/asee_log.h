#pragma once

#include <QLoggingCategory>

/// Log lines about aSee Pro trackers: "ocela.asee".
Q_DECLARE_LOGGING_CATEGORY(lcAsee)

/// A debug line per sample: "ocela.asee.samples". It is off unless QT_LOGGING_RULES enables it, because a line costs
/// more time than the sample.
Q_DECLARE_LOGGING_CATEGORY(lcAseeSamples)

namespace asee {

/// Prints the result of a call of the vendor's library to standard output. Callable from any thread.
void print(const char *format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(1, 2);

}  // namespace asee
