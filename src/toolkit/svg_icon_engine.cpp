#include "toolkit/svg_icon_engine.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QStyleOption>
#include <QSvgRenderer>

SvgIconEngine::SvgIconEngine(const QByteArray &svg) : svg_(svg) {}

bool SvgIconEngine::canDraw(const QByteArray &svg) {
    return QSvgRenderer(svg).isValid();
}

void SvgIconEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) {
    const qreal ratio = painter->device()->devicePixelRatioF();
    QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
    drawn.setDevicePixelRatio(ratio);
    painter->drawPixmap(rect, drawn);
}

QPixmap SvgIconEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) {
    QPixmap drawn(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    QSvgRenderer(svg_).render(&painter);
    painter.end();
    if (mode == QIcon::Normal)
        return drawn;
    // Greyed out, or tinted as selected, as the style does it with every other icon.
    QStyleOption option;
    option.palette = QApplication::palette();
    return QApplication::style()->generatedIconPixmap(mode, drawn, &option);
}

QIconEngine *SvgIconEngine::clone() const {
    return new SvgIconEngine(*this);
}
