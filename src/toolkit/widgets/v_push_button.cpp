#include "toolkit/widgets/v_push_button.h"

#include <QPalette>
#include <QStyleOptionButton>
#include <QStylePainter>

VPushButton::VPushButton(QWidget *parent) : VPushButton(QString(), parent) {}

VPushButton::VPushButton(const QString &text, QWidget *parent) : QPushButton(text, parent) {
    setCursor(Qt::PointingHandCursor);
}

QString VPushButton::gap() const {
    return icon().isNull() || text().isEmpty() ? QString() : QString(' ');
}

QSize VPushButton::sizeHint() const {
    return QPushButton::sizeHint() + QSize(fontMetrics().horizontalAdvance(gap()), 0);
}

void VPushButton::drawFocus(QPainter &painter) const {
    const qreal radius = 3;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void VPushButton::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.prepend(gap());
    painter.drawControl(QStyle::CE_PushButton, option);
    const QStyle::State reachedByKeyboard = QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    if (isFlat() && (option.state & reachedByKeyboard) == reachedByKeyboard)
        drawFocus(painter);
}
