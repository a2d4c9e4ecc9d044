// The serprog bridge against scripted hardware: exact bytes on the wire for each frame a family sends.
#include "ScriptWire.h"
#include "app/TLang.h"
#include "link/bridge/TBridgeSerprog.h"

#include <QtTest>

namespace {
// NOP Q_IFACE Q_CMDMAP Q_PGMNAME Q_BUSTYPE | Q_WRNMAXLEN | SYNCNOP Q_RDNMAXLEN S_BUSTYPE O_SPIOP
// S_SPI_FREQ S_PIN_STATE
const char* const fullMap = "2f013f00000000000000000000000000000000000000000000000000000000";
// NOP Q_IFACE Q_CMDMAP Q_PGMNAME | SYNCNOP O_SPIOP: what a minimal firmware lists.
const char* const minimalMap = "0f000900000000000000000000000000000000000000000000000000000000";
const char* const pgmName = "7069636f2d73657270726f6700000000"; // "pico-serprog"

QByteArray setDevice(unsigned short type, unsigned int hz) {
    QByteArray d;
    d.append(char(type)).append(char(type >> 8)).append(2, '\0');
    for (int i = 0; i < 4; ++i)
        d.append(char(hz >> (8 * i)));
    return d.append('\0');
}

void sync(ScriptWire& w) {
    w.expect("0000000000000000", "0606060606060606");
    w.expect("10", "1506");
    w.expect("10", "1506");
}

// A full start: rdnMax is the 24-bit read limit the firmware reports, as hex; serBuf, when given, the
// 16-bit serial buffer size of a firmware that lists Q_SERBUF.
void start(ScriptWire& w, const char* rdnMax = "000100", const char* serBuf = nullptr) {
    sync(w);
    w.expect("01", "060100");
    QByteArray map = QByteArray("06").append(fullMap).append("00");
    if (serBuf) map[2] = '3'; // 0x3f: Q_SERBUF too
    w.expect("02", map.constData());
    w.expect("05", "0608");
    w.expect("1208", "06");
    w.expect("11", QByteArray("06").append(rdnMax).constData());
    w.expect("08", "06000000");
    if (serBuf) w.expect("04", QByteArray("06").append(serBuf).constData());
    w.expect("03", QByteArray("06").append(pgmName).constData());
}

// A start, then what the set-device of an SPI flash at 4 MHz sends: the clock, and the drivers on.
void startAt4MHz(ScriptWire& w, const char* rdnMax = "000100", const char* serBuf = nullptr) {
    start(w, rdnMax, serBuf);
    w.expect("1400093d00", "0600093d00");
    w.expect("1501", "06");
}
} // namespace

class TestBridgeSerprog : public QObject {
    Q_OBJECT

    TBridgeReply send(TBridgeSerprog& b, ScriptWire& w, unsigned char cmd, const QByteArray& data = {}) {
        return b.exchange(w, cmd, data);
    }
    void check(const ScriptWire& w) { QVERIFY2(w.done(), qPrintable(w.mismatch)); }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void startsAsFlashromDoesAndIdentifies() {
        TBridgeSerprog b;
        ScriptWire w;
        start(w);
        TBridgeReply r = send(b, w, 0x80);
        QVERIFY(r.ok());
        QCOMPARE(r.data, QByteArray::fromHex("010b"));
        r = send(b, w, 0x81);
        QCOMPARE(r.data, QByteArray("serprog: pico-serprog").append('\0'));
        check(w);
    }

    void sendsOnlyWhatTheMapLists() {
        TBridgeSerprog b;
        ScriptWire w;
        sync(w);
        w.expect("01", "060100");
        w.expect("02", QByteArray("06").append(minimalMap).append("00").constData());
        w.expect("03", QByteArray("06").append(pgmName).constData());
        QVERIFY(send(b, w, 0x80).ok());
        // No clock, no pin state and no bus type: the set-device is done without a byte.
        QVERIFY(send(b, w, 0x84, setDevice(2, 8000000)).ok());
        QVERIFY(send(b, w, 0x85).ok());
        check(w);
    }

