#include "http/multipart_form.h"

#include "http/byte_text.h"
#include "http/form_input.h"
#include "http/http_log.h"
#include "http/memory_budget.h"

#include <algorithm>
#include <atomic>

using namespace byte_text;

namespace {

constexpr qint64 lineBreakBytes = 2;
/// The memory of a map entry in addition to its text.
constexpr qint64 entryBytes = 128;

/// Returns the quoted string that follows `prefix` (which includes the opening quote), or an empty view.
std::string_view quoted(std::string_view line, std::string_view prefix) {
    const std::size_t found = line.find(prefix);
    if (found == std::string_view::npos)
        return {};
    const std::string_view rest = line.substr(found + prefix.size());
    const std::size_t end = rest.find('"');
    return end == std::string_view::npos ? std::string_view() : rest.substr(0, end);
}

}  // namespace

/// The headers of a part, and the position of its content in the body.
struct MultipartParser::Part {
    QByteArray fieldName = {};
    QByteArray fileName = {};
    qint64 begin = 0;
    qint64 end = 0;  ///< includes the line break before the boundary

    [[nodiscard]] bool isFile() const { return !fileName.isEmpty(); }
    [[nodiscard]] qint64 contentBytes() const { return std::max<qint64>(0, end - begin - lineBreakBytes); }

    void readHeaders(FormInput &input) {
        while (!input.isEmpty()) {
            const std::string_view line = trimmed(input.takeLine());
            if (line.empty())
                break;
            if (startsWith(line, "Content-Disposition:"))
                readDisposition(line);
        }
        begin = end = input.position();
    }

    /// Finds the end of the content. Returns the boundary line, or an empty view if there is none.
    [[nodiscard]] std::string_view findEnd(FormInput &input, std::string_view delimiter) {
        while (!input.isEmpty()) {
            const std::string_view line = input.takeLine();
            if (startsWith(line, delimiter))
                return line;
            end = input.position();
        }
        return {};
    }

private:
    void readDisposition(std::string_view line) {
        if (!contains(line, "form-data")) {
            qCDebug(lcHttp, "HttpRequest: ignoring unsupported content part %s", shortened(line).constData());
            return;
        }
        if (const auto name = quoted(line, " name=\""); !name.empty())
            fieldName = copy(name);
        if (const auto name = quoted(line, " filename=\""); !name.empty())
            fileName = copy(name);
    }
};

namespace {

std::atomic<int> processFileCount{0};

class UploadedFile : public QTemporaryFile {
public:
    UploadedFile() { ++processFileCount; }
    ~UploadedFile() override { --processFileCount; }
};

/// Copies bytes of the form to the end of a file.
bool copyTo(QTemporaryFile &file, const FormInput &input, qint64 begin, qint64 size) {
    QByteArray block(static_cast<int>(std::min(size, static_cast<qint64>(FormInput::maxLineBytes))), Qt::Uninitialized);
    for (qint64 done = 0; done < size; done += block.size()) {
        block.truncate(static_cast<int>(std::min<qint64>(size - done, block.size())));
        if (!input.readAt(begin + done, block.data(), block.size()) || file.write(block) != block.size())
            return false;
    }
    return true;
}

void logParameter(const QByteArray &name, const QByteArray &value) {
    qCDebug(lcHttp, "HttpRequest: set parameter %s=%s", shortened(view(name)).constData(),
            shortened(view(value)).constData());
}

}  // namespace

MultipartParser::Result MultipartParser::parse(QIODevice &body) {
    if (!memory_.grow(FormInput::bufferBytes))
        return Result::noMemory;
    FormInput input(body);
    bool finished = false;
    while (!input.isEmpty() && !finished && result_ == Result::complete) {
        Part part;
        part.readHeaders(input);
        const std::string_view boundary = part.findEnd(input, view(delimiter_));
        finished = contains(boundary, view(end_));
        if (!part.fieldName.isEmpty() && !boundary.empty())
            store(input, part);
    }
    if (input.hasFailed())
        failToRead(input);
    memory_.shrink(FormInput::bufferBytes);
    return result_;
}

void MultipartParser::failToRead(const FormInput &input) {
    qCCritical(lcHttp, "HttpRequest: cannot read temp file, %s", qUtf8Printable(input.errorString()));
    result_ = Result::fileError;
}

void MultipartParser::store(FormInput &input, const Part &part) {
    if (!hasRoomFor(part))
        result_ = Result::tooManyParts;
    else if (!part.isFile())
        storeField(input, part);
    else if (part.begin == part.end)
        qCWarning(lcHttp, "HttpRequest: format error, unexpected end of file data");
    else
        storeFile(input, part);
}

bool MultipartParser::hasRoomFor(const Part &part) {
    ++partCount_;
    if (part.isFile())
        ++fileCount_;
    const bool room = partCount_ <= maxPartCount && fileCount_ <= maxFileCount &&
                      (!part.isFile() || processFileCount < maxProcessFileCount);
    if (!room)
        qCWarning(lcHttp, "HttpRequest: received too many fields or files");
    return room;
}

void MultipartParser::storeField(FormInput &input, const Part &part) {
    if (!memory_.grow(part.fieldName.size() + part.contentBytes() + entryBytes)) {
        result_ = Result::noMemory;
        return;
    }
    QByteArray value(static_cast<int>(part.contentBytes()), Qt::Uninitialized);
    if (!input.readAt(part.begin, value.data(), value.size()))
        return failToRead(input);
    form_.parameters.insert(part.fieldName, value);
    logParameter(part.fieldName, value);
}

void MultipartParser::storeFile(FormInput &input, const Part &part) {
    if (!memory_.grow(part.fieldName.size() + part.fileName.size() + 2 * entryBytes)) {
        result_ = Result::noMemory;
        return;
    }
    std::unique_ptr<QTemporaryFile> file = std::make_unique<UploadedFile>();
    if (!file->open() || !copyTo(*file, input, part.begin, part.contentBytes()) || !file->flush() || !file->seek(0)) {
        qCCritical(lcHttp, "HttpRequest: error writing temp file, %s", qUtf8Printable(file->errorString()));
        result_ = Result::fileError;
        return;
    }
    form_.parameters.insert(part.fieldName, part.fileName);
    logParameter(part.fieldName, part.fileName);
    qCDebug(lcHttp, "HttpRequest: uploaded file size is %li", static_cast<long>(file->size()));
    form_.files[part.fieldName] = std::move(file);
}
