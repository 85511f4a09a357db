#pragma once

/// The exact bytes that are sent over the connection to a GazePoint server.
namespace wire {

constexpr char enableData[] =
    "<SET ID=\"ENABLE_SEND_CURSOR\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_EYE_RIGHT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_EYE_LEFT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_CURSOR\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_PUPIL_LEFT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_PUPIL_RIGHT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_POG_FIX\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_POG_LEFT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_POG_RIGHT\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_PUPILMM\" STATE=\"1\" />\r\n"
    "<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />\r\n";
constexpr char disableData[] = "<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />\r\n";
constexpr char calibrate[] =
    "<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />\r\n"
    "<SET ID=\"CALIBRATE_START\" STATE=\"1\" />\r\n";

constexpr char askScreenSize[] = "<GET ID=\"SCREEN_SIZE\" />\r\n";
constexpr char screenSize[] = "<ACK ID=\"SCREEN_SIZE\" X=\"0\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\" />\r\n";

}  // namespace wire
