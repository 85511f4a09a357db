#include "core/sample_signal.h"
#include "scripted_lsl.h"
#include "streams/lsl_clock.h"
#include "streams/lsl_streams.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <algorithm>
#include <cmath>
#include <limits>

using Stream = ScriptedLsl::Stream;

namespace {

constexpr double lost = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t numberChannel = gaze_stream::channelCount - 1;
// The thread may be interrupted between two readings of the clocks.
constexpr double clockTolerance = 0.01;

class NamedTracker : public FakeTracker {
public:
    NamedTracker(QString name, bool exchangesRightEye, std::shared_ptr<SampleSignal> signal)
        : name_(std::move(name)), exchangesRightEye_(exchangesRightEye) {
        setSampleSignal(std::move(signal));
    }
    [[nodiscard]] QString name() const override { return name_; }
    [[nodiscard]] bool exchangesRightEye() const override { return exchangesRightEye_; }
    [[nodiscard]] QString manufacturer() const override { return exchangesRightEye_ ? "maker" : ""; }
    [[nodiscard]] QString model() const override { return exchangesRightEye_ ? "" : "kind"; }

private:
    const QString name_;
    const bool exchangesRightEye_;
};

EyeTrackingSample measuredSample() {
    EyeTrackingSample sample;
    sample.valid = sample.l_valid = sample.r_valid = true;
    sample.x = 50;
    sample.y = 25;
    sample.l_x = 12.5F;
    sample.l_y = 75;
    sample.r_x = 100;
    sample.r_y = -50;
    sample.l_pupil_mm = 3.5F;
    sample.r_pupil_mm = 4.25F;
    sample.distance_cm = 62.5F;
    return sample;
}

double seconds(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

bool contains(const Stream &stream, const std::string &line) {
    return std::count(stream.description.begin(), stream.description.end(), line) == 1;
}

}  // namespace

Q_DECLARE_METATYPE(gaze_stream::Values)

class TestLslStreams : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void values_are_normalized_and_nan_if_not_measured_data();
    void values_are_normalized_and_nan_if_not_measured();
    void streams_describe_themselves();
    void samples_and_markers_are_sent_once_with_their_time();
    void offset_of_the_clocks_is_measured_again_after_a_minute();
    void each_tracker_has_a_stream_of_its_own();
    void stream_opens_again_if_the_calibrated_area_changes();
    void nothing_is_sent_while_the_streams_are_off();
    void refused_stream_is_reported();
    void blocked_library_blocks_nobody();

private:
    /// Returns the last opened stream with this name.
    [[nodiscard]] static Stream stream(const std::string &name);
    [[nodiscard]] static std::vector<double> numbersIn(const Stream &stream);
    [[nodiscard]] static bool isOpen(const std::string &name) { return stream(name).isOpen; }
    void addSamples(EyetrackerInterface &tracker, int count) {
        for (int i = 0; i < count; ++i)
            tracker.addSample(measuredSample());
    }
    /// Opens the gaze stream of the tracker.
    void open(EyetrackerInterface &tracker);

    std::shared_ptr<SampleSignal> signal_;
    std::unique_ptr<NamedTracker> plain_;
    std::unique_ptr<NamedTracker> exchanged_;
    std::unique_ptr<Markers> markers_;
    std::unique_ptr<LslStreams> streams_;
};

void TestLslStreams::init() {
    ScriptedLsl::instance().reset();
    signal_ = std::make_shared<SampleSignal>();
    plain_ = std::make_unique<NamedTracker>("plain", false, signal_);
    exchanged_ = std::make_unique<NamedTracker>("exchanged", true, signal_);
    markers_ = std::make_unique<Markers>(nullptr);
    streams_ = std::make_unique<LslStreams>(signal_);
    streams_->watch(*markers_);
}

void TestLslStreams::cleanup() {
    streams_.reset();
}

Stream TestLslStreams::stream(const std::string &name) {
    const std::vector<Stream> all = ScriptedLsl::instance().streams();
    const auto found = std::find_if(all.rbegin(), all.rend(), [&](const Stream &one) { return one.name == name; });
    return found == all.rend() ? Stream() : *found;
}

