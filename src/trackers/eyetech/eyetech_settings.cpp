#include "trackers/eyetech/eyetech_settings.h"

namespace {

/// Marks the names of the enumerators for translation. The settings editor shows their translations.
[[maybe_unused]] const char *const calibrationTypes[] = {
    QT_TRANSLATE_NOOP("Generic", "Calibration_5_points"),
    QT_TRANSLATE_NOOP("Generic", "Calibration_9_points"),
    QT_TRANSLATE_NOOP("Generic", "Calibration_16_points"),
};

}  // namespace

EyetechSettings::EyetechSettings(const QString &filePath, QObject *parent) : VTSettings(filePath, true, parent) {
    qRegisterMetaType<EyetechSettings::CalibrationType>("EyetechSettings::CalibrationType");
}
