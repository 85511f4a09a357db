#include "toolkit/v_push_button.h"

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

void VPushButton::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.prepend(gap());
    painter.drawControl(QStyle::CE_PushButton, option);
}
