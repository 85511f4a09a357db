#include "subject/subject.h"
#include "support/test_main.h"

#include <QVector>
#include <cmath>
#include <vector>

using namespace sim;

class TestSubject : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eyes_have_fixation_noise_and_their_own_errors();
    void blinks_every_few_seconds();
    void depends_on_the_seed_but_not_on_the_sample_rate();
    void looks_at_targets_rather_than_at_the_pointer();
};

void TestSubject::eyes_have_fixation_noise_and_their_own_errors() {
    const Point target{0.3, 0.6};
    const PhysicalSetup setup;
    const int first = 75, end = 3000;
    std::vector<Point> centres;
    for (Eye EyeState::*const eye : {&EyeState::left, &EyeState::right}) {
        Subject subject;
        subject.lookAt(target);
        Point sum;
        double squares = 0;
        for (int i = first; i < end; ++i) {
            const Point gaze = (subject.at(i / 150.0).*eye).gaze;
            sum = sum + gaze;
            squares += std::pow(setup.degreesBetween(gaze, target), 2);
        }
        centres.push_back(sum * (1.0 / (end - first)));
        const double error_deg = setup.degreesBetween(centres.back(), target);
        const double noise_deg = std::sqrt(squares / (end - first) - error_deg * error_deg);
        QVERIFY(error_deg < 1.5);
        QVERIFY(noise_deg > 0.25 && noise_deg < 0.35);
    }
    QVERIFY(setup.degreesBetween(centres[0], centres[1]) > 0.2);
}

void TestSubject::blinks_every_few_seconds() {
    SubjectOptions withoutBlinks;
    withoutBlinks.blinkInterval_s = 0;
    Subject subject, staring(withoutBlinks);
    QVector<int> closedMs;
    bool wasVisible = true;
    for (int ms = 0; ms < 300000; ++ms) {
        const EyeState state = subject.at(ms / 1000.0);
        QCOMPARE(state.left.visible, state.right.visible);
        QVERIFY(staring.at(ms / 1000.0).left.visible);
        if (!state.left.visible && wasVisible)
            closedMs << 0;
        if (!state.left.visible)
            ++closedMs.last();
        wasVisible = state.left.visible;
    }
    QVERIFY(closedMs.size() > 300 / 7 && closedMs.size() < 300 / 2);
    for (const int duration : closedMs)
        QVERIFY(duration >= 99 && duration <= 201);
}

void TestSubject::depends_on_the_seed_but_not_on_the_sample_rate() {
    SubjectOptions options;
    options.seed = 2;
    Subject slow, fast, other(options);
    int equal = 0;
    for (int sample = 0; sample < 20 * 960; ++sample) {
        const EyeState state = fast.at(sample / 960.0);
        if (sample % 16 != 0)
            continue;
        QCOMPARE(slow.at(sample / 960.0).left.gaze.x, state.left.gaze.x);
        equal += PhysicalSetup().degreesBetween(other.at(sample / 960.0).left.gaze, state.left.gaze) < 2 ? 1 : 0;
    }
    QVERIFY(equal < 20 * 60 / 2);
}

void TestSubject::looks_at_targets_rather_than_at_the_pointer() {
    Subject subject;
    double now_s = 3;
    const auto degreesFrom = [&](Point target) {
        return subject.setup().degreesBetween(subject.at(now_s += 0.5).left.gaze, target);
    };
    subject.follow({0.9, 0.2});
    QVERIFY(degreesFrom({0.9, 0.2}) < 2.5);
    subject.lookAt({0.05, 0.05});
    subject.follow({0.8, 0.8});
    QVERIFY(degreesFrom({0.05, 0.05}) < 2.5);
    subject.release();
    QVERIFY(degreesFrom({0.8, 0.8}) < 2.5);
}

OCELA_TEST(TestSubject)
#include "tst_subject.moc"
