#pragma once

#include "app/access_button.h"
#include "views/base_eyetracker_widget.h"

#include <QTimer>

class ElidedLabel;
class QBoxLayout;
class RecordingStatusLine;
class TrackerStatusLine;
struct Marker;

/// The status bar of the main window. Shows the state of the selected tracker, the recordings of all trackers, and who
/// can reach the program. GUI thread.
///
/// The texts are updated once a second. The recordings are shown beside the tracker or, if there is not enough room,
/// below it. The bar does not make the window wider: it cuts off texts that are too long.
class StatusBar : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit StatusBar(QWidget *parent = nullptr);

    /// Shows the recordings of a tracker, also while another one is selected. The tracker is not owned.
    void addTracker(EyetrackerInterface *tracker);

    /// Shows the file of a recovered recording, until the next recording.
    void showRecovered(const QString &path);

    /// Shows for a few seconds that a marker was set.
    void showMarker(const Marker &marker);

    /// Shows who can reach the program.
    void setReach(AccessButton::Reach reach);

    /// Shows a problem of the program in a line of its own. An empty text hides the line.
    void setProblem(const QString &problem);

    /// Sets whether the pages of the dashboard can be opened in the browser.
    void setDashboardAvailable(bool available);

Q_SIGNALS:
    /// The user wants to try again to save the unsaved recordings.
    void retryWanted();
    /// The user wants to save an unsaved recording to another file.
    void saveAsWanted();
    /// The user wants to change who can reach the program.
    void accessSettingsWanted();

protected:
    void eyetrackerChanged() override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void refresh();
    void arrange();

    QTimer timer_;
    QTimer markerTimer_;
    ElidedLabel *problemLabel_;
    QBoxLayout *lines_;
    TrackerStatusLine *trackerLine_;
    AccessButton *accessButton_;
    RecordingStatusLine *recordingLine_;
};
