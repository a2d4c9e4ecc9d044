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

protected:
    // Identification, fuses, lock bits and calibration.
    void ownDefaults(const TCmdRow& row, TData& p) override;
    QString ownView(const TCmdRow& row, const TData& p) const override;
    TFormCmd* ownForm(const TCmdRow& row, const TData& p) const override;
    bool ownCheck(const TCmdRow& row, const TData& p) const override;

private:
    // The commands whose algorithm the part's description names; the catalogue leaves out an operation
    // whose serial programming instruction none of the family's algorithms sends correctly.
    static QStringList offeredCmdList(const TData& devParam);
    static QString algKey(const QString& code);
    // The catalogue default of the byte group a command edits (fuses, lock bits, calibration); empty for
    // other commands.
    static QString bytesGroup(const QString& code);
    QString bytesDefault(const QString& code) const;
    // The key of the byte group's form description.
    static QString bytesConfig(const QString& code);
    bool checkBytes(const QString& code, const TData& p) const;
};
