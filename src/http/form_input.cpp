#include "http/form_input.h"

#include <algorithm>
#include <cstring>

FormInput::FormInput(QIODevice &device)
    : device_(device), size_(device.size()), buffer_(static_cast<int>(bufferBytes), Qt::Uninitialized) {
    refill();
}

std::string_view FormInput::takeLine() {
    if (end_ - begin_ < maxLineBytes)
        refill();
    const std::string_view available(buffer_.constData() + begin_, std::min(end_ - begin_, maxLineBytes));
    const std::size_t lineFeed = available.find('\n');
    const std::string_view line = lineFeed == std::string_view::npos ? available : available.substr(0, lineFeed + 1);
    begin_ += line.size();
    return line;
}

/// Moves the remaining bytes to the start of the buffer, and fills the rest.
void FormInput::refill() {
    const std::size_t left = end_ - begin_;
    const qint64 wanted = std::min(static_cast<qint64>(bufferBytes - left), size_ - devicePosition_);
    if (failed_ || wanted <= 0)
        return;
    std::memmove(buffer_.data(), buffer_.constData() + begin_, left);
    begin_ = 0;
    end_ = left;
    failed_ = !readAt(devicePosition_, buffer_.data() + left, wanted);
    if (failed_)
        return;
    end_ += static_cast<std::size_t>(wanted);
    devicePosition_ += wanted;
}

bool FormInput::readAt(qint64 position, char *to, qint64 size) const {
    return device_.seek(position) && device_.read(to, size) == size;
}
