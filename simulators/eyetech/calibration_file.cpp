#include "eyetech/calibration.h"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace sim::eyetech {

namespace {

constexpr char title[] = "simulated calibration 1";
constexpr std::size_t maxTargetCount = 20;

QTextStream &operator<<(QTextStream &stream, const quicklink2::QLScore &score) {
    return stream << ' ' << score.x << ' ' << score.y << ' ' << score.score;
}

QTextStream &operator>>(QTextStream &stream, quicklink2::QLScore &score) {
    return stream >> score.x >> score.y >> score.score;
}

}  // namespace

bool Calibration::save(const QString &path) const {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream << title << '\n';
    for (const Target &target : state().targets) {
        stream << target.place.id << ' ' << target.place.x << ' ' << target.place.y << ' ' << target.status
               << target.scores[0] << target.scores[1] << '\n';
    }
    stream.flush();
    return file.commit();
}

bool Calibration::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    if (stream.readLine(sizeof title) != title)
        return false;
    State state;
    while (state.targets.size() < maxTargetCount) {
        Target target;
        stream >> target.place.id >> target.place.x >> target.place.y >> target.status >> target.scores[0] >>
            target.scores[1];
        if (stream.status() != QTextStream::Ok)
            break;
        state.targets.push_back(target);
    }
    const std::lock_guard lock(mutex_);
    state_ = state;
    return true;
}

}  // namespace sim::eyetech
