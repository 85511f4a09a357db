#pragma once

#include <cstdint>

/// The library of the Lab Streaming Layer (LSL), which sends streams of samples to other programs in the network.
///
/// This is the only description of the library in this project. Its functions have C linkage and the default calling
/// convention. Texts are UTF-8, and times are seconds of lsl_local_clock().
namespace lsl {

// The handles belong to the library.
using StreamInfo = struct StreamInfoHandle *;
using Element = struct ElementHandle *;  ///< valid as long as its stream info
using Outlet = struct OutletHandle *;

/// The types of a channel.
enum ChannelFormat : std::int32_t { doubleFormat = 2, textFormat = 3 };

/// The nominal rate of a stream without a fixed rate.
constexpr double irregularRate = 0;

// F(result, name, parameters)
#define OCELA_LSL_FUNCTIONS(F)                                                                                        \
    F(std::int32_t, lsl_library_version, ())                                                                          \
    F(double, lsl_local_clock, ())                                                                                    \
    F(lsl::StreamInfo, lsl_create_streaminfo,                                                                         \
      (const char *name, const char *type, std::int32_t channelCount, double nominalRate, lsl::ChannelFormat format,  \
       const char *sourceId))                                                                                         \
    F(void, lsl_destroy_streaminfo, (lsl::StreamInfo info))                                                           \
    F(lsl::Element, lsl_get_desc, (lsl::StreamInfo info))                                                             \
    F(lsl::Element, lsl_append_child, (lsl::Element parent, const char *name))                                        \
    F(lsl::Element, lsl_append_child_value, (lsl::Element parent, const char *name, const char *value))               \
    F(lsl::Outlet, lsl_create_outlet, (lsl::StreamInfo info, std::int32_t chunkSize, std::int32_t maxBufferedLength)) \
    F(void, lsl_destroy_outlet, (lsl::Outlet outlet))                                                                 \
    F(std::int32_t, lsl_push_sample_dtp,                                                                              \
      (lsl::Outlet outlet, const double *values, double time, std::int32_t pushThrough))                              \
    F(std::int32_t, lsl_push_sample_strtp,                                                                            \
      (lsl::Outlet outlet, const char **values, double time, std::int32_t pushThrough))

/// The functions of the library. They are called only on the thread of LslWorker, because any of them may block.
struct Functions {
#define OCELA_LSL_POINTER(result, name, parameters) result(*name) parameters = nullptr;
    OCELA_LSL_FUNCTIONS(OCELA_LSL_POINTER)
#undef OCELA_LSL_POINTER
};

}  // namespace lsl
