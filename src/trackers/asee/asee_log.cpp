#include "trackers/asee/asee_log.h"

Q_LOGGING_CATEGORY(lcAsee, "ocela.asee")
Q_LOGGING_CATEGORY(lcAseeSamples, "ocela.asee.samples", QtInfoMsg)
