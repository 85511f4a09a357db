#pragma once

#include <QWidget>

class QLabel;
class Settings;
struct PropertyDescriptor;

/// The tab "Access" of the settings page: who may use the HTTP API, and which files clients may use. Above the editors,
/// it lists the invalid entries of the allowed web origins. GUI thread.
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
