#include "api/v1/sample_texts.h"

#include "api/sample_json.h"
#include "core/eyetracker_interface.h"

#include <algorithm>

using namespace api_v1;

namespace {

constexpr int typicalSampleBytes = 640;

QByteArray flag(bool value) {
    return value ? QByteArrayLiteral("true") : QByteArrayLiteral("false");
}

void append(QByteArray &text, const ProgramRun &run, const NumberedSample &entry) {
    const SampleJson json(entry.sample);
    text.append(json.data(), json.size() - 1);  // without the closing brace
    text.append(R"(,"number":)").append(QByteArray::number(entry.number));
    text.append(R"(,"time":)").append(run.timeText(entry.arrival));
    text.append(R"(,"l_valid":)").append(flag(entry.sample.l_valid));
    text.append(R"(,"r_valid":)").append(flag(entry.sample.r_valid)).append('}');
}

}  // namespace

SampleText api_v1::sampleText(const ProgramRun &run, const SamplesSince &samples, int maxCount) {
    SampleText text;
    text.missedCount = samples.missedCount;
    text.count = static_cast<int>(std::min<std::size_t>(samples.samples.size(), static_cast<std::size_t>(maxCount)));
    text.json.reserve(text.count * typicalSampleBytes);
    for (int i = 0; i < text.count; ++i) {
        const NumberedSample &entry = samples.samples[static_cast<std::size_t>(i)];
        if (i == 0)
            text.firstNumber = entry.number;
        else
            text.json.append(',');
        append(text.json, run, entry);
        text.lastNumber = entry.number;
    }
    return text;
}

SampleText SampleTexts::after(const EyetrackerInterface &tracker, quint64 number) {
    return cached_.with([&](Cached &cached) {
        const bool fits = cached.tracker == &tracker && cached.after == number && cached.text.count > 0;
        if (!fits)
            cached = {&tracker, number, sampleText(run_, tracker.samplesSince(number), maxCount)};
        return cached.text;
    });
}
