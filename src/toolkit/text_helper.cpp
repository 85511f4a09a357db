#include "toolkit/text_helper.h"

QString TextHelper::DateTimeFileString(const QDateTime &moment, bool withMilliseconds) {
    const QDateTime local = moment.isNull() ? QDateTime::currentDateTime() : moment.toLocalTime();
    return local.toString(withMilliseconds ? "yyyy-MM-dd_HH-mm-ss-zzz" : "yyyy-MM-dd_HH-mm-ss");
}
