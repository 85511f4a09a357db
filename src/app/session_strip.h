#pragma once

#include <QWidget>
#include <array>

class QFormLayout;
class QLabel;
class QLineEdit;
class Settings;

/// The fields for the participant, the session and the task. The names of record files begin with their texts. Each
/// field may be empty. The settings store the texts. GUI thread.
///
/// A field does not accept characters that a file name on Windows or Linux cannot contain. A tool tip then lists these
/// characters.
class SessionStrip : public QWidget {
    Q_OBJECT

public:
    /// `settings` must outlive this object.
    explicit SessionStrip(Settings &settings, QWidget *parent = nullptr);

    /// Returns the name of the record file of a recording that starts now, for example
    /// "P01_baseline_reading_2026-03-14_15-09-26-535_ocela.csv", or an empty text if all fields are empty.
    [[nodiscard]] QString recordFileName() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    struct Field {
        QLabel *label;
        QLineEdit *edit;
    };

    [[nodiscard]] Field addField(QFormLayout *form, const char *name, const QString &text);
    void store();
    void retranslate();

    Settings &settings_;
    std::array<Field, 3> fields_{};  ///< participant, session, task
};
