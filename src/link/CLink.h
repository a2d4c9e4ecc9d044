#pragma once

// Where a fresh installation expects its programmer: the simulator's default link, so that the
// simulator started without options and the application with default settings find each other.
namespace CLink {
const char* const simLinkDefault = "/tmp/tarvelix-sim";
const char* const simTypeName = "Simulator";
const char* const simTypeFile = "sim.cfg";
const char* const simProgName = "Simulator";

// Programmer hardware that people already own, served through a bridge; a fresh installation knows
// their types, and the user adds each board with its port.
struct TypeEntry {
    const char* name;
    const char* file;
};
const TypeEntry bridgeTypes[] = {{"serprog", "serprog.cfg"}, {"Arduino as ISP", "arduino-isp.cfg"},
                                   {"Bus Pirate", "buspirate.cfg"}};
// Beside it, an Arduino Nano or Uno with the Tarvelix firmware on the usual port of its USB bridge.
const char* const nanoTypeName = "Arduino Nano";
const char* const nanoTypeFile = "arduino-nano.cfg";
const char* const nanoProgName = "Arduino Nano";
const char* const nanoPortDefault = "/dev/ttyUSB0";
} // namespace CLink
