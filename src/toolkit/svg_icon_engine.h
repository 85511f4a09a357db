#pragma once

#include <QByteArray>
#include <QIconEngine>

/// Draws an icon from an SVG drawing held in memory. Owned by the QIcon that it is given to. GUI thread.
class SvgIconEngine : public QIconEngine {
public:
    explicit SvgIconEngine(const QByteArray &svg);

    static bool canDraw(const QByteArray &svg);

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine *clone() const override;

private:
    QByteArray svg_;
};
