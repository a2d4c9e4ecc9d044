#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

// The editing side of the AVR family (serial programming over SPI): flash and EEPROM spaces, fuse and
// lock bytes, calibration bytes, and the set-device payload.
class TDevAVR8_SPI : public IDevice {
    Q_OBJECT
public:
    TDevAVR8_SPI(const QString& code, const TData& param);
    static IDevice* Instance(const QString& code, const TData& param);

    static QStringList getCmdList();
    // The family's commands in the order offered; the editing side and the executor both follow it.
    // Memory spaces: 0 flash, 1 EEPROM.
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
    QString getNotSupportedText(const QString& code) const override;

private:
    void spaceRange(const TCmdRow& row, qint64& begin, qint64& size) const;
    // The commands whose algorithm the part's description names; the catalogue leaves out an operation
    // whose serial programming instruction none of the family's algorithms sends correctly.
    QStringList offeredCmdList() const;
    static QString algKey(const QString& code);
    // The catalogue default of the byte group a command edits (fuses, lock bits, calibration); empty for
    // other commands.
    static QString bytesGroup(const QString& code);
    QString bytesDefault(const QString& code) const;
    // The key of the byte group's form description.
    static QString bytesConfig(const QString& code);
    bool checkBytes(const QString& code, const TData& p) const;

    const QStringList cmdList;
};
