#pragma once

#include <cstdint>

/// The vendor's QuickLink2 library for EyeTech trackers, as this program understands it.
///
/// The one place that says what the library looks like: whoever holds the vendor's own header corrects this file.
/// C linkage, default calling convention; results are error codes, 0 is success.

/// Who a device is: two texts that end with a zero. Padded, so that a larger record of the vendor's finds room.
struct QLDeviceInfo {
    char modelName[64];
    char serialNumber[64];
    char padding[896];
};
static_assert(sizeof(QLDeviceInfo) == 1024);

/// A calibration target; its place in percent of the calibrated area.
struct QLTarget {
    std::int32_t id;
    float x;
    float y;
};
static_assert(sizeof(QLTarget) == 12);

/// How well a target was hit by one eye: the measured gaze's offset from it in percent of the area, and the score,
/// which is better the smaller it is.
struct QLScore {
    float x;
    float y;
    float score;
};
static_assert(sizeof(QLScore) == 12);

/// A frame as the library fills it, read at the places of frame_record alone. QLFrameData (its own header) is this
/// record together with a copy of its image.
struct alignas(8) QLFrameRecord {
    unsigned char bytes[784];
};
static_assert(sizeof(QLFrameRecord) == 784);

/// Where the fields of a frame record stand: bytes from its start. The image belongs to the library and is valid
/// until the next call for a frame. The two eyes' blocks have the same layout.
namespace frame_record {
constexpr int imagePixels = 0;    ///< const unsigned char *, 8-bit grey
constexpr int imageWidth = 8;     ///< int32
constexpr int imageHeight = 12;   ///< int32
constexpr int leftEye = 160;      ///< eye block
constexpr int rightEye = 328;     ///< eye block
constexpr int gazeValid = 496;    ///< bool; the weighted gaze point of both eyes
constexpr int gaze = 500;         ///< 2 x float, percent
constexpr int focus = 648;        ///< float
constexpr int distance_cm = 652;  ///< float
// within an eye block
constexpr int eyeFound = 0;        ///< bool
constexpr int eyePupil_mm = 4;     ///< float, diameter
constexpr int eyePupilCentre = 8;  ///< 2 x float, pixels of the camera image
constexpr int eyeGaze = 32;        ///< 2 x float, percent
}  // namespace frame_record

/// What QLDevice_GetStatus tells.
constexpr int ql_device_stopped = 2;
constexpr int ql_device_running = 3;

/// What the functions of this program return while the library is not loaded.
constexpr int ql_not_loaded = 10;

/// The library's 71 entry points in the order in which they are looked up: name, parameters, arguments.
#define OCELA_QUICKLINK2_FUNCTIONS(X)                                                                             \
    X(QLAPI_GetVersion, (int size, char *buffer), (size, buffer))                                                 \
    X(QLAPI_ExportSettings, (int settings), (settings))                                                           \
    X(QLAPI_ImportSettings, (int settings), (settings))                                                           \
    X(QLDevice_Enumerate, (int *count, int *devices), (count, devices))                                           \
    X(QLDevice_GetInfo, (int device, QLDeviceInfo *info), (device, info))                                         \
    X(QLDevice_GetStatus, (int device, int *status), (device, status))                                            \
    X(QLDevice_ExportSettings, (int device, int settings), (device, settings))                                    \
    X(QLDevice_ImportSettings, (int device, int settings), (device, settings))                                    \
    X(QLDevice_IsSettingSupported, (int device, const char *setting), (device, setting))                          \
    X(QLDevice_Start, (int device), (device))                                                                     \
    X(QLDevice_Stop, (int device), (device))                                                                      \
    X(QLDevice_Stop_All, (), ())                                                                                  \
    X(QLDevice_SetIndicator, (int device, int type, int mode), (device, type, mode))                              \
    X(QLDevice_GetIndicator, (int device, int type, int *mode), (device, type, mode))                             \
    X(QLDevice_GetFrame, (int device, int waitMs, QLFrameRecord *frame), (device, waitMs, frame))                 \
    X(QLDevice_ApplyCalibration, (int device, int calibration), (device, calibration))                            \
    X(QLDevice_CalibrateEyeRadius, (int device, float distance, float *left, float *right),                       \
      (device, distance, left, right))                                                                            \
    X(QLDeviceGroup_Create, (int *group), (group))                                                                \
    X(QLDeviceGroup_AddDevice, (int group, int device), (group, device))                                          \
    X(QLDeviceGroup_RemoveDevice, (int group, int device), (group, device))                                       \
    X(QLDeviceGroup_Enumerate, (int group, int *count, int *devices), (group, count, devices))                    \
    X(QLDeviceGroup_GetFrame, (int group, int waitMs, int *count, QLFrameRecord *frames),                         \
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
    X(QLCalibration_GetTargets, (int calibration, int *count, QLTarget *targets), (calibration, count, targets))  \
    X(QLCalibration_Calibrate, (int calibration, int target, int milliseconds, bool block),                       \
      (calibration, target, milliseconds, block))                                                                 \
    X(QLCalibration_GetScoring, (int calibration, int target, int eye, QLScore *score),                           \
      (calibration, target, eye, score))                                                                          \
    X(QLCalibration_GetStatus, (int calibration, int target, int *status), (calibration, target, status))         \
    X(QLCalibration_Finalize, (int calibration), (calibration))                                                   \
    X(QLCalibration_Cancel, (int calibration), (calibration))                                                     \
    X(QLCalibration_AddBias, (int calibration, int eye, float x, float y), (calibration, eye, x, y))
