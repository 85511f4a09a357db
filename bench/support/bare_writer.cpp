#include "support/bare_writer.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t pieceBytes = 1 << 18;
constexpr std::size_t maxRowBytes = 1024;

void require(bool ok, const char *what) {
    if (ok)
        return;
    std::perror(what);
    std::abort();
}

class OutputFile {
public:
    explicit OutputFile(const std::string &path)
        : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {
        require(descriptor_ >= 0, "open");
    }
    ~OutputFile() { ::close(descriptor_); }
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    void write(const char *bytes, std::size_t size) const {
        require(::write(descriptor_, bytes, size) == static_cast<ssize_t>(size), "write");
    }
    void sync() const { require(::fsync(descriptor_) == 0, "fsync"); }

private:
    const int descriptor_;
};

/// Writes the fields of a row to memory at `position`, which must have space for maxRowBytes.
class RowWriter {
public:
    explicit RowWriter(char *position) : position_(position) {}

    RowWriter &operator<<(qint64 value) {
        position_ = std::to_chars(position_, position_ + 32, value).ptr;
        *position_++ = ',';
        return *this;
    }
    RowWriter &operator<<(float value) {
        position_ = std::to_chars(position_, position_ + 32, static_cast<double>(value)).ptr;
        *position_++ = ',';
        return *this;
    }
    /// Replaces the last comma by the line end, and returns the position after it.
    char *end() {
        position_[-1] = '\r';
        *position_++ = '\n';
        return position_;
    }

private:
    char *position_;
};

char *putRow(char *position, const EyeTrackingSample &s, qint64 firstTimestamp) {
    RowWriter row(position);
    row << s.timestamp << s.timestamp - firstTimestamp << qint64{s.valid} << s.x << s.y << qint64{s.x_px}
        << qint64{s.y_px} << s.distance_cm;
    row << s.l_x << s.l_y << qint64{s.l_x_px} << qint64{s.l_y_px} << s.l_pupil_mm << qint64{s.l_pupil_x}
        << qint64{s.l_pupil_y};
    row << s.r_x << s.r_y << qint64{s.r_x_px} << qint64{s.r_y_px} << s.r_pupil_mm << qint64{s.r_pupil_x}
        << qint64{s.r_pupil_y};
    row << s.focus;
    return row.end();
}

}  // namespace

void bench::formatAndWrite(const std::string &path, const std::string &headerLine,
                           const std::vector<EyeTrackingSample> &samples) {
    const OutputFile file(path);
    file.write(headerLine.data(), headerLine.size());
    std::vector<char> buffer(pieceBytes + maxRowBytes);
    char *position = buffer.data();
    for (const EyeTrackingSample &sample : samples) {
        position = putRow(position, sample, samples.front().timestamp);
        if (position < buffer.data() + pieceBytes)
            continue;
        file.write(buffer.data(), static_cast<std::size_t>(position - buffer.data()));
        position = buffer.data();
    }
    file.write(buffer.data(), static_cast<std::size_t>(position - buffer.data()));
}

void bench::writeFormattedBytes(const std::string &path, const std::string &bytes) {
    const std::string temporary = path + ".tmp";
    {
        const OutputFile file(temporary);
        for (std::size_t begin = 0; begin < bytes.size(); begin += pieceBytes)
            file.write(bytes.data() + begin, std::min(pieceBytes, bytes.size() - begin));
        file.sync();
    }
    require(std::rename(temporary.c_str(), path.c_str()) == 0, "rename");
}
