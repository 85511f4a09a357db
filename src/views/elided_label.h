#pragma once

#include <QLabel>

/// A line of plain text. If there is not enough room, the middle of the text is replaced with an ellipsis, and the tool
/// tip shows the whole text. GUI thread.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QString shownText() const;
};
