#include "toolkit/base/toolkit_log.h"

Q_LOGGING_CATEGORY(lcToolkit, "ocela.toolkit")
Q_LOGGING_CATEGORY(lcSettings, "ocela.settings")
