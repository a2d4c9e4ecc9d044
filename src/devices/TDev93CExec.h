#pragma once

#include "devices/IDeviceExec.h"

// Runs the 93-series commands that have packets (clock, erase); the rest fail until they are designed.
class TDev93CExec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDev93CExec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;
    bool execReadSignature(TSerialPort& port, QString& signature) override;

    bool execSetCLK(TSerialPort& port);
    bool execErase(TSerialPort& port);
    bool execLeave(TSerialPort& port);

private:
    // The one operation behind every read, write and verify command for now.
    bool execNotDone(TSerialPort& port);
};
