#include "app/settings_page.h"

#include "app/access_tab.h"
#include "app/settings.h"
#include "app/settings_notice.h"
#include "app/streams_tab.h"
#include "core/eyetracker_interface.h"
#include "toolkit/widgets/new_version_button.h"
#include "toolkit/widgets/property_list_control.h"

#include <QCoreApplication>
#include <QEvent>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>
#include <memory>

namespace {

constexpr int margin = 8;

enum Tab { commonTab, accessTab, streamsTab };

/// Returns a scroll area for an editor that may be higher than a small screen.
QWidget *scrollable(std::unique_ptr<QWidget> editor) {
    editor->setContentsMargins(margin, margin, margin, margin);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(editor.release());
    return area;
}

}  // namespace

SettingsPage::SettingsPage(Settings &settings, const LslStreams &streams,
                           const std::vector<EyetrackerInterface *> &trackers)
    : notice_(new SettingsNotice), tabs_(new QTabWidget) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(notice_);
    column->addWidget(tabs_);

    notice_->setContentsMargins(margin, margin, margin, margin);
    notice_->addSettings(&settings);
    addEditors(settings, streams, trackers);
    retranslate();
}

void SettingsPage::addEditors(Settings &settings, const LslStreams &streams,
                              const std::vector<EyetrackerInterface *> &trackers) {
    const auto isCommon = [](const PropertyDescriptor &property) {
        return !AccessTab::contains(property) && !StreamsTab::contains(property);
    };
    auto common = std::make_unique<PropertyListControl>(&settings, isCommon);
    newVersionButton_ = new NewVersionButton(QString(), OCELA_RELEASE_INFO_URL, common.get());
    common->addRow(newVersionButton_);
    tabs_->addTab(scrollable(std::move(common)), QString());
    tabs_->addTab(scrollable(std::make_unique<AccessTab>(settings)), QString());
    tabs_->addTab(scrollable(std::make_unique<StreamsTab>(settings, streams)), QString());

    for (EyetrackerInterface *tracker : trackers) {
        if (!tracker->settings())
            continue;
        notice_->addSettings(tracker->settings());
        auto editor = std::make_unique<PropertyListControl>(tracker->settings());
        if (!editor->isEmpty())
            tabs_->addTab(scrollable(std::move(editor)), tracker->name());
    }
}

void SettingsPage::showAccess() {
    tabs_->setCurrentIndex(accessTab);
}

void SettingsPage::showReadProblem(QWidget *window) const {
    notice_->showMessage(window);
}

void SettingsPage::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void SettingsPage::retranslate() {
    tabs_->setTabText(commonTab, QCoreApplication::translate("Generic", "Common"));
    tabs_->setTabText(accessTab, QCoreApplication::translate("Generic", "Access"));
    tabs_->setTabText(streamsTab, QCoreApplication::translate("Generic", "LSL"));
    newVersionButton_->setText(tr("Доступна новая версия"));
}
