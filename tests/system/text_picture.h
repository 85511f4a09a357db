#pragma once

#include <QImage>
#include <QPoint>

/// The shape of a text, with a blank margin. Finds the text in a picture, in any two colours.
class TextPicture {
public:
    /// Takes the shape from a drawing of the text on a plain background.
    explicit TextPicture(const QImage &drawing);

    /// Returns the first place of the text and its margin in an 8-bit greyscale image. Empty if there is none.
    [[nodiscard]] QRect findIn(const QImage &grey) const;

private:
    [[nodiscard]] bool matches(const QImage &grey, int left, int top) const;

    QImage grey_;
    QPoint darkest_;
};
