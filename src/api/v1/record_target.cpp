#include "api/v1/record_target.h"

#include "api/access_policy.h"
#include "api/file_path_rules.h"
#include "core/record_saving.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

using namespace api_v1;

namespace {

/// File systems limit a name to 255 bytes or characters. The rest is for numbers and the names of further files.
constexpr int maxNameBytes = 200;

bool isWritable(const QString &folder) {
    // Permissions alone do not tell on Windows, or on a file system that is mounted read-only.
    QTemporaryFile file(folder + "/unfinished_XXXXXX");
    return file.open();
}

RecordTarget checked(const QString &path) {
    const QFileInfo file(path);
    const QString folder = QDir::toNativeSeparators(file.path());
    if (!QFileInfo(file.path()).isDir())
        return problem(422, "There is no folder " + folder + ". Create it, or choose another one.");
    if (file.isDir())
        return problem(422, "There is a folder of the name " + QDir::toNativeSeparators(path) + '.');
    if (!isWritable(file.path()))
        return problem(422, "Ocela cannot write to the folder " + folder + ". Choose another one.");
    return path;
}

}  // namespace

bool api_v1::isFileName(const QString &name) {
    static const QRegularExpression forbidden(R"([\x00-\x1f\x7f<>:"/\\|?*])");
    static const QRegularExpression device(R"(^(con|prn|aux|nul|com[0-9¹²³]|lpt[0-9¹²³]|conin\$|conout\$) *(\.|$))",
                                           QRegularExpression::CaseInsensitiveOption);
    return !name.isEmpty() && name.toUtf8().size() <= maxNameBytes && name == name.trimmed() && !name.endsWith('.') &&
           !forbidden.match(name).hasMatch() && !device.match(name).hasMatch();
}

RecordTarget api_v1::targetInFolder(const QString &folder, const QString &name) {
    const QString fileName = name.endsWith(".csv", Qt::CaseInsensitive) ? name : name + ".csv";
    return checked(folder + '/' + (name.isEmpty() ? record_saving::defaultFileName() : fileName));
}

RecordTarget api_v1::targetAt(const QString &path, const AccessPolicy &access) {
    const bool namesFile = !path.contains(QChar(0)) && QDir::isAbsolutePath(path) && !path.endsWith('/');
    if (!namesFile || !file_path_rules::namesLocalFile(path))
        return problem(422, "\"path\" must be the absolute path of a file on this computer.");
    if (!access.mayRecordTo(path))
        return problem(422,
                       "The settings allow recordings only in the records folder. Use \"name\" instead of \"path\".");
    return checked(QDir::cleanPath(path));
}
