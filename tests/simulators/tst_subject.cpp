#include "subject/scan_path.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QTest>
#include <algorithm>
#include <cmath>
#include <vector>

using namespace sim;

namespace {

SubjectOptions person(quint64 seed) {
    SubjectOptions options;
    options.seed = seed;
    return options;
}

std::vector<double> times(double from, double to, double step) {
    std::vector<double> list;
    for (int i = 0; from + i * step < to; ++i)
        list.push_back(from + i * step);
    return list;
}

struct Spans {
    std::vector<double> still, moving;  // seconds
};

/// How long the noise-free gaze rests and moves in one minute, sampled every millisecond.
Spans spansOf(quint64 seed) {
    const PhysicalSetup setup;
    ScanPath path(setup, seed);
    Spans spans;
    Point last = path.at(0);
    bool still = true;
    int length = 0;
    for (int ms = 1; ms <= 60000; ++ms) {
        const Point point = path.at(ms / 1000.0);
        const bool nowStill = setup.degreesBetween(point, last) < 1e-6;
        if (nowStill != still) {
            (still ? spans.still : spans.moving).push_back(length / 1000.0);
            length = 0;
        }
        still = nowStill;
        ++length;
        last = point;
    }
    return spans;
}

double mean(const std::vector<double> &values) {
    double sum = 0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

double largest(const std::vector<double> &values) {
    return *std::max_element(values.begin(), values.end());
}
double smallest(const std::vector<double> &values) {
    return *std::min_element(values.begin(), values.end());
}

struct Movement {
    double first = 0, last = 0;         // seconds at which the gaze moves
    double fastest = 0, fastestAt = 0;  // degrees a second; when
};

Movement movementOver(double degrees) {
    constexpr double step = 0.0005;
    const PhysicalSetup setup;
    const Point start{0.5, 0.5};
    ScanPath path(setup, 1);
    path.attend(start + setup.fromDegrees(degrees, 0), 0, 0.05);
    Movement movement;
    Point before = path.at(0);
    for (const double t : times(0, 0.3, step)) {
        const Point now = path.at(t);
        const double speed = setup.degreesBetween(before, now) / step;
        before = now;
        if (speed < 0.01 * degrees)
            continue;
        movement.last = t;
        if (movement.first == 0)
            movement.first = t;
        if (speed > movement.fastest) {
            movement.fastest = speed;
            movement.fastestAt = t;
        }
    }
    return movement;
}

Point centre(const std::vector<Point> &points) {
    Point sum;
    for (const Point point : points)
        sum = sum + point;
    return sum * (1.0 / static_cast<double>(points.size()));
}

/// Of the horizontal movements.
double correlation(const std::vector<Point> &left, const std::vector<Point> &right) {
    const Point leftCentre = centre(left), rightCentre = centre(right);
    double together = 0, squaresLeft = 0, squaresRight = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const double l = left[i].x - leftCentre.x, r = right[i].x - rightCentre.x;
        together += l * r;
        squaresLeft += l * l;
        squaresRight += r * r;
    }
    return together / std::sqrt(squaresLeft * squaresRight);
}

void addSeeds() {
    QTest::addColumn<quint64>("seed");
    for (const quint64 seed : {0ULL, 1ULL, 7ULL, 12345ULL, ~0ULL})
        QTest::addRow("seed %llu", static_cast<unsigned long long>(seed)) << seed;
}

}  // namespace

class TestSubject : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looks_around_like_a_person_data() { addSeeds(); }
    void looks_around_like_a_person();
    void saccades_follow_the_main_sequence();
    void rests_with_the_noise_of_a_fixation_data() { addSeeds(); }
    void rests_with_the_noise_of_a_fixation();
    void blinks_every_few_seconds_data() { addSeeds(); }
    void blinks_every_few_seconds();
    void has_pupils_and_a_distance_that_drift();
    void does_the_same_at_every_sampling_rate();
    void looks_at_targets_and_away_again();
    void follows_the_pointer();
};

void TestSubject::looks_around_like_a_person() {
    QFETCH(quint64, seed);
    const Spans spans = spansOf(seed);
    QVERIFY(spans.still.size() > 120 && spans.still.size() < 300);
    // One sample of tolerance at either end; the slow ends of a saccade count as rest.
    QVERIFY(smallest(spans.still) >= 0.148 && largest(spans.still) <= 0.520);
    QVERIFY(mean(spans.still) > 0.22 && mean(spans.still) < 0.34);
    QVERIFY(smallest(spans.moving) >= 0.018 && largest(spans.moving) <= 0.130);
    QVERIFY(mean(spans.moving) > 0.025 && mean(spans.moving) < 0.060);
}

