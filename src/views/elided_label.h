#pragma once

#include <QLabel>

/// A line of plain text. If there is not enough room, a part of the text is replaced with an ellipsis, and the tool tip
/// shows the whole text. GUI thread.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    /// `cutOff` is the part that is replaced: the middle keeps the name of a file in a long path.
    explicit ElidedLabel(Qt::TextElideMode cutOff, QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QString shownText() const;

    const Qt::TextElideMode cutOff_;
};
