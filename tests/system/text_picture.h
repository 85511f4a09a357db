#pragma once

#include <QImage>
#include <QPoint>

/// The shape of a text: how much of each pixel its ink covers, whatever the colours of ink and paper.
class TextPicture {
public:
    /// From a drawing of the text on plain paper.
    explicit TextPicture(const QImage &drawing);

    /// Where the text first stands by itself in a greyscale image; an empty rectangle when nowhere.
    [[nodiscard]] QRect findIn(const QImage &grey) const;

private:
    [[nodiscard]] bool matches(const QImage &grey, int left, int top) const;

    QImage grey_;
    QPoint darkest_;
};
