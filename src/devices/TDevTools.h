#pragma once

#include "devices/TCmdFamily.h"
#include "project/CTagCmdParam.h"
#include "project/CTagPrj.h"

#include <QVariantList>

class QComboBox;
class TFormCmd;

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
