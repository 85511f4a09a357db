#pragma once

#include <QObject>
#include <QVariant>

// Tags the accessors of a setting. moc stores the word for QMetaMethod::tag(), and the compiler ignores it.
#ifndef Q_MOC_RUN
#define PROPERTY_TAG
#endif

/// Declares one setting of a class derived from AbstractSettings. Class-info lines after it define its range, label and
/// editor. For example:
///
///     class CameraSettings : public VTSettings {
///         Q_OBJECT
///
///     public:
///         enum Mode { Mode_day = 0, Mode_night = 1 };
///         Q_ENUM(Mode)
///
///         VT_PROPERTY(int, ExposureMs, 20)
///         Q_CLASSINFO("ExposureMsDisplayName", QT_TRANSLATE_NOOP("Generic", "ExposureMs"))
///         Q_CLASSINFO("ExposureMsCategory", QT_TRANSLATE_NOOP("Generic", "Camera"))
///         Q_CLASSINFO("ExposureMsEditable", "true")
///         Q_CLASSINFO("ExposureMsMinimum", "1")
///         Q_CLASSINFO("ExposureMsMaximum", "500")
///         Q_CLASSINFO("ExposureMsStep", "10")
///         Q_CLASSINFO("ExposureMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))
///
///         VT_PROPERTY(CameraSettings::Mode, LightMode, CameraSettings::Mode::Mode_day)
///         Q_CLASSINFO("LightModeDisplayName", QT_TRANSLATE_NOOP("Generic", "LightMode"))
///         Q_CLASSINFO("LightModeEditable", "true")
///
///         VT_PROPERTY(int, LastPort, -1)
///         Q_CLASSINFO("LastPortNotVisible", "true")
///     };
///
/// The macro declares:
///
/// - the Qt property `ExposureMs` (READ, WRITE, RESET, NOTIFY) and the signal `changedExposureMs(int)`
/// - the tagged invokables `setExposureMs(int)`, `getExposureMs()` and `resetExposureMs()`
/// - the untagged invokable `getExposureMsDefault()`
/// - the class-info "ExposureMsDefault", which is the text of the third argument
/// - the private members `ExposureMs_` and `defaultExposureMs_`; a constructor may set both to a default computed at
///   run time
///
/// The declarations after the macro are public.
///
/// The class-info keys begin with the name of the property. All values are texts:
///
/// - Editable "true": the editor lets the user change the property.
/// - ReadOnly "true": the editor shows the property read-only.
/// - NotVisible "true": the editor does not show the property.
/// - Category: the group of the property in the editor.
/// - DisplayName: the source text of the label, usually the property's name. QT_TRANSLATE_NOOP is for lupdate.
/// - Explanation: the source text of sentences that the editor shows below the property.
/// - Minimum, Maximum, Step: the range and step of a number. Values from a file or the editor are clamped to the range.
/// - Suffix: the unit shown after a number.
/// - IsFolder "true": the editor of a text can choose a folder.
///
/// Write the type of an enum with its class (`CameraSettings::Mode`), because the meta-object system uses that name.
/// The keys of an enum are translated, too: list them in the .cpp with QT_TRANSLATE_NOOP("Generic", ...).
// "[[nodiscard]]" also prevents moc from parsing "PROPERTY_TAG int" as one type.
#define VT_PROPERTY(Type, Prop, ...)                                                            \
    Q_PROPERTY(Type Prop READ get##Prop WRITE set##Prop RESET reset##Prop NOTIFY changed##Prop) \
    Q_CLASSINFO(#Prop "Default", #__VA_ARGS__)                                                  \
                                                                                                \
Q_SIGNALS:                                                                                      \
    void changed##Prop(Type value);                                                             \
                                                                                                \
public:                                                                                         \
    Q_INVOKABLE PROPERTY_TAG void set##Prop(const Type &value) {                                \
        if (value == Prop##_)                                                                   \
            return;                                                                             \
        Prop##_ = value;                                                                        \
        Q_EMIT changed##Prop(value);                                                            \
        Q_EMIT changedProperty(QStringLiteral(#Prop));                                          \
    }                                                                                           \
    Q_INVOKABLE PROPERTY_TAG [[nodiscard]] Type get##Prop() const {                             \
        return Prop##_;                                                                         \
    }                                                                                           \
    Q_INVOKABLE PROPERTY_TAG void reset##Prop() {                                               \
        set##Prop(default##Prop##_);                                                            \
    }                                                                                           \
    Q_INVOKABLE QVariant get##Prop##Default() const {                                           \
        return QVariant::fromValue(default##Prop##_);                                           \
    }                                                                                           \
                                                                                                \
private:                                                                                        \
    Type default##Prop##_ = __VA_ARGS__;                                                        \
    Type Prop##_ = default##Prop##_;                                                            \
                                                                                                \
public:
