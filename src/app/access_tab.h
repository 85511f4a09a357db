#pragma once

#include <QWidget>

class QLabel;
class Settings;
struct PropertyDescriptor;

/// The tab of the settings page with the editors for who may use the program over the network. Above them, it lists the
/// parts of the allowed web origins that are invalid. GUI thread.
class AccessTab : public QWidget {
    Q_OBJECT

public:
    /// `settings` are not owned and must outlive the tab.
    explicit AccessTab(Settings &settings);

    /// Returns whether the tab edits a property of the application's settings.
    [[nodiscard]] static bool contains(const PropertyDescriptor &property);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showProblem();

    const Settings &settings_;
    QLabel *problem_;
};
