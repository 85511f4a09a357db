#pragma once

#include <QWidget>
#include <vector>

class BaseEyetrackerWidget;
class EyetrackerInterface;
class QPushButton;
class QStackedWidget;
class SessionStrip;
class Settings;
class TrackerComboBox;

/// The page for the daily work: the list of the trackers, the controls and values of the selected one, its camera view
/// or its gaze trail, and the fields of the session. GUI thread.
class MainPage : public QWidget {
    Q_OBJECT

public:
    /// The settings and the trackers are not owned and must outlive the page.
    MainPage(Settings &settings, const std::vector<EyetrackerInterface *> &trackers);

    /// Shows a tracker by its index. Does not emit trackerChosen().
    void showTracker(int index);

    /// Disables the button of the dashboard, whose tool tip is then `problem`. An empty text enables it.
    void setDashboardProblem(const QString &problem);

Q_SIGNALS:
    /// The user has chosen another tracker in the list.
    void trackerChosen(int index);

protected:
    void changeEvent(QEvent *event) override;

private:
    void buildTrackerList();
    void buildControls(Settings &settings);
    void buildViews();
    void buildLayout();
    void retranslate();

    const std::vector<EyetrackerInterface *> trackers_;
    TrackerComboBox *list_ = nullptr;
    BaseEyetrackerWidget *indicator_ = nullptr;
    BaseEyetrackerWidget *panel_ = nullptr;
    BaseEyetrackerWidget *viewer_ = nullptr;
    SessionStrip *session_ = nullptr;
    QPushButton *dashboardButton_ = nullptr;
    QStackedWidget *views_ = nullptr;
};
