#pragma once

#include <cstddef>

/// The vendor's library for aSee Pro trackers, as this program understands it.
///
/// The one place that says what the library looks like: whoever holds the vendor's own header corrects this file.
/// C linkage, default calling convention; 0 is success.
namespace asee {

/// A camera image: `size` bytes of 8-bit grey. Called on a thread of the library's own.
using ImageCallback = void (*)(const unsigned char *image, int size, int width, int height, long long stamp,
                               void *context);
/// One gaze record. Called on a thread of the library's own; the record is gone afterwards.
using GazeCallback = void (*)(const void *record, void *context);
/// How far the calibration of a point is (the second number, percent), or that it is done.
using PointCallback = void (*)(int first, int second, void *context);

/// The coefficients of a calibration, opaque.
constexpr std::size_t coefficientBytes = 1024;

/// What every call returns when the library, or an entry of it, is missing.
constexpr int notAvailable = -1;

/// Where the fields of a gaze record stand: bytes from its start, little-endian. Gaze is in fractions of the
/// calibrated area, eye positions in fractions of the camera image; two coordinates stand side by side, x first.
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
constexpr std::size_t rightStatus = 1096;    ///< int32
constexpr std::size_t fixationState = 1268;  ///< int32
constexpr std::size_t bytes = 1272;          ///< at least
}  // namespace gaze_record

}  // namespace asee

/// The library's entry points: name, parameters, arguments.
#define OCELA_ASEE_FUNCTIONS(X)                                                                                      \
    X(_7i_device_connect, (), ())                                                                                    \
    X(_7i_set_image_callback, (asee::ImageCallback callback, void *context), (callback, context))                    \
    X(_7i_set_gaze_callback, (asee::GazeCallback callback, void *context), (callback, context))                      \
    X(_7i_start, (const char *configFolder), (configFolder))                                                         \
    X(_7i_start_tracking, (const void *coefficients), (coefficients))                                                \
    X(_7i_stop, (), ())                                                                                              \
    X(_7i_set_calibration_mode, (int mode), (mode))                                                                  \
    X(_7i_start_calibration, (int points), (points))                                                                 \
    X(_7i_start_calibration_point,                                                                                   \
      (int number, const float *xy, asee::PointCallback progress, void *progressContext, asee::PointCallback finish, \
       void *finishContext),                                                                                         \
      (number, xy, progress, progressContext, finish, finishContext))                                                \
    X(_7i_cancel_calibration, (), ())                                                                                \
    X(_7i_compute_calibration, (void *coefficients), (coefficients))                                                 \
    X(_7i_complete_calibration, (), ())                                                                              \
    X(_7i_get_calibration_score, (float *left, float *right), (left, right))

namespace asee {

/// One function per entry point, under its name. The first call looks for the library; if it or an entry of it is
/// missing, every call returns `notAvailable`, and the log has said once what is missing. Callable from any thread.
#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
OCELA_ASEE_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

}  // namespace asee
