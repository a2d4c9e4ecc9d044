#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class TSerialPort;

// Packets of the 25-series family. The host builds every flash opcode, address and dummy byte itself
// and hands them to the programmer in two generic SPI transactions: 3 reads N bytes after sending the
// given bytes, 4 only sends. The programmer does write enable and busy waiting around each packet 4.
//
// Every operation takes the algorithm number first; only algorithm 0 exists, and any other number
// returns false without sending anything and without an error text. The payload builders are apart
// from the port so that each byte can be checked without a programmer.
class TDev25Alg {
public:
    static QByteArray payloadIdent();
    static QByteArray payloadRead(qint64 addr, quint16 len);
    static QByteArray payloadWrite(qint64 addr, const QByteArray& data);
    static QByteArray payloadErase(unsigned char opcode, qint64 addr);
    static QList<QByteArray> payloadReadStatusReg();
    // Empty when data is not exactly three bytes.
    static QList<QByteArray> payloadWriteStatusReg(const QByteArray& data);
    static QByteArray payloadReadSFDPReg(qint64 addr, quint16 len);
    static QByteArray payloadEraseSecurityReg(int n);
    static QByteArray payloadReadSecurityReg(qint64 addr, quint16 len);
    static QByteArray payloadWriteSecurityReg(qint64 addr, const QByteArray& data);
    static QByteArray payloadReadUniqueID();
    static QByteArray payloadSetClk(unsigned int value);

    static bool ident(unsigned alg, TSerialPort& port, QByteArray& out, QString& err);
    static bool read(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                     QString& err);
    static bool write(unsigned alg, TSerialPort& port, qint64 addr, const QByteArray& data, QString& err);
    // Chip erase and block erase alike: the opcode followed by an address.
    static bool erase_blocks(unsigned alg, TSerialPort& port, unsigned char opcode, qint64 addr,
                             QString& err);
    static bool readStatusReg(unsigned alg, TSerialPort& port, QByteArray& out, QString& err);
    static bool writeStatusReg(unsigned alg, TSerialPort& port, const QByteArray& data, QString& err);
    static bool readSFDPReg(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                            QString& err);
    static bool eraseSecurityReg(unsigned alg, TSerialPort& port, int n, QString& err);
    static bool readSecurityReg(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                                QString& err);
    static bool writeSecurityReg(unsigned alg, TSerialPort& port, qint64 addr, const QByteArray& data,
                                 QString& err);
    static bool readUniqueID(unsigned alg, TSerialPort& port, QByteArray& out, QString& err);
    static bool setClk(unsigned alg, TSerialPort& port, unsigned int value, QString& err);
    static bool leave(unsigned alg, TSerialPort& port, const QByteArray& payload, QString& err);

private:
    static bool send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err);
};
