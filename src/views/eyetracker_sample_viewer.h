#pragma once

#include "core/eye_tracking_sample.h"
#include "views/base_eyetracker_widget.h"

#include <QTimer>
#include <utility>
#include <vector>

class QGridLayout;
class QLabel;
struct EyeTexts;

/// Shows the last sample in three columns: common gaze, left eye and right eye. GUI thread. Samples
/// arrive through a queued connection.
///
/// Every sample is shown. After a change to another tracker, the labels show its last sample. Without a tracker, and
/// before the first sample, they show an empty sample. While the shown sample is not live, the values are greyed, and a
/// text says since when: the tracker is not connected, or has sent no sample for EyetrackerInterface::silenceLimit.
class EyetrackerSampleViewer : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit EyetrackerSampleViewer(QWidget *parent = nullptr);

protected:
    void eyetrackerChanged() override;
    void changeEvent(QEvent *event) override;

private:
    struct Eye {
        QLabel *valid;
        QLabel *x;
        QLabel *y;
        QLabel *pupil;
    };

    [[nodiscard]] QGridLayout *addColumn(QGridLayout *main, int column);
    void buildCommonColumn(QGridLayout *grid);
    [[nodiscard]] Eye buildEyeColumn(QGridLayout *grid, const char *header);
    void addHeader(QGridLayout *grid, const char *text);
    void addCaption(QGridLayout *grid, int row, const char *text);
    [[nodiscard]] QLabel *addValue(QGridLayout *grid, int row, int column);
    void retranslate();
    void display(const EyeTrackingSample &sample);
    void showWhetherLive();
    [[nodiscard]] bool isLive() const;
    [[nodiscard]] QString lastSampleText() const;
    static void showEye(const Eye &eye, const EyeTexts &texts);

    EyeTrackingSample sample_;
    QTimer liveTimer_;
    std::vector<std::pair<QLabel *, const char *>> captions_;  ///< labels and their source texts

    std::vector<QLabel *> values_;
    QLabel *notLive_ = nullptr;
    QLabel *valid_ = nullptr;
    QLabel *eyes_ = nullptr;
    QLabel *xPercent_ = nullptr;
    QLabel *yPercent_ = nullptr;
    QLabel *xPixels_ = nullptr;
    QLabel *yPixels_ = nullptr;
    QLabel *focus_ = nullptr;
    QLabel *distance_ = nullptr;
    Eye left_{};
    Eye right_{};
};
