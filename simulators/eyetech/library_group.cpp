#include "eyetech/library.h"
#include "eyetech/results.h"

namespace sim::eyetech {

int Library::QLDeviceGroup_Create(int *group) {
    if (group == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    *group = ++lastId_;
    groups_[*group];
    return Ok;
}

int Library::QLDeviceGroup_AddDevice(int group, int device) {
    const bool known = unit(device) != nullptr;
    const std::lock_guard lock(mutex_);
    const auto found = groups_.find(group);
    if (!known || found == groups_.end())
        return BadArgument;
    found->second.insert(device);
    return Ok;
}

int Library::QLDeviceGroup_RemoveDevice(int group, int device) {
    const std::lock_guard lock(mutex_);
    const auto found = groups_.find(group);
    if (found == groups_.end())
        return BadArgument;
    return found->second.erase(device) > 0 ? Ok : NotFound;
}

int Library::QLDeviceGroup_Enumerate(int group, int *count, int *devices) {
    const std::lock_guard lock(mutex_);
    const auto found = groups_.find(group);
    return found != groups_.end() ? listDevices(found->second, count, devices) : BadArgument;
}

/// Waits for one frame of each device of the group, in the order of their ids.
int Library::QLDeviceGroup_GetFrame(int group, int waitMs, int *count, quicklink2::QLFrameRecord *frames) {
    std::array<int, 2> devices{};
    int members = static_cast<int>(devices.size());
    if (const int result = QLDeviceGroup_Enumerate(group, &members, devices.data()); result != Ok)
        return result;
    if (count == nullptr || frames == nullptr)
        return BadArgument;
    if (std::exchange(*count, members) < members)
        return BufferTooSmall;
    for (int i = 0; i < members; ++i) {
        const int result = QLDevice_GetFrame(devices[static_cast<std::size_t>(i)], waitMs, frames + i);
        if (result != Ok)
            return result;
    }
    return Ok;
}

}  // namespace sim::eyetech