void TestSubject::saccades_follow_the_main_sequence() {
    for (const double degrees : {2.0, 5.0, 10.0, 20.0}) {
        const Movement movement = movementOver(degrees);
        const double duration = 0.021 + 0.0022 * degrees;
        QVERIFY(std::abs(movement.last - movement.first - duration) < 0.003);
        QVERIFY(std::abs(movement.fastestAt - (movement.first + movement.last) / 2) < 0.003);
        // A smooth profile is 1.875 times faster at its peak than on average.
        QVERIFY(std::abs(movement.fastest / (degrees / duration) - 1.875) < 0.03);
    }
}

void TestSubject::rests_with_the_noise_of_a_fixation() {
    QFETCH(quint64, seed);
    const Point target{0.3, 0.6};
    Subject subject(person(seed));
    subject.lookAt(target);
    const PhysicalSetup setup = subject.setup();
    std::vector<Point> left, right;
    for (const double t : times(0.5, 20, 1 / 150.0)) {
        const EyeState state = subject.at(t);
        left.push_back(state.left.gaze);
        right.push_back(state.right.gaze);
    }
    for (const auto *eye : {&left, &right}) {
        const Point middle = centre(*eye);
        double squares = 0;
        for (const Point point : *eye)
            squares += std::pow(setup.degreesBetween(point, middle), 2);
        const double spread = std::sqrt(squares / static_cast<double>(eye->size()));
        QVERIFY2(spread > 0.25 && spread < 0.35, qPrintable(QString::number(spread)));
        QVERIFY(setup.degreesBetween(middle, target) < 1.5);
    }
    QVERIFY(setup.degreesBetween(centre(left), centre(right)) > 0.01);
    QVERIFY(std::abs(correlation(left, right)) < 0.2);
}

void TestSubject::blinks_every_few_seconds() {
    QFETCH(quint64, seed);
    Subject subject(person(seed));
    std::vector<double> blinks;
    double closedSince = -1;
    for (const double t : times(0, 300, 0.001)) {
        const EyeState state = subject.at(t);
        QCOMPARE(state.left.visible, state.right.visible);
        if (!state.left.visible && closedSince < 0)
            closedSince = t;
        if (state.left.visible && closedSince >= 0) {
            blinks.push_back(t - closedSince);
            closedSince = -1;
        }
    }
    QVERIFY(blinks.size() > 300 / 7 && blinks.size() < 300 / 2);
    QVERIFY(smallest(blinks) > 0.098 && largest(blinks) < 0.202);
}

void TestSubject::has_pupils_and_a_distance_that_drift() {
    Subject subject(person(3));
    std::vector<double> pupils, distances;
    EyeState before = subject.at(0);
    for (const double t : times(0.01, 120, 0.01)) {
        const EyeState state = subject.at(t);
        pupils.push_back(state.left.pupil_mm);
        distances.push_back(state.distance_cm);
        QVERIFY(std::abs(state.left.pupil_mm - before.left.pupil_mm) < 0.05);
        QVERIFY(std::abs(state.distance_cm - before.distance_cm) < 0.1);
        QVERIFY(state.left.pupilCentre.x > 0 && state.left.pupilCentre.x < state.right.pupilCentre.x &&
                state.right.pupilCentre.x < 1);
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
        const EyeState a = slow.at(t), b = fast.at(t), c = other.at(t);
        QCOMPARE(a.left.visible, b.left.visible);
        QCOMPARE(a.left.gaze.x, b.left.gaze.x);
        QCOMPARE(a.right.gaze.y, b.right.gaze.y);
        QCOMPARE(a.distance_cm, b.distance_cm);
        difference += std::abs(a.left.gaze.x - c.left.gaze.x);
    }
    QVERIFY(difference > 50);  // another seed is another person
}

void TestSubject::looks_at_targets_and_away_again() {
    Subject subject(person(2));
    const PhysicalSetup setup = subject.setup();
    double t = 3;
    subject.at(t);
    for (const Point target : {Point{0.05, 0.05}, Point{0.95, 0.95}, Point{0.5, 0.1}}) {
        subject.lookAt(target);
        const EyeState state = subject.at(t += 0.5);
        QVERIFY(setup.degreesBetween(state.left.gaze, target) < 2.5);
    }
    subject.release();
    bool away = false;
    for (const double later : times(t, t + 3, 0.01))
        away = away || setup.degreesBetween(subject.at(later).left.gaze, {0.5, 0.1}) > 5;
    QVERIFY(away);
}

void TestSubject::follows_the_pointer() {
    Subject subject(person(4));
    const PhysicalSetup setup = subject.setup();
    subject.at(1);
    subject.follow({0.9, 0.2});
    QVERIFY(setup.degreesBetween(subject.at(1.3).left.gaze, {0.9, 0.2}) < 2.5);
    subject.lookAt({0.1, 0.1});  // a target comes first, and the pointer waits
    subject.follow({0.8, 0.8});
    QVERIFY(setup.degreesBetween(subject.at(2).left.gaze, {0.1, 0.1}) < 2.5);
    subject.release();
    QVERIFY(setup.degreesBetween(subject.at(3).left.gaze, {0.8, 0.8}) < 2.5);
}

OCELA_TEST(TestSubject)
#include "tst_subject.moc"
