#pragma once

#include "project/CTagCmdParam.h"

// Keys of the project file and of the model's own records.
namespace CTagPrj {
inline constexpr const char* version = "version";
inline constexpr const char* configurations = "configurations";
inline constexpr const char* prj_file = "prj_file";
inline constexpr const char* work_path = "work_path";
} // namespace CTagPrj

namespace CTagCfg {
inline constexpr const char* name = "name";
inline constexpr const char* description = "description";
inline constexpr const char* commands = "commands";
inline constexpr const char* cfg_status = "cfg_status";
} // namespace CTagCfg

// The model keys every command record carries besides its family's parameters.
namespace CTagCmd {
inline constexpr const char* id_cmd = "id_cmd";
inline constexpr const char* id_cfg = "id_cfg";
inline constexpr const char* status = "status";
inline constexpr const char* cmd = "cmd";
inline constexpr const char* valid_dev = "valid_dev";
inline constexpr const char* valid_param = "valid_param";
inline constexpr const char* pos = "pos";
} // namespace CTagCmd
