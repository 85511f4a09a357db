#pragma once

#include "toolkit/abstract_settings.h"
#include "toolkit/settings_file.h"

#include <QString>
#include <QVector>

enum class VTSettingsFormat { Xml };

/// Settings bound to one file.
///
/// The file is read by `reload()` alone, never by the constructor, so that the owner decides when, and what
/// is connected before. With `saveOnChange` every later `changedProperty` writes it; a save that fails leaves
/// the values in memory, says so in one warning and is tried again with the next change.
class VTSettings : public AbstractSettings {
    Q_OBJECT

public:
    VTSettings(QString filePath, bool saveOnChange, QObject *parent, VTSettingsFormat format = VTSettingsFormat::Xml);

    [[nodiscard]] QString filePath() const { return filePath_; }

    /// Makes the properties what the file says; those it does not name get their defaults. Signals are
    /// emitted as the setters emit them, nothing is written. A missing file is no error.
    ///
    /// Returns false for a file that cannot be read or is damaged: then the defaults apply, the file is kept
    /// under another name ("...damaged") and one warning names it. Properties that the file names and the
    /// class does not declare are kept for the next save.
    bool reload();

    /// Writes the file; for owners who did not ask for `saveOnChange`.
    bool save();

private:
    void setAside(const QString &reason) const;
    void restore(const QVector<settings_file::Entry> &entries);
    void restoreProperty(const QString &name, const QString *text);

    const QString filePath_;
    QVector<settings_file::Entry> unknown_;
    bool reloading_ = false;
};
