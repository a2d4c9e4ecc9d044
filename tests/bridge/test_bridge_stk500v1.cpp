// The stk500v1 bridge against a scripted ArduinoISP: exact bytes on the wire for the AVR family's
// frames.
#include "ScriptWire.h"
#include "app/TLang.h"
#include "link/bridge/TBridgeStk500v1.h"

#include <QtTest>

namespace {
void start(ScriptWire& w) {
    w.expect("3020", "1410");
    w.expect("418020", "140210");
    w.expect("418120", "140110");
    w.expect("418220", "141210");
}

QByteArray setDevice(unsigned char resetPolarity) {
    return QByteArray::fromHex("030000") + char(resetPolarity) + QByteArray::fromHex("48e8010000");
}

// A 64 KiB part with 128-byte pages, 2 KiB EEPROM and three fuse bytes, in programming mode.
void select(TBridgeStk500v1& b, ScriptWire& w) {
    TData part{{"flash_page_size", 128}, {"eeprom_size", 2048},   {"flash_size", 65536},
               {"fuse_def", "62D9FF"},   {"eeprom_page_size", 8}, {"fuse_delay", 4}};
    b.describeTarget(part);
    start(w);
    w.expect("428600000101010103ffffffff0080080000010000"
             "20",
             "1410");
    w.expect("45050800000020", "1410");
    w.expect("5020", "1410");
    QVERIFY(b.exchange(w, 0x84, setDevice(0)).ok());
}
} // namespace

class TestBridgeStk500v1 : public QObject {
    Q_OBJECT

    void check(const ScriptWire& w) { QVERIFY2(w.done(), qPrintable(w.mismatch)); }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void startsResetsTheBoardAndIdentifies() {
        TBridgeStk500v1 b;
        ScriptWire w;
        start(w);
        QCOMPARE(b.exchange(w, 0x80, {}).data, QByteArray::fromHex("020b"));
        QCOMPARE(b.exchange(w, 0x81, {}).data,
                 QByteArray("ArduinoISP (STK500 v1), hardware 2, firmware 1.18").append('\0'));
        QCOMPARE(w.dtr, (QList<bool>{false, true}));
        check(w);
    }

    // Echo of the first two bytes, the part's last byte in r3; wait 0xFF polls until ready.
    void instructionsPassThroughUniversal() {
        TBridgeStk500v1 b;
        ScriptWire w;
        select(b, w);
        w.expect("563000010020", "149510");
        w.expect("56ac80000020", "140010");
        w.expect("56f0000000"
                 "20",
                 "140110");
        w.expect("56f0000000"
                 "20",
                 "140010");
        QCOMPARE(b.exchange(w, 7, QByteArray::fromHex("0030000100")).data, QByteArray::fromHex("00300095"));
        QCOMPARE(b.exchange(w, 7, QByteArray::fromHex("ffac800000")).data, QByteArray::fromHex("00ac8000"));
        // A part that answers the poll with all ones gets its description's delay instead.
        w.expect("56aca000e220", "14a010");
        w.expect("56f0000000"
                 "20",
                 "14ff10");
        const int paused = w.paused;
        QVERIFY(b.exchange(w, 7, QByteArray::fromHex("ffaca000e2")).ok());
        QCOMPARE(w.paused - paused, 4);
        check(w);
    }

    // Loads stay on the host until the commit; the extended address reaches the part as word bits.
    void pageGoesAsOneProgPageAtItsCommit() {
        TBridgeStk500v1 b;
        ScriptWire w;
        select(b, w);
        const int sent = w.allSent.size(), paused = w.paused;
        QVERIFY(b.exchange(w, 7,
                           QByteArray::fromHex("00"
                                               "4d000200"))
                    .ok()); // byte address 0x2xxxx
        QVERIFY(b.exchange(w, 4, QByteArray::fromHex("0001aabb")).ok());
        QVERIFY(b.exchange(w, 4, QByteArray::fromHex("0201ccdd")).ok());
        QCOMPARE(w.allSent.size(), sent);
        w.expect("564d000100"
                 "20",
                 "140010");
        w.expect("55800020", "1410");
        w.expect("640004"
                 "46"
                 "aabbccdd"
                 "20",
                 "1410");
        QCOMPARE(b.exchange(w, 7, QByteArray::fromHex("054c008000")).data, QByteArray::fromHex("004c0080"));
        QCOMPARE(w.paused - paused, 5); // the wait byte: 5 ms
        // The addresses go with the page, ahead of their answers: one round trip.
        QCOMPARE(w.sends.last(), w.allSent.mid(sent));
        check(w);
    }

