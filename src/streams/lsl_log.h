#pragma once

#include <QLoggingCategory>

/// Log lines about the Lab Streaming Layer: "ocela.lsl".
Q_DECLARE_LOGGING_CATEGORY(lcLsl)
