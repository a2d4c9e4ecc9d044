#pragma once

#include "devices/IDeviceExec.h"

#include <functional>

// Runs one command of the 25-series family against the programmer.
class TDev25Exec : public IDeviceExec {
    Q_OBJECT
public:
    explicit TDev25Exec(const TData& param, QObject* parent = nullptr);

    bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) override;
    // The three identification bytes as hex text.
    bool execReadSignature(TSerialPort& port, QString& signature) override;

    bool setCLK(TSerialPort& port);
    bool ident(TSerialPort& port);
    bool erase(TSerialPort& port);
    bool testEmpty(TSerialPort& port);
    bool eraseBlocks(TSerialPort& port);
    bool testEmptyBlocks(TSerialPort& port);
    bool writeChar(TSerialPort& port);
    bool verifyChar(TSerialPort& port);
    bool readData(TSerialPort& port);
    bool writeData(TSerialPort& port);
    bool verifyData(TSerialPort& port);
    bool readFile(TSerialPort& port);
    bool writeFile(TSerialPort& port);
    bool verifyFile(TSerialPort& port);
    bool readStatusReg(TSerialPort& port);
    bool writeStatusReg(TSerialPort& port);
    bool verifyStatusReg(TSerialPort& port);
    bool eraseSecurityReg(TSerialPort& port);
    bool testEmptySecurityReg(TSerialPort& port);
    bool readSecurityReg(TSerialPort& port);
    bool writeSecurityReg(TSerialPort& port);
    bool verifySecurityReg(TSerialPort& port);
    bool readUniqueID(TSerialPort& port);
    bool readSFDPReg(TSerialPort& port);
    bool leave(TSerialPort& port);

private:
    // The three memories that the read, write and verify loops run over.
    enum class Space { Flash, Security, SFDP };
    using Source = std::function<QByteArray(qint64 addr, int len)>;
    using Sink = std::function<bool(qint64 addr, const QByteArray& data)>;

    bool prepare(TSerialPort& port);
    unsigned alg(const char* key) const;
    int readChunk(Space space) const;
    int writeChunk(Space space) const;
    bool readPiece(TSerialPort& port, Space space, qint64 addr, int len, QByteArray& out);
    bool writePiece(TSerialPort& port, Space space, qint64 addr, const QByteArray& data);

    bool writeRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Source& source);
    bool verifyRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Source& expected);
    bool readRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Sink& sink);

    bool writeFileSpace(TSerialPort& port, Space space);
    bool verifyFileSpace(TSerialPort& port, Space space);
    bool readFileSpace(TSerialPort& port, Space space);

    bool statusRegData(QByteArray& data);

    TData dev;
    int maxData = 0;
};
