#include "app/tracker_view_widget.h"

#include "app/gaze_cursor.h"
#include "core/eyetracker_interface.h"
#include "toolkit/platform/global_keyboard.h"
#include "views/wheel_proof_combo_box.h"

#include <QCheckBox>
#include <QDir>
#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>

namespace {

constexpr int spacing = 8;

const QIcon &monitorIcon() {
    static const QIcon icon(":/icons/monitor.svg");
    return icon;
}

/// Called in the thread that emits the sample. The cursor is moved in the GUI thread: immediately if that is the same
/// thread, otherwise queued.
void followGaze(const EyetrackerInterface &tracker, const EyeTrackingSample &sample) {
    if (!sample.valid)
        return;
    const gaze_cursor::Gaze gaze{{sample.x_px, sample.y_px}, tracker.pixelArea().topLeft(), tracker.pixelUnit()};
    QMetaObject::invokeMethod(qApp, [gaze] { gaze_cursor::moveTo(gaze); });
}

}  // namespace

TrackerViewWidget::TrackerViewWidget(QWidget *parent) : BaseEyetrackerWidget(parent) {
    buildButtons();
    buildScreenList();
    buildCursorControl();
    buildLayout();
    retranslate();
}

TrackerViewWidget::~TrackerViewWidget() {
    // A sample must not arrive while the members are destroyed.
    connections_.clear();
    delete startButton_;
    delete stopButton_;
}

void TrackerViewWidget::buildButtons() {
    calibrateButton_ = new QPushButton(this);
    startButton_ = new QPushButton;
    stopButton_ = new QPushButton;
    startRecordButton_ = new QPushButton(this);
    stopRecordButton_ = new QPushButton(this);
    stopRecordButton_->hide();

    const auto onClick = [this](QPushButton *button, auto action) {
        connect(button, &QPushButton::clicked, this, [this, action] {
            if (eyetracker_)
                action(eyetracker_);
        });
    };
    onClick(calibrateButton_,
            [this](EyetrackerInterface *tracker) { tracker->calibrateScreen(screenCombo_->currentIndex()); });
    onClick(startButton_, [](EyetrackerInterface *tracker) { tracker->start(); });
    onClick(stopButton_, [](EyetrackerInterface *tracker) { tracker->stop(); });
    onClick(startRecordButton_, [this](EyetrackerInterface *tracker) { startRecord(tracker); });
    onClick(stopRecordButton_, [](EyetrackerInterface *tracker) { tracker->stopRecord(); });
}

void TrackerViewWidget::buildScreenList() {
    screenCombo_ = new WheelProofComboBox(this);
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        screenSizes_.push_back(screen->geometry().size());
        screenCombo_->addItem(monitorIcon(), QString());
    }
    screenCombo_->setCurrentIndex(0);
}

void TrackerViewWidget::buildCursorControl() {
    cursorCheckBox_ = new QCheckBox(this);
    connect(cursorCheckBox_, &QCheckBox::toggled, this, &TrackerViewWidget::setControlCursor);

    GlobalKeyboard::Install();
    connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, this, [this](Qt::Key key) {
        if (key == Qt::Key_F10)
            setControlCursor(!*controlCursor_);
    });
}

void TrackerViewWidget::buildLayout() {
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    // The layout omits the spacing of an empty row.
    layout->setRowMinimumHeight(1, spacing);
    layout->addWidget(calibrateButton_, 0, 0);
    layout->addWidget(screenCombo_, 0, 1);
    // Only one of the two buttons is visible. They have a layout of their own, because buttons in the same grid cell
    // would move the widgets below when they are switched.
    auto *recordRow = new QHBoxLayout;
    recordRow->addWidget(startRecordButton_);
    recordRow->addWidget(stopRecordButton_);
    layout->addLayout(recordRow, 2, 0, 1, 2);
    layout->addWidget(cursorCheckBox_, 3, 0, 1, 2);
}

void TrackerViewWidget::retranslate() {
    calibrateButton_->setText(tr("Calibrate"));
    startButton_->setText(tr("Start"));
    stopButton_->setText(tr("Stop"));
    startRecordButton_->setText(tr("Start record"));
    stopRecordButton_->setText(tr("Stop record"));
    stopRecordButton_->setToolTip(tr("F9 sets a marker in the recording."));
    cursorCheckBox_->setText(tr("Control cursor (Press F10)"));

    int index = 0;
    for (const QSize &size : screenSizes_) {
        const QString text = tr("Screen") + QString(" #%1 (%2x%3)").arg(index + 1).arg(size.width()).arg(size.height());
        screenCombo_->setItemText(index++, text);
    }
}

void TrackerViewWidget::eyetrackerChanged() {
    EyetrackerInterface *tracker = eyetracker_;
    if (!tracker)
        return;
    // The connections are direct, so that a busy event loop does not delay the cursor.
    connections_ << connect(
                        tracker, &EyetrackerInterface::recordStarted, tracker, [this] { showRecording(true); },
                        Qt::DirectConnection)
                 << connect(
                        tracker, &EyetrackerInterface::recordStopped, tracker, [this] { showRecording(false); },
                        Qt::DirectConnection)
                 << connect(
                        tracker, &EyetrackerInterface::newSample, tracker,
                        [controlCursor = controlCursor_, tracker](const EyeTrackingSample &sample) {
                            if (*controlCursor)
                                followGaze(*tracker, sample);
                        },
                        Qt::DirectConnection);
    showRecording(tracker->isRecording());
}

void TrackerViewWidget::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseEyetrackerWidget::changeEvent(event);
}

void TrackerViewWidget::startRecord(EyetrackerInterface *tracker) const {
    const QString name = nameRecord_();
    tracker->startRecord(name.isEmpty() ? QString() : tracker->recordsFolder() + QDir::separator() + name);
}

void TrackerViewWidget::showRecording(bool recording) {
    startRecordButton_->setVisible(!recording);
    stopRecordButton_->setVisible(recording);
}

void TrackerViewWidget::setControlCursor(bool on) {
    *controlCursor_ = on;
    const QSignalBlocker blocker(cursorCheckBox_);
    cursorCheckBox_->setChecked(on);
}
