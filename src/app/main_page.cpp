#include "app/main_page.h"

#include "app/dashboard.h"
#include "app/session_strip.h"
#include "app/tracker_combo_box.h"
#include "app/tracker_view_widget.h"
#include "core/eyetracker_interface.h"
#include "views/eyetracker_connected_widget.h"
#include "views/eyetracker_sample_viewer.h"
#include "views/gaze_trail_view.h"

#include <QEvent>
#include <QGridLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>

namespace {

constexpr int margin = 8;

/// The minimum size of a view. With it, the window fits a screen of 960 x 540 pixels (1920 x 1080 at 200 %).
constexpr QSize minViewSize(128, 60);

QWidget *createView(EyetrackerInterface &tracker) {
    if (QWidget *camera = tracker.createViewWidget())
        return camera;
    auto *trail = new GazeTrailView;
    trail->setEyetracker(&tracker);
    return trail;
}

}  // namespace

MainPage::MainPage(Settings &settings, const std::vector<EyetrackerInterface *> &trackers) : trackers_(trackers) {
    buildTrackerList();
    buildControls(settings);
    buildViews();
    buildLayout();
    retranslate();
}

void MainPage::buildTrackerList() {
    list_ = new TrackerComboBox;
    list_->setObjectName("trackers");
    for (EyetrackerInterface *tracker : trackers_)
        list_->addTracker(tracker);
    connect(list_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &MainPage::trackerChosen);
}

void MainPage::buildControls(Settings &settings) {
    session_ = new SessionStrip(settings);
    auto *panel = new TrackerViewWidget;
    panel->setNameRecord([session = session_] { return session->recordFileName(); });
    panel_ = panel;
    indicator_ = new EyetrackerConnectedWidget;
    viewer_ = new EyetrackerSampleViewer;
    dashboardButton_ = new QPushButton;
    connect(dashboardButton_, &QPushButton::clicked, this, &dashboard::open);
}

void MainPage::buildViews() {
    views_ = new QStackedWidget;
    views_->setObjectName("views");
    for (EyetrackerInterface *tracker : trackers_) {
        QWidget *view = createView(*tracker);
        view->setMinimumSize(minViewSize);
        views_->addWidget(view);
    }
}

void MainPage::buildLayout() {
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(margin, margin, margin, margin);
    grid->setVerticalSpacing(margin);
    grid->setHorizontalSpacing(2 * margin);
    grid->addWidget(list_, 0, 0, Qt::AlignLeft);
    grid->addWidget(indicator_, 0, 1, Qt::AlignLeft);
    grid->addWidget(panel_, 1, 0, 1, 2);
    grid->addWidget(views_, 2, 0, 1, 3);
    grid->addWidget(viewer_, 3, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    // Beside the other widgets, so that the window fits small screens.
    grid->addWidget(dashboardButton_, 0, 2, Qt::AlignRight);
    grid->addWidget(session_, 1, 2, Qt::AlignTop);
}

void MainPage::showTracker(int index) {
    const QSignalBlocker blocker(list_);
    list_->setCurrentIndex(index);
    views_->setCurrentIndex(index);
    for (BaseEyetrackerWidget *widget : {panel_, indicator_, viewer_})
        widget->setEyetracker(trackers_[static_cast<std::size_t>(index)]);
}

void MainPage::setDashboardProblem(const QString &problem) {
    dashboardButton_->setEnabled(problem.isEmpty());
    dashboardButton_->setToolTip(problem);
}

void MainPage::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void MainPage::retranslate() {
    dashboardButton_->setText(tr("Open dashboard"));
}
