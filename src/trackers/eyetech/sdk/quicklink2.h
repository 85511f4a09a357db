#pragma once

#include <cstdint>

/// The vendor's QuickLink2 library for EyeTech trackers.
///
/// This is the only description of the library in this project. If it differs from the vendor's header, correct it
/// here. The library's functions have C linkage and the default calling convention. They return an error code; 0 is
/// success.
namespace quicklink2 {

/// The model and serial number of a device, as NUL-terminated strings. The padding makes room for a larger vendor
/// record.
struct QLDeviceInfo {
    char modelName[64];
    char serialNumber[64];
    char padding[896];
};
static_assert(sizeof(QLDeviceInfo) == 1024);

/// A calibration target, in percent of the calibrated area.
struct QLTarget {
    std::int32_t id;
    float x;
    float y;
};
static_assert(sizeof(QLTarget) == 12);

/// The result of one eye at one target: the offset of the measured gaze from the target, in percent of the area, and a
/// score. A smaller score is better.
struct QLScore {
    float x;
    float y;
    float score;
};
static_assert(sizeof(QLScore) == 12);

/// A frame. `frame_record` has the offsets of its fields.
struct alignas(8) QLFrameRecord {
    unsigned char bytes[784];
};
static_assert(sizeof(QLFrameRecord) == 784);

/// Byte offsets of the fields of a QLFrameRecord. The image belongs to the library and is valid until the next call for
/// a frame, or until the device is stopped. The blocks of both eyes have the same layout.
namespace frame_record {
static_assert(sizeof(void *) == 8, "The offsets are those of the 64-bit library");
constexpr int imagePixels = 0;    ///< const unsigned char *, 8-bit grey
constexpr int imageWidth = 8;     ///< int32
constexpr int imageHeight = 12;   ///< int32
constexpr int leftEye = 160;      ///< eye block
constexpr int rightEye = 328;     ///< eye block
constexpr int gazeValid = 496;    ///< bool; whether the combined gaze is valid
constexpr int gaze = 500;         ///< 2 x float, percent; the combined gaze of both eyes
constexpr int focus = 648;        ///< float
constexpr int distance_cm = 652;  ///< float

// Offsets in an eye block.
constexpr int eyeFound = 0;        ///< bool
constexpr int eyePupil_mm = 4;     ///< float, diameter
constexpr int eyePupilCentre = 8;  ///< 2 x float, pixels of the camera image
constexpr int eyeGaze = 32;        ///< 2 x float, percent
}  // namespace frame_record

/// Values of QLDevice_GetStatus.
constexpr int deviceStopped = 2;
constexpr int deviceRunning = 3;

/// Error codes that the program handles.
constexpr int badArgument = 1;
constexpr int unknownCalibration = 3;
constexpr int bufferTooSmall = 11;

/// Values of QLCalibration_GetStatus. With any other value, the measurement has failed or has not started.
constexpr int targetDone = 0;
constexpr int targetRunning = 1;

/// Values for the eye in QLCalibration_GetScoring and QLCalibration_AddBias.
constexpr int leftEye = 0;
constexpr int rightEye = 1;

}  // namespace quicklink2

