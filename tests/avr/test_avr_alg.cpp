#include "devices/TDevAVR8Alg.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"

#include <QtTest>

// The AVR family's packets byte by byte, without a programmer.
class TestAvrAlg : public QObject {
    Q_OBJECT

    static QString hex(const QByteArray& b) { return TMiscDev::getHexFromByteArray(b); }
    static QString hex(const QList<QByteArray>& list) {
        QStringList out;
        for (const QByteArray& b : list)
            out << hex(b);
        return out.join(' ');
    }

private slots:
    void addressedPackets() {
        QCOMPARE(hex(TDevAVR8Alg::payloadRead(0x1234A, 4096)), QString("4A230010"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWrite(0x0102, QByteArray::fromHex("A55A"))), QString("0201A55A"));
        QCOMPARE(hex(TDevAVR8Alg::payloadExtendedAddress(0x3FF00)), QString("004D000300"));
        // Word address of byte 0x1F080 is 0xF840; the wait byte leads.
        QCOMPARE(hex(TDevAVR8Alg::payloadPageCommit(0xFF, 0x1F080)), QString("FF4CF84000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadPageCommit(0x05, 0x0100)), QString("054C008000"));
    }

    void wordAlignment() {
        qint64 addr = 0x101;
        QByteArray data = QByteArray::fromHex("112233");
        TDevAVR8Alg::alignDataToWord(addr, data);
        QCOMPARE(addr, qint64(0x100));
        QCOMPARE(hex(data), QString("FF112233"));
        addr = 0x100;
        data = QByteArray::fromHex("112233");
        TDevAVR8Alg::alignDataToWord(addr, data);
        QCOMPARE(hex(data), QString("112233FF"));
        addr = 0x101;
        data = QByteArray::fromHex("11");
        TDevAVR8Alg::alignDataToWord(addr, data);
        QCOMPARE(addr, qint64(0x100));
        QCOMPARE(hex(data), QString("FF11"));
        addr = 0x100;
        data = QByteArray::fromHex("1122");
        TDevAVR8Alg::alignDataToWord(addr, data);
        QCOMPARE(hex(data), QString("1122"));
    }

    void fuseInstructions() {
        QCOMPARE(hex(TDevAVR8Alg::payloadReadFuse(0, 3)), QString("0058000000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadReadFuse(1, 3)), QString("0050000000 0058080000 0050080000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadReadFuse(1, 2)), QString("0050000000 0058080000"));
        QVERIFY(TDevAVR8Alg::payloadReadFuse(2, 3).isEmpty());
        // Algorithm 0 keeps bit 0 in BE/BF, algorithm 1 the low five bits over A0.
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteFuse(0, 4, QByteArray::fromHex("FE"))), QString("04ACBE0000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteFuse(0, 4, QByteArray::fromHex("21"))), QString("04ACBF0000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteFuse(1, 4, QByteArray::fromHex("FF"))), QString("04ACBF0000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteFuse(1, 4, QByteArray::fromHex("C5"))), QString("04ACA50000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteFuse(2, 0xFF, QByteArray::fromHex("62D9F7"))),
                 QString("FFACA00062 FFACA800D9 FFACA400F7"));
        QVERIFY(TDevAVR8Alg::payloadWriteFuse(3, 0, QByteArray::fromHex("62")).isEmpty());
        QVERIFY(TDevAVR8Alg::payloadWriteFuse(2, 0, QByteArray()).isEmpty());
    }

    void lockInstructions() {
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteLock(0, 9, 0xF9)), QString("09ACF90000"));
        QCOMPARE(hex(TDevAVR8Alg::payloadWriteLock(1, 0xFF, 0xFC)), QString("FFACE000FC"));
        QVERIFY(TDevAVR8Alg::payloadWriteLock(2, 0, 0xFC).isEmpty());
    }

    // An algorithm the operation does not have sends nothing and leaves no text; a known one reaches the
    // (closed) port, whose failure text comes back.
    void unknownAlgorithmSendsNothing() {
        TSerialPort port;
        TDevAVR8Alg::FlashState st;
        QByteArray out;
        unsigned char v = 0;
        int taken = 0;
        QString err;
        QVERIFY(!TDevAVR8Alg::ident(1, port, out, err));
        QVERIFY(!TDevAVR8Alg::erase(1, port, 0, err));
        QVERIFY(!TDevAVR8Alg::readFlash(2, port, st, 0, 16, out, err));
        QVERIFY(!TDevAVR8Alg::writeFlash(3, port, st, 0, 0, "ab", taken, err));
        QVERIFY(!TDevAVR8Alg::readEeprom(1, port, 0, 16, out, err));
        QVERIFY(!TDevAVR8Alg::writeEeprom(1, port, 0, "a", err));
        QVERIFY(!TDevAVR8Alg::readFuseBits(2, port, 3, out, err));
        QVERIFY(!TDevAVR8Alg::writeFuse(3, port, 0, "abc", err));
        QVERIFY(!TDevAVR8Alg::readLockBits(2, port, v, err));
        QVERIFY(!TDevAVR8Alg::writeLockBits(2, port, 0, 0, err));
        QVERIFY(!TDevAVR8Alg::readOscCal(1, port, 1, out, err));
        QVERIFY(err.isEmpty());
        QVERIFY(!TDevAVR8Alg::erase(0, port, 0, err));
        QVERIFY(!err.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAvrAlg)
#include "test_avr_alg.moc"
