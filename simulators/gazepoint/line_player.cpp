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

std::optional<QVector<QByteArray>> LinePlayer::load(const QString &path, QString *error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QString("cannot read %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    QVector<QByteArray> lines;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith("<REC"))
            lines.append(line);
    }
    if (lines.isEmpty()) {
        *error = QString("%1 holds no line that begins with <REC").arg(path);
        return std::nullopt;
    }
    return lines;
}

}  // namespace sim::gazepoint
