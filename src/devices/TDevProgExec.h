#pragma once

#include "devices/IDeviceExec.h"

// Runs one programmer command: one packet to the programmer (auto-detection: a short dialogue).
class TDevProgExec : public IDeviceExec {
    Q_OBJECT
public:
    // Packet command bytes of the programmer.
    enum : unsigned char {
        CmdLED = 0x83,
        CmdSetDevice = 0x84,
        CmdLeave = 0x85,
        CmdReset = 0x86,
        CmdGenerator = 0x87,
        CmdSetIO = 0x88,
        CmdSetVcc = 0x89,
        CmdSetVpp = 0x8A,
        CmdSetVIcc = 0x8B,
        CmdSetVIpp = 0x8C,
    };
    // LED states.
    enum : unsigned char { LedIdle = 0, LedSelected = 1, LedError = 2 };

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
