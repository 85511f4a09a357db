#pragma once

#include <QLoggingCategory>

/// Log lines about EyeTech trackers: "ocela.eyetech".
Q_DECLARE_LOGGING_CATEGORY(lcEyetech)
