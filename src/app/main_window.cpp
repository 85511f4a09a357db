#include "app/main_window.h"

#include "api/ocela_http_exchange.h"
#include "api/web_origins.h"
#include "app/dashboard.h"
#include "app/main_page.h"
#include "app/recording_keeper.h"
#include "app/settings_page.h"
#include "app/status_bar.h"
#include "app/tray_icon.h"
#include "core/eyetracker_interface.h"
#include "core/journal_recovery.h"
#include "core/markers.h"
#include "core/recording_journal.h"
#include "streams/lsl_streams.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/app_helper.h"
#include "toolkit/platform/autorun_helper.h"
#include "trackers/asee/asee_tracker.h"
#include "trackers/eyetech/eyetech_tracker.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSessionManager>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>

namespace {

constexpr QSize initialSize(520, 420);

}  // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent) {
    buildSettings();
    buildTrackers();
    buildMarkers();
    buildExchange();
    buildStreams();
    buildPages();
    buildStatusBar();
    buildTray();
    retranslate();
    resize(initialSize);
    growTo(sizeHint());
    if (settings_->getHideWindowOnStart()) {
        tray_->startHidden();
    } else {
        tray_->show();
        show();
    }
    settingsPage_->showReadProblem(this);
    // Before a tracker can show an error box, which would delay the recovery until the user closes it.
    startRecovery();
    selectInitialTracker();
    // A logout of the user quits the application without closing its windows.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &MainWindow::shutDown);
    // Windows may end the process before the application quits.
    connect(qApp, &QGuiApplication::commitDataRequest, recordings_, &RecordingKeeper::saveAll, Qt::DirectConnection);
}

MainWindow::~MainWindow() {
    journalRecovery_.reset();
    delete tray_;
    tray_ = nullptr;
    // Stops the first tracker, even if another one is selected. This is intended. shutDown() stops the selected
    // tracker.
    trackers_.front()->stop();
    // The widgets must be destroyed before the trackers that they use.
    delete takeCentralWidget();
    delete status_;
}

void MainWindow::buildSettings() {
    dataFolder_ = Settings::dataFolder();
    FileUtilities::createIfNotExists(dataFolder_);
    settings_ = new Settings(Settings::defaultFilePath(), Settings::supportedLanguages(), this);
    settings_->reload();
    connect(settings_, &Settings::changedAutoRun, this, &MainWindow::changeAutorun);
}

void MainWindow::changeAutorun(bool on) {
    if (isRevertingAutorun_)
        return;
    const QString problem = AutorunHelper::changeAutorun("Ocela.exe", on, false);
    if (problem.isEmpty())
        return;
    // Queued, because the change that has failed is still being reported to the editor.
    const auto revert = [this, on, problem] {
        {
            const QScopedValueRollback<bool> guard(isRevertingAutorun_, true);
            settings_->setAutoRun(!on);
        }
        AppHelper::warningMessage(tr("\"Start with the system\" could not be changed:") + '\n' + problem, QString(),
                                  QMessageBox::Warning);
    };
    QMetaObject::invokeMethod(this, revert, Qt::QueuedConnection);
}

void MainWindow::buildTrackers() {
    recordings_ = new RecordingKeeper(this);
    addTracker(new EyetechGrabber(dataFolder_, this));
    addTracker(new GazePoint(dataFolder_, this));
    addTracker(new aSeePro(dataFolder_, this));
    applyRecordsPath();
    connect(settings_, &Settings::changedRecordsPath, this, &MainWindow::applyRecordsPath);
}

void MainWindow::buildMarkers() {
    markers_ = new Markers(this);
    markers_->setTrackers(trackers_);
    auto *setMarker = new QAction(this);
    setMarker->setShortcut(Qt::Key_F9);
    setMarker->setAutoRepeat(false);
    connect(setMarker, &QAction::triggered, this, [this] { markers_->add("F9"); });
    addAction(setMarker);
}

