#include "trackers/asee/asee_log.h"

#include "toolkit/platform/console.h"

#include <QString>
#include <cstdarg>

Q_LOGGING_CATEGORY(lcAsee, "ocela.asee")
Q_LOGGING_CATEGORY(lcAseeSamples, "ocela.asee.samples", QtInfoMsg)

void asee::print(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    console::print(QString::vasprintf(format, arguments).toStdString());
    va_end(arguments);
}
