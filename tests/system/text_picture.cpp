#include "system/text_picture.h"

#include <QRect>
#include <cmath>

namespace {

// Wider than the gap between two characters, so that "1.8" is not found in "51.8".
constexpr int sideMargin = 4;
constexpr int topMargin = 1;
/// Between text and background, in grey levels.
constexpr int minContrast = 60;
/// The part of the contrast by which a pixel may differ. It allows for a shaded background; another character differs
/// by far more.
constexpr double tolerance = 0.25;

int at(const QImage &grey, int x, int y) {
    return grey.constScanLine(y)[x];
}

/// Returns the smallest rectangle that holds all pixels of the text.
QRect boundsOf(const QImage &grey) {
    const int background = at(grey, 0, 0);
    QRect bounds;
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            if (std::abs(at(grey, x, y) - background) > minContrast / 4)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QPoint darkestOf(const QImage &grey) {
    QPoint darkest;
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            if (at(grey, x, y) < at(grey, darkest.x(), darkest.y()))
                darkest = {x, y};
        }
    }
    return darkest;
}

}  // namespace

TextPicture::TextPicture(const QImage &drawing) {
    const QImage whole = drawing.convertToFormat(QImage::Format_Grayscale8);
    grey_ = whole.copy(boundsOf(whole).adjusted(-sideMargin, -topMargin, sideMargin, topMargin));
    darkest_ = darkestOf(grey_);
}

QRect TextPicture::findIn(const QImage &grey) const {
    for (int top = 0; top <= grey.height() - grey_.height(); ++top) {
        const uchar *background = grey.constScanLine(top);
        const uchar *text = grey.constScanLine(top + darkest_.y()) + darkest_.x();
        for (int left = 0; left <= grey.width() - grey_.width(); ++left) {
            // Nearly all positions have no contrast.
            if (std::abs(background[left] - text[left]) >= minContrast && matches(grey, left, top))
                return {QPoint(left, top), grey_.size()};
        }
    }
    return {};
}

bool TextPicture::matches(const QImage &grey, int left, int top) const {
    const int background = at(grey, left, top);
    const int contrast = background - at(grey, left + darkest_.x(), top + darkest_.y());
    const int drawnBackground = at(grey_, 0, 0);
    const int drawnContrast = drawnBackground - at(grey_, darkest_.x(), darkest_.y());
    for (int y = 0; y < grey_.height(); ++y) {
        const uchar *seenLine = grey.constScanLine(top + y) + left;
        const uchar *drawnLine = grey_.constScanLine(y);
        for (int x = 0; x < grey_.width(); ++x) {
            const double seen = static_cast<double>(background - seenLine[x]) / contrast;
            const double drawn = static_cast<double>(drawnBackground - drawnLine[x]) / drawnContrast;
            if (std::abs(seen - drawn) > tolerance)
                return false;
        }
    }
    return true;
}
