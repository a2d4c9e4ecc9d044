#pragma once

// The parameter keys of the commands, a group per family and command (the model keys every record
// carries are CTagCmd's, in project/CTagPrj.h).

// ---- the shared handling of reads, writes and verifies, leave and clock ----
namespace CTagCmdRWV {
inline constexpr const char* addr_device = "addr_device";
inline constexpr const char* count = "count";
inline constexpr const char* fill_char = "fill_char";
inline constexpr const char* data = "data";
inline constexpr const char* file = "file";
inline constexpr const char* addr_file = "addr_file";
inline constexpr const char* format = "format";
} // namespace CTagCmdRWV
namespace CTagCmdLeave {
inline constexpr const char* state = "state";
inline constexpr const char* duration = "duration";
} // namespace CTagCmdLeave
namespace CTagCmdSetCLK {
inline constexpr const char* clk = "clk";
}

// ---- the chip families' own commands ----
// The bytes of a register command: status and security registers, unique ID, fuses, lock bits and
// calibration, as hex text (the security registers' mask as a number).
namespace CTagCmdRegister {
inline constexpr const char* data = "data";
}
namespace CTagCmdDev25EraseBlocks {
inline constexpr const char* size = "size";
inline constexpr const char* begin = "begin";
inline constexpr const char* count = "count";
} // namespace CTagCmdDev25EraseBlocks

// ---- the programmer's commands ----
namespace CTagCmdProgSetVCC {
inline constexpr const char* vcc = "vcc";
}
namespace CTagCmdProgSetVPP {
inline constexpr const char* vpp = "vpp";
}
namespace CTagCmdProgSetVICC {
inline constexpr const char* vcc = "vcc";
inline constexpr const char* icc = "icc";
inline constexpr const char* ocp = "ocp";
} // namespace CTagCmdProgSetVICC
namespace CTagCmdProgSetVIPP {
inline constexpr const char* vpp = "vpp";
inline constexpr const char* ipp = "ipp";
inline constexpr const char* ocp = "ocp";
} // namespace CTagCmdProgSetVIPP
namespace CTagCmdProgSetIO {
inline constexpr const char* state = "state";
}
namespace CTagCmdProgReset {
inline constexpr const char* duration = "duration";
}
namespace CTagCmdProgGenerator {
inline constexpr const char* freq = "freq";
inline constexpr const char* duty_cycle = "duty_cycle";
} // namespace CTagCmdProgGenerator
namespace CTagCmdProgSetDevice {
inline constexpr const char* device = "device";
inline constexpr const char* file = "file";
} // namespace CTagCmdProgSetDevice
namespace CTagCmdProgAutoDetect {
inline constexpr const char* name = "name";
inline constexpr const char* route = "route";
inline constexpr const char* stop = "stop";
inline constexpr const char* execute = "execute";
} // namespace CTagCmdProgAutoDetect

// ---- the tools ----
namespace CTagCmdToolsJamp {
inline constexpr const char* to_cmd = "to_cmd";
}
namespace CTagCmdToolsExecute {
inline constexpr const char* cfg = "cfg";
}
namespace CTagCmdToolsDelay {
inline constexpr const char* value = "value";
}
namespace CTagCmdToolsCounter {
inline constexpr const char* value = "value";
inline constexpr const char* limit = "limit";
inline constexpr const char* delta = "delta";
} // namespace CTagCmdToolsCounter
namespace CTagCmdToolsProcess {
inline constexpr const char* file = "file";
}
namespace CTagCmdToolsCalcCRC {
inline constexpr const char* crc_name = "crc_name";
inline constexpr const char* file = "file";
inline constexpr const char* format = "format";
inline constexpr const char* addr = "addr";
inline constexpr const char* count = "count";
inline constexpr const char* fill = "fill";
} // namespace CTagCmdToolsCalcCRC
namespace CTagCmdToolsSetProg {
inline constexpr const char* prog = "prog";
inline constexpr const char* alt_enabled = "alt_enabled";
inline constexpr const char* alt_port = "alt_port";
} // namespace CTagCmdToolsSetProg
