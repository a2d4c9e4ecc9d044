#include "devices/TDev25Alg.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"

#include <QtTest>

// The packets of the SPI flash family, byte by byte, without a programmer.
class TestSpiAlg : public QObject {
    Q_OBJECT

    static QString hex(const QByteArray& b) { return TMiscDev::getHexFromByteArray(b); }

private slots:
    void flashPackets() {
        QCOMPARE(hex(TDev25Alg::payloadIdent()), QString("03009F"));
        QCOMPARE(hex(TDev25Alg::payloadRead(0x123456, 4096)), QString("00100B12345600"));
        QCOMPARE(hex(TDev25Alg::payloadWrite(0xABCDEF, QByteArray::fromHex("A55A"))),
                 QString("02ABCDEFA55A"));
        QCOMPARE(hex(TDev25Alg::payloadErase(0xC7, 0)), QString("C7000000"));
        QCOMPARE(hex(TDev25Alg::payloadErase(0xD8, 0x0F0000)), QString("D80F0000"));
        QCOMPARE(hex(TDev25Alg::payloadSetClk(1000000)), QString("40420F00"));
        QCOMPARE(hex(TDev25Alg::payloadReadUniqueID()), QString("08004B00000000"));
    }

    void statusRegisterPackets() {
        const QList<QByteArray> reads = TDev25Alg::payloadReadStatusReg();
        QCOMPARE(reads.size(), 3);
        QCOMPARE(hex(reads.at(0) + reads.at(1) + reads.at(2)), QString("010005010035010015"));
        const QList<QByteArray> writes = TDev25Alg::payloadWriteStatusReg(QByteArray::fromHex("1C0260"));
        QCOMPARE(writes.size(), 3);
        QCOMPARE(hex(writes.at(0)) + hex(writes.at(1)) + hex(writes.at(2)), QString("011C31021160"));
        QVERIFY(TDev25Alg::payloadWriteStatusReg(QByteArray::fromHex("1C02")).isEmpty());
        QVERIFY(TDev25Alg::payloadWriteStatusReg(QByteArray::fromHex("1C026000")).isEmpty());
    }

    void registerAddresses() {
        // SFDP keeps only the low byte of the address.
        QCOMPARE(hex(TDev25Alg::payloadReadSFDPReg(0x100, 256)), QString("00015A00000000"));
        QCOMPARE(hex(TDev25Alg::payloadReadSFDPReg(0x34, 16)), QString("10005A00003400"));
        // Register n lies at (n + 1) * 4096; offset x is byte x & 255 of register x >> 8.
        QCOMPARE(hex(TDev25Alg::payloadEraseSecurityReg(0)), QString("44001000"));
        QCOMPARE(hex(TDev25Alg::payloadEraseSecurityReg(2)), QString("44003000"));
        QCOMPARE(hex(TDev25Alg::payloadReadSecurityReg(0x2F0, 16)), QString("1000480030F000"));
        QCOMPARE(hex(TDev25Alg::payloadWriteSecurityReg(0x105, QByteArray::fromHex("77"))),
                 QString("4200200577"));
    }

    // Another algorithm number sends nothing and leaves no text; algorithm 0 reaches the (closed) port,
    // whose failure text comes back.
    void unknownAlgorithmSendsNothing() {
        TSerialPort port;
        QByteArray out;
        QString err;
        QVERIFY(!TDev25Alg::read(1, port, 0, 16, out, err));
        QVERIFY(!TDev25Alg::write(2, port, 0, "x", err));
        QVERIFY(!TDev25Alg::erase_blocks(1, port, 0xC7, 0, err));
        QVERIFY(!TDev25Alg::readStatusReg(1, port, out, err));
        QVERIFY(!TDev25Alg::writeStatusReg(1, port, QByteArray(3, 0), err));
        QVERIFY(!TDev25Alg::readSFDPReg(1, port, 0, 16, out, err));
        QVERIFY(!TDev25Alg::readUniqueID(7, port, out, err));
        QVERIFY(err.isEmpty());
        QVERIFY(!TDev25Alg::writeStatusReg(0, port, QByteArray(2, 0), err));
        QVERIFY(err.isEmpty());
        QVERIFY(!TDev25Alg::ident(0, port, out, err));
        QVERIFY(!err.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSpiAlg)
#include "test_spi_alg.moc"
