#include "trackers/asee/asee_settings.h"

#include <utility>

aSeeProSettings::aSeeProSettings(QString filePath, QObject *parent) : VTSettings(std::move(filePath), true, parent) {}

QRect aSeeProSettings::lastCalibratedArea() const {
    return {LastCalibratedAreaX_, LastCalibratedAreaY_, LastCalibratedAreaW_, LastCalibratedAreaH_};
}

void aSeeProSettings::setLastCalibratedArea(QRect area) {
    setLastCalibratedAreaX(area.x());
    setLastCalibratedAreaY(area.y());
    setLastCalibratedAreaW(area.width());
    setLastCalibratedAreaH(area.height());
}
