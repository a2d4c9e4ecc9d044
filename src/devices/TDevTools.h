#pragma once

#include "devices/IDevice.h"

// Commands that steer a run rather than a chip: delay, pause, stop, counter, jump, external process,
// running another configuration, CRC calculation and the choice of the programmer.
class TDevTools : public IDevice {
    Q_OBJECT
public:
    TDevTools(const QString& code, const TData& param);
    static IDevice* Instance(const QString& code, const TData& param);

    static QStringList getCmdList();
    static bool isCmdTools(const QString& code);

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

    // The first command of the record's configuration (id_cfg), or -1.
    static int cmdJampDefault(const TData& param);
};
