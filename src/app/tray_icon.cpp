#include "app/tray_icon.h"

#include "api/ocela_http_exchange.h"
#include "app/dashboard.h"
#include "app/status_texts.h"
#include "core/eyetracker_interface.h"
#include "toolkit/platform/system_tray.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::seconds trayTimeout(10);
constexpr std::chrono::milliseconds trayPollInterval(250);
/// After this time, the icon has its position in the tray. An earlier message would be shown in a corner of the screen.
constexpr std::chrono::seconds trayLayoutTime(1);

/// Shorter gaps are usual, for example while a device is opened again.
constexpr std::chrono::seconds noSamplesTime(5);
constexpr std::chrono::seconds noSamplesPollInterval(1);

constexpr QRgb markColour = 0xffe01b24;

/// A disc in the lower right corner, with a white edge that separates it from any image.
void drawMark(QPixmap &image) {
    const qreal size = image.width() * 0.5;
    const qreal edge = image.width() / 16.0;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, edge));
    painter.setBrush(QColor(markColour));
    const qreal left = image.width() - size - edge / 2;
    painter.drawEllipse(QRectF(left, left, size, size));
}

QIcon withMark(const QIcon &icon) {
    QIcon marked;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
        QPixmap image = icon.pixmap(size).scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        image.setDevicePixelRatio(1);
        drawMark(image);
        marked.addPixmap(image);
    }
    return marked;
}

QString fileNameOf(const QString &path) {
    return QFileInfo(QDir::fromNativeSeparators(path)).fileName();
}

}  // namespace

TrayIcon::TrayIcon(QWidget *window, const OcelaHTTPExchange &api)
    : QObject(window),
      window_(window),
      api_(api),
      plainIcon_(":/images/ocela.png"),
      recordingIcon_(withMark(plainIcon_)),
      menu_(std::make_unique<QMenu>()) {
    buildMenu();
    connect(&trayTimer_, &QTimer::timeout, this, &TrayIcon::waitForTray);
    connect(&samplesTimer_, &QTimer::timeout, this, &TrayIcon::checkSamples);
    samplesTimer_.start(noSamplesPollInterval);
}

TrayIcon::~TrayIcon() {
    if (icon_)
        icon_->hide();
}

void TrayIcon::buildMenu() {
    showAction_ = menu_->addAction(QString(), this, &TrayIcon::showWindow);
    dashboardAction_ = menu_->addAction(QString(), this, &dashboard::open);
    quitAction_ = menu_->addAction(QString(), window_, &QWidget::close);
    for (QAction *action : menu_->actions())
        action->setShortcut(QKeySequence());
}

void TrayIcon::createIcon() {
    if (icon_)
        return;
    icon_ = new QSystemTrayIcon(this);
    icon_->setContextMenu(menu_.get());
    connect(icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            toggleWindow();
    });
    showState();
}

void TrayIcon::addTracker(EyetrackerInterface *tracker) {
    Observed &observed = trackers_.emplace_back(Observed{tracker, {}, {}});
    connect(tracker, &EyetrackerInterface::recordStarted, this, [this, &observed] {
        observed.recordStart = Clock::now();
        observed.toldAfter.reset();
        showState();
    });
    connect(tracker, &EyetrackerInterface::recordStopped, this,
            [this, tracker](const QString &path) { recordStopped(*tracker, path); });
    connect(tracker, &EyetrackerInterface::unsavedRecordSaved, this,
            [this, tracker](const QString &path) { recordStopped(*tracker, path); });
    connect(tracker, &EyetrackerInterface::disconnected, this,
            [this, &observed] { tellNoSamples(observed, tr("Connection lost")); });
}

void TrayIcon::retranslate(const QLocale &locale) {
    locale_ = locale;
    const QString problem = api_.listenProblem();
    showAction_->setText(tr("Show window"));
    dashboardAction_->setText(problem.isEmpty() ? tr("Open dashboard") : tr("Open dashboard") + " (" + problem + ')');
    dashboardAction_->setEnabled(problem.isEmpty());
    quitAction_->setText(tr("Quit"));
    showState();
}

void TrayIcon::show() {
    createIcon();
    icon_->show();
}

void TrayIcon::startHidden() {
    isStarting_ = true;
    trayDeadline_ = QDeadlineTimer(trayTimeout);
    trayTimer_.start(trayPollInterval);
    waitForTray();
}

