#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

// Three-wire (Microwire) EEPROMs of the 93 series. Unfinished: the catalogue never makes this family, and
// its executor has only the clock and the erase; the other commands wait for their packets.
class TDev93C : public IDevice {
    Q_OBJECT
public:
    TDev93C(const QString& code, const TData& param);
    static IDevice* Instance(const QString& code, const TData& param);

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

    // The family's commands in the order offered.
    static const TCmdRows& cmdTable();

private:
    const QStringList cmdList;
};
