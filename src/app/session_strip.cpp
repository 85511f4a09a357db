#include "app/session_strip.h"

#include "app/settings.h"
#include "core/record_saving.h"

#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTextDocument>
#include <QToolTip>
#include <QValidator>
#include <algorithm>

namespace {

constexpr int spacing = 6;
/// Three texts of this length, the date and the time fit into a file name of 255 bytes, even with two bytes per
/// character.
constexpr int maxLength = 32;

constexpr char forbiddenCharacters[] = "<>:\"/\\|?*";

/// Accepts a text that can be a part of a file name, on Windows and on Linux. Removes control characters, because a
/// cell that is copied from a spreadsheet ends with a line break.
class FileNamePart : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString &text, int &position) const override {
        const int sizeBefore = text.size();
        text.remove(QRegularExpression("[\\x{0}-\\x{1f}\\x{7f}]"));
        position = std::max(0, position - (sizeBefore - text.size()));
        const auto isForbidden = [](QChar character) { return QLatin1String(forbiddenCharacters).contains(character); };
        return std::any_of(text.begin(), text.end(), isForbidden) ? Invalid : Acceptable;
    }
};

}  // namespace

SessionStrip::SessionStrip(Settings &settings, QWidget *parent) : QWidget(parent), settings_(settings) {
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setVerticalSpacing(spacing);
    fields_ = {addField(form, "participant", settings.getParticipant()),
               addField(form, "session", settings.getSession()), addField(form, "task", settings.getTask())};
    retranslate();
}

SessionStrip::Field SessionStrip::addField(QFormLayout *form, const char *name, const QString &text) {
    const Field field{new QLabel(this), new QLineEdit(this)};
    field.edit->setObjectName(name);
    field.edit->setMaxLength(maxLength);
    const auto *validator = new FileNamePart(field.edit);
    field.edit->setValidator(validator);
    // Somebody may have edited the settings file.
    QString stored = text;
    int position = 0;
    if (validator->validate(stored, position) == QValidator::Acceptable)
        field.edit->setText(stored);
    field.label->setBuddy(field.edit);
    form->addRow(field.label, field.edit);

    connect(field.edit, &QLineEdit::editingFinished, this, &SessionStrip::store);
    connect(field.edit, &QLineEdit::inputRejected, this, [edit = field.edit] {
        const QString reason = edit->text().size() < maxLength
                                   ? tr("A file name cannot contain these characters: %1").arg("< > : \" / \\ | ? *")
                                   : tr("The text has at most %1 characters.").arg(maxLength);
        QToolTip::showText(edit->mapToGlobal({0, edit->height()}), Qt::convertFromPlainText(reason), edit);
    });
    return field;
}

QString SessionStrip::recordFileName() const {
    QStringList parts;
    for (const Field &field : fields_)
        parts << field.edit->text().trimmed();
    parts.removeAll(QString());
    return parts.isEmpty() ? QString() : parts.join('_') + '_' + record_saving::defaultFileName();
}

void SessionStrip::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void SessionStrip::store() {
    settings_.setParticipant(fields_[0].edit->text());
    settings_.setSession(fields_[1].edit->text());
    settings_.setTask(fields_[2].edit->text());
}

void SessionStrip::retranslate() {
    fields_[0].label->setText(tr("Participant"));
    fields_[1].label->setText(tr("Session"));
    fields_[2].label->setText(tr("Task"));
    for (const Field &field : fields_)
        field.edit->setToolTip(
            tr("Optional. Added to the file name of recordings that you start with \"Start record\"."));
}
