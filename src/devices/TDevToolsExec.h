#pragma once

#include "devices/IDeviceExec.h"

#include <atomic>

// Runs one tools command.
class TDevToolsExec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDevToolsExec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;

    // Whether "process" may start programs. A project can come from anyone, so the command-line runner
    // forbids it unless the user allows it; the main window asks the user instead.
    static void setProcessAllowed(bool allowed);
    static bool isProcessAllowed();

private:
    bool execDelay();
    bool execPause();
    bool execJamp(int& idCfg, int& idCmd);
    bool execCounter(bool& finish);
    bool execProcess();
    bool execExecute();
    bool execCalcCRC();
    bool execSetProg(TSerialPort& port);
    bool waitForPort(TSerialPort& port, const QString& portName);
    void processGUI(int& last, qint64 done, qint64 total);

    static std::atomic<bool> processAllowed;
};
