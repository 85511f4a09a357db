#pragma once

#include "gazepoint/field_groups.h"
#include "gazepoint/record.h"

#include <QByteArray>

namespace sim::gazepoint {

/// The record as the wire has it, without the line end: the fields of the groups that are switched on, in the
/// fixed order, floats with 5 decimals.
QByteArray formatRecord(const Record &record, const Switches &switches);

}  // namespace sim::gazepoint
