#pragma once

#include "app/TTypes.h"

#include <QObject>

#include <atomic>

class TSerialPort;

// The executing face of a command family: made for one command, run in the worker's thread.
class IDeviceExec : public QObject {
    Q_OBJECT
public:
    explicit IDeviceExec(const TData& param, QObject* parent = nullptr);
    ~IDeviceExec() override;

    // Runs the command. finish, idCfg and idCmd belong to the worker: an executor may end the run or
    // redirect it (stop, counter, jamp) and the worker continues from what it finds there.
    virtual bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) = 0;
    // Reads the device's identification for auto-detection.
    virtual bool execReadSignature(TSerialPort& port, QString& signature);

    QString getErrorText() const { return errorText; }
    void setErrorText(const QString& text) { errorText = text; }

    bool isOpenPort(TSerialPort& port);
    bool sendPackage(TSerialPort& port, unsigned char cmd, QByteArray& data);

signals:
    void signalEventText(TCodeExec code, QString text, QString info);
    void signalEventProc(int percent);
    // Only the commands that start other runs ("execute", "auto_detect") or wait ("pause") emit these.
    void signalExecuteFromCmd(int idCfg);
    void signalPauseFromCmd(int idCfg);

public slots:
    void slotStop() { stop = true; }
    void slotPauseReset() { pause = false; }

protected:
    bool isStop() const { return stop; }

    TData param;
    std::atomic<bool> stop{false};
    std::atomic<bool> pause{false};
    QString errorText;
};
