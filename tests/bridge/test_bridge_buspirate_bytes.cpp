// The Bus Pirate bridge against a scripted Bus Pirate: exact bytes for each frame a family sends.
#include "ScriptWire.h"
#include "app/TLang.h"
#include "link/bridge/TBridgeBusPirate.h"

#include <QtTest>

namespace {
const char* const bbio = "4242494f31"; // "BBIO1"

void start(ScriptWire& w) {
    w.expect("0000000000000000000000000000000000000000", bbio);
}

QByteArray setDevice(unsigned short type, unsigned char address, unsigned int hz, unsigned char delay) {
    QByteArray d;
    d.append(char(type)).append(char(type >> 8)).append('\0').append(char(address));
    for (int i = 0; i < 4; ++i)
        d.append(char(hz >> (8 * i)));
    return d.append(char(delay));
}
} // namespace

class TestBridgeBusPirateBytes : public QObject {
    Q_OBJECT

    void check(const ScriptWire& w) { QVERIFY2(w.done(), qPrintable(w.mismatch)); }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void spiModeAndWriteThenRead() {
        TBridgeBusPirate b;
        ScriptWire w;
        start(w);
        w.expect("01", "53504931"); // SPI1
        w.expect("8a", "01");       // 3.3 V outputs, clock edge
        w.expect("64", "01");       // 2 MHz: the fastest at or below 2.5 MHz
        w.expect("49", "01");       // power, chip select high
        w.expect("04"
                 "0001"
                 "0003"
                 "9f",
                 "01ef4014");
        QVERIFY(b.exchange(w, 0x84, setDevice(2, 0, 2500000, 0)).ok());
        QCOMPARE(b.exchange(w, 3, QByteArray::fromHex("03009f")).data, QByteArray::fromHex("ef4014"));
        // Leave: power off, binary mode, terminal.
        w.expect("40", "01");
        w.expect("00", bbio);
        w.expect("0f", "01");
        QVERIFY(b.exchange(w, 0x85, {}).ok());
        check(w);
    }

    // The bus address pins (set-device byte 3) go into the select byte; the read is a repeated start.
    void i2cReadAndNack() {
        TBridgeBusPirate b;
        ScriptWire w;
        start(w);
        w.expect("02", "49324331"); // I2C1
        w.expect("63", "01");       // 400 kHz
        w.expect("4c", "01");       // power, pull-ups
        QVERIFY(b.exchange(w, 0x84, setDevice(1, 5, 400000, 5)).ok());
        w.expect("02", "01");
        w.expect("11"
                 "aa"
                 "10",
                 "010000");
        w.expect("02", "01");
        w.expect("10"
                 "ab",
                 "0100");
        w.expect("0406", "1201");
        w.expect("0407", "3401");
        w.expect("03", "01");
        QCOMPARE(b.exchange(w, 5, QByteArray::fromHex("0200a010")).data, QByteArray::fromHex("1234"));
        // No acknowledge: a stop, and error 5 as from the native programmer.
        w.expect("02", "01");
        w.expect("12"
                 "aa"
                 "1055",
                 "01000100");
        w.expect("03", "01");
        QCOMPARE(b.exchange(w, 4, QByteArray::fromHex("a01055")).code, quint16(5));
        check(w);
    }

    void failures_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("text");
        const QString p = "The buspirate programmer on /dev/ttyTEST ";
        QTest::newRow("no binary mode")
            << QByteArray("") << p + "does not synchronise: no answer to 0x00 as the protocol asks";
        QTest::newRow("unplugged")
            << QByteArray("LOST")
            << "The line to the buspirate programmer on /dev/ttyTEST went away during 0x00";
    }
    void failures() {
        QFETCH(QByteArray, answer);
        QFETCH(QString, text);
        TBridgeBusPirate b;
        ScriptWire w;
        w.expect("0000000000000000000000000000000000000000", answer.constData());
        const TBridgeReply r = b.exchange(w, 0x80, {});
        QCOMPARE(int(r.kind), int(TBridgeReply::Kind::Lost));
        QCOMPARE(r.text, text);
        check(w);
    }
};

QTEST_GUILESS_MAIN(TestBridgeBusPirateBytes)
#include "test_bridge_buspirate_bytes.moc"
