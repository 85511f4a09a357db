#pragma once

#include <QMultiMap>
#include <QTemporaryFile>
#include <map>
#include <memory>
#include <string_view>

/// The fields and files of a form, by field name. Files are open and positioned at their start. A later file of the
/// same field replaces an earlier one, which is deleted.
struct MultipartForm {
    QMultiMap<QByteArray, QByteArray> parameters = {};  ///< the value of a field, or the name of a file
    std::map<QByteArray, std::unique_ptr<QTemporaryFile>> files = {};
};

/// Parses the body of a "multipart/form-data" request. A part without a boundary after it is ignored.
class MultipartParser {
public:
    enum class Result { complete, tooManyParts, fileError };

    /// The maximum number of fields and files in a form.
    static constexpr int maxPartCount = 10000;
    /// The maximum number of files in a form, and in all current requests together. Creating a file takes time, and a
    /// file uses a file descriptor until its request is answered.
    static constexpr int maxFileCount = 100;
    static constexpr int maxProcessFileCount = 200;

    /// `boundary` must not be empty.
    explicit MultipartParser(const QByteArray &boundary) : delimiter_("--" + boundary), end_(boundary + "--") {}

    /// Errors are logged. After an error, form() is incomplete.
    [[nodiscard]] Result parse(std::string_view body);
    [[nodiscard]] MultipartForm &form() { return form_; }

private:
    void store(const QByteArray &name, const QByteArray &fileName, std::string_view content);
    [[nodiscard]] bool hasRoomFor(const QByteArray &fileName);
    void storeField(const QByteArray &name, std::string_view value);
    void storeFile(const QByteArray &name, const QByteArray &fileName, std::string_view content);

    const QByteArray delimiter_;
    const QByteArray end_;
    MultipartForm form_;
    int partCount_ = 0;
    int fileCount_ = 0;  ///< including replaced files
    Result result_ = Result::complete;
};
