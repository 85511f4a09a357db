#pragma once

#include "toolkit/settings/abstract_settings.h"
#include "toolkit/settings/settings_file.h"

#include <QString>
#include <QVector>

enum class VTSettingsFormat { Xml };

/// Settings that are stored in a file. GUI thread.
///
/// Only `reload()` reads the file, so the owner can connect the signals before or after it. With `saveOnChange`, each
/// `changedProperty` writes the file. A failed save keeps the values in memory and logs one warning. The next change
/// saves again. A file that reload() could not read is never written, because its values would be lost.
class VTSettings : public AbstractSettings {
    Q_OBJECT

public:
    VTSettings(QString filePath, bool saveOnChange, QObject *parent, VTSettingsFormat format = VTSettingsFormat::Xml);

    [[nodiscard]] QString filePath() const { return filePath_; }

    /// Sets the properties to the values in the file, or to their defaults if the file does not contain them or does
    /// not exist. The setters emit their signals, and nothing is written. Properties in the file that the class does
    /// not declare are written again by the next save.
    ///
    /// If the file is damaged, sets the defaults, adds ".damaged" to the file's name, logs one warning and returns
    /// false. If the file cannot be read, for example because a backup program has locked it, retries for a second.
    /// Then sets the defaults, keeps the file, logs one warning and returns false; see readProblem().
    bool reload();

    /// Returns why the file could not be read, or an empty text. Until another reload() succeeds, nothing is saved. The
    /// reason is a text of the system, or a source text of the translation context "VTSettings".
    [[nodiscard]] const QString &readProblem() const { return readProblem_; }

    /// Writes the file. Required only without `saveOnChange`. Returns false after a failure.
    bool save();

private:
    [[nodiscard]] settings_file::Contents readFile() const;
    void setAside(const QString &reason);
    void leaveUnread(const QString &reason);
    void restore(const QVector<settings_file::Entry> &entries);
    void restoreProperty(const QString &name, const QString *text);

    const QString filePath_;
    QVector<settings_file::Entry> unknown_;
    QString readProblem_;
    bool reloading_ = false;
};
