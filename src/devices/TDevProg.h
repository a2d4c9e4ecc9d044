#pragma once

#include "devices/IDevice.h"

class TProg;

// The programmer's own commands: supplies and current limits, pin states, reset pulse, generator,
// choice of the target device and its automatic detection.
class TDevProg : public IDevice {
    Q_OBJECT
public:
    TDevProg(const QString& code, const TData& param);
    static IDevice* Instance(const QString& code, const TData& param);

    static QStringList getCmdList();
    // The commands this family serves, whatever the programmer (the project filters by programmer).
    static bool isCmdProg(const QString& code);

    bool supportCmd(const QString& code) const override;
    QStringList getSupportCmdList() const override;
    void getDefaultCmdParam(TData& param) override;
    QString getViewCmdName(const TData& param) const override;
    QString getViewCmdParam(const TData& param, QWidget* parent) const override;
    QWidget* getFormCmdParam(const TData& param) const override;
    TData getChangedParam(const TData& param) const override;
    void normCmdParam(TData& param) override;
    bool checkCmdParam(const TData& param) override;
    bool checkCmdSetDeviceParam(const TData& param) override;
    void getDefaultParamCmdSetDevice(TData& param) override;
    QWidget* getWgtCmdSetDeviceParam(const TData& param) override;
    QByteArray getCmdSetDeviceExec(const TData& param) override;
    IDeviceExec* createExecObject(const TData& param) override;

    static void cmdSetVCCDefault(TProg* prog, TData& p);
    static bool cmdSetVCCCheck(TProg* prog, const TData& p);
    static QString cmdSetVCCView(const TData& p);
    static void cmdSetVPPDefault(TProg* prog, TData& p);
    static bool cmdSetVPPCheck(TProg* prog, const TData& p);
    static QString cmdSetVPPView(const TData& p);
    static void cmdSetVICCDefault(TProg* prog, TData& p);
    static bool cmdSetVICCCheck(TProg* prog, const TData& p);
    static QString cmdSetVICCView(const TData& p);
    static void cmdSetVIPPDefault(TProg* prog, TData& p);
    static bool cmdSetVIPPCheck(TProg* prog, const TData& p);
    static QString cmdSetVIPPView(const TData& p);
    static void cmdResetDefault(TProg* prog, TData& p);
    static bool cmdResetCheck(TProg* prog, const TData& p);
    static QString cmdResetView(const TData& p);
    static void cmdGeneratorDefault(TProg* prog, TData& p);
    static bool cmdGeneratorCheck(TProg* prog, const TData& p);
    static QString cmdGeneratorView(const TData& p);
    static void cmdAutoDetectDefault(TData& p);
    static bool cmdAutoDetectCheck(const TData& p);
    static QString cmdAutoDetectView(const TData& p);

    // The programmer description bound to the command that the record belongs to (by its id_cmd).
    static TProg* progOf(const TData& p);
};
