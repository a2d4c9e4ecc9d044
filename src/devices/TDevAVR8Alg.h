#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class TSerialPort;

// Packets of the AVR family: bulk flash and EEPROM transfers, and single serial programming
// instructions (packet 7: wait byte, four instruction bytes; the reply is the four bytes shifted in).
// Every operation returns false with an error text in err; an algorithm number the operation does not
// have fails without sending anything.
class TDevAVR8Alg {
public:
    // Upper address bits last sent with the extended address instruction; -1: none yet.
    struct FlashState {
        int extended = -1;
    };

    static bool ident(int alg, TSerialPort& port, QByteArray& signature, QString& err);
    static bool erase(int alg, TSerialPort& port, unsigned char wait, QString& err);
    static bool readFlash(int alg, TSerialPort& port, FlashState& st, qint64 addr, int len, QByteArray& out,
                          QString& err);
    // taken: the number of data bytes the page buffer took (after word alignment).
    static bool writeFlash(int alg, TSerialPort& port, FlashState& st, unsigned char wait, qint64 addr,
                           const QByteArray& data, int& taken, QString& err);
    static bool readEeprom(int alg, TSerialPort& port, qint64 addr, int len, QByteArray& out, QString& err);
    static bool writeEeprom(int alg, TSerialPort& port, qint64 addr, const QByteArray& data, QString& err);
    static bool readFuseBits(int alg, TSerialPort& port, int count, QByteArray& out, QString& err);
    static bool writeFuse(int alg, TSerialPort& port, unsigned char wait, const QByteArray& fuses,
                          QString& err);
    static bool readLockBits(int alg, TSerialPort& port, unsigned char& out, QString& err);
    static bool writeLockBits(int alg, TSerialPort& port, unsigned char wait, unsigned char v, QString& err);
    static bool readOscCal(int alg, TSerialPort& port, int count, QByteArray& out, QString& err);

    // An odd start gets a 0xFF before it and an odd end a 0xFF after it, so whole words are written.
    static void alignDataToWord(qint64& addr, QByteArray& data);

    // Payloads, as the operations above send them.
    static QByteArray payloadInstr(unsigned char wait, const unsigned char (&bytes)[4]);
    // Packets 3 and 5: 16-bit address, 16-bit length.
    static QByteArray payloadRead(qint64 addr, int len);
    // Packets 4 and 6: 16-bit address, then the data (flash data already word-aligned).
    static QByteArray payloadWrite(qint64 addr, const QByteArray& data);
    static QByteArray payloadExtendedAddress(qint64 addr);
    // Commit of the page holding the (even) byte address.
    static QByteArray payloadPageCommit(unsigned char wait, qint64 addr);
    // One payload for each fuse byte read or written; empty for an algorithm the operation does not have.
    static QList<QByteArray> payloadReadFuse(int alg, int count);
    static QList<QByteArray> payloadWriteFuse(int alg, unsigned char wait, const QByteArray& fuses);
    static QByteArray payloadWriteLock(int alg, unsigned char wait, unsigned char v);
    static QByteArray payloadIdent(unsigned char i);
    static QByteArray payloadErase(unsigned char wait);
    static QByteArray payloadReadLock();
    static QByteArray payloadReadOscCal(unsigned char i);
    // The value a read takes from the fourth byte shifted in.
    static unsigned char fuseFromReply(int alg, unsigned char r3);
    static unsigned char lockFromReply(int alg, unsigned char r3);

private:
    // One instruction; echo lists the reply bytes r1, r2, r3 to check (-1: not checked).
    static bool instr(TSerialPort& port, const QByteArray& payload, QByteArray& reply, QString& err,
                      int r1 = -1, int r2 = -1, int r3 = -1);
    static bool extendedAddress(TSerialPort& port, FlashState& st, qint64 addr, QString& err);
    static bool send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err);
};
