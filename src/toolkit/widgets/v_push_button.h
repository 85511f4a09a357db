#pragma once

#include <QPushButton>

/// A push button with a hand cursor and more space between icon and text. If it is flat, it draws the keyboard focus
/// itself, because some styles do not. GUI thread.
class VPushButton : public QPushButton {
    Q_OBJECT

public:
    explicit VPushButton(QWidget *parent = nullptr);
    explicit VPushButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// Returns the space between icon and text. Styles leave only 4 pixels, independent of the font size.
    QString gap() const;
    void drawFocus(QPainter &painter) const;
};
