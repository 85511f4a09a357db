#include "core/journal_rows.h"

#include "core/eye_tracking_csv.h"

#include <algorithm>
#include <array>

namespace {

constexpr int readSizeBytes = 1 << 20;

/// More than any row: 23 cells of at most 32 bytes.
constexpr int maxLineBytes = 1024;

enum class CharacterClass : quint8 { Invalid, Number, Separator };

constexpr std::array<CharacterClass, 256> classify() {
    std::array<CharacterClass, 256> classes{};
    // Also "inf" and "nan".
    for (const char character : std::string_view("0123456789+-.einfa"))
        classes[static_cast<unsigned char>(character)] = CharacterClass::Number;
    classes[','] = CharacterClass::Separator;
    return classes;
}

constexpr std::array<CharacterClass, 256> classes = classify();

}  // namespace

JournalRows::JournalRows(const QString &path, QByteArray header)
    : file_(path), header_(std::move(header)), separatorCount_(header_.count(',')) {
    // A failure is reported by read().
    (void)file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

QByteArray JournalRows::recordHeader() {
    return QByteArray::fromStdString(EyeTrackingCSV(QString(), false).headerLine());
}

std::optional<std::string_view> JournalRows::nextRow() {
    while (rest_.empty()) {
        const bool isStart = lineCount_ == 0;
        if (read() != Result::Lines)
            return std::nullopt;
        rest_ = lines_;
        if (isStart)
            rest_.remove_prefix(static_cast<std::size_t>(header_.size()));
    }
    const std::string_view row = rest_.substr(0, rest_.find('\n') + 1);
    rest_.remove_prefix(row.size());
    return row;
}

std::optional<quint64> JournalRows::rowCountOfContinuation(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Result result = read();
    for (; result == Result::Lines; result = read()) {
        const auto size = static_cast<int>(lines_.size());
        if (file.read(size) != QByteArray::fromRawData(lines_.data(), size))
            return std::nullopt;
    }
    quint64 count = rowCount();
    for (; !file.atEnd(); ++count)
        file.readLine();
    return result == Result::End ? std::optional(count) : std::nullopt;
}

JournalRows::Result JournalRows::read() {
    buffer_.remove(0, static_cast<int>(lines_.size()));
    lines_ = {};
    for (;;) {
        const int before = buffer_.size();
        buffer_.resize(before + readSizeBytes);
        const qint64 readBytes = file_.read(buffer_.data() + before, readSizeBytes);
        buffer_.resize(before + static_cast<int>(std::max(readBytes, qint64(0))));
        if (readBytes < 0)
            return Result::ReadFailed;
        if (!takeLines())
            return Result::Damaged;
        if (!lines_.empty())
            return Result::Lines;
        if (readBytes == 0)
            return Result::End;
    }
}

bool JournalRows::takeLines() {
    const std::string_view text(buffer_.constData(), static_cast<std::size_t>(buffer_.size()));
    std::size_t begin = 0;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', begin)) {
        if (!isValidLine(text.substr(begin, end + 1 - begin)))
            return false;
        begin = end + 1;
        ++lineCount_;
    }
    // One zero is kept, so that a line which continues after zeros is invalid.
    int size = buffer_.size();
    while (size > static_cast<int>(begin) + 1 && buffer_[size - 1] == '\0' && buffer_[size - 2] == '\0')
        --size;
    buffer_.truncate(size);
    lines_ = std::string_view(buffer_.constData(), begin);
    return buffer_.size() - static_cast<int>(begin) <= maxLineBytes;
}

bool JournalRows::isValidLine(std::string_view line) const {
    if (lineCount_ == 0)
        return line == std::string_view(header_.constData(), static_cast<std::size_t>(header_.size()));
    if (line.size() < 2 || line[line.size() - 2] != '\r')
        return false;
    int separators = 0;
    for (const char character : line.substr(0, line.size() - 2)) {
        const CharacterClass type = classes[static_cast<unsigned char>(character)];
        if (type == CharacterClass::Invalid)
            return false;
        separators += type == CharacterClass::Separator;
    }
    return separators == separatorCount_;
}