void TrayIcon::waitForTray() {
    if (system_tray::isRunning())
        createIcon();
    if (isAvailable()) {
        trayTimer_.stop();
        // An icon that is shown before its tray exists may not be in the tray.
        icon_->show();
        QTimer::singleShot(trayLayoutTime, this, &TrayIcon::tellStart);
    } else if (trayDeadline_.hasExpired()) {
        trayTimer_.stop();
        isStarting_ = false;
        waiting_.clear();
        show();
        window_->show();
    }
}

bool TrayIcon::isAvailable() const {
    return icon_ && QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayIcon::tellStart() {
    isStarting_ = false;
    if (const QString problem = api_.listenProblem(); !problem.isEmpty())
        tell(QApplication::applicationName(), problem, QSystemTrayIcon::Warning);
    tellRecovered();
    for (const Message &message : std::exchange(waiting_, {}))
        tell(message.title, message.text, message.kind);
}

void TrayIcon::toggleWindow() {
    if (isWindowShown())
        window_->hide();
    else
        showWindow();
}

void TrayIcon::showWindow() {
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

bool TrayIcon::isWindowShown() const {
    return window_->isVisible() && !window_->isMinimized();
}

QStringList TrayIcon::recordingTrackers() const {
    QStringList names;
    for (const Observed &observed : trackers_) {
        if (observed.tracker->isRecording())
            names << observed.tracker->name();
    }
    return names;
}

void TrayIcon::showState() {
    if (!icon_)
        return;
    const QStringList recording = recordingTrackers();
    icon_->setIcon(recording.isEmpty() ? plainIcon_ : recordingIcon_);
    QStringList lines{tr("Eye Tracker Service")};
    if (!recording.isEmpty())
        lines << tr("Recording: %1").arg(recording.join(", "));
    if (const QString problem = api_.listenProblem(); !problem.isEmpty())
        lines << problem;
    icon_->setToolTip(lines.join('\n'));
}

void TrayIcon::recordStopped(const EyetrackerInterface &tracker, const QString &path) {
    showState();
    const QString problem = tracker.unsavedProblem();
    if (!path.isEmpty())
        tell(tr("Recording saved"), StatusTexts(locale_).saved(tracker.finishedRecordLength(), fileNameOf(path)),
             QSystemTrayIcon::Information);
    else if (!problem.isEmpty())
        tell(tr("Recording not saved"), problem, QSystemTrayIcon::Critical);
}

void TrayIcon::checkSamples() {
    for (Observed &observed : trackers_) {
        const Clock::time_point arrival = observed.tracker->lastNumberedSample().arrival;
        if (Clock::now() - std::max(observed.recordStart, arrival) >= noSamplesTime)
            tellNoSamples(observed, tr("No samples"));
    }
}

void TrayIcon::tellNoSamples(Observed &observed, const QString &title) {
    const quint64 newest = observed.tracker->lastNumberedSample().number;
    if (!observed.tracker->isRecording() || isWindowShown() || observed.toldAfter == newest)
        return;
    observed.toldAfter = newest;
    tell(title,
         tr("%1 is recording, but sends no samples. Open the window, choose this tracker and press Reconnect.")
             .arg(observed.tracker->name()),
         QSystemTrayIcon::Warning);
}

void TrayIcon::showRecovered(const QString &path) {
    recovered_ << fileNameOf(path);
    if (!isStarting_)
        tellRecovered();
}

/// A message may replace the previous message, so each message names all recovered files.
void TrayIcon::tellRecovered() {
    if (!recovered_.isEmpty())
        tell(tr("Interrupted recording recovered"), recovered_.join('\n'), QSystemTrayIcon::Information);
}

bool TrayIcon::explainHiding() {
    tell(QApplication::applicationName(),
         tr("Ocela continues in the background. To end it, choose Quit in the menu of this icon."),
         QSystemTrayIcon::Information);
    return QSystemTrayIcon::supportsMessages();
}

void TrayIcon::tell(const QString &title, const QString &text, QSystemTrayIcon::MessageIcon kind) {
    if (isWindowShown())
        return;
    if (icon_ && icon_->isVisible())
        icon_->showMessage(title, text, kind);
    else
        waiting_.push_back({title, text, kind});
}
