#pragma once

#include <QLoggingCategory>

/// "ocela.http": what the HTTP engine and the API on top of it report.
Q_DECLARE_LOGGING_CATEGORY(lcHttp)
