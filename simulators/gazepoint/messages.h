#pragma once

#include "gazepoint/command_parser.h"

#include <QByteArray>
#include <QVector>

namespace sim::gazepoint {

/// `<TAG ID="..." NAME="VALUE" ... />` without the line end.
QByteArray message(const char *tag, const QByteArray &id, const QVector<Attribute> &attributes = {});

/// A number with a fixed count of decimals, a decimal point in every locale.
QByteArray decimals(double value, int count);

}  // namespace sim::gazepoint
