#pragma once

#include "core/eyetracker_interface.h"
#include "views/base_eyetracker_widget.h"

#include <QSize>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QPushButton;

/// The control panel of the selected tracker. Calibrates on a selected screen, starts and stops a recording, and lets
/// the gaze move the mouse cursor (check box or F10). GUI thread, except for samples, which arrive in any thread.
///
/// The buttons are never disabled. Without a tracker they do nothing.
class TrackerViewWidget : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit TrackerViewWidget(QWidget *parent = nullptr);
    ~TrackerViewWidget() override;

    /// Sets a function that is called when the user presses "Start record", and returns the name of the record file.
    /// The file is created in the tracker's recordsFolder(). An empty name selects the tracker's default name.
    void setNameRecord(std::function<QString()> nameRecord) { nameRecord_ = std::move(nameRecord); }

protected:
    void eyetrackerChanged() override;
    void changeEvent(QEvent *event) override;

private:
    void buildButtons();
    void buildScreenList();
    void buildCursorControl();
    void buildLayout();
    void retranslate();

    void startRecord(EyetrackerInterface *tracker) const;
    void showRecording(bool recording);
    void setControlCursor(bool on);

    /// Shared with the slot for samples, which may be running in a device's thread while this widget is destroyed.
    const std::shared_ptr<std::atomic<bool>> controlCursor_ = std::make_shared<std::atomic<bool>>(false);
    QPushButton *calibrateButton_ = nullptr;
    // Connected, but never shown: the main window starts and stops the tracker. This is intended.
    QPushButton *startButton_ = nullptr;
    QPushButton *stopButton_ = nullptr;
    QPushButton *startRecordButton_ = nullptr;
    QPushButton *stopRecordButton_ = nullptr;
    QComboBox *screenCombo_ = nullptr;
    QCheckBox *cursorCheckBox_ = nullptr;
    std::function<QString()> nameRecord_ = [] { return QString(); };
    std::vector<QSize> screenSizes_;  ///< in the order of the screen list
};
