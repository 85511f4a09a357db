#pragma once

#include "toolkit/settings/vt_property.h"
#include "toolkit/settings/vt_settings.h"

/// The settings of the EyeTech back-end, including the area of the last calibration and the chosen device. Every change
/// is saved. Owned by the back-end, which calls reload().
class EyetechSettings : public VTSettings {
    Q_OBJECT

public:
    /// The values are defined by the vendor.
    enum CalibrationType { Calibration_5_points = 0, Calibration_9_points = 1, Calibration_16_points = 2 };
    Q_ENUM(CalibrationType)

    EyetechSettings(const QString &filePath, QObject *parent);

    VT_PROPERTY(EyetechSettings::CalibrationType, Calibration, EyetechSettings::CalibrationType::Calibration_5_points)
    Q_CLASSINFO("CalibrationDisplayName", QT_TRANSLATE_NOOP("Generic", "Calibration"))
    Q_CLASSINFO("CalibrationCategory", QT_TRANSLATE_NOOP("Generic", "Calibration"))
    Q_CLASSINFO("CalibrationEditable", "true")

    /// The duration of the measurement of a target.
    VT_PROPERTY(int, CalibrationTimeMs, 2000)
    Q_CLASSINFO("CalibrationTimeMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationTimeMs"))
    Q_CLASSINFO("CalibrationTimeMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationTimeMsEditable", "true")
    Q_CLASSINFO("CalibrationTimeMsMinimum", "1000")
    Q_CLASSINFO("CalibrationTimeMsMaximum", "10000")
    Q_CLASSINFO("CalibrationTimeMsStep", "100")
    Q_CLASSINFO("CalibrationTimeMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    /// The maximum duration of the movement to the next target.
    VT_PROPERTY(int, CalibrationAnimationMs, 1000)
    Q_CLASSINFO("CalibrationAnimationMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationAnimationMs"))
    Q_CLASSINFO("CalibrationAnimationMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationAnimationMsEditable", "true")
    Q_CLASSINFO("CalibrationAnimationMsMinimum", "0")
    Q_CLASSINFO("CalibrationAnimationMsMaximum", "5000")
    Q_CLASSINFO("CalibrationAnimationMsStep", "100")
    Q_CLASSINFO("CalibrationAnimationMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    /// The maximum delay between the movement and the measurement.
    VT_PROPERTY(int, CalibrationDelayMs, 1000)
    Q_CLASSINFO("CalibrationDelayMsDisplayName", QT_TRANSLATE_NOOP("Generic", "CalibrationDelayMs"))
    Q_CLASSINFO("CalibrationDelayMsCategory", "Calibration")
    Q_CLASSINFO("CalibrationDelayMsEditable", "true")
    Q_CLASSINFO("CalibrationDelayMsMinimum", "100")
    Q_CLASSINFO("CalibrationDelayMsMaximum", "5000")
    Q_CLASSINFO("CalibrationDelayMsStep", "100")
    Q_CLASSINFO("CalibrationDelayMsSuffix", QT_TRANSLATE_NOOP("Generic", "ms"))

    /// The serial number of the device that is used if several devices are attached. If it is empty or not attached,
    /// the user is asked.
    VT_PROPERTY(QString, DeviceSerialNumber, QString())
    Q_CLASSINFO("DeviceSerialNumberDisplayName", QT_TRANSLATE_NOOP("Generic", "DeviceSerialNumber"))
    Q_CLASSINFO("DeviceSerialNumberCategory", QT_TRANSLATE_NOOP("Generic", "Several devices"))
    Q_CLASSINFO("DeviceSerialNumberEditable", "true")

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

    /// Unused. Kept because existing settings files contain it.
    VT_PROPERTY(int, LastCalibratedScreenIndex, -1)
    Q_CLASSINFO("LastCalibratedScreenIndexEditable", "true")
    Q_CLASSINFO("LastCalibratedScreenIndexNotVisible", "true")
};
