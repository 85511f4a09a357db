#pragma once

#include "toolkit/settings/vt_settings.h"

#include <QRect>

/// The settings of the aSee Pro back-end: the area of the last calibration, in global desktop pixels. The settings page
/// does not show them. Owned by the back-end, which calls reload().
class aSeeProSettings : public VTSettings {
    Q_OBJECT

public:
    aSeeProSettings(QString filePath, QObject *parent);

    VT_PROPERTY(int, LastCalibratedAreaX, 0)
    Q_CLASSINFO("LastCalibratedAreaXNotVisible", "true")
    Q_CLASSINFO("LastCalibratedAreaXEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaXMinimum", "-1000000")
    Q_CLASSINFO("LastCalibratedAreaXMaximum", "1000000")

    VT_PROPERTY(int, LastCalibratedAreaY, 0)
    Q_CLASSINFO("LastCalibratedAreaYNotVisible", "true")
    Q_CLASSINFO("LastCalibratedAreaYEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaYMinimum", "-1000000")
    Q_CLASSINFO("LastCalibratedAreaYMaximum", "1000000")

    VT_PROPERTY(int, LastCalibratedAreaW, 1920)
    Q_CLASSINFO("LastCalibratedAreaWNotVisible", "true")
    Q_CLASSINFO("LastCalibratedAreaWEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaWMinimum", "0")
    Q_CLASSINFO("LastCalibratedAreaWMaximum", "1000000")

    VT_PROPERTY(int, LastCalibratedAreaH, 1024)
    Q_CLASSINFO("LastCalibratedAreaHNotVisible", "true")
    Q_CLASSINFO("LastCalibratedAreaHEditable", "true")
    Q_CLASSINFO("LastCalibratedAreaHMinimum", "0")
    Q_CLASSINFO("LastCalibratedAreaHMaximum", "1000000")

    [[nodiscard]] QRect lastCalibratedArea() const;
    void setLastCalibratedArea(QRect area);
};
