#include "trackers/asee/asee_frame_buffer.h"

#include "trackers/asee/asee_log.h"

#include <QVector>
#include <algorithm>
#include <cstring>
#include <utility>

namespace {

const QVector<QRgb> &shadesOfGrey() {
    static const QVector<QRgb> shades = [] {
        QVector<QRgb> table;
        for (int shade = 0; shade < 256; ++shade)
            table.append(qRgb(shade, shade, shade));
        return table;
    }();
    return shades;
}

}  // namespace

bool asee::FrameBuffer::store(const unsigned char *image, int size, int width, int height, long long stamp) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (size > maxImageBytes) {
        if (!std::exchange(hasWarned_, true))
            qCWarning(lcAsee, "Camera images of %d bytes are not shown: the maximum is %d bytes", size, maxImageBytes);
        return false;
    }
    sizeBytes_ = image ? std::max(size, 0) : 0;
    if (sizeBytes_ > 0)
        std::memcpy(pixels_.data(), image, static_cast<std::size_t>(sizeBytes_));
    width_ = width;
    height_ = height;
    stamp_ = stamp;
    return true;
}

QImage asee::FrameBuffer::image() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (width_ <= 0 || height_ <= 0 || static_cast<long long>(width_) * height_ > sizeBytes_)
        return {};
    QImage copy = QImage(pixels_.data(), width_, height_, width_, QImage::Format_Indexed8).copy();
    copy.setColorTable(shadesOfGrey());
    return copy;
}

long long asee::FrameBuffer::stamp() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return stamp_;
}
