#include "toolkit/widgets/ui_helper.h"

#include <QApplication>
#include <QIconEngine>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QStyleOption>
#include <QSvgRenderer>
#include <memory>
#include <utility>

namespace {

class TintedSvgEngine : public QIconEngine {
public:
    TintedSvgEngine(std::shared_ptr<QSvgRenderer> drawing, const QColor &colour)
        : drawing_(std::move(drawing)), colour_(colour) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device()->devicePixelRatioF();
        QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        drawn.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect, drawn);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QPixmap drawn = tinted(size);
        if (mode == QIcon::Normal)
            return drawn;
        // The style greys out a disabled icon and highlights a selected one.
        QStyleOption option;
        option.palette = QApplication::palette();
        return QApplication::style()->generatedIconPixmap(mode, drawn, &option);
    }

    QIconEngine *clone() const override { return new TintedSvgEngine(*this); }

private:
    QPixmap tinted(const QSize &size) const {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        drawing_->render(&painter);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(drawn.rect(), colour_);
        return drawn;
    }

    std::shared_ptr<QSvgRenderer> drawing_;  // shared by clones
    QColor colour_;
};

}  // namespace

QLabel *UIHelper::GenerateLabelWithName(const QString &objectName, const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setObjectName(objectName);
    return label;
}

QIcon UIHelper::tintedSvgIcon(const QString &resource, const QColor &colour) {
    auto drawing = std::make_shared<QSvgRenderer>(resource);
    return drawing->isValid() ? QIcon(new TintedSvgEngine(std::move(drawing), colour)) : QIcon();
}
