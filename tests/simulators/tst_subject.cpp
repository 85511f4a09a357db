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

}  // namespace

class TestSubject : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looks_around_like_a_person();
    void rests_with_the_noise_of_a_fixation();
    void blinks_every_few_seconds();
    void does_the_same_at_every_sampling_rate();
    void looks_where_it_is_told_to();
};

void TestSubject::looks_around_like_a_person() {
    ScanPath path(PhysicalSetup(), 1);
    Spells moving;
    Point before = path.at(0);
    for (int ms = 1; ms <= 60000; ++ms) {
        const Point now = path.at(ms / 1000.0);
        moving.add(PhysicalSetup().degreesBetween(before, now) > 1e-6);
        before = now;
    }
    QVERIFY(moving.no.size() > 120 && moving.no.size() < 300);
    // One sample of tolerance at either end; the slow ends of a saccade count as rest.
    QVERIFY(smallest(moving.no) >= 0.148 && largest(moving.no) <= 0.520);
    QVERIFY(smallest(moving.yes) >= 0.018 && largest(moving.yes) <= 0.130);
}

void TestSubject::rests_with_the_noise_of_a_fixation() {
    const Point target{0.3, 0.6};
    Subject subject;
    subject.lookAt(target);
    std::vector<Point> points;
    for (int i = 75; i < 3000; ++i)
        points.push_back(subject.at(i / 150.0).left.gaze);
    const auto count = static_cast<double>(points.size());
    const Point centre = std::accumulate(points.begin(), points.end(), Point()) * (1 / count);
    double squares = 0;
    for (const Point point : points)
        squares += std::pow(subject.setup().degreesBetween(point, centre), 2);
    const double spread = std::sqrt(squares / count);
    QVERIFY2(spread > 0.25 && spread < 0.35, qPrintable(QString::number(spread)));
    QVERIFY(subject.setup().degreesBetween(centre, target) < 1.5);
}

void TestSubject::blinks_every_few_seconds() {
    Subject subject;
    Spells closed;
    for (int ms = 0; ms < 300000; ++ms) {
        const EyeState state = subject.at(ms / 1000.0);
        QCOMPARE(state.left.visible, state.right.visible);
        closed.add(!state.left.visible);
    }
    QVERIFY(closed.yes.size() > 300 / 7 && closed.yes.size() < 300 / 2);
    QVERIFY(smallest(closed.yes) > 0.098 && largest(closed.yes) < 0.202);
}

void TestSubject::does_the_same_at_every_sampling_rate() {
    Subject slow, fast;
    for (int sample = 0; sample < 20 * 960; ++sample) {
        const EyeState state = fast.at(sample / 960.0);
        if (sample % 16 == 0)
            QCOMPARE(slow.at(sample / 960.0).left.gaze.x, state.left.gaze.x);
    }
}

void TestSubject::looks_where_it_is_told_to() {
    Subject subject;
    double now = 3;
    const auto degreesFrom = [&](Point target) {
        return subject.setup().degreesBetween(subject.at(now += 0.5).left.gaze, target);
    };
    subject.follow({0.9, 0.2});
    QVERIFY(degreesFrom({0.9, 0.2}) < 2.5);
    subject.lookAt({0.05, 0.05});  // a target comes first, and the pointer waits
    subject.follow({0.8, 0.8});
    QVERIFY(degreesFrom({0.05, 0.05}) < 2.5);
    subject.release();
    QVERIFY(degreesFrom({0.8, 0.8}) < 2.5);
}

OCELA_TEST(TestSubject)
#include "tst_subject.moc"
