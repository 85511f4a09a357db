#include "asee/calibration.h"
#include "asee/gaze_record.h"
#include "asee/tracker.h"
#include "device/camera.h"
#include "device/ticker.h"
#include "eyetech/calibration.h"
#include "eyetech/frame_record.h"
#include "eyetech/results.h"
#include "simulators/distinct_eyes.h"
#include "simulators/fault_rows.h"
#include "simulators/record_field.h"
#include "support/test_main.h"

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <future>
#include <thread>

using namespace sim;

namespace {

namespace asee_at = asee_sdk::gaze_record;
namespace eyetech_at = quicklink2::frame_record;

/// Returns the points at these offsets.
QString pointsAt(const unsigned char *record, std::initializer_list<std::size_t> offsets) {
    QString text;
    for (const std::size_t offset : offsets)
        text += QString("(%1, %2) ")
                    .arg(double(fieldAt<float>(record, offset)))
                    .arg(double(fieldAt<float>(record, offset + 4)));
    return text.trimmed();
}

}  // namespace

/// The records, images and scores that the simulated vendor libraries create from the state of the person.
class TestVendorRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void asee_has_each_value_in_its_field();
    void asee_reports_the_states_of_the_eyes();
    void asee_distinguishes_fixations_from_saccades();
    void asee_scores_each_eye();
    void asee_reports_the_scores_of_its_coefficients();
    void eyetech_has_each_value_in_its_field();
    void eyetech_scores_each_eye();
    void closed_eye_has_lashes_and_no_iris();
    void ticker_calls_at_its_rate();
};

void TestVendorRecords::asee_has_each_value_in_its_field() {
    const auto record = asee_pro::GazeRecorder({}).record(distinctEyes(), true);
    QCOMPARE(pointsAt(record.data(), {asee_at::gaze, asee_at::leftGaze, asee_at::rightGaze}),
             QString("(0.3, 0.4) (0.1, 0.2) (0.5, 0.6)"));
    QCOMPARE(pointsAt(record.data(), {asee_at::leftEye, asee_at::rightEye}), QString("(0.3, 0.4) (0.7, 0.8)"));
    QCOMPARE(fieldAt<float>(record.data(), asee_at::leftPupil_mm), 3.0F);
    QCOMPARE(fieldAt<float>(record.data(), asee_at::rightPupil_mm), 4.0F);
}

/// The eye flags, gaze flags and status, left and right.
void TestVendorRecords::asee_reports_the_states_of_the_eyes() {
    const auto statesOf = [](bool rightVisible, bool tracking) {
        EyeState eyes = distinctEyes();
        eyes.right.visible = rightVisible;
        const auto record = asee_pro::GazeRecorder({}).record(eyes, tracking);
        QVector<int> states;
        for (const std::size_t offset : {asee_at::leftEyeFlags, asee_at::rightEyeFlags, asee_at::leftGazeFlags,
                                         asee_at::rightGazeFlags, asee_at::leftStatus, asee_at::rightStatus})
            states << fieldAt<int>(record.data(), offset);
        return states;
    };
    QCOMPARE(statesOf(true, true), (QVector<int>{1, 1, 1, 1, 0, 0}));
    QCOMPARE(statesOf(false, true), (QVector<int>{1, 0, 1, 0, 0, 3}));
    QCOMPARE(statesOf(true, false), (QVector<int>{1, 1, 0, 0, 2, 2}));
}

void TestVendorRecords::asee_distinguishes_fixations_from_saccades() {
    asee_pro::GazeRecorder recorder({});
    const auto stateAt = [&](Point gaze, bool tracking = true) {
        EyeState eyes = distinctEyes();
        eyes.left.gaze = eyes.right.gaze = gaze;
        return fieldAt<int>(recorder.record(eyes, tracking).data(), asee_at::fixationState);
    };
    for (int i = 0; i < 50; ++i)
        stateAt({0.5, 0.5});
    QCOMPARE(stateAt({0.5, 0.5}), 1);
    QCOMPARE(stateAt({0.8, 0.5}), 3);
    QCOMPARE(stateAt({0.5, 0.5}, false), 0);
}

void TestVendorRecords::asee_scores_each_eye() {
    asee_pro::Calibration calibration(2);
    for (const int number : {1, 2}) {
        TargetMeasurement measurement({0.1, 0.2});
        EyeState eyes = distinctEyes();
        eyes.right.gaze = {0.1 + 0.03 * number, 0.2 - 0.04 * number};
        measurement.add(eyes);
        QVERIFY(!calibration.complete() && !calibration.hasPoint(3));
        calibration.setMeasured(number, measurement);
    }
    QVERIFY(calibration.complete());
    QCOMPARE(calibration.score().left, 0.0F);
    QCOMPARE(calibration.score().right, 7.5F);
}

void TestVendorRecords::asee_reports_the_scores_of_its_coefficients() {
    const ScopedVariables options("OCELA_SIM_ASEE_FAULT=instant-point OCELA_SIM_BLINK_INTERVAL=0");
    const QTemporaryDir folder;
    auto &tracker = asee_pro::Tracker::instance();
    const float place[] = {0.5F, 0.5F};
    QCOMPARE(tracker._7i_device_connect() + tracker._7i_start(qPrintable(folder.path())), 0);
    QCOMPARE(tracker._7i_start_calibration(1), 0);
    QCOMPARE(tracker._7i_start_calibration_point(1, place, nullptr, nullptr, nullptr, nullptr), 0);
    std::array<unsigned char, asee_sdk::coefficientBytes> coefficients{};
    QCOMPARE(tracker._7i_compute_calibration(coefficients.data()), 0);
    QCOMPARE(tracker._7i_stop(), 0);

    std::array<float, 2> scores{};
    QCOMPARE(tracker._7i_get_calibration_score(&scores[0], &scores[1]), 0);
    QVERIFY(scores[0] != scores[1]);
    const auto *bytes = reinterpret_cast<const unsigned char *>(scores.data());
    QVERIFY(std::search(coefficients.begin(), coefficients.end(), bytes, bytes + sizeof scores) != coefficients.end());
}