/// The library's 71 entry points, in the order of their lookup: name, parameters, arguments.
#define OCELA_QUICKLINK2_FUNCTIONS(X)                                                                             \
    X(QLAPI_GetVersion, (int size, char *buffer), (size, buffer))                                                 \
    X(QLAPI_ExportSettings, (int settings), (settings))                                                           \
    X(QLAPI_ImportSettings, (int settings), (settings))                                                           \
    X(QLDevice_Enumerate, (int *count, int *devices), (count, devices))                                           \
    X(QLDevice_GetInfo, (int device, quicklink2::QLDeviceInfo *info), (device, info))                             \
    X(QLDevice_GetStatus, (int device, int *status), (device, status))                                            \
    X(QLDevice_ExportSettings, (int device, int settings), (device, settings))                                    \
    X(QLDevice_ImportSettings, (int device, int settings), (device, settings))                                    \
    X(QLDevice_IsSettingSupported, (int device, const char *setting), (device, setting))                          \
    X(QLDevice_Start, (int device), (device))                                                                     \
    X(QLDevice_Stop, (int device), (device))                                                                      \
    X(QLDevice_Stop_All, (), ())                                                                                  \
    X(QLDevice_SetIndicator, (int device, int type, int mode), (device, type, mode))                              \
    X(QLDevice_GetIndicator, (int device, int type, int *mode), (device, type, mode))                             \
    X(QLDevice_GetFrame, (int device, int waitMs, quicklink2::QLFrameRecord *frame), (device, waitMs, frame))     \
    X(QLDevice_ApplyCalibration, (int device, int calibration), (device, calibration))                            \
    X(QLDevice_CalibrateEyeRadius, (int device, float distance, float *left, float *right),                       \
      (device, distance, left, right))                                                                            \
    X(QLDeviceGroup_Create, (int *group), (group))                                                                \
    X(QLDeviceGroup_AddDevice, (int group, int device), (group, device))                                          \
    X(QLDeviceGroup_RemoveDevice, (int group, int device), (group, device))                                       \
    X(QLDeviceGroup_Enumerate, (int group, int *count, int *devices), (group, count, devices))                    \
    X(QLDeviceGroup_GetFrame, (int group, int waitMs, int *count, quicklink2::QLFrameRecord *frames),             \
      (group, waitMs, count, frames))                                                                             \
    X(QLSettings_Load, (const char *path, int *settings), (path, settings))                                       \
    X(QLSettings_Save, (const char *path, int settings), (path, settings))                                        \
    X(QLSettings_Create, (int source, int *settings), (source, settings))                                         \
    X(QLSettings_AddSetting, (int settings, const char *name), (settings, name))                                  \
    X(QLSettings_RemoveSetting, (int settings, const char *name), (settings, name))                               \
    X(QLSettings_SetValue, (int settings, const char *name, int type, const void *value),                         \
      (settings, name, type, value))                                                                              \
    X(QLSettings_SetValueInt, (int settings, const char *name, int value), (settings, name, value))               \
    X(QLSettings_SetValueInt8, (int settings, const char *name, std::int8_t value), (settings, name, value))      \
    X(QLSettings_SetValueInt16, (int settings, const char *name, std::int16_t value), (settings, name, value))    \
    X(QLSettings_SetValueInt32, (int settings, const char *name, std::int32_t value), (settings, name, value))    \
    X(QLSettings_SetValueInt64, (int settings, const char *name, std::int64_t value), (settings, name, value))    \
    X(QLSettings_SetValueUInt, (int settings, const char *name, unsigned value), (settings, name, value))         \
    X(QLSettings_SetValueUInt8, (int settings, const char *name, std::uint8_t value), (settings, name, value))    \
    X(QLSettings_SetValueUInt16, (int settings, const char *name, std::uint16_t value), (settings, name, value))  \
    X(QLSettings_SetValueUInt32, (int settings, const char *name, std::uint32_t value), (settings, name, value))  \
    X(QLSettings_SetValueUInt64, (int settings, const char *name, std::uint64_t value), (settings, name, value))  \
    X(QLSettings_SetValueFloat, (int settings, const char *name, float value), (settings, name, value))           \
    X(QLSettings_SetValueDouble, (int settings, const char *name, double value), (settings, name, value))         \
    X(QLSettings_SetValueBool, (int settings, const char *name, bool value), (settings, name, value))             \
    X(QLSettings_SetValueVoidPointer, (int settings, const char *name, void *value), (settings, name, value))     \
    X(QLSettings_SetValueString, (int settings, const char *name, const char *value), (settings, name, value))    \
    X(QLSettings_GetValue, (int settings, const char *name, int type, int size, void *value),                     \
      (settings, name, type, size, value))                                                                        \
    X(QLSettings_GetValueInt, (int settings, const char *name, int *value), (settings, name, value))              \
    X(QLSettings_GetValueInt8, (int settings, const char *name, std::int8_t *value), (settings, name, value))     \
    X(QLSettings_GetValueInt16, (int settings, const char *name, std::int16_t *value), (settings, name, value))   \
    X(QLSettings_GetValueInt32, (int settings, const char *name, std::int32_t *value), (settings, name, value))   \
    X(QLSettings_GetValueInt64, (int settings, const char *name, std::int64_t *value), (settings, name, value))   \
    X(QLSettings_GetValueUInt, (int settings, const char *name, unsigned *value), (settings, name, value))        \
    X(QLSettings_GetValueUInt8, (int settings, const char *name, std::uint8_t *value), (settings, name, value))   \
    X(QLSettings_GetValueUInt16, (int settings, const char *name, std::uint16_t *value), (settings, name, value)) \
    X(QLSettings_GetValueUInt32, (int settings, const char *name, std::uint32_t *value), (settings, name, value)) \
    X(QLSettings_GetValueUInt64, (int settings, const char *name, std::uint64_t *value), (settings, name, value)) \
    X(QLSettings_GetValueFloat, (int settings, const char *name, float *value), (settings, name, value))          \
    X(QLSettings_GetValueDouble, (int settings, const char *name, double *value), (settings, name, value))        \
    X(QLSettings_GetValueBool, (int settings, const char *name, bool *value), (settings, name, value))            \
    X(QLSettings_GetValueVoidPointer, (int settings, const char *name, void **value), (settings, name, value))    \
    X(QLSettings_GetValueString, (int settings, const char *name, int size, char *value),                         \
      (settings, name, size, value))                                                                              \
    X(QLSettings_GetValueStringSize, (int settings, const char *name, int *size), (settings, name, size))         \
    X(QLCalibration_Load, (const char *path, int *calibration), (path, calibration))                              \
    X(QLCalibration_Save, (const char *path, int calibration), (path, calibration))                               \
    X(QLCalibration_Create, (int source, int *calibration), (source, calibration))                                \
    X(QLCalibration_Initialize, (int device, int calibration, int type), (device, calibration, type))             \
    X(QLCalibration_GetTargets, (int calibration, int *count, quicklink2::QLTarget *targets),                     \
      (calibration, count, targets))                                                                              \
    X(QLCalibration_Calibrate, (int calibration, int target, int milliseconds, bool block),                       \
      (calibration, target, milliseconds, block))                                                                 \
    X(QLCalibration_GetScoring, (int calibration, int target, int eye, quicklink2::QLScore *score),               \
      (calibration, target, eye, score))                                                                          \
    X(QLCalibration_GetStatus, (int calibration, int target, int *status), (calibration, target, status))         \
    X(QLCalibration_Finalize, (int calibration), (calibration))                                                   \
    X(QLCalibration_Cancel, (int calibration), (calibration))                                                     \
    X(QLCalibration_AddBias, (int calibration, int eye, float x, float y), (calibration, eye, x, y))
