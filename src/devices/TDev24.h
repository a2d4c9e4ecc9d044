#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

// Two-wire (I2C) serial EEPROMs of the 24 series: one address space, page writes, a bus address set by
// the part's address pins.
class TDev24 : public IDevice {
    Q_OBJECT
public:
    TDev24(const QString& code, const TData& param);
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

    // "Address: A2A1A0", a pin the part does not use shown as "-".
    QString getViewSetAddress(const TData& param) const;

    // The family's commands in the order offered; the editing side and the executor both follow it.
    static const TCmdRows& cmdTable();

private:
    const QStringList cmdList;
};
