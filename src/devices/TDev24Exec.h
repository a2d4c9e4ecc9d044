#pragma once

#include "devices/IDeviceExec.h"

#include <functional>

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
    bool writeChar(TSerialPort& port);
    bool verifyChar(TSerialPort& port);
    bool readData(TSerialPort& port);
    bool writeData(TSerialPort& port);
    bool verifyData(TSerialPort& port);
    bool readFile(TSerialPort& port);
    bool writeFile(TSerialPort& port);
    bool verifyFile(TSerialPort& port);
    bool leave(TSerialPort& port);

    // Emits the progress when its percentage changed.
    void processGUI(int& lastPercent, qint64 addr, qint64 end);

private:
    using Source = std::function<QByteArray(qint64 addr, int len)>;
    using Sink = std::function<bool(qint64 addr, const QByteArray& data)>;

    bool prepare(TSerialPort& port);
    bool readPiece(TSerialPort& port, qint64 addr, int len, QByteArray& out);
    bool writeRange(TSerialPort& port, qint64 addr, qint64 end, const Source& source);
    bool readRange(TSerialPort& port, qint64 addr, qint64 end, const Sink& sink);
    bool verifyRange(TSerialPort& port, qint64 addr, qint64 end, const Source& expected);

    TData dev;
    int maxData = 0;
    int page = 0;
    unsigned char addrSize = 0;
};