void TestVendorRecords::eyetech_has_each_value_in_its_field() {
    const unsigned char pixel = 0;
    const quicklink2::QLFrameRecord frame = eyetech::makeFrameRecord(distinctEyes(), {&pixel, 7, -8}, {1000, 500});
    QCOMPARE(pointsAt(frame.bytes, {eyetech_at::gaze, eyetech_at::leftEye + eyetech_at::eyeGaze,
                                    eyetech_at::rightEye + eyetech_at::eyeGaze}),
             QString("(30, 40) (10, 20) (50, 60)"));
    QCOMPARE(pointsAt(frame.bytes, {eyetech_at::leftEye + eyetech_at::eyePupilCentre,
                                    eyetech_at::rightEye + eyetech_at::eyePupilCentre}),
             QString("(300, 200) (700, 400)"));
    QCOMPARE(fieldAt<float>(frame.bytes, eyetech_at::leftEye + eyetech_at::eyePupil_mm), 3.0F);
    QCOMPARE(fieldAt<float>(frame.bytes, eyetech_at::rightEye + eyetech_at::eyePupil_mm), 4.0F);
    QCOMPARE(fieldAt<float>(frame.bytes, eyetech_at::distance_cm), 50.0F);
    QCOMPARE(fieldAt<const unsigned char *>(frame.bytes, eyetech_at::imagePixels), &pixel);
    QCOMPARE(fieldAt<int>(frame.bytes, eyetech_at::imageWidth), 7);
    QCOMPARE(fieldAt<int>(frame.bytes, eyetech_at::imageHeight), -8);
}

void TestVendorRecords::eyetech_scores_each_eye() {
    eyetech::Calibration calibration;
    QVERIFY(calibration.initialize(101, 0, {}));
    QCOMPARE(calibration.score(1, 0).result, int(eyetech::NotCalibrated));
    EyeState eyes = distinctEyes();
    // A busy machine may take too few samples in the first attempts.
    for (std::chrono::milliseconds duration(20); calibration.status(1) != eyetech::Done; duration *= 2) {
        const Point place = calibration.start(1, duration).value;
        eyes.left.gaze = place + Point{0.03, 0.04};
        eyes.right.gaze = place - Point{0.06, 0.08};
        while (calibration.status(1) == eyetech::Running) {
            calibration.observe(eyes);
            std::this_thread::yield();
        }
    }
    const QTemporaryDir folder;
    eyetech::Calibration loaded;
    QVERIFY(calibration.save(folder.filePath("saved")) && loaded.load(folder.filePath("saved")));
    for (eyetech::Calibration *scored : {&calibration, &loaded}) {
        for (const int eye : {0, 1}) {
            const quicklink2::QLScore score = scored->score(1, eye).value;
            const float side = eye == 0 ? 1 : -2;
            QVERIFY(std::abs(score.x - 3 * side) < 0.05F && std::abs(score.y - 4 * side) < 0.05F);
            QVERIFY(std::abs(score.score - 5 * std::abs(side)) < 0.05F);
        }
    }
}

void TestVendorRecords::closed_eye_has_lashes_and_no_iris() {
    constexpr int width = 400, height = 200;
    const Camera camera(width, height, {});
    EyeState eyes = distinctEyes();
    const auto paint = [&] {
        std::vector<unsigned char> pixels(camera.sizeBytes());
        camera.paint(eyes, pixels.data());
        return pixels;
    };
    const std::size_t left = 80 * width + 120, right = 160 * width + 280;
    const auto open = paint();
    eyes.left.visible = false;
    const auto closed = paint();
    eyes.left.pupilCentre = {0.1, 0.1};
    const auto elsewhere = paint();
    QVERIFY(open[left] < 30 && open[right] < 30 && closed[right] < 30);
    QCOMPARE(closed[left], elsewhere[left]);  // the skin
    QVERIFY(closed != elsewhere);
}

/// A call is never early. A busy machine may delay calls, so the test repeats until an attempt has the full rate.
void TestVendorRecords::ticker_calls_at_its_rate() {
    constexpr double rateHz = 150;
    constexpr int intervalCount = 45;
    constexpr double nominal_s = intervalCount / rateHz;
    double taken_s = 2 * nominal_s;
    const QDeadlineTimer deadline(test_support::longWaitMs);
    while (taken_s > 1.1 * nominal_s && !deadline.hasExpired()) {
        std::promise<double> taken;
        const auto start = std::chrono::steady_clock::now();
        const Ticker ticker(rateHz, [&, left = intervalCount]() mutable {
            if (left-- > 0)
                return true;
            taken.set_value(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            return false;
        });
        taken_s = taken.get_future().get();
    }
    QVERIFY2(taken_s >= nominal_s && taken_s <= 1.1 * nominal_s, qPrintable(QString::number(taken_s)));
}

OCELA_TEST(TestVendorRecords)
#include "tst_vendor_records.moc"