    void setDeviceSetsClockAndDrivers() {
        TBridgeSerprog b;
        ScriptWire w;
        startAt4MHz(w);
        w.expect("1500", "06");
        QVERIFY(send(b, w, 0x84, setDevice(2, 4000000)).ok());
        QVERIFY(send(b, w, 0x85).ok());
        check(w);
    }

    void writeEnablesFirstAndWaitsWhileBusy() {
        TBridgeSerprog b;
        ScriptWire w;
        startAt4MHz(w);
        w.expect("1301000000000006", "06");
        w.expect("1306000000000002000100aabb", "06");
        w.expect("13010000010000"
                 "05",
                 "0603");
        w.expect("13010000010000"
                 "05",
                 "0602");
        QVERIFY(send(b, w, 0x84, setDevice(2, 4000000)).ok());
        const TBridgeReply r = send(b, w, 4, QByteArray::fromHex("02000100aabb"));
        QVERIFY(r.ok());
        QVERIFY(r.data.isEmpty());
        check(w);
    }

    // Write enable, program and status read are 8 + 13 + 8 bytes: with a serial buffer above that
    // they go ahead of their answers at once, as flashrom streams; at exactly that size the status
    // read waits; a NAK in the group still has the other answers read.
    void writeGroupGoesAheadWithinTheSerialBuffer() {
        for (const char* serBuf : {"1e00", "1d00"}) {
            TBridgeSerprog b;
            ScriptWire w;
            startAt4MHz(w, "000100", serBuf);
            QVERIFY(send(b, w, 0x84, setDevice(2, 4000000)).ok());
            const int before = w.sends.size();
            w.expect("1301000000000006", "06");
            w.expect("1306000000000002000100aabb", "06");
            w.expect("1301000001000005", "0600");
            QVERIFY(send(b, w, 4, QByteArray::fromHex("02000100aabb")).ok());
            const QList<int> sizes = QString(serBuf) == "1e00" ? QList<int>{29} : QList<int>{21, 8};
            QList<int> sent;
            for (int i = before; i < w.sends.size(); ++i)
                sent.append(w.sends.at(i).size());
            QCOMPARE(sent, sizes);
            check(w);
        }
        TBridgeSerprog b;
        ScriptWire w;
        startAt4MHz(w, "000100", "0010");
        QVERIFY(send(b, w, 0x84, setDevice(2, 4000000)).ok());
        w.expect("1301000000000006", "06");
        w.expect("1306000000000002000100aabb", "15");
        w.expect("1301000001000005", "0600");
        const TBridgeReply r = send(b, w, 4, QByteArray::fromHex("02000100aabb"));
        QCOMPARE(int(r.kind), int(TBridgeReply::Kind::Refused));
        QCOMPARE(r.text, QString("The serprog programmer on /dev/ttyTEST refused O_SPIOP (0x13)"));
        w.expect("130100000300009f", "06ef4014");
        QCOMPARE(send(b, w, 3, QByteArray::fromHex("03009f")).data, QByteArray::fromHex("ef4014"));
        check(w);
    }

    void longReadIsCutAtTheFirmwareLimit() {
        TBridgeSerprog b;
        ScriptWire w;
        startAt4MHz(w, "040000");
        w.expect("13050000040000"
                 "0b00100000",
                 "0611223344");
        w.expect("13050000040000"
                 "0b00100400",
                 "0655667788");
        w.expect("13050000020000"
                 "0b00100800",
                 "0699aa");
        QVERIFY(send(b, w, 0x84, setDevice(2, 4000000)).ok());
        const TBridgeReply r = send(b, w, 3, QByteArray::fromHex("0a000b00100000"));
        QVERIFY(r.ok());
        QCOMPARE(r.data, QByteArray::fromHex("112233445566778899aa"));
        // An identification cannot be cut: no address to advance.
        QCOMPARE(send(b, w, 3, QByteArray::fromHex("05009f")).code, quint16(2));
        check(w);
    }

