#include "toolkit/table/csv_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

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

void csv::LineNumbers::skip(int cellCount) {
    for (int i = 0; i < cellCount; ++i)
        (void)takeCell();
}

double csv::LineNumbers::next() {
    const std::string_view cell = takeCell();
    double number = 0;
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    const bool isNumber = error == std::errc() && end == cell.data() + cell.find_last_not_of("\r\n") + 1;
    return isNumber ? number : std::numeric_limits<double>::quiet_NaN();
}

std::string_view csv::LineNumbers::takeCell() {
    const std::string_view cell = rest_.substr(0, rest_.find(separator_));
    rest_.remove_prefix(std::min(cell.size() + 1, rest_.size()));
    return cell;
}
