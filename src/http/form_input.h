#pragma once

#include <QByteArray>
#include <QIODevice>
#include <string_view>

/// Reads the lines of a form from a file through a buffer of constant size, and reads the contents of parts again by
/// their positions.
class FormInput {
public:
    static constexpr std::size_t maxLineBytes = 65536;
    static constexpr std::size_t bufferBytes = 2 * maxLineBytes;

    /// `device` must outlive this object. Its position is changed.
    explicit FormInput(QIODevice &device);

    [[nodiscard]] bool isEmpty() const { return failed_ || position() >= size_; }
    /// Returns the next line including its line feed, but no more than maxLineBytes. Valid until the next call.
    [[nodiscard]] std::string_view takeLine();
    /// Returns the position of the next line in the device.
    [[nodiscard]] qint64 position() const { return devicePosition_ - static_cast<qint64>(end_ - begin_); }

    /// Reads from any position, independently of takeLine(). Returns false on failure.
    [[nodiscard]] bool readAt(qint64 position, char *to, qint64 size) const;
    /// Returns whether the device could not be read. The lines then end early.
    [[nodiscard]] bool hasFailed() const { return failed_; }
    [[nodiscard]] QString errorString() const { return device_.errorString(); }

private:
    void refill();

    QIODevice &device_;
    const qint64 size_;
    QByteArray buffer_;
    std::size_t begin_ = 0;      ///< of the bytes that are not taken yet, in the buffer
    std::size_t end_ = 0;        ///< of these bytes
    qint64 devicePosition_ = 0;  ///< of the end of these bytes
    bool failed_ = false;
};
