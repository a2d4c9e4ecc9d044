#pragma once

#include "devices/TCmdFamily.h"
#include "project/CTagPrj.h"

#include <QVariantList>

class QComboBox;
class TFormCmd;

// Parameter keys of the tools commands.
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
inline constexpr const char* alt_enabled = "alt_enabled";
inline constexpr const char* alt_port = "alt_port";
} // namespace CTagCmdToolsSetProg

// Commands that steer a run rather than a chip: delay, pause, stop, counter, jump, external process,
// running another configuration, CRC calculation and the choice of the programmer.
class TDevTools : public TCmdFamily {
    Q_OBJECT
public:
    TDevTools(const QString& code, const TData& param);

    static QStringList getCmdList();
    static bool isCmdTools(const QString& code);

    // The tools commands in the order offered, each of its own kind.
    static const TCmdRows& cmdTable();
    IDeviceExec* createExecObject(const TData& param) override;

    // The first command of the record's configuration (id_cfg), or -1.
    static int cmdJampDefault(const TData& param);
    static constexpr int delayDef = 100;

    static TFormCmd* cmdDelayForm(const TData& p);
    static TFormCmd* cmdCounterForm(const TData& p);
    static TFormCmd* cmdJampForm(const TData& p);
    static TFormCmd* cmdProcessForm(const TData& p);
    static TFormCmd* cmdExecuteForm(const TData& p);
    static TFormCmd* cmdCalcCRCForm(const TData& p);
    static TFormCmd* cmdSetProgForm(const TData& p);
};
