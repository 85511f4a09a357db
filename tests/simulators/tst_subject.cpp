#include "device/person.h"
#include "gazepoint/options.h"
#include "simulators/fault_rows.h"
#include "subject/subject.h"

#include <QVector>
#include <QtMath>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

using namespace sim;

namespace {

/// Successive values of one angle in degrees.
struct Series {
    void add(double value) {
        sum += value;
        squares += value * value;
        steps += count > 0 ? std::pow(value - last, 2) : 0;
        last = value;
        ++count;
    }
    [[nodiscard]] double mean() const { return sum / count; }
    [[nodiscard]] double deviation() const { return std::sqrt(std::max(0.0, squares / count - mean() * mean())); }
    [[nodiscard]] double sampleToSample() const { return std::sqrt(steps / (count - 1)); }

    double sum = 0, squares = 0, steps = 0, last = 0;
    int count = 0;
};

struct Direction {
    Direction operator-(Direction other) const { return {azimuth - other.azimuth, elevation - other.elevation}; }

    double azimuth, elevation;
};

/// Returns the direction of a point on a screen of 531 mm x 299 mm in degrees.
Direction directionOf(Point gaze, double distance_mm) {
    const double x_mm = (gaze.x - 0.5) * 531, y_mm = (gaze.y - 0.5) * 299;
    return {qRadiansToDegrees(std::atan2(x_mm, distance_mm)),
            qRadiansToDegrees(std::atan2(y_mm, std::hypot(x_mm, distance_mm)))};
}

/// Parses command line options of the GazePoint simulator, or environment variables of the libraries.
SubjectOptions optionsOf(const QByteArray &settings) {
    if (settings.startsWith("--"))
        return std::get<gazepoint::Options>(gazepoint::parseOptions(("simulator " + QString(settings)).split(' ')))
            .subject;
    const ScopedVariables scope(settings);
    return personFromEnvironment();
}

}  // namespace

class TestSubject : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eyes_have_fixation_noise_and_their_own_errors();
    void has_the_given_offset_and_noise_data();
    void has_the_given_offset_and_noise();
    void ignores_invalid_offsets_and_noise();
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

void TestSubject::has_the_given_offset_and_noise_data() {
    dataColumns<QByteArray, double, QPointF, double>("settings", "distance_mm", "offset", "noise");
    dataRow("neither", QByteArray("--offset 0 --noise 0"), 620.0, QPointF(0, 0), 0.0);
    dataRow("both", QByteArray("--offset 1.5,-0.5 --noise 0.4"), 620.0, QPointF(1.5, -0.5), 0.4);
    dataRow("negative, large", QByteArray("--offset -8,6 --noise 2"), 620.0, QPointF(-8, 6), 2.0);
    dataRow("libraries", QByteArray("OCELA_SIM_OFFSET=-1,0.25 OCELA_SIM_NOISE=0.1"), 620.0, QPointF(-1, 0.25), 0.1);
    dataRow("libraries, one value, far", QByteArray("OCELA_SIM_OFFSET=2 OCELA_SIM_NOISE=0.8 OCELA_SIM_DISTANCE=90"),
            900.0, QPointF(2, 2), 0.8);
    dataRow("libraries, clamped", QByteArray("OCELA_SIM_OFFSET=1,-99 OCELA_SIM_NOISE=-1"), 620.0, QPointF(1, -20), 0.0);
}

/// The noise of the two eyes, of the two axes and of successive samples must be independent. The last step of the
/// pointer is small.
void TestSubject::has_the_given_offset_and_noise() {
    QFETCH(double, distance_mm);
    QFETCH(QPointF, offset);
    QFETCH(double, noise);
    QFETCH(QByteArray, settings);
    for (const Point target : {Point{0.5, 0.5}, Point{0.9, 0.1}}) {
        Subject subject(optionsOf(settings));
        subject.follow(target + Point{0.004, 0.004});
        subject.at(1);
        subject.follow(target);
        const Direction looked = directionOf(target, distance_mm);
        const Direction expected{looked.azimuth + offset.x(), looked.elevation + offset.y()};
        std::array<Series, 4> angles;  // azimuth and elevation of the left eye, then of the right eye
        Series eyes, axes;
        for (int ms = 2000; ms < 12000; ++ms) {
            const EyeState state = subject.at(ms / 1000.0);
            const Direction left = directionOf(state.left.gaze, distance_mm) - expected;
            const Direction right = directionOf(state.right.gaze, distance_mm) - expected;
            angles[0].add(left.azimuth);
            angles[1].add(left.elevation);
            angles[2].add(right.azimuth);
            angles[3].add(right.elevation);
            eyes.add((left.azimuth + right.azimuth) / std::sqrt(2));
            axes.add((left.azimuth + left.elevation) / std::sqrt(2));
        }
        for (const Series &angle : angles) {
            QVERIFY2(std::abs(angle.mean()) <= 0.03 * noise + 1e-6, qPrintable(QString::number(angle.mean())));
            QVERIFY(std::abs(angle.deviation() - noise) <= 0.03 * noise + 1e-6);
            QVERIFY(std::abs(angle.sampleToSample() - noise * std::sqrt(2)) <= 0.03 * noise + 1e-6);
        }
        QVERIFY(std::abs(eyes.deviation() - noise) <= 0.03 * noise + 1e-6);
        QVERIFY(std::abs(axes.deviation() - noise) <= 0.03 * noise + 1e-6);
    }
}

void TestSubject::ignores_invalid_offsets_and_noise() {
    for (const QByteArray value : {"1,", "1,2,3", "1,nan", "left"}) {
        QTest::ignoreMessage(QtWarningMsg, "OCELA_SIM_OFFSET: \"" + value + "\" is invalid and ignored");
        QVERIFY(!optionsOf("OCELA_SIM_OFFSET=" + value).offset);
    }
    QTest::ignoreMessage(QtWarningMsg, "OCELA_SIM_NOISE: \"0.1deg\" is invalid and ignored");
    QVERIFY(!optionsOf("OCELA_SIM_NOISE=0.1deg").noise_deg);
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
