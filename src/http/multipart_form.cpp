#include "http/multipart_form.h"

#include "http/byte_text.h"
#include "http/http_input.h"
#include "http/http_log.h"

#include <algorithm>
#include <atomic>

using namespace byte_text;

namespace {

constexpr std::size_t maxLineBytes = 65536;
constexpr std::size_t lineBreakBytes = 2;

/// Returns the quoted string that follows `prefix` (which includes the opening quote), or an empty view.
std::string_view quoted(std::string_view line, std::string_view prefix) {
    const std::size_t found = line.find(prefix);
    if (found == std::string_view::npos)
        return {};
    const std::string_view rest = line.substr(found + prefix.size());
    const std::size_t end = rest.find('"');
    return end == std::string_view::npos ? std::string_view() : rest.substr(0, end);
}

struct PartHeaders {
    QByteArray fieldName = {};
    QByteArray fileName = {};

    void readDisposition(std::string_view line) {
        if (!contains(line, "form-data")) {
            qCDebug(lcHttp, "HttpRequest: ignoring unsupported content part %s", copy(line).constData());
            return;
        }
        if (const auto name = quoted(line, " name=\""); !name.empty())
            fieldName = copy(name);
        if (const auto name = quoted(line, " filename=\""); !name.empty())
            fileName = copy(name);
    }
};

PartHeaders takePartHeaders(HttpInput &input) {
    PartHeaders headers;
    while (!input.isEmpty()) {
        const std::string_view line = trimmed(input.takeLine(maxLineBytes));
        if (line.empty())
            break;
        if (startsWith(line, "Content-Disposition:"))
            headers.readDisposition(line);
    }
    return headers;
}

struct PartBody {
    std::string_view content;   ///< including the line break before the boundary
    std::string_view boundary;  ///< the boundary line; empty if there is none
};

PartBody takePartBody(HttpInput &input, std::string_view delimiter) {
    std::string_view content;
    while (!input.isEmpty()) {
        const std::string_view line = input.takeLine(maxLineBytes);
        if (startsWith(line, delimiter))
            return {content, line};
        content = {content.empty() ? line.data() : content.data(), content.size() + line.size()};
    }
    return {};
}

std::atomic<int> processFileCount{0};

class UploadedFile : public QTemporaryFile {
public:
    UploadedFile() { ++processFileCount; }
    ~UploadedFile() override { --processFileCount; }
};

std::unique_ptr<QTemporaryFile> writeFile(std::string_view content) {
    auto file = std::make_unique<UploadedFile>();
    const auto size = static_cast<qint64>(content.size());
    if (file->open() && file->write(content.data(), size) == size && file->flush() && file->seek(0))
        return file;
    qCCritical(lcHttp, "HttpRequest: error writing temp file, %s", qUtf8Printable(file->errorString()));
    return nullptr;
}

void logParameter(const QByteArray &name, const QByteArray &value) {
    qCDebug(lcHttp, "HttpRequest: set parameter %s=%s", name.constData(), value.constData());
}

}  // namespace

MultipartParser::Result MultipartParser::parse(std::string_view body) {
    HttpInput input(body);
    bool finished = false;
    while (!input.isEmpty() && !finished && result_ == Result::complete) {
        const PartHeaders headers = takePartHeaders(input);
        const PartBody part = takePartBody(input, view(delimiter_));
        if (!headers.fieldName.isEmpty() && !part.boundary.empty())
            store(headers.fieldName, headers.fileName, part.content);
        finished = contains(part.boundary, view(end_));
    }
    return result_;
}

void MultipartParser::store(const QByteArray &name, const QByteArray &fileName, std::string_view content) {
    const std::string_view value = content.substr(0, content.size() - std::min(content.size(), lineBreakBytes));
    if (!hasRoomFor(fileName))
        result_ = Result::tooManyParts;
    else if (fileName.isEmpty())
        storeField(name, value);
    else if (content.empty())
        qCWarning(lcHttp, "HttpRequest: format error, unexpected end of file data");
    else
        storeFile(name, fileName, value);
}

bool MultipartParser::hasRoomFor(const QByteArray &fileName) {
    ++partCount_;
    if (!fileName.isEmpty())
        ++fileCount_;
    const bool room = partCount_ <= maxPartCount && fileCount_ <= maxFileCount &&
                      (fileName.isEmpty() || processFileCount < maxProcessFileCount);
    if (!room)
        qCWarning(lcHttp, "HttpRequest: received too many fields or files");
    return room;
}

void MultipartParser::storeField(const QByteArray &name, std::string_view value) {
    form_.parameters.insert(name, copy(value));
    logParameter(name, form_.parameters.value(name));
}

void MultipartParser::storeFile(const QByteArray &name, const QByteArray &fileName, std::string_view content) {
    auto file = writeFile(content);
    if (!file) {
        result_ = Result::fileError;
        return;
    }
    form_.parameters.insert(name, fileName);
    logParameter(name, fileName);
    qCDebug(lcHttp, "HttpRequest: uploaded file size is %li", static_cast<long>(file->size()));
    form_.files[name] = std::move(file);
}
