#include "http/http_log.h"

Q_LOGGING_CATEGORY(lcHttp, "ocela.http")
