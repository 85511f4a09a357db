#include "app/streams_tab.h"

#include "app/settings.h"
#include "streams/lsl_streams.h"
#include "toolkit/widgets/property_list_control.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int spacing = 8;

}  // namespace

StreamsTab::StreamsTab(Settings &settings, const LslStreams &streams) : streams_(streams), problem_(new QLabel(this)) {
    problem_->setObjectName("streamsProblem");
    problem_->setStyleSheet("color: #B00000");
    problem_->setTextFormat(Qt::PlainText);
    problem_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    problem_->setWordWrap(true);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    column->addWidget(problem_);
    column->addWidget(new PropertyListControl(&settings, &StreamsTab::contains), 1);
    connect(&streams, &LslStreams::problemChanged, this, &StreamsTab::showProblem);
    showProblem();
}

bool StreamsTab::contains(const PropertyDescriptor &property) {
    return property.category == "LSL";
}

void StreamsTab::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        showProblem();
    QWidget::changeEvent(event);
}

void StreamsTab::showProblem() {
    problem_->setText(streams_.problem());
    problem_->setVisible(!problem_->text().isEmpty());
}
