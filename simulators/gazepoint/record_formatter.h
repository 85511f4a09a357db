#pragma once

#include "gazepoint/field_groups.h"
#include "gazepoint/record.h"

#include <QByteArray>

namespace sim::gazepoint {

/// Formats the enabled fields of a record in their fixed order, without a line end. Real numbers other than HRIBI have
/// 5 decimals.
QByteArray formatRecord(const Record &record, const Switches &switches);

}  // namespace sim::gazepoint
