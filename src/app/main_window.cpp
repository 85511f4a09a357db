#include "app/main_window.h"

#include "api/ocela_http_exchange.h"
#include "app/dashboard.h"
#include "app/recording_keeper.h"
#include "app/session_strip.h"
#include "app/settings_notice.h"
#include "app/status_bar.h"
#include "app/tracker_combo_box.h"
#include "app/tracker_view_widget.h"
#include "app/tray_icon.h"
#include "core/eyetracker_interface.h"
#include "core/journal_recovery.h"
#include "core/recording_journal.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/app_helper.h"
#include "toolkit/platform/autorun_helper.h"
#include "toolkit/widgets/new_version_button.h"
#include "toolkit/widgets/property_list_control.h"
#include "trackers/asee/asee_tracker.h"
#include "trackers/eyetech/eyetech_tracker.h"
#include "trackers/gazepoint/gazepoint_tracker.h"
#include "views/eyetracker_connected_widget.h"
#include "views/eyetracker_sample_viewer.h"
#include "views/gaze_trail_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QGridLayout>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollArea>
#include <QSessionManager>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr int pageMargin = 8;
constexpr int settingsMargin = 8;
constexpr QSize initialSize(520, 420);

/// The minimum size of a camera view. With it, the window fits a screen of 960 x 540 pixels (1920 x 1080 at 200 %).
constexpr QSize minViewSize(128, 60);

/// Returns a scroll area for a page that may be higher than a small screen.
QWidget *scrollable(QWidget *page) {
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(page);
    return area;
}

QWidget *createView(EyetrackerInterface &tracker) {
    if (QWidget *camera = tracker.createViewWidget())
        return camera;
    auto *trail = new GazeTrailView;
    trail->setEyetracker(&tracker);
    return trail;
}

}  // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent) {
    buildSettings();
    buildTrackers();
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    buildPages();
    buildStatusBar();
    buildTray();
    retranslate();
    resize(initialSize);
    growTo(sizeHint());
    if (settings_->getHideWindowOnStart())
        tray_->startHidden();
    else
        show();
    settingsNotice_->showMessage(this);
    selectInitialTracker();
    startRecovery();
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
    trackers_.front().tracker->stop();
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

void MainWindow::addTracker(EyetrackerInterface *tracker) {
    recording_journal::enable(*tracker, recording_journal::folderIn(dataFolder_),
                              [this] { return settings_->getDescribeRecordings(); });
    trackers_.push_back({tracker, createView(*tracker)});
    recordings_->addTracker(tracker);
}

void MainWindow::applyRecordsPath() {
    const QString path = settings_->getRecordsPath().trimmed();
    const bool isDefault = path.isEmpty() || QDir(path) == QDir(settings_->getRecordsPathDefault().toString());
    if (!isDefault)
        FileUtilities::createIfNotExists(path);
    for (const Tracker &entry : trackers_)
        entry.tracker->setRecordsFolder(isDefault ? QString() : path);
}

void MainWindow::buildPages() {
    pages_ = new QTabWidget(this);
    QWidget *settingsPage = buildSettingsPage();
    pages_->addTab(buildMainPage(), QString());
    pages_->addTab(settingsPage, QString());
    setCentralWidget(pages_);
}

QWidget *MainWindow::buildSettingsPage() {
    settingsTabs_ = new QTabWidget;
    auto *common = new PropertyListControl(settings_);
    common->setContentsMargins(settingsMargin, settingsMargin, settingsMargin, settingsMargin);
    newVersionButton_ = new NewVersionButton(QString(), OCELA_RELEASE_INFO_URL, common);
    common->addRow(newVersionButton_);
    settingsTabs_->addTab(scrollable(common), QString());

    for (const Tracker &entry : trackers_) {
        if (!entry.tracker->settings())
            continue;
        auto editor = std::make_unique<PropertyListControl>(entry.tracker->settings());
        if (editor->isEmpty())
            continue;
        editor->setContentsMargins(settingsMargin, settingsMargin, settingsMargin, settingsMargin);
        settingsTabs_->addTab(scrollable(editor.release()), entry.tracker->name());
    }
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(buildSettingsNotice());
    column->addWidget(settingsTabs_);
    return page;
}

QWidget *MainWindow::buildSettingsNotice() {
    settingsNotice_ = new SettingsNotice;
    settingsNotice_->setContentsMargins(settingsMargin, settingsMargin, settingsMargin, settingsMargin);
    settingsNotice_->addSettings(settings_);
    for (const Tracker &entry : trackers_) {
        if (entry.tracker->settings())
            settingsNotice_->addSettings(entry.tracker->settings());
    }
    return settingsNotice_;
}

