#include "app/access_tab.h"

#include "api/web_origins.h"
#include "app/settings.h"
#include "toolkit/widgets/property_list_control.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int spacing = 8;

}  // namespace

AccessTab::AccessTab(Settings &settings) : settings_(settings), problem_(new QLabel(this)) {
    problem_->setObjectName("originProblem");
    problem_->setStyleSheet("color: #B00000");
    problem_->setTextFormat(Qt::PlainText);
    problem_->setWordWrap(true);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    column->addWidget(problem_);
    column->addWidget(new PropertyListControl(&settings, &AccessTab::contains), 1);
    connect(&settings, &Settings::changedAllowedOrigins, this, &AccessTab::showProblem);
    showProblem();
}

bool AccessTab::contains(const PropertyDescriptor &property) {
    return property.category == "Access";
}

void AccessTab::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        showProblem();
    QWidget::changeEvent(event);
}

void AccessTab::showProblem() {
    const QStringList invalid = WebOrigins::parse(settings_.getAllowedOrigins()).invalid;
    problem_->setText(tr("These entries are not web origins and are ignored: %1. Write each origin without a path, "
                         "for example https://lab.example or http://192.0.2.20:8080.")
                          .arg(invalid.join(' ')));
    problem_->setVisible(!invalid.isEmpty());
}
