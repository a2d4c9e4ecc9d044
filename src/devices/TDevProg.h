#pragma once

#include "devices/TCmdFamily.h"
#include "project/CTagCmdParam.h"
#include "project/CTagPrj.h"

class TFormCmd;
class TProg;

// The programmer's own commands: supplies and current limits, pin states, reset pulse, generator,
// choice of the target device and its automatic detection.
class TDevProg : public TCmdFamily {
    Q_OBJECT
public:
    TDevProg(const QString& code, const TData& param);

    static QStringList getCmdList();
    // The commands this family serves, whatever the programmer (the project filters by programmer).
    static bool isCmdProg(const QString& code);

    // The programmer commands in the order offered, each of its own kind.
    static const TCmdRows& cmdTable();
    IDeviceExec* createExecObject(const TData& param) override;

    static void cmdResetDefault(TProg* prog, TData& p);
    static bool cmdResetCheck(TProg* prog, const TData& p);
    static QString cmdResetView(const TData& p);
    static void cmdGeneratorDefault(TProg* prog, TData& p);
    static bool cmdGeneratorCheck(TProg* prog, const TData& p);
    static QString cmdGeneratorView(const TData& p);
    static void cmdAutoDetectDefault(TData& p);
    static bool cmdAutoDetectCheck(const TData& p);
    static QString cmdAutoDetectView(const TData& p);

    // Forms: ranges and defaults come from the programmer description (none without a programmer).
    static TFormCmd* cmdSetIOForm(TProg* prog, const TData& p);
    static TFormCmd* cmdResetForm(TProg* prog, const TData& p);
    static TFormCmd* cmdGeneratorForm(TProg* prog, const TData& p);
    static TFormCmd* cmdSetDeviceForm(const TData& p);
    static TFormCmd* cmdAutoDetectForm(const TData& p);

    // The rules the checks and the forms share.
    // Tenths of the value rounded to nearest (halves away from zero) within the likewise rounded range.
    static bool isTenthsInRange(const QVariant& value, double min, double max);
    // No pulse, or a pulse of min..max ms of either polarity.
    static bool isResetInRange(int duration, int min, int max);

    // The programmer description bound to the command that the record belongs to (by its id_cmd).
    static TProg* progOf(const TData& p);
    // The device object bound to that command (the one its configuration's set_device chose).
    static IDevice* deviceOf(const TData& p);
};
