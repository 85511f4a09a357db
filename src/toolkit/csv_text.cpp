#include "toolkit/csv_text.h"

namespace {

QString quoted(QString field, QChar separator) {
    const bool needsQuotes =
        field.contains(separator) || field.contains('"') || field.contains('\n') || field.contains('\r');
    return needsQuotes ? '"' + field.replace('"', QLatin1String("\"\"")) + '"' : field;
}

/// Takes the text apart character by character; `records` is complete after finish().
class Parser {
public:
    explicit Parser(QChar separator) : separator_(separator) {}

    void take(QChar character) {
        if (inQuotes_)
            takeQuoted(character);
        else
            takePlain(character);
        previous_ = character;
    }

    QList<QStringList> finish() {
        if (fieldStarted_ || !record_.isEmpty())
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
            // A quote right after a closing one stands for itself: "" within quotes.
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

    void endField() {
        record_ << field_;
        field_.clear();
    }

    void endRecord() {
        if (fieldStarted_ || !record_.isEmpty()) {
            endField();
            records_ << record_;
        }
        record_.clear();
        fieldStarted_ = false;
    }

    const QChar separator_;
    QList<QStringList> records_;
    QStringList record_;
    QString field_;
    QChar previous_;
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

QList<QStringList> csv::parse(const QString &text, char separator) {
    Parser parser{QLatin1Char(separator)};
    for (const QChar character : text)
        parser.take(character);
    return parser.finish();
}
