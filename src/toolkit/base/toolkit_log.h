#pragma once

#include <QLoggingCategory>

/// The category "ocela.toolkit", for the helpers of the toolkit.
Q_DECLARE_LOGGING_CATEGORY(lcToolkit)

/// The category "ocela.settings", for settings, their files and the language.
Q_DECLARE_LOGGING_CATEGORY(lcSettings)
