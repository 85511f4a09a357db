#include "views/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

ElidedLabel::ElidedLabel(Qt::TextElideMode cutOff, QWidget *parent) : QLabel(parent), cutOff_(cutOff) {
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
    constexpr QChar ellipsis(0x2026);
    return {fontMetrics().horizontalAdvance(ellipsis), QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || shownText() == text())
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), Qt::convertFromPlainText(text()), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                          shownText(), foregroundRole());
}

QString ElidedLabel::shownText() const {
    return fontMetrics().elidedText(text(), cutOff_, contentsRect().width());
}
