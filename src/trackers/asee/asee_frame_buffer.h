#pragma once

#include <QImage>
#include <mutex>
#include <vector>

namespace asee {

/// A copy of the last camera image. Thread-safe: the vendor's library writes it while the view reads it.
class FrameBuffer {
public:
    static constexpr int maxImageBytes = 1310720;  ///< 1280 x 1024 pixels, 8-bit grey

    FrameBuffer() : pixels_(maxImageBytes) {}

    /// Copies an image of `size` bytes. If the image is too large, keeps the last image and returns false; the first
    /// such image is logged. After an image of invalid dimensions, image() returns a null image.
    bool store(const unsigned char *image, int size, int width, int height, long long stamp);

    /// Returns a copy of the last image (QImage::Format_Indexed8 with 256 shades of grey), or a null image before the
    /// first.
    [[nodiscard]] QImage image() const;

    /// Returns the time stamp of the last image, in the library's unit.
    [[nodiscard]] long long stamp() const;

private:
    mutable std::mutex mutex_;  // guards the members below
    std::vector<unsigned char> pixels_;
    int sizeBytes_ = 0;
    int width_ = 0;
    int height_ = 0;
    long long stamp_ = 0;
    bool hasWarned_ = false;
};

}  // namespace asee
