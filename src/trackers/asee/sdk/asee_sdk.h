#pragma once

#include <cstddef>

/// The vendor's aSeeX library for aSee Pro trackers.
///
/// This is the only description of the library in this project. If it differs from the vendor's header, correct it
/// here. The library's functions have C linkage and the default calling convention. They return 0 on success.
namespace asee_sdk {

/// Receives a camera image of `size` bytes, 8-bit grey. Called on a thread of the library.
using ImageCallback = void (*)(const unsigned char *image, int size, int width, int height, long long stamp,
                               void *context);
/// Receives a gaze record, which is valid only during the call. Called on a thread of the library.
using GazeCallback = void (*)(const void *record, void *context);
/// As the progress callback, receives the progress of a calibration point in percent as `second`. As the finish
/// callback, called when the point is finished.
using PointCallback = void (*)(int first, int second, void *context);

/// The size of the opaque block of calibration coefficients.
constexpr std::size_t coefficientBytes = 1024;

/// Byte offsets of the fields of a gaze record, which is little-endian. Gaze is in fractions of the calibrated area.
/// Eye positions are in fractions of the camera image. A pair of coordinates is x, then y.
namespace gaze_record {
constexpr std::size_t gaze = 16;             ///< 2 x float32, both eyes combined
constexpr std::size_t leftGazeFlags = 212;   ///< int32; bit 0: left gaze valid
constexpr std::size_t leftGaze = 216;        ///< 2 x float32
constexpr std::size_t rightGazeFlags = 412;  ///< int32; bit 0: right gaze valid
constexpr std::size_t rightGaze = 416;       ///< 2 x float32
constexpr std::size_t leftEyeFlags = 612;    ///< int32; bit 0: left eye seen
constexpr std::size_t leftEye = 616;         ///< 2 x float32
constexpr std::size_t leftPupil_mm = 632;    ///< float32, diameter
constexpr std::size_t rightEyeFlags = 776;   ///< int32; bit 0: right eye seen
constexpr std::size_t rightEye = 780;        ///< 2 x float32
constexpr std::size_t rightPupil_mm = 796;   ///< float32
constexpr std::size_t leftStatus = 944;      ///< int32; below 2: left eye tracked
constexpr std::size_t rightStatus = 1096;    ///< int32; below 2: right eye tracked
constexpr std::size_t fixationState = 1268;  ///< int32
constexpr std::size_t sizeBytes = 1272;      ///< up to the last field; the vendor's record may be larger
}  // namespace gaze_record

}  // namespace asee_sdk

/// The library's entry points: name, parameters, arguments.
#define OCELA_ASEE_FUNCTIONS(X)                                                                       \
    X(_7i_device_connect, (), ())                                                                     \
    X(_7i_set_image_callback, (asee_sdk::ImageCallback callback, void *context), (callback, context)) \
    X(_7i_set_gaze_callback, (asee_sdk::GazeCallback callback, void *context), (callback, context))   \
    X(_7i_start, (const char *configFolder), (configFolder))                                          \
    X(_7i_start_tracking, (const void *coefficients), (coefficients))                                 \
    X(_7i_stop, (), ())                                                                               \
    X(_7i_set_calibration_mode, (int mode), (mode))                                                   \
    X(_7i_start_calibration, (int points), (points))                                                  \
    X(_7i_start_calibration_point,                                                                    \
      (int number, const float *xy, asee_sdk::PointCallback progress, void *progressContext,          \
       asee_sdk::PointCallback finish, void *finishContext),                                          \
      (number, xy, progress, progressContext, finish, finishContext))                                 \
    X(_7i_cancel_calibration, (), ())                                                                 \
    X(_7i_compute_calibration, (void *coefficients), (coefficients))                                  \
    X(_7i_complete_calibration, (), ())                                                               \
    X(_7i_get_calibration_score, (float *left, float *right), (left, right))