QWidget *MainWindow::buildMainPage() {
    auto *panel = new TrackerViewWidget;
    auto *indicator = new EyetrackerConnectedWidget;
    auto *viewer = new EyetrackerSampleViewer;
    trackerWidgets_ = {panel, indicator, viewer};

    auto *session = new SessionStrip(*settings_);
    panel->setNameRecord([session] { return session->recordFileName(); });

    trackerCombo_ = new TrackerComboBox;
    trackerCombo_->setObjectName("trackers");
    dashboardButton_ = new QPushButton;
    connect(dashboardButton_, &QPushButton::clicked, this, &dashboard::open);
    viewStack_ = new QStackedWidget;
    viewStack_->setObjectName("views");
    for (const Tracker &entry : trackers_) {
        trackerCombo_->addTracker(entry.tracker);
        viewStack_->addWidget(entry.view);
        entry.view->setMinimumSize(minViewSize);
    }
    connect(trackerCombo_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &MainWindow::trackerIndexChanged);

    auto *page = new QWidget;
    auto *grid = new QGridLayout(page);
    grid->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    grid->setVerticalSpacing(pageMargin);
    grid->setHorizontalSpacing(2 * pageMargin);
    grid->addWidget(trackerCombo_, 0, 0, Qt::AlignLeft);
    grid->addWidget(indicator, 0, 1, Qt::AlignLeft);
    grid->addWidget(panel, 1, 0, 1, 2);
    grid->addWidget(viewStack_, 2, 0, 1, 3);
    grid->addWidget(viewer, 3, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    // Beside the other widgets, so that the window fits small screens.
    grid->addWidget(dashboardButton_, 0, 2, Qt::AlignRight);
    grid->addWidget(session, 1, 2, Qt::AlignTop);
    return page;
}

void MainWindow::buildStatusBar() {
    status_ = new StatusBar;
    for (const Tracker &entry : trackers_)
        status_->addTracker(entry.tracker);
    connect(status_, &StatusBar::retryWanted, recordings_, &RecordingKeeper::retry);
    connect(status_, &StatusBar::saveAsWanted, recordings_, &RecordingKeeper::saveAs);
    trackerWidgets_.push_back(status_);
    auto *bar = new QStatusBar;
    bar->setSizeGripEnabled(false);
    bar->addWidget(status_, 1);
    setStatusBar(bar);
}

void MainWindow::buildTray() {
    tray_ = new TrayIcon(this, *exchange_);
    for (const Tracker &entry : trackers_)
        tray_->addTracker(entry.tracker);
}

void MainWindow::startRecovery() {
    const auto tell = [this](const QString &path) {
        QMetaObject::invokeMethod(tray_, [this, path] { tray_->showRecovered(path); });
    };
    journalRecovery_ = std::make_unique<JournalRecovery>(recording_journal::folderIn(dataFolder_),
                                                         trackers_.front().tracker->recordsFolder(), tell);
}

void MainWindow::retranslate() {
    pages_->setTabText(0, tr("Main"));
    pages_->setTabText(1, tr("Settings"));
    settingsTabs_->setTabText(0, QCoreApplication::translate("Generic", "Common"));
    newVersionButton_->setText(tr("Доступна новая версия"));
    dashboardButton_->setText(tr("Open dashboard"));
    const QLocale locale(settings_->getLanguage());
    status_->setLocale(locale);
    tray_->retranslate(locale);
    const QString problem = exchange_->listenProblem();
    dashboardButton_->setEnabled(problem.isEmpty());
    dashboardButton_->setToolTip(problem);
    status_->setProblem(problem.isEmpty() ? QString() : tr("Other programs cannot reach Ocela: %1").arg(problem));
}

void MainWindow::selectInitialTracker() {
    const QString selected = settings_->getSelectedTracker();
    int index = 0;
    for (std::size_t i = 0; i < trackers_.size(); ++i) {
        if (trackers_[i].tracker->name() == selected) {
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
    currentTracker_ = trackers_[static_cast<std::size_t>(index)].tracker;
    {
        const QSignalBlocker blocker(trackerCombo_);
        trackerCombo_->setCurrentIndex(index);
    }
    showView(index);
    for (BaseEyetrackerWidget *widget : trackerWidgets_)
        widget->setEyetracker(currentTracker_);
    exchange_->setTracker(currentTracker_);

    currentTracker_->start();
    settings_->setSelectedTracker(currentTracker_->name());
}

void MainWindow::showView(int index) {
    viewStack_->setCurrentIndex(index);
    growTo(sizeHint());
}

/// The window grows at most to the size of the screen, so that a camera view shrinks on a small screen.
void MainWindow::growTo(QSize wanted) {
    const QSize frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this));
    resize(size().expandedTo(wanted.boundedTo(screen()->availableGeometry().size() - frame)));
}

bool MainWindow::hidesToTray() const {
    // Without a tray, a hidden window could not be shown again.
    return settings_->getHideWindowOnStart() && QSystemTrayIcon::isSystemTrayAvailable();
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
