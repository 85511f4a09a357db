#pragma once

#include <QLabel>
#include <vector>

class VTSettings;

/// A label above the editors of the settings that lists the settings files that could not be read. Hidden if all files
/// were read. GUI thread.
class SettingsNotice : public QLabel {
    Q_OBJECT

public:
    /// Adds settings, which are not owned. Their reload() must have been called. The label must have a parent, because
    /// it may be shown.
    void addSettings(const VTSettings *settings);

    /// Shows the same text in a message box over the window, unless all files were read. Does not wait for the user.
    void showMessage(QWidget *window) const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void refresh();

    std::vector<const VTSettings *> settings_;
};
