#include "trackers/eyetech/eyetech_log.h"

Q_LOGGING_CATEGORY(lcEyetech, "ocela.eyetech")
