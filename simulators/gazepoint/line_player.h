#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>
#include <optional>

namespace sim::gazepoint {

/// Sends recorded records in place of measured ones; each connection has its own place in them.
class LinePlayer {
public:
    /// `once`: nothing more comes after the last line, else it starts again.
    LinePlayer(const QVector<QByteArray> &lines, bool once);

    [[nodiscard]] bool isActive() const { return !lines_.isEmpty(); }
    std::optional<QByteArray> next();

    /// The lines of a file that begin with `<REC`; comments (#), blank lines and other messages are passed
    /// over. Nothing, and the reason in `error`, when the file cannot be read or has no such line.
    static std::optional<QVector<QByteArray>> load(const QString &path, QString *error);

private:
    QVector<QByteArray> lines_;
    bool once_;
    int index_ = 0;
};

}  // namespace sim::gazepoint
