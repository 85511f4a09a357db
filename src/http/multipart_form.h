#pragma once

#include <QMultiMap>
#include <QTemporaryFile>
#include <map>
#include <memory>
#include <string_view>

/// Form fields and files by their field name. Files are open at their start; a later one of a name replaces an earlier
/// one, whose file on disk ends there.
struct MultipartForm {
    QMultiMap<QByteArray, QByteArray> parameters = {};  ///< the value of a field; for a file, its name
    std::map<QByteArray, std::unique_ptr<QTemporaryFile>> files = {};
};

/// Reads the body of a "multipart/form-data" request. A part counts once the boundary after it is found.
class MultipartParser {
public:
    enum class Result { complete, tooManyParts, fileError };

    /// Fields and files of a form.
    static constexpr int maxParts = 10000;
    /// Each file takes its time to create, and holds a descriptor of the process until its request has been answered:
    /// the second limit is for all requests together.
    static constexpr int maxFiles = 100;
    static constexpr int maxFilesOfProcess = 200;

    /// `boundary` is not empty.
    explicit MultipartParser(const QByteArray &boundary) : delimiter_("--" + boundary), end_(boundary + "--") {}

    /// The form is complete only if the result says so. Failures are in the log.
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
    int fileCount_ = 0;  ///< those that were replaced included
    Result result_ = Result::complete;
};
