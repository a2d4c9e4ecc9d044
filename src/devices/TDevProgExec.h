#pragma once

#include "devices/IDeviceExec.h"

// Runs one programmer command: one packet to the programmer (auto-detection: a short dialogue).
class TDevProgExec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDevProgExec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;

    bool showLED(TSerialPort& port, unsigned char state);
    bool reset(TSerialPort& port, int duration);
    bool leave(TSerialPort& port);

    // Payloads, kept apart from the port so they can be checked byte by byte.
    static QByteArray payloadVolt(double volts);
    static QByteArray payloadVIcc(double volts, double current, bool ocp);
    static QByteArray payloadVIpp(double volts, double current, bool ocp);
    static QByteArray payloadReset(int duration);
    static QByteArray payloadGenerator(unsigned int freq, unsigned int duty);

private:
    bool send(TSerialPort& port, unsigned char cmd, QByteArray payload);
    bool execSetDevice(TSerialPort& port);
    bool execAutoDetect(TSerialPort& port, bool& finish);
};
