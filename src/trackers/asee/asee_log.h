#pragma once

#include <QLoggingCategory>

/// Log lines about aSee Pro trackers: "ocela.asee".
Q_DECLARE_LOGGING_CATEGORY(lcAsee)

/// A debug line for each sample, "ocela.asee.samples"; off unless QT_LOGGING_RULES asks for it, as each costs more than
/// the sample itself.
Q_DECLARE_LOGGING_CATEGORY(lcAseeSamples)

namespace asee {

/// Prints to the console what a call of the vendor's library came to. Any thread.
void print(const char *format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(1, 2);

}  // namespace asee
