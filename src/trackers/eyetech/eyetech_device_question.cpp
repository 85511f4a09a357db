#include "trackers/eyetech/eyetech_device_question.h"

#include "trackers/eyetech/eyetech_device_selection.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace {

constexpr int textWidth = 360;
constexpr int listHeight = 100;

}  // namespace

EyetechDeviceQuestion::EyetechDeviceQuestion(std::vector<int> devices, QWidget *parent)
    : QDialog(parent), devices_(std::move(devices)) {
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // The main window may be hidden in the tray. Closing this window must not end the program.
    setAttribute(Qt::WA_QuitOnClose, false);
    text_ = new QLabel;
    text_->setWordWrap(true);
    text_->setMinimumWidth(textWidth);
    buildList();
    buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons_, &QDialogButtonBox::accepted, this, &EyetechDeviceQuestion::answer);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addWidget(list_);
    layout->addWidget(buttons_);
    retranslate();
}

void EyetechDeviceQuestion::buildList() {
    list_ = new QListWidget;
    list_->setFixedHeight(listHeight);
    for (const int device : devices_) {
        const eyetech::DeviceDescription description = eyetech::describeDevice(device);
        list_->addItem(tr("%1, serial number %2").arg(description.model, description.serialNumber));
    }
    list_->setCurrentRow(0);
    connect(list_, &QListWidget::itemDoubleClicked, this, &EyetechDeviceQuestion::answer);
}

void EyetechDeviceQuestion::retranslate() {
    setWindowTitle(tr("Choose an EyeTech tracker"));
    text_->setText(tr("Several EyeTech trackers are attached. Which one do you want to use?") + "\n\n" +
                   tr("Ocela remembers its serial number. You can change the number in the settings."));
    buttons_->button(QDialogButtonBox::Ok)->setText(tr("Use"));
    buttons_->button(QDialogButtonBox::Cancel)->setText(tr("Not now"));
}

void EyetechDeviceQuestion::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void EyetechDeviceQuestion::answer() {
    const int row = list_->currentRow();
    if (row < 0)
        return;
    hide();
    Q_EMIT answered(devices_[static_cast<std::size_t>(row)]);
}
