#include "asee/options.h"

namespace sim::asee_pro {

Options Options::fromEnvironment() {
    Options options;
    options.rateHz = environment::number("OCELA_SIM_ASEE_RATE", options.rateHz, 1, 5000);
    options.imageRateHz = environment::number("OCELA_SIM_ASEE_IMAGE_RATE", options.imageRateHz, 0, 1000);
    options.image = environment::imageSize("OCELA_SIM_ASEE_IMAGE", options.image);
    options.reportedImage = environment::size("OCELA_SIM_ASEE_TOLD_IMAGE");
    if (!environment::text("OCELA_SIM_ASEE_TOLD_BYTES").isEmpty())
        options.reportedSizeBytes = environment::anyInteger("OCELA_SIM_ASEE_TOLD_BYTES");
    options.point_s = environment::number("OCELA_SIM_ASEE_POINT_MS", options.point_s * 1000, 10, 60000) / 1000;
    options.connectError = environment::anyInteger("OCELA_SIM_ASEE_CONNECT_ERROR");
    options.startError = environment::anyInteger("OCELA_SIM_ASEE_START_ERROR");
    options.lateCallbacksMs = environment::integer("OCELA_SIM_ASEE_LATE_CALLBACKS_MS", 0, 0, 60000);
    options.faults =
        environment::words("OCELA_SIM_ASEE_FAULT", {"refuse-coefficients", "compute", "refuse-point", "endless-point",
                                                    "instant-point", "null-image", "null-records"});
    return options;
}

}  // namespace sim::asee_pro
