#include "streams/lsl_outlet.h"

using namespace lsl;

namespace {

constexpr int defaultChunkSize = 0;
/// In units of 100 samples, because the rate is irregular. At 1000 samples a second, a receiver can fall behind by 36
/// s.
constexpr int maxBufferedLength = 360;
constexpr int pushThrough = 1;

void append(const Functions &functions, Element parent, const std::vector<DescriptionElement> &elements) {
    for (const DescriptionElement &element : elements) {
        if (element.children.empty())
            functions.lsl_append_child_value(parent, element.name.constData(), element.value.constData());
        else
            append(functions, functions.lsl_append_child(parent, element.name.constData()), element.children);
    }
}

}  // namespace

StreamOutlet::StreamOutlet(const Functions &functions, const StreamDescription &description) : functions_(functions) {
    StreamInfo info = functions.lsl_create_streaminfo(description.name.constData(), description.type.constData(),
                                                      description.channelCount, irregularRate, description.format,
                                                      description.sourceId.constData());
    if (!info)
        return;
    append(functions, functions.lsl_get_desc(info), description.elements);
    outlet_ = functions.lsl_create_outlet(info, defaultChunkSize, maxBufferedLength);
    functions.lsl_destroy_streaminfo(info);
}

StreamOutlet::~StreamOutlet() {
    if (outlet_)
        functions_.lsl_destroy_outlet(outlet_);
}

void StreamOutlet::push(const double *values, double time, Sending sending) const {
    functions_.lsl_push_sample_dtp(outlet_, values, time, sending == Sending::Now ? pushThrough : 0);
}

void StreamOutlet::push(const QByteArray &text, double time) const {
    const char *value = text.constData();
    functions_.lsl_push_sample_strtp(outlet_, &value, time, pushThrough);
}
