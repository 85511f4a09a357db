#include "http/chunked_body.h"

#include "http/byte_text.h"

#include <algorithm>
#include <charconv>

using namespace byte_text;

namespace {

constexpr std::string_view lineEnd = "\r\n";

}  // namespace

std::string_view ChunkedBody::take(HttpInput &input, std::size_t maxInputBytes) {
    if (state_ == State::dataEnd) {
        takeDataEnd(input);
        return {};
    }
    if (state_ != State::data) {
        takeLine(input, maxInputBytes);
        return {};
    }
    const std::string_view block = input.take(std::min(static_cast<std::size_t>(chunkBytesLeft_), maxInputBytes));
    chunkBytesLeft_ -= static_cast<qint64>(block.size());
    if (chunkBytesLeft_ == 0)
        state_ = State::dataEnd;
    return block;
}

void ChunkedBody::takeLine(HttpInput &input, std::size_t maxInputBytes) {
    const auto room = static_cast<std::size_t>(maxLineBytes - line_.size());
    const std::string_view piece = input.takeLine(std::min(room, maxInputBytes));
    line_.append(piece.data(), static_cast<int>(piece.size()));
    if (!line_.endsWith("\r\n")) {
        if (line_.size() >= maxLineBytes)
            state_ = State::invalid;
        return;
    }
    const std::string_view line = view(line_).substr(0, view(line_).size() - lineEnd.size());
    if (hasLineBreakOrNul(line))
        state_ = State::invalid;
    else if (state_ == State::size)
        readSize(line);
    else if (line.empty())
        state_ = State::complete;
    line_.clear();
}

// The size is hexadecimal, without a prefix or a sign. White space or an extension may follow.
void ChunkedBody::readSize(std::string_view line) {
    quint64 size = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), size, 16);
    const std::string_view rest = trimmed(line.substr(static_cast<std::size_t>(end - line.data())));
    if (error == std::errc::invalid_argument || (!rest.empty() && rest.front() != ';')) {
        state_ = State::invalid;
    } else if (error != std::errc() || size > static_cast<quint64>(maxBytes_ - decodedBytes_)) {
        state_ = State::tooLarge;
    } else {
        chunkBytesLeft_ = static_cast<qint64>(size);
        decodedBytes_ += chunkBytesLeft_;
        state_ = size > 0 ? State::data : State::trailers;
    }
}

// Byte by byte, so that nothing after an invalid byte is consumed.
void ChunkedBody::takeDataEnd(HttpInput &input) {
    const std::string_view byte = input.take(1);
    line_.append(byte.data(), static_cast<int>(byte.size()));
    if (!startsWith(lineEnd, view(line_))) {
        state_ = State::invalid;
    } else if (view(line_) == lineEnd) {
        state_ = State::size;
        line_.clear();
    }
}
