#pragma once

#include "gazepoint/command_parser.h"

#include <QByteArray>
#include <QVector>

namespace sim::gazepoint {

/// Returns `<TAG ID="..." NAME="VALUE" ... />` without a line end.
QByteArray message(const char *tag, const QByteArray &id, const QVector<Attribute> &attributes = {});

/// Formats a number with `decimalCount` decimals and a decimal point in every locale.
QByteArray decimals(double value, int decimalCount);

}  // namespace sim::gazepoint
