#pragma once

#include <QPushButton>

/// The program's push button: a hand cursor, room between icon and text, and a keyboard focus that is visible
/// on a flat button too, where not every style draws one. Else a QPushButton.
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
    /// Put before the text beside an icon: styles leave 4 pixels there, whatever the size of the font.
    QString gap() const;
    void drawFocus(QPainter &painter) const;
};
