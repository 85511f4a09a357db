#include "subject/scan_path.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QTest>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

using namespace sim;

namespace {

SubjectOptions person(quint64 seed) {
    SubjectOptions options;
    options.seed = seed;
    return options;
}

double mean(const std::vector<double> &values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double largest(const std::vector<double> &values) {
    return *std::max_element(values.begin(), values.end());
}

double smallest(const std::vector<double> &values) {
    return *std::min_element(values.begin(), values.end());
}

/// For how many seconds at a stretch something was so and not so, when it is told every millisecond.
struct Spells {
    void add(bool now) {
        if (now != last && length > 0) {
            (last ? yes : no).push_back(length / 1000.0);
            length = 0;
        }
        last = now;
        ++length;
    }

    std::vector<double> yes, no;
    bool last = false;
    int length = 0;
};

Spells movementsOf(ScanPath *path, int milliseconds) {
    Spells moving;
    Point before = path->at(0);
    for (int ms = 1; ms <= milliseconds; ++ms) {
        const Point now = path->at(ms / 1000.0);
        moving.add(PhysicalSetup().degreesBetween(before, now) > 1e-6);
        before = now;
    }
    return moving;
}

}  // namespace

class TestSubject : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looks_around_like_a_person();
    void saccades_follow_the_main_sequence();
    void rests_with_the_noise_of_a_fixation();
    void blinks_every_few_seconds();
    void has_pupils_and_a_distance_that_drift();
    void does_the_same_at_every_sampling_rate();
    void looks_where_it_is_told_to();
};

void TestSubject::looks_around_like_a_person() {
    ScanPath path(PhysicalSetup(), 1);
    const Spells moving = movementsOf(&path, 60000);
    QVERIFY(moving.no.size() > 120 && moving.no.size() < 300);
    // One sample of tolerance at either end; the slow ends of a saccade count as rest.
    QVERIFY(smallest(moving.no) >= 0.148 && largest(moving.no) <= 0.520);
    QVERIFY(mean(moving.no) > 0.22 && mean(moving.no) < 0.34);
    QVERIFY(smallest(moving.yes) >= 0.018 && largest(moving.yes) <= 0.130);
    QVERIFY(mean(moving.yes) > 0.025 && mean(moving.yes) < 0.060);
}

void TestSubject::saccades_follow_the_main_sequence() {
    const PhysicalSetup setup;
    for (const double degrees : {2.0, 10.0, 20.0}) {
        ScanPath path(setup, 1);
        path.attend(path.at(0) + setup.fromDegrees(degrees, 0), 0, 0.05);
        const Spells moving = movementsOf(&path, 300);
        QCOMPARE(moving.yes.size(), std::size_t(1));
        QVERIFY(std::abs(moving.yes.front() - (0.021 + 0.0022 * degrees)) < 0.003);
    }
}

void TestSubject::rests_with_the_noise_of_a_fixation() {
    const Point target{0.3, 0.6};
    const PhysicalSetup setup;
    std::vector<Point> centres;
    for (const auto eye : {&EyeState::left, &EyeState::right}) {
        Subject subject(person(1));
        subject.lookAt(target);
        std::vector<Point> points;
        for (int i = 75; i < 3000; ++i)
            points.push_back((subject.at(i / 150.0).*eye).gaze);
        const auto count = static_cast<double>(points.size());
        centres.push_back(std::accumulate(points.begin(), points.end(), Point()) * (1 / count));
        double squares = 0;
        for (const Point point : points)
            squares += std::pow(setup.degreesBetween(point, centres.back()), 2);
        const double spread = std::sqrt(squares / count);
        QVERIFY2(spread > 0.25 && spread < 0.35, qPrintable(QString::number(spread)));
        QVERIFY(setup.degreesBetween(centres.back(), target) < 1.5);
    }
    QVERIFY(setup.degreesBetween(centres[0], centres[1]) > 0.01);
}

void TestSubject::blinks_every_few_seconds() {
    Subject subject(person(1));
    Spells closed;
    for (int ms = 0; ms < 300000; ++ms) {
        const EyeState state = subject.at(ms / 1000.0);
        QCOMPARE(state.left.visible, state.right.visible);
        closed.add(!state.left.visible);
    }
    QVERIFY(closed.yes.size() > 300 / 7 && closed.yes.size() < 300 / 2);
    QVERIFY(smallest(closed.yes) > 0.098 && largest(closed.yes) < 0.202);
}

void TestSubject::has_pupils_and_a_distance_that_drift() {
    Subject subject(person(3));
    std::vector<double> pupils, distances;
    EyeState before = subject.at(0);
    for (int i = 1; i < 12000; ++i) {
        const EyeState state = subject.at(i / 100.0);
        pupils.push_back(state.left.pupil_mm);
        distances.push_back(state.distance_cm);
        QVERIFY(std::abs(state.left.pupil_mm - before.left.pupil_mm) < 0.05);
        QVERIFY(std::abs(state.distance_cm - before.distance_cm) < 0.1);
        QVERIFY(state.left.pupilCentre.x < state.right.pupilCentre.x);
        before = state;
    }
    QVERIFY(smallest(pupils) >= 2 && largest(pupils) <= 8 && largest(pupils) - smallest(pupils) > 0.3);
    QVERIFY(smallest(distances) > 57 && largest(distances) < 67 && largest(distances) - smallest(distances) > 1);
}

void TestSubject::does_the_same_at_every_sampling_rate() {
    Subject slow(person(5)), fast(person(5)), other(person(6));
    double difference = 0;
    for (int sample = 0; sample < 1200; ++sample) {
        const double t = sample / 60.0;
        for (int between = 1; between < 16; ++between)
            fast.at(t - (16 - between) / 960.0);
        const EyeState a = slow.at(t), b = fast.at(t);
        QCOMPARE(a.left.visible, b.left.visible);
        QCOMPARE(a.left.gaze.x, b.left.gaze.x);
        QCOMPARE(a.distance_cm, b.distance_cm);
        difference += std::abs(a.left.gaze.x - other.at(t).left.gaze.x);
    }
    QVERIFY(difference > 50);  // another seed is another person
}

void TestSubject::looks_where_it_is_told_to() {
    Subject subject(person(2));
    double now = 3;
    const auto degreesFrom = [&](Point target, double later) {
        return subject.setup().degreesBetween(subject.at(now += later).left.gaze, target);
    };
    subject.follow({0.9, 0.2});
    QVERIFY(degreesFrom({0.9, 0.2}, 0.5) < 2.5);
    subject.lookAt({0.05, 0.05});  // a target comes first, and the pointer waits
    subject.follow({0.8, 0.8});
    QVERIFY(degreesFrom({0.05, 0.05}, 0.5) < 2.5);
    subject.release();
    QVERIFY(degreesFrom({0.8, 0.8}, 0.5) < 2.5);
}

OCELA_TEST(TestSubject)
#include "tst_subject.moc"