void MainWindow::addTracker(EyetrackerInterface *tracker) {
    recording_journal::enable(*tracker, recording_journal::folderIn(dataFolder_),
                              [this] { return settings_->getDescribeRecordings(); });
    trackers_.push_back(tracker);
    recordings_->addTracker(tracker);
}

void MainWindow::applyRecordsPath() {
    const QString path = settings_->getRecordsPath().trimmed();
    const bool isDefault = path.isEmpty() || QDir(path) == QDir(settings_->getRecordsPathDefault().toString());
    if (!isDefault)
        FileUtilities::createIfNotExists(path);
    for (EyetrackerInterface *tracker : trackers_)
        tracker->setRecordsFolder(isDefault ? QString() : path);
}

void MainWindow::buildExchange() {
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr, accessRights());
    exchange_->openProgramApi(trackers_, *markers_, recording_journal::folderIn(dataFolder_));
    connect(exchange_.get(), &OcelaHTTPExchange::trackerWanted, this, &MainWindow::trackerIndexChanged);
    for (const auto changed :
         {&Settings::changedAllowOtherComputers, &Settings::changedAllowForeignPages, &Settings::changedServeAnyFile})
        connect(settings_, changed, this, &MainWindow::applyAccess);
    connect(settings_, &Settings::changedAllowedOrigins, this, &MainWindow::applyAccess);
    connect(settings_, &Settings::changedRecordsPath, this, &MainWindow::applyAccess);
}

void MainWindow::buildStreams() {
    streams_ = std::make_unique<LslStreams>(exchange_->programApi().signal());
    streams_->watch(*markers_);
    connect(settings_, &Settings::changedLslStreams, streams_.get(), &LslStreams::setOn);
    streams_->setOn(settings_->getLslStreams());
}

AccessRights MainWindow::accessRights() const {
    AccessRights rights;
    rights.otherComputers = settings_->getAllowOtherComputers();
    rights.foreignPages = settings_->getAllowForeignPages();
    rights.anyFile = settings_->getServeAnyFile();
    rights.allowedOrigins = WebOrigins::parse(settings_->getAllowedOrigins()).valid;
    rights.recordsFolder = trackers_.front()->recordsFolder();
    return rights;
}

void MainWindow::applyAccess() {
    exchange_->setAccessRights(accessRights());
    showReachability();
}

void MainWindow::buildPages() {
    mainPage_ = new MainPage(*settings_, trackers_);
    connect(mainPage_, &MainPage::trackerChosen, this, &MainWindow::trackerIndexChanged);
    settingsPage_ = new SettingsPage(*settings_, *streams_, trackers_);
    pages_ = new QTabWidget(this);
    pages_->addTab(mainPage_, QString());
    pages_->addTab(settingsPage_, QString());
    setCentralWidget(pages_);
}

void MainWindow::buildStatusBar() {
    status_ = new StatusBar;
    for (EyetrackerInterface *tracker : trackers_)
        status_->addTracker(tracker);
    connect(status_, &StatusBar::retryWanted, recordings_, &RecordingKeeper::retry);
    connect(status_, &StatusBar::saveAsWanted, recordings_, &RecordingKeeper::saveAs);
    connect(markers_, &Markers::added, status_, &StatusBar::showMarker);
    connect(status_, &StatusBar::accessSettingsWanted, this, [this] {
        settingsPage_->showAccess();
        pages_->setCurrentWidget(settingsPage_);
    });
    connect(streams_.get(), &LslStreams::problemChanged, this, &MainWindow::showProblems);
    auto *bar = new QStatusBar;
    bar->setSizeGripEnabled(false);
    bar->addWidget(status_, 1);
    setStatusBar(bar);
}

void MainWindow::buildTray() {
    tray_ = new TrayIcon(this, *exchange_);
    for (EyetrackerInterface *tracker : trackers_)
        tray_->addTracker(tracker);
}

