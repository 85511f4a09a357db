#include "toolkit/table/csv_text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

QString quoted(QString field, QChar separator) {
    const bool needsQuotes =
        field.contains(separator) || field.contains('"') || field.contains('\n') || field.contains('\r');
    return needsQuotes ? '"' + field.replace('"', QLatin1String("\"\"")) + '"' : field;
}

/// Pass each character to take() and call finish() for the records.
class Parser {
public:
    explicit Parser(QChar separator) : separator_(separator) {}

    void take(QChar character) {
        if (inQuotes_)
            takeQuoted(character);
        else
            takePlain(character);
        if (character == '\r' || (character == '\n' && previous_ != '\r'))
            endLine();
        previous_ = character;
    }

    QList<csv::Record> finish() {
        if (fieldStarted_ || !fields_.isEmpty())
            endRecord();
        return records_;
    }

private:
    void takeQuoted(QChar character) {
        if (character == '"')
            inQuotes_ = false;
        else
            field_ += character;
    }

    void takePlain(QChar character) {
        if (character == '"') {
            // In a quoted field, two quotes are one quote character.
            if (previous_ == '"' && fieldStarted_)
                field_ += character;
            inQuotes_ = true;
            fieldStarted_ = true;
        } else if (character == separator_) {
            endField();
            fieldStarted_ = true;
        } else if (character == '\n' && previous_ == '\r') {
            return;
        } else if (character == '\r' || character == '\n') {
            endRecord();
        } else {
            field_ += character;
            fieldStarted_ = true;
        }
    }

    void endLine() {
        ++line_;
        if (!inQuotes_)
            firstLine_ = line_;
    }

    void endField() {
        fields_ << field_;
        field_.clear();
    }

    void endRecord() {
        if (fieldStarted_ || !fields_.isEmpty()) {
            endField();
            records_ << csv::Record{firstLine_, fields_};
        }
        fields_.clear();
        fieldStarted_ = false;
    }

    const QChar separator_;
    QList<csv::Record> records_;
    QStringList fields_;
    QString field_;
    QChar previous_;
    int line_ = 1;
    int firstLine_ = 1;  // of the current record
    bool inQuotes_ = false;
    bool fieldStarted_ = false;
};

}  // namespace

std::string csv::headerLine(const QStringList &fields, char separator) {
    QStringList texts;
    for (const QString &field : fields)
        texts << quoted(field, QLatin1Char(separator));
    return texts.join(QLatin1Char(separator)).toStdString();
}

QList<csv::Record> csv::parse(const QString &text, char separator) {
    Parser parser{QLatin1Char(separator)};
    for (const QChar character : text)
        parser.take(character);
    return parser.finish();
}

std::vector<double> csv::numbers(std::string_view line, char separator) {
    std::vector<double> numbers;
    numbers.reserve(static_cast<std::size_t>(std::count(line.begin(), line.end(), separator)) + 1);
    const char *at = line.data();
    const char *const end = at + std::min(line.size(), line.find_first_of("\r\n"));
    for (;;) {
        const char *const cellEnd = std::find(at, end, separator);
        double number = 0;
        const auto [parsedEnd, error] = std::from_chars(at, cellEnd, number);
        const bool isNumber = error == std::errc() && parsedEnd == cellEnd;
        numbers.push_back(isNumber ? number : std::numeric_limits<double>::quiet_NaN());
        if (cellEnd == end)
            return numbers;
        at = cellEnd + 1;
    }
}
