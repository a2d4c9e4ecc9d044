#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

class TFormCmd;

// The editing side of the 25-series SPI flash family: its commands, their defaults, checks and
// one-line views, and the set-device payload.
class TDev25 : public IDevice {
    Q_OBJECT
public:
    TDev25(const QString& code, const TData& param);
    static IDevice* Instance(const QString& code, const TData& param);

    static QStringList getCmdList();
    // The family's commands in the order offered; the editing side and the executor both follow it.
    // Memory spaces: those of Region.
    static const TCmdRows& cmdTable();

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

    static QString cmdEraseBlocksView(const TData& p);
    static QString cmdSecurityRegView(const TData& p);
    // The check list of the security registers' form, one line per register.
    static QStringList getSecurityRegLines(int registers);

private:
    // The register spaces are their own address ranges starting at 0.
    enum class Region { Flash, Security, SFDP };
    void regionRange(Region region, qint64& begin, qint64& size) const;
    qint64 devValue(const char* key) const;
    bool checkEraseBlocks(const TData& p) const;
    bool checkStatusReg(const TData& p) const;
    TFormCmd* formEraseBlocks(const TData& p) const;

    QStringList cmdList;
};