void MainWindow::startRecovery() {
    const auto tell = [this](const QString &path) {
        QMetaObject::invokeMethod(tray_, [this, path] {
            tray_->showRecovered(path);
            status_->showRecovered(path);
        });
    };
    journalRecovery_ = std::make_unique<JournalRecovery>(recording_journal::folderIn(dataFolder_),
                                                         trackers_.front()->recordsFolder(), tell);
}

void MainWindow::retranslate() {
    pages_->setTabText(0, tr("Main"));
    pages_->setTabText(1, tr("Settings"));
    const QLocale locale(settings_->getLanguage());
    status_->setLocale(locale);
    tray_->retranslate(locale);
    showReachability();
}

void MainWindow::showReachability() {
    const QString problem = exchange_->listenProblem();
    mainPage_->setDashboardProblem(problem);
    status_->setDashboardAvailable(problem.isEmpty());
    showProblems();
    if (!problem.isEmpty())
        status_->setReach(AccessButton::Reach::Nobody);
    else if (settings_->getAllowOtherComputers())
        status_->setReach(AccessButton::Reach::OtherComputers);
    else
        status_->setReach(AccessButton::Reach::ThisComputer);
}

void MainWindow::showProblems() {
    QStringList problems;
    if (const QString problem = exchange_->listenProblem(); !problem.isEmpty())
        problems << tr("Other programs cannot reach Ocela: %1").arg(problem);
    problems << streams_->problem();
    problems.removeAll(QString());
    status_->setProblem(problems.join(". "));
}

void MainWindow::openDashboard() {
    if (exchange_->listenProblem().isEmpty())
        dashboard::open();
    else
        show();
}

void MainWindow::selectInitialTracker() {
    const QString selected = settings_->getSelectedTracker();
    int index = 0;
    for (std::size_t i = 0; i < trackers_.size(); ++i) {
        if (trackers_[i]->name() == selected) {
            index = static_cast<int>(i);
            break;
        }
    }
    trackerIndexChanged(index);
}

void MainWindow::trackerIndexChanged(int index) {
    if (index < 0 || index >= static_cast<int>(trackers_.size()))
        return;
    if (currentTracker_)
        currentTracker_->stop();
    currentTracker_ = trackers_[static_cast<std::size_t>(index)];
    mainPage_->showTracker(index);
    status_->setEyetracker(currentTracker_);
    growTo(sizeHint());
    markers_->setSelectedTracker(currentTracker_);
    exchange_->setTracker(currentTracker_);
    streams_->setTracker(currentTracker_);

    currentTracker_->start();
    settings_->setSelectedTracker(currentTracker_->name());
}

/// The window grows at most to the size of the screen, so that the view of the tracker shrinks on a small screen.
void MainWindow::growTo(QSize wanted) {
    if (isMaximized() || isFullScreen())
        return;
    const QSize frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this));
    resize(size().expandedTo(wanted.boundedTo(screen()->availableGeometry().size() - frame)));
}

bool MainWindow::hidesToTray() const {
    // Without a tray, a hidden window could not be shown again.
    return settings_->getHideWindowOnStart() && tray_->isAvailable();
}

void MainWindow::hideToTray() {
    hide();
    if (!settings_->getHidingExplained())
        settings_->setHidingExplained(tray_->explainHiding());
}

void MainWindow::closeEvent(QCloseEvent *event) {
    if (isVisible() && hidesToTray()) {
        event->ignore();
        hideToTray();
        return;
    }
    if (!recordings_->mayClose()) {
        event->ignore();
        return;
    }
    shutDown();
    event->accept();
    // quitOnLastWindowClosed is off: closing a calibration screen while this window is hidden must not quit the
    // program.
    QCoreApplication::quit();
}

void MainWindow::shutDown() {
    if (closed_)
        return;
    recordings_->saveAll();
    if (currentTracker_)
        currentTracker_->stop();
    closed_ = true;
}

void MainWindow::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange && tray_)
        retranslate();
    QMainWindow::changeEvent(event);
}
