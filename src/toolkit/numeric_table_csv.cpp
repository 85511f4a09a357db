#include "toolkit/numeric_table_csv.h"

#include "toolkit/csv_text.h"
#include "toolkit/whole_file.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>
#include <optional>

namespace {

Q_LOGGING_CATEGORY(lcCsv, "ocela.csv")

constexpr char separator = ',';
constexpr char lineEnd[] = "\r\n";
constexpr std::size_t writeSize = 1 << 18;

bool refuse(const char *what, const QString &path, const QString &reason) {
    qCWarning(lcCsv, "Cannot %s %s: %s", what, qUtf8Printable(path), qUtf8Printable(reason));
    return false;
}

bool flush(std::string &text, QSaveFile &file) {
    const bool written = whole_file::write(file, text.data(), static_cast<qint64>(text.size()));
    text.clear();
    return written;
}

bool writeTable(const QStringList &headers, const NumericRows &rows, QSaveFile &file) {
    std::string text = csv::headerLine(headers, separator) + lineEnd;
    text.reserve(2 * writeSize);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        rows.appendRowTo(text, row, separator);
        text += lineEnd;
        if (text.size() >= writeSize && !flush(text, file))
            return false;
    }
    return flush(text, file);
}

/// name.csv -> the first of name_1.csv, name_2.csv, ... that is free.
QString freeNameBeside(const QString &path) {
    const QFileInfo file(path);
    const QString stem = file.path() + '/' + file.completeBaseName();
    const QString suffix = file.suffix().isEmpty() ? QString() : '.' + file.suffix();
    for (int number = 1;; ++number) {
        QString candidate = stem + '_' + QString::number(number) + suffix;
        if (!QFileInfo::exists(candidate))
            return candidate;
    }
}

std::optional<NumericCell> parseCell(const QString &text, std::optional<int> type) {
    bool valid = false;
    if (!type || *type == QMetaType::LongLong || *type == QMetaType::UInt) {
        const qint64 integer = text.toLongLong(&valid);
        if (valid || type)
            return valid ? std::optional<NumericCell>(integer) : std::nullopt;
    }
    const double real = text.toDouble(&valid);
    return valid ? std::optional<NumericCell>(real) : std::nullopt;
}

}  // namespace

NumericTableCSV::NumericTableCSV(QObject *parent) : QObject(parent) {}

void NumericTableCSV::setHeaders(const QStringList &headers) {
    headers_ = headers;
}

bool NumericTableCSV::save(const QString &path, bool keepExisting) {
    QSaveFile file(path);
    if (!whole_file::open(file) || !writeTable(headers_, rows_, file))
        return refuse("save", path, file.errorString());

    // The earlier file gives way only now, and returns if the new one cannot take its place after all.
    QFile earlier(path);
    const bool keeps = keepExisting && earlier.exists();
    if (keeps && !earlier.rename(freeNameBeside(path)))
        return refuse("save", path, "the earlier file cannot be renamed: " + earlier.errorString());
    if (file.commit())
        return true;
    if (keeps)
        earlier.rename(path);
    return refuse("save", path, file.errorString());
}

bool NumericTableCSV::load(const QString &path) {
    headers_.clear();
    rows_.clear();
    filePath_ = path;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse("load", path, file.errorString());
    const QList<QStringList> records = csv::parse(QString::fromUtf8(file.readAll()), separator);

    std::vector<NumericCell> row;
    for (int line = 1; line < records.size(); ++line) {
        row.clear();
        for (int column = 0; column < records[line].size(); ++column) {
            const auto type = columnTypes_.find(column);
            const auto cell =
                parseCell(records[line][column], type == columnTypes_.end() ? std::nullopt : std::optional<int>(*type));
            if (!cell) {
                rows_.clear();
                return refuse("load", path, QString("row %1, column %2 is no number").arg(line).arg(column + 1));
            }
            row.push_back(*cell);
        }
        rows_.append(row);
    }
    headers_ = records.value(0);
    return true;
}
