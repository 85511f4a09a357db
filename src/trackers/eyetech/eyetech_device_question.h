#pragma once

#include <QDialog>
#include <vector>

class QDialogButtonBox;
class QLabel;
class QListWidget;

/// A small window that asks which of several EyeTech devices to use. It does not block the program.
///
/// Owned by the tracker, which shows it, and destroys it when no answer is needed any more. If the user closes the
/// window without an answer, it is only hidden. GUI thread.
class EyetechDeviceQuestion : public QDialog {
    Q_OBJECT

public:
    /// `devices` are the ids of the attached devices.
    explicit EyetechDeviceQuestion(std::vector<int> devices, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The user has chosen the device with this id.
    void answered(int device);

protected:
    void changeEvent(QEvent *event) override;

private:
    void buildList();
    void retranslate();
    void answer();

    const std::vector<int> devices_;
    QLabel *text_ = nullptr;
    QListWidget *list_ = nullptr;
    QDialogButtonBox *buttons_ = nullptr;
};
