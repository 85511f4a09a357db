#pragma once

#include <QHostAddress>
#include <string_view>

/// A view of the received bytes that no request has consumed yet. The caller owns the memory.
class HttpInput {
public:
    HttpInput() = default;
    explicit HttpInput(std::string_view bytes, const QHostAddress &peerAddress = QHostAddress())
        : bytes_(bytes), peerAddress_(peerAddress) {}

    [[nodiscard]] bool isEmpty() const { return bytes_.empty(); }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] const QHostAddress &peerAddress() const { return peerAddress_; }

    /// Consumes up to `limit` bytes.
    std::string_view take(std::size_t limit) {
        const std::string_view taken = bytes_.substr(0, limit);
        bytes_.remove_prefix(taken.size());
        return taken;
    }

    /// Consumes bytes up to and including the next line feed, but no more than `limit`.
    std::string_view takeLine(std::size_t limit) {
        const std::size_t lineFeed = bytes_.substr(0, limit).find('\n');
        return take(lineFeed == std::string_view::npos ? limit : lineFeed + 1);
    }

private:
    std::string_view bytes_;
    QHostAddress peerAddress_;
};
