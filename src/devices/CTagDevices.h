#pragma once

// Names of the command families, as description files ("gui_type") and the catalogue's factory know them.
namespace CTagDevices {
inline constexpr const char* Tools = "Tools";
inline constexpr const char* Prog = "Prog";
inline constexpr const char* Dev24 = "Dev24";
inline constexpr const char* Dev25 = "Dev25";
inline constexpr const char* DevAVR8_SPI = "DevAVR8_SPI";
} // namespace CTagDevices
