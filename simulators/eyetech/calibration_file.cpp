#include "eyetech/calibration.h"
#include "eyetech/results.h"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace sim::eyetech {

namespace {

constexpr char kTitle[] = "simulated calibration 1";
constexpr std::size_t kMostTargets = 20;

QTextStream &operator<<(QTextStream &stream, const QLScore &score) {
    return stream << ' ' << score.x << ' ' << score.y << ' ' << score.score;
}

QTextStream &operator>>(QTextStream &stream, QLScore &score) {
    return stream >> score.x >> score.y >> score.score;
}

}  // namespace

bool Calibration::save(const QString &path) const {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream << kTitle << '\n';
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
    if (stream.readLine(sizeof kTitle) != kTitle)
        return false;
    State state;
    while (state.targets.size() < kMostTargets) {
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