    void unservableAndEmptyCommands() {
        TBridgeSerprog b;
        ScriptWire w;
        start(w);
        QCOMPARE(send(b, w, 3, QByteArray::fromHex("03009f")).code, quint16(4)); // no device yet
        const TBridgeReply i2c = send(b, w, 0x84, setDevice(1, 100000));
        QCOMPARE(int(i2c.kind), int(TBridgeReply::Kind::Error));
        QCOMPARE(i2c.code, quint16(10));
        QCOMPARE(send(b, w, 0x86, QByteArray::fromHex("70fe")).code, quint16(10));
        QCOMPARE(send(b, w, 0x8A, QByteArray::fromHex("78")).code, quint16(10));
        QVERIFY(send(b, w, 0x83, QByteArray::fromHex("01")).ok());
        QVERIFY(send(b, w, 0x89, QByteArray::fromHex("21")).ok());
        check(w);
    }

    void failures_data() {
        QTest::addColumn<QByteArray>("step");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        const int lost = int(TBridgeReply::Kind::Lost), refused = int(TBridgeReply::Kind::Refused);
        const QString port = "/dev/ttyTEST";
        QTest::newRow("NAK") << QByteArray("01") << QByteArray("15") << refused
                             << "The serprog programmer on " + port + " refused Q_IFACE (0x01)";
        QTest::newRow("short") << QByteArray("01") << QByteArray("0601") << lost
                               << "The serprog programmer on " + port +
                                      " gave a short answer to Q_IFACE (0x01): 2 of 3 bytes";
        QTest::newRow("silence") << QByteArray("01") << QByteArray("") << lost
                                 << "The serprog programmer on " + port +
                                        " did not answer Q_IFACE (0x01) within 100 ms";
        QTest::newRow("garbled") << QByteArray("01") << QByteArray("55") << lost
                                 << "The serprog programmer on " + port +
                                        " answered Q_IFACE (0x01) with 0x55 instead of an acknowledge";
        QTest::newRow("unplugged") << QByteArray("01") << QByteArray("LOST") << lost
                                   << "The line to the serprog programmer on " + port +
                                          " went away during Q_IFACE (0x01)";
        QTest::newRow("old interface")
            << QByteArray("01") << QByteArray("060200") << refused
            << "The serprog programmer on " + port + " speaks interface version 2; Tarvelix speaks version 1";
    }
    void failures() {
        QFETCH(QByteArray, step);
        QFETCH(QByteArray, answer);
        QFETCH(int, kind);
        QFETCH(QString, text);
        TBridgeSerprog b;
        ScriptWire w;
        sync(w);
        w.expect(step.constData(), answer.constData());
        const TBridgeReply r = send(b, w, 0x80);
        QCOMPARE(int(r.kind), kind);
        QCOMPARE(r.text, text);
        check(w);
    }

    void noSyncEndsAfterEightTries() {
        TBridgeSerprog b;
        ScriptWire w;
        w.expect("0000000000000000", "");
        for (int i = 0; i < 8; ++i)
            w.expect("10", i % 2 ? "06" : "15"); // never NAK then ACK
        const TBridgeReply r = send(b, w, 0x80);
        QCOMPARE(int(r.kind), int(TBridgeReply::Kind::Lost));
        QCOMPARE(r.text, QString("The serprog programmer on /dev/ttyTEST does not synchronise: no answer to "
                                 "SYNCNOP (0x10) as the protocol asks"));
        check(w);
    }

    // After a lost answer the hardware's state is unknown: the next exchange synchronises again.
    void restartSynchronisesAgain() {
        TBridgeSerprog b;
        ScriptWire w;
        start(w);
        QVERIFY(send(b, w, 0x80).ok());
        b.restart();
        start(w);
        QVERIFY(send(b, w, 0x80).ok());
        check(w);
    }
};

QTEST_GUILESS_MAIN(TestBridgeSerprog)
#include "test_bridge_serprog.moc"
