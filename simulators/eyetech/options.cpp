#include "eyetech/options.h"

namespace sim::eyetech {

namespace {

constexpr double maxTime_s = 86400;

}  // namespace

Options Options::fromEnvironment() {
    using namespace environment;
    Options options;
    options.deviceCount = integer("OCELA_SIM_EYETECH_DEVICES", options.deviceCount, 0, 2);
    options.appearAfter_s = number("OCELA_SIM_EYETECH_APPEAR_AFTER", 0, 0, maxTime_s);
    options.unplugAfter_s = number("OCELA_SIM_EYETECH_UNPLUG_AFTER", 0, 0, maxTime_s);
    options.replugAfter_s = number("OCELA_SIM_EYETECH_REPLUG_AFTER", 0, 0, maxTime_s);
    options.unpluggedFile = text("OCELA_SIM_EYETECH_UNPLUGGED_FILE").toStdString();
    options.enumerateError = anyInteger("OCELA_SIM_EYETECH_ENUMERATE_ERROR");
    options.statusError = anyInteger("OCELA_SIM_EYETECH_STATUS_ERROR");
    options.startError = anyInteger("OCELA_SIM_EYETECH_START_ERROR");
    options.frameBlocksMs = integer("OCELA_SIM_EYETECH_FRAME_BLOCKS_MS", 0, 0, 60000);
    options.rateHz = number("OCELA_SIM_EYETECH_RATE", options.rateHz, 1, 1000);
    options.image = imageSize("OCELA_SIM_EYETECH_IMAGE", options.image);
    options.reportedImage = size("OCELA_SIM_EYETECH_TOLD_IMAGE");
    options.faults = words("OCELA_SIM_EYETECH_FAULT", {"target-fails-once", "target-fails", "distracted",
                                                       "small-target-buffer", "null-image", "new-ids"});
    return options;
}

}  // namespace sim::eyetech
