#pragma once

#include <QImage>
#include <mutex>
#include <vector>

/// The camera's last image. Any thread may call anything: the vendor's library fills it while the view reads it.
class FrameBuffer {
public:
    /// The most that an image may have: 1280 x 1024 pixels of a byte.
    static constexpr int bytes = 1310720;

    FrameBuffer() : pixels_(bytes) {}

    /// Copies an image. One that does not fit is dropped, which gives false and, the first time, a warning. An image
    /// whose size makes no sense replaces the last one by none.
    bool store(const unsigned char *image, int size, int width, int height, long long stamp);

    /// A copy in shades of grey (QImage::Format_Indexed8); null before the first image.
    [[nodiscard]] QImage image() const;

    /// The time stamp of the last image, in the library's own units.
    [[nodiscard]] long long stamp() const;

private:
    mutable std::mutex mutex_;  // guards all below
    std::vector<unsigned char> pixels_;
    int size_ = 0;  // bytes of the image
    int width_ = 0;
    int height_ = 0;
    long long stamp_ = 0;
    bool hasWarned_ = false;
};
