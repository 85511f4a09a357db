#include "scripted_lsl.h"

#include "streams/lsl_functions.h"

#include <chrono>
#include <memory>

namespace lsl {

struct ElementHandle {
    ScriptedLsl::Stream *stream = nullptr;
    std::string path;
};

struct StreamInfoHandle {
    ScriptedLsl::Stream stream;
    std::vector<std::unique_ptr<ElementHandle>> elements;

    Element add(const std::string &path) {
        elements.push_back(std::make_unique<ElementHandle>(ElementHandle{&stream, path}));
        return elements.back().get();
    }
};

struct OutletHandle {
    std::size_t index;
};

}  // namespace lsl

namespace {

ScriptedLsl &library() {
    return ScriptedLsl::instance();
}

/// The stream info that is being described. lsl_append_child() adds elements to it.
thread_local lsl::StreamInfo currentInfo = nullptr;

int record(lsl::Outlet outlet, ScriptedLsl::Sample sample) {
    std::unique_lock<std::mutex> lock(library().mutex);
    ++library().waitingCount;
    library().changed.wait(lock, [] { return !library().isBlocked; });
    --library().waitingCount;
    library().opened[outlet->index].samples.push_back(std::move(sample));
    return 0;
}

}  // namespace

ScriptedLsl &ScriptedLsl::instance() {
    static ScriptedLsl library;
    return library;
}

void ScriptedLsl::reset() {
    const std::lock_guard<std::mutex> lock(mutex);
    opened.clear();
    clockOffset = 0;
    refusesStreams = false;
}

std::vector<ScriptedLsl::Stream> ScriptedLsl::streams() {
    const std::lock_guard<std::mutex> lock(mutex);
    return opened;
}

void ScriptedLsl::setBlocked(bool blocked) {
    const std::lock_guard<std::mutex> lock(mutex);
    isBlocked = blocked;
    changed.notify_all();
}

bool ScriptedLsl::isWaiting() {
    const std::lock_guard<std::mutex> lock(mutex);
    return isBlocked && waitingCount > 0;
}

#define OCELA_DECLARE(result, name, parameters) extern "C" result name parameters;
OCELA_LSL_FUNCTIONS(OCELA_DECLARE)

std::int32_t lsl_library_version() {
    return 117;
}

double lsl_local_clock() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count() + library().clockOffset;
}

lsl::StreamInfo lsl_create_streaminfo(const char *name, const char *type, std::int32_t channelCount, double nominalRate,
                                      lsl::ChannelFormat format, const char *sourceId) {
    currentInfo = new lsl::StreamInfoHandle;
    currentInfo->stream = {name, type, sourceId, channelCount, nominalRate, format, {}, {}, true};
    return currentInfo;
}

void lsl_destroy_streaminfo(lsl::StreamInfo info) {
    delete info;
}

lsl::Element lsl_get_desc(lsl::StreamInfo info) {
    return info->add({});
}

lsl::Element lsl_append_child(lsl::Element parent, const char *name) {
    return currentInfo->add(parent->path + name + '/');
}

lsl::Element lsl_append_child_value(lsl::Element parent, const char *name, const char *value) {
    parent->stream->description.push_back(parent->path + name + '=' + value);
    return parent;
}

lsl::Outlet lsl_create_outlet(lsl::StreamInfo info, std::int32_t, std::int32_t) {
    if (library().refusesStreams)
        return nullptr;
    const std::lock_guard<std::mutex> lock(library().mutex);
    library().opened.push_back(info->stream);
    return new lsl::OutletHandle{library().opened.size() - 1};
}

void lsl_destroy_outlet(lsl::Outlet outlet) {
    {
        const std::lock_guard<std::mutex> lock(library().mutex);
        library().opened[outlet->index].isOpen = false;
    }
    delete outlet;
}

std::int32_t lsl_push_sample_dtp(lsl::Outlet outlet, const double *values, double time, std::int32_t pushThrough) {
    int count = 0;
    {
        const std::lock_guard<std::mutex> lock(library().mutex);
        count = library().opened[outlet->index].channelCount;
    }
    return record(outlet, {{values, values + count}, {}, time, pushThrough != 0});
}

std::int32_t lsl_push_sample_strtp(lsl::Outlet outlet, const char **values, double time, std::int32_t pushThrough) {
    return record(outlet, {{}, *values, time, pushThrough != 0});
}
