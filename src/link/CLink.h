#pragma once

// Where a fresh installation expects its programmer: the simulator's default link, so that the
// simulator started without options and the application with default settings find each other.
namespace CLink {
const char* const simLinkDefault = "/tmp/tarvelix-sim";
const char* const simTypeName = "Simulator";
const char* const simTypeFile = "sim.cfg";
const char* const simProgName = "Simulator";
// Beside it, an Arduino Nano or Uno with the Tarvelix firmware on the usual port of its USB bridge.
const char* const nanoTypeName = "Arduino Nano";
const char* const nanoTypeFile = "arduino-nano.cfg";
const char* const nanoProgName = "Arduino Nano";
const char* const nanoPortDefault = "/dev/ttyUSB0";
} // namespace CLink
