#pragma once

#include <QLoggingCategory>

/// "ocela.http": messages of the HTTP engine and of the API.
Q_DECLARE_LOGGING_CATEGORY(lcHttp)
