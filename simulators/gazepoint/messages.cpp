#include "gazepoint/messages.h"

namespace sim::gazepoint {

QByteArray message(const char *tag, const QByteArray &id, const QVector<Attribute> &attributes) {
    QByteArray text = QByteArray("<") + tag + " ID=\"" + id + "\"";
    for (const Attribute &attribute : attributes)
        text += " " + attribute.name + "=\"" + attribute.value + "\"";
    return text + " />";
}

QByteArray decimals(double value, int decimalCount) {
    return QByteArray::number(value, 'f', decimalCount);
}

}  // namespace sim::gazepoint
