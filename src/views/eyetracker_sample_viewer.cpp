#include "views/eyetracker_sample_viewer.h"

#include "core/eyetracker_interface.h"
#include "toolkit/widgets/ui_helper.h"
#include "views/sample_texts.h"

#include <QDateTime>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>

namespace {

constexpr char headerName[] = "eyeH1";
constexpr char captionName[] = "eyeHeader";

/// In characters. The texts for gaze on the screen are shorter.
constexpr int maxNormalLength = 12;

constexpr int liveIntervalMs = 250;

/// Gives the label a fixed size that grows with its text, so that the columns do not move and a new text does not
/// trigger a layout of the whole window. Layouts are expensive at hundreds of samples per second. The label shrinks
/// only if its previous text was longer than normal.
void showText(QLabel *label, const QString &text) {
    if (label->text() == text)
        return;
    const bool wasNormal = label->text().size() <= maxNormalLength;
    label->setText(text);
    if (!wasNormal)
        label->setMinimumSize(0, 0);
    // At least the minimum size, which is the previous size.
    const QSize needed = label->sizeHint();
    if (needed != label->minimumSize())
        label->setFixedSize(needed);
}

}  // namespace

EyetrackerSampleViewer::EyetrackerSampleViewer(QWidget *parent) : BaseEyetrackerWidget(parent) {
    setStyleSheet("#eyeH1 { font-size: 16px } #eyeHeader { color: #666 } #colon { color: #CCC; display: none; }");

    auto *main = new QGridLayout(this);
    main->setContentsMargins(0, 0, 0, 0);
    main->setHorizontalSpacing(20);
    main->setRowStretch(1, 100);
    buildCommonColumn(addColumn(main, 0));
    left_ = buildEyeColumn(addColumn(main, 1), QT_TR_NOOP("Left eye"));
    right_ = buildEyeColumn(addColumn(main, 2), QT_TR_NOOP("Right eye"));
    notLive_ = new QLabel(this);
    notLive_->setObjectName("notLive");
    // Below the columns of the eyes, which are shorter than the common one.
    main->addWidget(notLive_, 1, 1, 1, 2, Qt::AlignLeft | Qt::AlignBottom);

    retranslate();
    connect(&liveTimer_, &QTimer::timeout, this, &EyetrackerSampleViewer::showWhetherLive);
    liveTimer_.start(liveIntervalMs);
}

QGridLayout *EyetrackerSampleViewer::addColumn(QGridLayout *main, int column) {
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(10);
    main->addLayout(grid, 1, column, Qt::AlignLeft | Qt::AlignTop);
    return grid;
}

void EyetrackerSampleViewer::buildCommonColumn(QGridLayout *grid) {
    addHeader(grid, QT_TR_NOOP("Common"));
    addCaption(grid, 1, QT_TR_NOOP("Valid"));
    addCaption(grid, 2, QT_TR_NOOP("Eyes"));
    addCaption(grid, 3, QT_TR_NOOP("Position"));
    addCaption(grid, 7, QT_TR_NOOP("Focus"));
    addCaption(grid, 8, QT_TR_NOOP("Distance"));

    int row = 0;
    for (QLabel **value : {&valid_, &eyes_, &xPercent_, &yPercent_, &xPixels_, &yPixels_, &focus_, &distance_})
        *value = addValue(grid, ++row, 2);
}

EyetrackerSampleViewer::Eye EyetrackerSampleViewer::buildEyeColumn(QGridLayout *grid, const char *header) {
    addHeader(grid, header);
    addCaption(grid, 1, QT_TR_NOOP("Valid"));
    grid->addWidget(UIHelper::GenerateLabelWithName(captionName, "X", this), 2, 0);
    grid->addWidget(UIHelper::GenerateLabelWithName(captionName, "Y", this), 3, 0);
    addCaption(grid, 4, QT_TR_NOOP("Pupil"));
    return {addValue(grid, 1, 1), addValue(grid, 2, 1), addValue(grid, 3, 1), addValue(grid, 4, 1)};
}