    // Word addresses: an odd start reads from the byte before; EEPROM writes take it along.
    void oddAddressesAndEeprom() {
        TBridgeStk500v1 b;
        ScriptWire w;
        select(b, w);
        w.expect("564d000000"
                 "20",
                 "140010");
        w.expect("55000120", "1410");
        w.expect("74000446"
                 "20",
                 "141122334410");
        QCOMPARE(b.exchange(w, 3, QByteArray::fromHex("01020300")).data, QByteArray::fromHex("223344"));
        w.expect("55020020", "1410");
        w.expect("7400024520", "145a5b10");
        w.expect("55020020", "1410");
        w.expect("640003"
                 "45"
                 "5a0102"
                 "20",
                 "1410");
        QVERIFY(b.exchange(w, 6, QByteArray::fromHex("05000102")).ok());
        check(w);
    }

    // A page refused after its address was taken: both answers are read, and the next command finds
    // the line in step.
    void refusedPageKeepsTheLineInStep() {
        TBridgeStk500v1 b;
        ScriptWire w;
        select(b, w);
        w.expect("55000020", "1410");
        w.expect("64000245010220", "1411");
        const TBridgeReply r = b.exchange(w, 6, QByteArray::fromHex("00000102"));
        QCOMPARE(int(r.kind), int(TBridgeReply::Kind::Refused));
        QCOMPARE(r.text, QString("The stk500v1 programmer on /dev/ttyTEST refused PROG_PAGE (0x64)"));
        w.expect("563000000020", "141e10");
        QCOMPARE(b.exchange(w, 7, QByteArray::fromHex("0030000000")).data, QByteArray::fromHex("0030001e"));
        check(w);
    }

    void unservableAndLeave() {
        TBridgeStk500v1 b;
        ScriptWire w;
        start(w);
        QCOMPARE(b.exchange(w, 0x84, QByteArray::fromHex("020000000048e80100")).code, quint16(10));
        check(w);
        TBridgeStk500v1 c;
        ScriptWire v;
        select(c, v);
        v.expect("5120", "1410");
        QVERIFY(c.exchange(v, 0x85, {}).ok());
        check(v);
    }

    void failures_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        const int lost = int(TBridgeReply::Kind::Lost), refused = int(TBridgeReply::Kind::Refused);
        const QString p = "The stk500v1 programmer on /dev/ttyTEST ";
        QTest::newRow("failed") << QByteArray("1411") << refused << p + "refused ENTER_PROGMODE (0x50)";
        QTest::newRow("no sync") << QByteArray("15") << lost
                                 << p + "answered ENTER_PROGMODE (0x50) with 0x15 instead of an acknowledge";
        QTest::newRow("short") << QByteArray("14") << lost
                               << p + "gave a short answer to ENTER_PROGMODE (0x50): 1 of 2 bytes";
        QTest::newRow("silence") << QByteArray("") << lost
                                 << p + "did not answer ENTER_PROGMODE (0x50) within 100 ms";
        QTest::newRow("unplugged") << QByteArray("LOST") << lost
                                   << "The line to the stk500v1 programmer on /dev/ttyTEST went away during "
                                      "ENTER_PROGMODE (0x50)";
    }
    void failures() {
        QFETCH(QByteArray, answer);
        QFETCH(int, kind);
        QFETCH(QString, text);
        TBridgeStk500v1 b;
        ScriptWire w;
        start(w);
        w.expect("4286000001010101"
                 "00"
                 "ffffffff"
                 "0100"
                 "0000"
                 "00000000"
                 "20",
                 "1410");
        w.expect("45050400000020", "1410");
        w.expect("5020", answer.constData());
        const TBridgeReply r = b.exchange(w, 0x84, setDevice(0));
        QCOMPARE(int(r.kind), kind);
        QCOMPARE(r.text, text);
        check(w);
    }
};

QTEST_GUILESS_MAIN(TestBridgeStk500v1)
#include "test_bridge_stk500v1.moc"
