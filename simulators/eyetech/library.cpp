#include "eyetech/library.h"

#include "eyetech/results.h"

#include <cstring>

namespace sim::eyetech {

namespace {

constexpr char version[] = "simulated 1";

}  // namespace

Library &Library::instance() {
    static auto *const library = new Library;
    return *library;
}

int Library::QLAPI_GetVersion(int size, char *buffer) {
    if (buffer == nullptr)
        return BadArgument;
    if (size < static_cast<int>(sizeof version))
        return BufferTooSmall;
    std::memcpy(buffer, version, sizeof version);
    return Ok;
}

int Library::QLAPI_ExportSettings(int settings) {
    const std::lock_guard lock(mutex_);
    return transfer(&apiSettings_, container(settings));
}

int Library::QLAPI_ImportSettings(int settings) {
    const std::lock_guard lock(mutex_);
    return transfer(container(settings), &apiSettings_);
}

Options Library::options() {
    const std::lock_guard lock(mutex_);
    return options_;
}

}  // namespace sim::eyetech
