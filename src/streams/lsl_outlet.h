#pragma once

#include "streams/lsl_library.h"

#include <QByteArray>
#include <vector>

namespace lsl {

/// An element of a stream's description: a value, or further elements.
struct DescriptionElement {
    QByteArray name;
    QByteArray value;
    std::vector<DescriptionElement> children;  ///< without a value only
};

/// The description of a stream for programs that look for it. Texts are UTF-8.
struct StreamDescription {
    QByteArray name;
    QByteArray type;
    QByteArray sourceId;  ///< the same in each run, so that receivers find the stream again
    ChannelFormat format = doubleFormat;
    int channelCount = 1;
    std::vector<DescriptionElement> elements;
};

/// A stream that other programs can receive, for the lifetime of the object. The rate is irregular. Used only on the
/// thread of LslWorker.
class StreamOutlet {
public:
    /// `functions` must outlive the object.
    StreamOutlet(const Functions &functions, const StreamDescription &description);
    ~StreamOutlet();
    StreamOutlet(const StreamOutlet &) = delete;
    StreamOutlet &operator=(const StreamOutlet &) = delete;

    /// Returns false if the library could not open the stream, for example because all of its ports are in use.
    [[nodiscard]] bool isOpen() const { return outlet_ != nullptr; }

    /// Whether a sample is sent at once, or together with the next samples.
    enum class Sending { Together, Now };

    /// Sends a sample with one value for each channel. `time` is the time of lsl_local_clock(). Call it only if the
    /// stream is open and has the right format.
    void push(const double *values, double time, Sending sending) const;
    void push(const QByteArray &text, double time) const;

private:
    const Functions &functions_;
    Outlet outlet_ = nullptr;
};

}  // namespace lsl
