#pragma once

#include "devices/TDevFamily.h"

// The editing side of the AVR family (serial programming over SPI): flash and EEPROM spaces, fuse and
// lock bytes, calibration bytes, and the set-device payload.
class TDevAVR8_SPI : public TDevFamily {
    Q_OBJECT
public:
    TDevAVR8_SPI(const QString& code, const TData& param);

    // Every command of the family, offered or not; a part offers those its algorithms serve.
    static QStringList getCmdList();
    // Memory spaces: 0 flash, 1 EEPROM.
    static const TCmdRows& cmdTable();

    IDeviceExec* createExecObject(const TData& param) override;
    QString getNotSupportedText(const QString& code) const override;

private:
    // The commands whose algorithm the part's description names; the catalogue leaves out an operation
    // whose serial programming instruction none of the family's algorithms sends correctly.
    static QStringList offeredCmdList(const TData& devParam);
    static QString algKey(const QString& code);
};
