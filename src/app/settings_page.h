#pragma once

#include <QWidget>
#include <vector>

class EyetrackerInterface;
class LslStreams;
class NewVersionButton;
class QTabWidget;
class Settings;
class SettingsNotice;

/// The page with the editors of all settings: a tab for the application, one for who may use it, one for the Lab
/// Streaming Layer, and one for each tracker that has a visible setting. GUI thread.
class SettingsPage : public QWidget {
    Q_OBJECT

public:
    /// The arguments are not owned and must outlive the page.
    SettingsPage(Settings &settings, const LslStreams &streams, const std::vector<EyetrackerInterface *> &trackers);

    /// Selects the tab for who may use the program.
    void showAccess();

    /// Shows a message over the window if a settings file could not be read.
    void showReadProblem(QWidget *window) const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void addEditors(Settings &settings, const LslStreams &streams, const std::vector<EyetrackerInterface *> &trackers);
    void retranslate();

    SettingsNotice *notice_;
    QTabWidget *tabs_;
    NewVersionButton *newVersionButton_ = nullptr;
};
