#pragma once

#include <QMultiMap>
#include <QTemporaryFile>
#include <map>
#include <memory>

class FormInput;
class MemoryShare;

/// The fields and files of a form, by field name. Files are open and positioned at their start. A later file of the
/// same field replaces an earlier one, which is deleted.
struct MultipartForm {
    QMultiMap<QByteArray, QByteArray> parameters = {};  ///< the value of a field, or the name of a file
    std::map<QByteArray, std::unique_ptr<QTemporaryFile>> files = {};
};

/// Parses the body of a "multipart/form-data" request. A part without a boundary after it is ignored. The body is read
/// through a small buffer, so that the only copy of a field in memory is its value.
class MultipartParser {
public:
    enum class Result { complete, tooManyParts, fileError, noMemory };

    /// The maximum number of fields and files in a form.
    static constexpr int maxPartCount = 10000;
    /// The maximum number of files in a form, and in all current requests together. Creating a file takes time, and a
    /// file uses a file descriptor until its request is answered.
    static constexpr int maxFileCount = 100;
    static constexpr int maxProcessFileCount = 200;

    /// `boundary` must not be empty. The memory of the fields is taken from `memory`.
    MultipartParser(const QByteArray &boundary, MemoryShare &memory)
        : delimiter_("--" + boundary), end_(boundary + "--"), memory_(memory) {}

    /// `body` must be open for reading, and not sequential. Errors are logged, except a lack of memory. After an error,
    /// form() is incomplete.
    [[nodiscard]] Result parse(QIODevice &body);
    [[nodiscard]] MultipartForm &form() { return form_; }

private:
    struct Part;

    void store(FormInput &input, const Part &part);
    [[nodiscard]] bool hasRoomFor(const Part &part);
    void storeField(FormInput &input, const Part &part);
    void storeFile(FormInput &input, const Part &part);
    void failToRead(const FormInput &input);

    const QByteArray delimiter_;
    const QByteArray end_;
    MemoryShare &memory_;
    MultipartForm form_;
    int partCount_ = 0;
    int fileCount_ = 0;  ///< including replaced files
    Result result_ = Result::complete;
};