void EyetrackerSampleViewer::addHeader(QGridLayout *grid, const char *text) {
    QLabel *label = UIHelper::GenerateLabelWithName(headerName, tr(text), this);
    grid->addWidget(label, 0, 0, 1, 3);
    captions_.emplace_back(label, text);
}

void EyetrackerSampleViewer::addCaption(QGridLayout *grid, int row, const char *text) {
    QLabel *label = UIHelper::GenerateLabelWithName(captionName, tr(text), this);
    grid->addWidget(label, row, 0);
    captions_.emplace_back(label, text);
}

QLabel *EyetrackerSampleViewer::addValue(QGridLayout *grid, int row, int column) {
    auto *label = new QLabel("?", this);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(label, row, column, Qt::AlignRight);
    values_.push_back(label);
    return label;
}

void EyetrackerSampleViewer::eyetrackerChanged() {
    if (!eyetracker_) {
        display(EyeTrackingSample());
        showWhetherLive();
        return;
    }
    display(eyetracker_->getLastSample());
    // Queued calls of the old tracker arrive even after its connection was disconnected.
    const auto show = [this, tracker = eyetracker_](EyeTrackingSample sample) {
        if (tracker == eyetracker_)
            display(sample);
    };
    connections_ << connect(eyetracker_, &EyetrackerInterface::newSample, this, show, Qt::QueuedConnection)
                 << connect(eyetracker_, &EyetrackerInterface::connectedChanged, this,
                            &EyetrackerSampleViewer::showWhetherLive);
    showWhetherLive();
}

void EyetrackerSampleViewer::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseEyetrackerWidget::changeEvent(event);
}

void EyetrackerSampleViewer::retranslate() {
    for (const auto &[label, text] : captions_)
        label->setText(tr(text));
    for (QLabel *symbol : {eyes_, left_.valid, right_.valid})
        symbol->setToolTip(tr("0: the eye was detected. -: the eye was not detected."));
    for (QLabel *value : {focus_, distance_, left_.pupil, right_.pupil})
        value->setToolTip(tr("0.0 if the tracker does not measure this value."));
    display(sample_);
    showWhetherLive();
}

bool EyetrackerSampleViewer::isLive() const {
    return eyetracker_ && eyetracker_->isConnected() &&
           std::chrono::steady_clock::now() - eyetracker_->lastNumberedSample().arrival <
               EyetrackerInterface::silenceLimit;
}

void EyetrackerSampleViewer::showWhetherLive() {
    const bool live = isLive();
    for (QLabel *value : values_)
        value->setEnabled(live);
    notLive_->setText(live || !eyetracker_ ? QString() : lastSampleText());
}

QString EyetrackerSampleViewer::lastSampleText() const {
    const NumberedSample last = eyetracker_->lastNumberedSample();
    if (last.number == 0)
        return tr("No sample yet");
    const auto age = std::chrono::steady_clock::now() - last.arrival;
    const qint64 ageMs = std::chrono::duration_cast<std::chrono::milliseconds>(age).count();
    const QDateTime time = QDateTime::currentDateTime().addMSecs(-ageMs);
    const bool today = time.date() == QDate::currentDate();
    return tr("Not live since %1").arg(time.toString(today ? "HH:mm:ss" : "yyyy-MM-dd HH:mm:ss"));
}

void EyetrackerSampleViewer::display(const EyeTrackingSample &sample) {
    sample_ = sample;
    const SampleTexts texts(sample, tr("cm"), tr("mm"));
    showText(valid_, texts.valid);
    showText(eyes_, texts.eyes);
    showText(xPercent_, texts.xPercent);
    showText(yPercent_, texts.yPercent);
    showText(xPixels_, texts.xPixels);
    showText(yPixels_, texts.yPixels);
    showText(focus_, texts.focus);
    showText(distance_, texts.distance);
    showEye(left_, texts.left);
    showEye(right_, texts.right);
}

void EyetrackerSampleViewer::showEye(const Eye &eye, const EyeTexts &texts) {
    showText(eye.valid, texts.valid);
    showText(eye.x, texts.x);
    showText(eye.y, texts.y);
    showText(eye.pupil, texts.pupil);
}