std::vector<double> TestLslStreams::numbersIn(const Stream &stream) {
    std::vector<double> numbers;
    for (const ScriptedLsl::Sample &sample : stream.samples)
        numbers.push_back(sample.values.at(numberChannel));
    return numbers;
}

void TestLslStreams::open(EyetrackerInterface &tracker) {
    streams_->setOn(true);
    streams_->setTracker(&tracker);
    addSamples(tracker, 1);
    const std::vector<double> expected{static_cast<double>(tracker.lastNumberedSample().number)};
    QTRY_COMPARE(numbersIn(stream("Ocela Gaze")), expected);
}

void TestLslStreams::values_are_normalized_and_nan_if_not_measured_data() {
    dataColumns<EyeTrackingSample, bool, gaze_stream::Values>("sample", "exchanged", "expected");
    const EyeTrackingSample all = measuredSample();
    EyeTrackingSample leftLost = all;
    leftLost.l_valid = false;
    EyeTrackingSample eyesLost = all;
    eyesLost.l_valid = eyesLost.r_valid = eyesLost.valid = false;
    EyeTrackingSample gazeOnly = all;
    gazeOnly.l_pupil_mm = gazeOnly.r_pupil_mm = gazeOnly.distance_cm = 0;
    using Values = gaze_stream::Values;
    dataRow("all measured", all, false, Values{0.125, 0.75, 3.5, 1, 1, -0.5, 4.25, 1, 0.5, 0.25, 3.875, 1, 62.5, 7});
    dataRow("right eye exchanged", all, true,
            Values{0.125, 0.75, 3.5, 1, -0.5, 1, 4.25, 1, 0.5, 0.25, 3.875, 1, 62.5, 7});
    dataRow("left eye lost", leftLost, false,
            Values{lost, lost, lost, 0, 1, -0.5, 4.25, 1, 0.5, 0.25, lost, 1, 62.5, 7});
    dataRow("both eyes lost", eyesLost, true,
            Values{lost, lost, lost, 0, lost, lost, lost, 0, lost, lost, lost, 0, lost, 7});
    dataRow("no pupil or distance", gazeOnly, false,
            Values{0.125, 0.75, lost, 1, 1, -0.5, lost, 1, 0.5, 0.25, lost, 1, lost, 7});
}

void TestLslStreams::values_are_normalized_and_nan_if_not_measured() {
    QFETCH(EyeTrackingSample, sample);
    QFETCH(bool, exchanged);
    QFETCH(gaze_stream::Values, expected);
    const gaze_stream::Values values = gaze_stream::valuesOf({7, {}, sample}, exchanged);
    for (std::size_t i = 0; i < values.size(); ++i)
        QVERIFY2(values[i] == expected[i] || (std::isnan(values[i]) && std::isnan(expected[i])),
                 qPrintable(QString("channel %1: %2").arg(i).arg(values[i])));
}

void TestLslStreams::streams_describe_themselves() {
    exchanged_->setCalibratedArea(QRect(10, 20, 300, 200));
    open(*exchanged_);
    const Stream gaze = stream("Ocela Gaze");
    QCOMPARE(gaze.type, std::string("Gaze"));
    QCOMPARE(gaze.format, 2);
    QCOMPARE(gaze.channelCount, 14);
    QCOMPARE(gaze.nominalRate, 0.0);
    const auto channelCount =
        std::count_if(gaze.description.begin(), gaze.description.end(),
                      [](const std::string &line) { return line.find("channels/channel/label=") == 0; });
    QCOMPARE(static_cast<int>(channelCount), gaze.channelCount);
    for (const char *line : {"acquisition/manufacturer=maker", "acquisition/tracker=exchanged",
                             "acquisition/right_eye_axes=corrected", "channels/channel/label=Right_Diameter",
                             "channels/channel/unit=cm", "screen/number=1", "screen/calibrated_area/width_px=300"})
        QVERIFY2(contains(gaze, line), line);
    QVERIFY(!contains(gaze, "acquisition/model="));

    const Stream markers = stream("Ocela Markers");
    QCOMPARE(markers.type, std::string("Markers"));
    QCOMPARE(markers.format, 3);
    QCOMPARE(markers.channelCount, 1);
    QVERIFY(markers.sourceId != gaze.sourceId);
    const std::string earlierId = gaze.sourceId;
    streams_->setTracker(plain_.get());
    addSamples(*plain_, 1);
    QTRY_VERIFY(stream("Ocela Gaze").sourceId != earlierId);
    QVERIFY(contains(stream("Ocela Gaze"), "acquisition/model=kind"));
    QVERIFY(!contains(stream("Ocela Gaze"), "acquisition/manufacturer="));
    streams_->setTracker(exchanged_.get());
    addSamples(*exchanged_, 1);
    QTRY_COMPARE(stream("Ocela Gaze").sourceId, earlierId);
}

