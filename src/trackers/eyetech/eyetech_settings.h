#pragma once

#include "toolkit/vt_property.h"
#include "toolkit/vt_settings.h"

/// What the EyeTech back-end keeps: how it calibrates, and the area that was calibrated last. Owned by the back-end,
/// which reloads it at once; every change is written.
class EyetechSettings : public VTSettings {
    Q_OBJECT

public:
    /// The values are the vendor's.
    enum CalibrationType { Calibration_5_points = 0, Calibration_9_points = 1, Calibration_16_points = 2 };
    Q_ENUM(CalibrationType)

    EyetechSettings(const QString &filePath, QObject *parent);

    VT_PROPERTY(EyetechSettings::CalibrationType, Calibration, EyetechSettings::CalibrationType::Calibration_5_points)
    Q_CLASSINFO("CalibrationDisplayName", QT_TRANSLATE_NOOP("Generic", "Calibration"))
    Q_CLASSINFO("CalibrationCategory", QT_TRANSLATE_NOOP("Generic", "Calibration"))
    Q_CLASSINFO("CalibrationEditable", "true")

    /// How long the device looks at a target.
    VT_PROPERTY(int, CalibrationTimeMs, 2000)
    Q_CLASSINFO("CalibrationTimeMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationTimeMs"))
    Q_CLASSINFO("CalibrationTimeMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationTimeMsEditable", "true")
    Q_CLASSINFO("CalibrationTimeMsMinimum", "1000")
    Q_CLASSINFO("CalibrationTimeMsMaximum", "10000")
    Q_CLASSINFO("CalibrationTimeMsStep", "100")
    Q_CLASSINFO("CalibrationTimeMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    /// How long a target takes from one place to the next, at most.
    VT_PROPERTY(int, CalibrationAnimationMs, 1000)
    Q_CLASSINFO("CalibrationAnimationMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationAnimationMs"))
    Q_CLASSINFO("CalibrationAnimationMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationAnimationMsEditable", "true")
    Q_CLASSINFO("CalibrationAnimationMsMinimum", "0")
    Q_CLASSINFO("CalibrationAnimationMsMaximum", "5000")
    Q_CLASSINFO("CalibrationAnimationMsStep", "100")
    Q_CLASSINFO("CalibrationAnimationMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    /// How long a target rests before the device looks, at most.
    VT_PROPERTY(int, CalibrationDelayMs, 1000)
    Q_CLASSINFO("CalibrationDelayMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationDelayMs"))
    Q_CLASSINFO("CalibrationDelayMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationDelayMsEditable", "true")
    Q_CLASSINFO("CalibrationDelayMsMinimum", "100")
    Q_CLASSINFO("CalibrationDelayMsMaximum", "5000")
    Q_CLASSINFO("CalibrationDelayMsStep", "100")
    Q_CLASSINFO("CalibrationDelayMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    VT_PROPERTY(int, LastCalibratedAreaX, 0)
    Q_CLASSINFO("LastCalibratedAreaXEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaXNotVisible", "true")

    VT_PROPERTY(int, LastCalibratedAreaY, 0)
    Q_CLASSINFO("LastCalibratedAreaYEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaYNotVisible", "true")

    VT_PROPERTY(int, LastCalibratedAreaW, 0)
    Q_CLASSINFO("LastCalibratedAreaWEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaWNotVisible", "true")

    VT_PROPERTY(int, LastCalibratedAreaH, 0)
    Q_CLASSINFO("LastCalibratedAreaHEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaHNotVisible", "true")

    /// Kept in the file; nothing here reads or writes it.
    VT_PROPERTY(int, LastCalibratedScreenIndex, -1)
    Q_CLASSINFO("LastCalibratedScreenIndexEditable", "true")
    Q_CLASSINFO("LastCalibratedScreenIndexNotVisible", "true")
};
