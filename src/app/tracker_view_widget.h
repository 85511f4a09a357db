#pragma once

#include "core/eyetracker_interface.h"
#include "views/base_eyetracker_widget.h"

#include <QSize>
#include <atomic>
#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QPushButton;

/// The control panel of the selected tracker: calibrate on a chosen screen, start and stop a record, let the
/// gaze move the mouse cursor (check box or F10).
///
/// The buttons are never disabled; each does nothing while no tracker is set, and the tracker decides the
/// rest. All runs on the GUI thread but the reaction to a sample, which comes on the thread that delivers it.
class TrackerViewWidget : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit TrackerViewWidget(QWidget *parent = nullptr);
    ~TrackerViewWidget() override;

protected:
    void eyetrackerChanged() override;
    void changeEvent(QEvent *event) override;

private:
    void buildButtons();
    void buildScreenList();
    void buildCursorControl();
    void buildLayout();
    void retranslate();

    void showRecording(bool recording);
    void setControlCursor(bool on);

    /// Shared with the slot that takes the samples: a device's thread may be in it while this widget goes.
    const std::shared_ptr<std::atomic<bool>> controlCursor_ = std::make_shared<std::atomic<bool>>(false);
    QPushButton *calibrateButton_ = nullptr;
    // Starting and stopping the tracker is the main window's business: these two are wired but never shown.
    QPushButton *startButton_ = nullptr;
    QPushButton *stopButton_ = nullptr;
    QPushButton *startRecordButton_ = nullptr;
    QPushButton *stopRecordButton_ = nullptr;
    QComboBox *screenCombo_ = nullptr;
    QCheckBox *cursorCheckBox_ = nullptr;
    std::vector<QSize> screenSizes_;  ///< of the entries of the screen list
};
