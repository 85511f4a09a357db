#include "app/access_button.h"

#include <QEvent>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace {

constexpr QChar ellipsis(0x2026);

}  // namespace

AccessButton::AccessButton(QWidget *parent) : QToolButton(parent) {
    setObjectName("access");
    setAutoRaise(true);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    hide();
}

void AccessButton::setReach(Reach reach) {
    reach_ = reach;
    setVisible(reach != Reach::Nobody);
    retranslate();
}

QSize AccessButton::minimumSizeHint() const {
    const QSize whole = sizeHint();
    const int textWidth = fontMetrics().horizontalAdvance(text()) - fontMetrics().horizontalAdvance(ellipsis);
    return {whole.width() - textWidth, whole.height()};
}

void AccessButton::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QToolButton::changeEvent(event);
}

void AccessButton::paintEvent(QPaintEvent * /*event*/) {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    const int missingWidth = sizeHint().width() - width();
    if (missingWidth > 0) {
        const int textWidth = fontMetrics().horizontalAdvance(text()) - missingWidth;
        option.text = fontMetrics().elidedText(text(), Qt::ElideRight, textWidth);
    }
    QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
}

void AccessButton::retranslate() {
    setText(reach_ == Reach::OtherComputers ? tr("Other computers can reach Ocela")
                                            : tr("Only this computer can reach Ocela"));
    setToolTip(tr("%1. Click to change it in the settings.").arg(text()));
}