void TestLslStreams::samples_and_markers_are_sent_once_with_their_time() {
    constexpr double offset = 1000;
    ScriptedLsl::instance().clockOffset = offset;
    open(*plain_);
    const Marker earlier = markers_->add("earlier", std::chrono::steady_clock::now() - std::chrono::seconds(5));
    addSamples(*plain_, 500);
    const Marker last = markers_->add(QString::fromUtf8("\u00e9"));
    QTRY_COMPARE(stream("Ocela Gaze").samples.size(), std::size_t(501));
    QTRY_COMPARE(stream("Ocela Markers").samples.size(), std::size_t(2));

    const std::vector<NumberedSample> expected = plain_->samplesSince(0).samples;
    const Stream gaze = stream("Ocela Gaze");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        QCOMPARE(gaze.samples[i].values[numberChannel], static_cast<double>(expected[i].number));
        QVERIFY(std::abs(gaze.samples[i].time - seconds(expected[i].arrival) - offset) < clockTolerance);
    }
    // Samples that arrive together are sent together.
    QVERIFY(gaze.samples.back().isSentNow);
    QVERIFY(std::count_if(gaze.samples.begin(), gaze.samples.end(),
                          [](const ScriptedLsl::Sample &sample) { return sample.isSentNow; }) < 250);
    const Stream markers = stream("Ocela Markers");
    QVERIFY(markers.samples[0].isSentNow && markers.samples[1].isSentNow);
    QCOMPARE(markers.samples[0].text, std::string("earlier"));
    QVERIFY(std::abs(markers.samples[0].time - seconds(earlier.time) - offset) < clockTolerance);
    QCOMPARE(markers.samples[1].text, std::string("\u00e9"));
    QVERIFY(std::abs(markers.samples[1].time - seconds(last.time) - offset) < clockTolerance);
}

void TestLslStreams::offset_of_the_clocks_is_measured_again_after_a_minute() {
    static double offset = 0;
    lsl::Functions functions;
    functions.lsl_local_clock = [] { return seconds(std::chrono::steady_clock::now()) + offset; };
    lsl::Clock clock(functions);
    const auto start = std::chrono::steady_clock::now();
    const auto hasOffset = [&](double expected) {
        return std::abs(clock.lslTime(start) - seconds(start) - expected) < clockTolerance;
    };
    QVERIFY(hasOffset(0));
    offset = 5;
    clock.check(start);
    QVERIFY(hasOffset(0));
    clock.check(start + lsl::Clock::checkInterval + std::chrono::seconds(1));
    QVERIFY(hasOffset(5));
}

void TestLslStreams::each_tracker_has_a_stream_of_its_own() {
    open(*plain_);
    addSamples(*plain_, 100);
    streams_->setTracker(exchanged_.get());
    QTRY_VERIFY(!isOpen("Ocela Gaze"));
    QCOMPARE(stream("Ocela Gaze").samples.size(), std::size_t(101));
    addSamples(*plain_, 1);
    addSamples(*exchanged_, 2);
    QTRY_COMPARE(stream("Ocela Gaze").samples.size(), std::size_t(2));
    QVERIFY(isOpen("Ocela Gaze"));
    QCOMPARE(stream("Ocela Gaze").samples[0].values[4], -0.5);
    QVERIFY(contains(stream("Ocela Gaze"), "acquisition/tracker=exchanged"));
    QVERIFY(isOpen("Ocela Markers"));
}

