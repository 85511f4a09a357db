#include "toolkit/base/buffered_writer.h"

#include "toolkit/base/file_utilities.h"

BufferedWriter::BufferedWriter(QFileDevice &file) : file_(file) {
    text_.reserve(2 * pieceBytes);
}

bool BufferedWriter::append(std::string_view text) {
    text_ += text;
    return text_.size() < pieceBytes || flush();
}

bool BufferedWriter::flush() {
    const bool written = FileUtilities::writeAll(file_, text_.data(), static_cast<qint64>(text_.size()));
    text_.clear();
    return written;
}
