#pragma once

#include <QByteArray>
#include <QString>

class TSerialPort;

// Packets of the 24 series. Every operation returns false with the link's error text in err; an
// algorithm number the family does not have fails without sending anything.
class TDev24CAlg {
public:
    // Device-select byte with the address bits above the address bytes in its block-select bits, then
    // the address bytes (high first). Middle bytes of an address wider than two bytes are not sent.
    static QByteArray selectAndAddress(qint64 addr, unsigned char addrSize);

    static bool setAddress(TSerialPort& port, unsigned char addr, QString& err);
    static bool setClk(TSerialPort& port, unsigned int hz, QString& err);
    static bool leave(TSerialPort& port, const QByteArray& payload, QString& err);
    static bool read(int alg, TSerialPort& port, qint64 addr, unsigned char addrSize, unsigned short count,
                     QByteArray& out, QString& err);
    static bool write(int alg, TSerialPort& port, qint64 addr, unsigned char addrSize, const QByteArray& data,
                      QString& err);

private:
    static bool readAlg_0(TSerialPort& port, qint64 addr, unsigned char addrSize, unsigned short count,
                          QByteArray& out, QString& err);
    static bool writeAlg_0(TSerialPort& port, qint64 addr, unsigned char addrSize, const QByteArray& data,
                           QString& err);
    static bool send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err);
};
