#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>
#include <optional>
#include <variant>

namespace sim::gazepoint {

/// Replaces the simulated records of one connection with the lines of a file.
class LinePlayer {
public:
    /// With `once` there are no more records after the last line. Otherwise the player starts again.
    LinePlayer(const QVector<QByteArray> &lines, bool once);

    [[nodiscard]] bool isActive() const { return !lines_.isEmpty(); }
    std::optional<QByteArray> next();

    /// Returns the lines of a file that start with `<REC`, or an error message that names the file.
    [[nodiscard]] static std::variant<QVector<QByteArray>, QString> load(const QString &path);

private:
    QVector<QByteArray> lines_;
    bool once_;
    int index_ = 0;
};

}  // namespace sim::gazepoint
