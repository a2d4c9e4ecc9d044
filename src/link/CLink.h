#pragma once

// Where a fresh installation expects its programmer: the simulator's default link, so that the
// simulator started without options and the application with default settings find each other.
namespace CLink {
const char* const simLinkDefault = "/tmp/tarvelix-sim";
const char* const simTypeName = "Simulator";
const char* const simTypeFile = "sim.cfg";
const char* const simProgName = "Simulator";
} // namespace CLink
