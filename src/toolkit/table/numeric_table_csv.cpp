#include "toolkit/table/numeric_table_csv.h"

#include "toolkit/base/buffered_writer.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/base/new_file.h"
#include "toolkit/table/csv_text.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>
#include <optional>

namespace {

Q_LOGGING_CATEGORY(lcCsv, "ocela.csv")

constexpr char separator = ',';
constexpr char lineEnd[] = "\r\n";

bool fail(const char *what, const QString &path, const QString &reason) {
    qCWarning(lcCsv, "Cannot %s %s: %s", what, qUtf8Printable(path), qUtf8Printable(reason));
    return false;
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

std::string NumericTableCSV::headerLine() const {
    return csv::headerLine(headers_, separator) + lineEnd;
}

std::string NumericTableCSV::rowLine(const NumericRows &rows, std::size_t index) {
    return rows.text(index, separator) + lineEnd;
}

bool NumericTableCSV::write(QSaveFile &file) const {
    BufferedWriter writer(file);
    bool written = writer.append(headerLine());
    for (std::size_t row = 0; written && row < rows_.size(); ++row)
        written = writer.append(rowLine(rows_, row));
    return written && writer.flush();
}

bool NumericTableCSV::save(const QString &path, bool keepExisting) {
    const QString target = file_names::withoutLinks(path);
    if (!keepExisting) {
        QSaveFile file(target);
        return (FileUtilities::openUnbuffered(file) && write(file) && file.commit()) ||
               fail("save", path, file.errorString());
    }
    NewFile file(QFileInfo(target).path());
    return (file.write([this](QSaveFile &device) { return write(device); }) && file.takeName(target)) ||
           fail("save", path, file.problem());
}

bool NumericTableCSV::load(const QString &path) {
    headers_.clear();
    rows_.clear();
    filePath_ = path;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail("load", path, file.errorString());
    const QList<csv::Record> records = csv::parse(QString::fromUtf8(file.readAll()), separator);

    std::vector<NumericCell> row;
    for (int record = 1; record < records.size(); ++record) {
        const QStringList &fields = records[record].fields;
        row.clear();
        for (int column = 0; column < fields.size(); ++column) {
            const auto type = columnTypes_.find(column);
            const auto cell =
                parseCell(fields[column], type == columnTypes_.end() ? std::nullopt : std::optional<int>(*type));
            if (!cell) {
                rows_.clear();
                return fail("load", path,
                            QString("line %1, column %2 is not a number").arg(records[record].line).arg(column + 1));
            }
            row.push_back(*cell);
        }
        rows_.append(row);
    }
    headers_ = records.value(0).fields;
    return true;
}
