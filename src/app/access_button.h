#pragma once

#include <QToolButton>

/// The button of the status bar that shows who can reach the program over the network. If there is not enough room, the
/// end of its text is replaced with an ellipsis, and the tool tip shows the whole text. GUI thread.
class AccessButton : public QToolButton {
    Q_OBJECT

public:
    enum class Reach { Nobody, ThisComputer, OtherComputers };

    explicit AccessButton(QWidget *parent = nullptr);

    /// Hides the button for `Nobody`, which is the initial value.
    void setReach(Reach reach);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void retranslate();

    Reach reach_ = Reach::Nobody;
};
