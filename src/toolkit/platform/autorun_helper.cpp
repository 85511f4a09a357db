#include "toolkit/platform/autorun_helper.h"

bool AutorunHelper::setAppInAutorunUsingExe(const QString &exeName, bool enable, bool allUsers) {
    return changeAutorun(exeName, enable, allUsers).isEmpty();
}
