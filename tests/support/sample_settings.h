#pragma once

#include "toolkit/settings/settings_with_language.h"

/// A settings class with a property of each type.
class SampleSettings : public SettingsWithLanguage {
    Q_OBJECT
    Q_CLASSINFO("LanguageCategory", "Look")

public:
    enum Mode { Mode_5_points = 0, Mode_9_points = 1, Mode_16_points = 4 };
    Q_ENUM(Mode)

    explicit SampleSettings(const QString &path) : SettingsWithLanguage(path, true, {"ru_RU", "en_US"}, nullptr) {}

    VT_PROPERTY(SampleSettings::Mode, Points, SampleSettings::Mode::Mode_5_points)
    Q_CLASSINFO("PointsCategory", "Numbers")
    Q_CLASSINFO("PointsEditable", "true")

    VT_PROPERTY(int, TimeMs, 2000)
    Q_CLASSINFO("TimeMsCategory", "Numbers")
    Q_CLASSINFO("TimeMsEditable", "true")
    Q_CLASSINFO("TimeMsMinimum", "1000")
    Q_CLASSINFO("TimeMsMaximum", "10000")
    Q_CLASSINFO("TimeMsStep", "100")
    Q_CLASSINFO("TimeMsSuffix", "ms")

    VT_PROPERTY(double, Gain, 1.5)
    Q_CLASSINFO("GainCategory", "Look")
    Q_CLASSINFO("GainEditable", "true")
    Q_CLASSINFO("GainStep", "0.05")

    VT_PROPERTY(bool, Enabled, true)
    Q_CLASSINFO("EnabledCategory", "Look")
    Q_CLASSINFO("EnabledEditable", "true")

    VT_PROPERTY(QString, Title, "")
    Q_CLASSINFO("TitleCategory", "Look")
    Q_CLASSINFO("TitleEditable", "true")
    Q_CLASSINFO("TitleExplanation", "Long words")

    VT_PROPERTY(QString, Folder, QString("a") + "b")
    Q_CLASSINFO("FolderEditable", "true")
    Q_CLASSINFO("FolderReadOnly", "true")

    VT_PROPERTY(int, LastIndex, -1)
    Q_CLASSINFO("LastIndexEditable", "true")
    Q_CLASSINFO("LastIndexNotVisible", "true")
};
