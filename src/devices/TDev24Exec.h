#pragma once

#include "devices/IDeviceExec.h"

// Runs one command of the 24-series family against the programmer.
class TDev24CExec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDev24CExec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;
    // The family has no identification: nothing is read and the call succeeds.
    bool execReadSignature(TSerialPort& port, QString& signature) override;

    bool setAddress(TSerialPort& port);
    bool setCLK(TSerialPort& port);
    bool erase(TSerialPort& port);
    bool testEmpty(TSerialPort& port);
    bool leave(TSerialPort& port);

protected:
    // The family's data reads are only shown, not kept in the command.
    bool showDataRead(const QString& hex) override;

private:
    bool prepare(TSerialPort& port);
    // The EEPROM array: page-sized writes, so that no write crosses a page of the chip.
    TMemorySpace memory(TSerialPort& port);

    int page = 0;
    unsigned char addrSize = 0;
};
