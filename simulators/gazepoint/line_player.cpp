#include "gazepoint/line_player.h"

#include <QFile>

namespace sim::gazepoint {

LinePlayer::LinePlayer(const QVector<QByteArray> &lines, bool once) : lines_(lines), once_(once) {}

std::optional<QByteArray> LinePlayer::next() {
    if (index_ >= lines_.size()) {
        if (once_)
            return std::nullopt;
        index_ = 0;
    }
    return lines_[index_++];
}

std::variant<QVector<QByteArray>, QString> LinePlayer::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString("cannot read %1: %2").arg(path, file.errorString());
    QVector<QByteArray> lines;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith("<REC"))
            lines.append(line);
    }
    if (lines.isEmpty())
        return QString("%1 has no line that starts with <REC").arg(path);
    return lines;
}

}  // namespace sim::gazepoint