void TestLslStreams::stream_opens_again_if_the_calibrated_area_changes() {
    open(*plain_);
    const std::string id = stream("Ocela Gaze").sourceId;
    const auto lastNumber = [] {
        const std::vector<double> numbers = numbersIn(stream("Ocela Gaze"));
        return numbers.empty() ? 0 : numbers.back();
    };
    for (const int width : {300, 300, 400}) {
        plain_->setCalibratedArea(QRect(0, 0, width, 200));
        addSamples(*plain_, 1);
        const auto number = static_cast<double>(plain_->lastNumberedSample().number);
        QTRY_VERIFY(lastNumber() == number);
        QVERIFY(contains(stream("Ocela Gaze"), "screen/calibrated_area/width_px=" + std::to_string(width)));
    }
    std::vector<std::size_t> counts;
    for (const Stream &one : ScriptedLsl::instance().streams()) {
        if (one.name != "Ocela Gaze")
            continue;
        counts.push_back(one.samples.size());
        QCOMPARE(one.sourceId, id);
        QCOMPARE(one.isOpen, counts.size() == 3);
    }
    QCOMPARE(counts, (std::vector<std::size_t>{1, 2, 1}));
}

void TestLslStreams::nothing_is_sent_while_the_streams_are_off() {
    streams_->setTracker(plain_.get());
    addSamples(*plain_, 3);
    markers_->add("before");
    QCOMPARE(ScriptedLsl::instance().streams().size(), std::size_t(0));
    open(*plain_);
    streams_->setOn(false);
    QTRY_VERIFY(!isOpen("Ocela Gaze") && !isOpen("Ocela Markers"));
    addSamples(*plain_, 3);
    markers_->add("between");
    open(*plain_);
    markers_->add("after");
    QTRY_COMPARE(stream("Ocela Markers").samples.size(), std::size_t(1));
    QCOMPARE(stream("Ocela Markers").samples[0].text, std::string("after"));
}

void TestLslStreams::refused_stream_is_reported() {
    ScriptedLsl::instance().refusesStreams = true;
    streams_->setTracker(plain_.get());
    streams_->setOn(true);
    addSamples(*plain_, 1);
    markers_->add("marker");
    QTRY_VERIFY(streams_->problem().contains("could not be opened"));
    ScriptedLsl::instance().refusesStreams = false;
    streams_->setOn(false);
    QCOMPARE(streams_->problem(), QString());
    open(*plain_);
    QCOMPARE(streams_->problem(), QString());
}

void TestLslStreams::blocked_library_blocks_nobody() {
    open(*plain_);
    ScriptedLsl::instance().setBlocked(true);
    addSamples(*plain_, 1);
    QTRY_VERIFY(ScriptedLsl::instance().isWaiting());
    addSamples(*plain_, 1);
    markers_->add("marker");
    QTest::ignoreMessage(QtWarningMsg, "The LSL library does not respond");
    QTRY_VERIFY(streams_->problem().contains("does not respond"));
    ScriptedLsl::instance().setBlocked(false);
    QTRY_COMPARE(streams_->problem(), QString());
    ScriptedLsl::instance().setBlocked(true);
    addSamples(*plain_, 1);
    QTRY_VERIFY(ScriptedLsl::instance().isWaiting());
    streams_->setTracker(exchanged_.get());
    streams_->setOn(false);
    streams_->setOn(true);
    streams_->setTracker(plain_.get());
    QTest::ignoreMessage(QtWarningMsg, "The LSL library does not respond");
    streams_.reset();
    QCOMPARE(LslWorker::leftThreadCount(), 1);
    plain_.reset();
    exchanged_.reset();
    ScriptedLsl::instance().setBlocked(false);
    QTRY_COMPARE(LslWorker::leftThreadCount(), 0);
}

OCELA_TEST(TestLslStreams)
#include "tst_lsl_streams.moc"
