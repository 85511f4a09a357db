#pragma once

#include <QLabel>
#include <vector>

class VTSettings;

/// Tells which settings files could not be read, above the editors of the settings. Hidden if there are none. GUI
/// thread.
class SettingsNotice : public QLabel {
    Q_OBJECT

public:
    /// Adds settings, which are not owned. They must have been read.
    void addSettings(const VTSettings *settings);

    /// Shows the same text over the window, without waiting for the user.
    void showMessage(QWidget *window) const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void refresh();

    std::vector<const VTSettings *> settings_;
};
