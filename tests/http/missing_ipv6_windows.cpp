#include "missing_ipv6.h"

bool missing_ipv6::simulate(Reason /*reason*/) {
    return false;
}
