#pragma once

#include <QObject>
#include <QVariant>

// Marks the accessors of a setting for QMetaMethod::tag(): nothing to the compiler, a word that moc keeps.
#ifndef Q_MOC_RUN
#define PROPERTY_TAG
#endif

/// Declares one setting of a class derived from AbstractSettings. Followed by class-info lines it says all
/// there is to say about the setting: storage, default, range, label and editor follow from it.
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
/// The macro gives: the Qt property `ExposureMs` (readable, writable, resettable, notifying), the signal
/// `changedExposureMs(int)`, the tagged invokables `setExposureMs(int)`, `getExposureMs()`,
/// `resetExposureMs()`, the untagged `getExposureMsDefault()`, the class-info "ExposureMsDefault" (the text
/// of the third argument) and the private members `ExposureMs_` and `defaultExposureMs_`. A constructor may
/// give both members another value where the default is known only at run time. What follows the macro is
/// public.
///
/// The class-info keys, each behind the property's name; all values are texts:
///
/// - Editable "true": the editor offers the property for editing.
/// - ReadOnly "true": the editor shows the property, but does not let it be changed.
/// - NotVisible "true": the editor leaves the property out.
/// - Category: the group that the editor shows the property in.
/// - DisplayName: the property's own name once more, where lupdate finds it.
/// - Minimum, Maximum, Step: range and step of a number. A file or the editor cannot leave the range.
/// - Suffix: the unit shown behind a number.
///
/// The type of an enum is written with its class (`CameraSettings::Mode`), so that it is known by that name
/// at run time. Its keys show translated, too: the .cpp names them in QT_TRANSLATE_NOOP("Generic", ...).
// "[[nodiscard]]" also keeps moc from reading "PROPERTY_TAG int" as the name of one type.
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
