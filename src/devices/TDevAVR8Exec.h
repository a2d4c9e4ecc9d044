#pragma once

#include "devices/IDeviceExec.h"
#include "devices/TDevAVR8Alg.h"

// Runs one command of the AVR family against the programmer.
class TDevAVR8Exec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDevAVR8Exec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;
    // The three signature bytes as hex text.
    bool execReadSignature(TSerialPort& port, QString& signature) override;

    bool setCLK(TSerialPort& port);
    bool leave(TSerialPort& port);
    bool erase(TSerialPort& port);
    bool testEmptyFlash(TSerialPort& port);
    bool testEmptyEEPROM(TSerialPort& port);
    bool readFuse(TSerialPort& port);
    bool writeFuse(TSerialPort& port);
    bool verifyFuse(TSerialPort& port);
    bool readLockBits(TSerialPort& port);
    bool writeLockBits(TSerialPort& port);
    bool verifyLockBits(TSerialPort& port);
    bool readOscCal(TSerialPort& port);

    // The wait byte of an operation whose catalogue keys start with prefix: polling, else the delay.
    static unsigned char waitByte(const TData& dev, const QString& prefix);

private:
    enum class Space { Flash, Eeprom };

    bool prepare(TSerialPort& port);
    int alg(const char* key) const;
    TMemorySpace memory(TSerialPort& port, Space space);
    bool testEmptySpace(TSerialPort& port, Space space);

    bool readFuseBytes(TSerialPort& port, QByteArray& read);
    bool readLockByte(TSerialPort& port, QByteArray& read);
    // Compares the command's data with what was read; id is the text of the mismatch.
    bool verifyBytes(const QByteArray& read, int id);

    TDevAVR8Alg::FlashState flashState;
};
