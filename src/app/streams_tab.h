#pragma once

#include <QWidget>

class LslStreams;
class QLabel;
class Settings;
struct PropertyDescriptor;

/// The tab "LSL" of the settings page, with the setting of the Lab Streaming Layer. Above the editor, it shows why the
/// streams cannot be received. GUI thread.
class StreamsTab : public QWidget {
    Q_OBJECT

public:
    /// The references are not owned and must outlive the tab.
    StreamsTab(Settings &settings, const LslStreams &streams);

    /// Returns whether the tab edits a property of the application's settings.
    [[nodiscard]] static bool contains(const PropertyDescriptor &property);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showProblem();

    const LslStreams &streams_;
    QLabel *problem_;
};
