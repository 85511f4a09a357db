#include "system/text_picture.h"

#include <QRect>
#include <cmath>

namespace {

// Wide enough for the gap between two characters, so that "1.8" is not found within "51.8".
constexpr int sideMargin = 4;
constexpr int topMargin = 1;
constexpr int leastContrast = 60;
// Paper may be shaded; the ink of another character differs by far more.
constexpr double tolerance = 0.25;

int at(const QImage &grey, int x, int y) {
    return grey.constScanLine(y)[x];
}

QRect inkOf(const QImage &grey) {
    const int paper = at(grey, 0, 0);
    QRect ink;
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            if (std::abs(at(grey, x, y) - paper) > leastContrast / 4)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
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
    const QRect frame = inkOf(whole).adjusted(-sideMargin, -topMargin, sideMargin, topMargin);
    grey_ = QImage(frame.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const QPoint from = frame.topLeft() + QPoint(x, y);
            grey_.scanLine(y)[x] =
                static_cast<uchar>(whole.valid(from) ? at(whole, from.x(), from.y()) : at(whole, 0, 0));
        }
    }
    darkest_ = darkestOf(grey_);
}

QRect TextPicture::findIn(const QImage &grey) const {
    for (int top = 0; top <= grey.height() - grey_.height(); ++top) {
        for (int left = 0; left <= grey.width() - grey_.width(); ++left) {
            if (matches(grey, left, top))
                return {QPoint(left, top), grey_.size()};
        }
    }
    return {};
}

bool TextPicture::matches(const QImage &grey, int left, int top) const {
    const int paper = at(grey, left, top);
    const int contrast = paper - at(grey, left + darkest_.x(), top + darkest_.y());
    if (std::abs(contrast) < leastContrast)
        return false;
    const int ownPaper = at(grey_, 0, 0);
    const int ownContrast = ownPaper - at(grey_, darkest_.x(), darkest_.y());
    for (int y = 0; y < grey_.height(); ++y) {
        for (int x = 0; x < grey_.width(); ++x) {
            const double seen = static_cast<double>(paper - at(grey, left + x, top + y)) / contrast;
            const double drawn = static_cast<double>(ownPaper - at(grey_, x, y)) / ownContrast;
            if (std::abs(seen - drawn) > tolerance)
                return false;
        }
    }
    return true;
}
