#pragma once

#include <QDialog>
#include <vector>

class QDialogButtonBox;
class QLabel;
class QListWidget;

/// A small window that asks which of several EyeTech devices to use. It does not block the program.
///
/// Owned by the tracker, which shows it and destroys it when the question is settled. Closing it without an answer only
/// hides it. GUI thread.
class EyetechDeviceQuestion : public QDialog {
    Q_OBJECT

public:
    explicit EyetechDeviceQuestion(std::vector<int> devices, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The user has chosen a device.
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
