#pragma once

#include <QLoggingCategory>

/// Log lines of the toolkit's helpers: "ocela.toolkit".
Q_DECLARE_LOGGING_CATEGORY(lcToolkit)

/// Log lines about settings, their files and the language: "ocela.settings".
Q_DECLARE_LOGGING_CATEGORY(lcSettings)
