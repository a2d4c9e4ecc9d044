#pragma once

#include "devices/IDeviceExec.h"

// Runs one command of the 25-series family against the programmer.
class TDev25Exec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDev25Exec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;
    // The three identification bytes as hex text.
    bool execReadSignature(TSerialPort& port, QString& signature) override;

    bool setCLK(TSerialPort& port);
    bool erase(TSerialPort& port);
    bool testEmpty(TSerialPort& port);
    bool eraseBlocks(TSerialPort& port);
    bool testEmptyBlocks(TSerialPort& port);
    bool readStatusReg(TSerialPort& port);
    bool writeStatusReg(TSerialPort& port);
    bool verifyStatusReg(TSerialPort& port);
    bool eraseSecurityReg(TSerialPort& port);
    bool testEmptySecurityReg(TSerialPort& port);
    bool readUniqueID(TSerialPort& port);
    bool leave(TSerialPort& port);

private:
    // The three memories that the read, write and verify commands run over.
    enum class Space { Flash, Security, SFDP };

    bool prepare(TSerialPort& port);
    unsigned alg(const char* key) const;
    TMemorySpace memory(TSerialPort& port, Space space);
    // A packet builder's failure: its text (none for an algorithm it does not have).
    bool fail(const QString& err, const char* algKey);
    // Erases count blocks of block bytes from block first on with opcode, with progress.
    bool eraseBlockRun(TSerialPort& port, unsigned char opcode, qint64 first, qint64 count, qint64 block);

    bool statusRegData(QByteArray& data);
};
