#pragma once

#include "app/tracker_monitor.h"
#include "views/base_eyetracker_widget.h"

#include <QTimer>
#include <optional>
#include <vector>

class ElidedLabel;
class QBoxLayout;
class QLabel;

/// Says what the selected tracker is doing, and how the recordings of all trackers are going. GUI thread.
///
/// The texts are updated once a second. The recordings are shown beside the tracker or, if there is not enough room,
/// below it. The bar does not make the window wider: it cuts off texts that are too long.
class StatusBar : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit StatusBar(QWidget *parent = nullptr);

    /// Shows the recordings of a tracker, also while another one is selected. The tracker is not owned.
    void addTracker(EyetrackerInterface *tracker);

protected:
    void eyetrackerChanged() override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// How the last recording has ended.
    struct Result {
        QString path;     ///< empty if the recording was not saved
        QString problem;  ///< why the recording was not saved; empty if it was discarded
        RecordLength length;
    };

    void refresh();
    [[nodiscard]] QString trackerText() const;
    [[nodiscard]] QString runningRecordings() const;
    [[nodiscard]] QString resultText() const;
    void showRecordings();
    void setResult(const EyetrackerInterface &tracker, const QString &path);
    void openFolder() const;
    void arrange();

    std::vector<EyetrackerInterface *> trackers_;
    std::optional<TrackerMonitor> monitor_;  ///< of the selected tracker
    std::optional<Result> result_;
    QTimer timer_;

    QBoxLayout *layout_;
    ElidedLabel *trackerLabel_;
    QWidget *recordings_;
    ElidedLabel *recordingLabel_;
    QLabel *folderLink_;
};
