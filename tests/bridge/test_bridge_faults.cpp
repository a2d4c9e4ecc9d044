// What a Tarvelix run says when bridged hardware misbehaves: each fault of the simulator ends the run
// with a message that names the port and the hardware's command, and nothing hangs.
#include "BridgeRig.h"

#include <QtTest>

class TestBridgeFaults : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    // serprog: the start takes 20 answers (8 NOPs, 2 SYNCNOPs, 8 queries, clock and drivers at the
    // set-device); the identification's O_SPIOP is the request after them.
    void serprog_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::addColumn<QString>("text");
        QTest::newRow("no sync")
            << QStringList{"--silent-after", "0"}
            << "The serprog programmer on %1 does not synchronise: no answer to SYNCNOP (0x10) "
               "as the protocol asks";
        QTest::newRow("NAK") << QStringList{"--error", "0x13:1"}
                             << "The serprog programmer on %1 refused O_SPIOP (0x13)";
        QTest::newRow("garbled")
            << QStringList{"--corrupt", "21"}
            << "The serprog programmer on %1 answered O_SPIOP (0x13) with 0x55 instead of an "
               "acknowledge";
        QTest::newRow("silence")
            << QStringList{"--silent-after", "20"}
            << "The serprog programmer on %1 did not answer O_SPIOP (0x13) within 200 ms";
        QTest::newRow("unplugged")
            << QStringList{"--unplug-after", "20"}
            << "The line to the serprog programmer on %1 went away during O_SPIOP (0x13)";
    }
    void serprog() {
        QFETCH(QStringList, faults);
        QFETCH(QString, text);
        BridgeRig rig;
        QVERIFY(rig.start("serprog", "W25Q80RV", QByteArray(), faults));
        const ClientRun r = rig.project(rig.describe("serprog.cfg", 200),
                                        {BridgeRig::setDevice("W25Q80RV", "spi"), BridgeRig::cmd("ident")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(text.arg(rig.sim.link())), qPrintable(r.output));
    }

    // stk500v1: the start takes 4 answers, the set-device 3 (SET_DEVICE, SET_DEVICE_EXT,
    // ENTER_PROGMODE); the identification's first UNIVERSAL is the request after them.
    void stk500v1_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::addColumn<QString>("text");
        QTest::newRow("no sync")
            << QStringList{"--silent-after", "0"}
            << "The stk500v1 programmer on %1 does not synchronise: no answer to GET_SYNC (0x30) "
               "as the protocol asks";
        QTest::newRow("FAILED") << QStringList{"--error", "0x50:1"}
                                << "The stk500v1 programmer on %1 refused ENTER_PROGMODE (0x50)";
        QTest::newRow("garbled")
            << QStringList{"--corrupt", "8"}
            << "The stk500v1 programmer on %1 answered UNIVERSAL (0x56) with 0x55 instead of an "
               "acknowledge";
        QTest::newRow("silence")
            << QStringList{"--silent-after", "7"}
            << "The stk500v1 programmer on %1 did not answer UNIVERSAL (0x56) within 200 ms";
        QTest::newRow("unplugged")
            << QStringList{"--unplug-after", "7"}
            << "The line to the stk500v1 programmer on %1 went away during UNIVERSAL (0x56)";
    }
    void stk500v1() {
        QFETCH(QStringList, faults);
        QFETCH(QString, text);
        BridgeRig rig;
        QVERIFY(rig.start("stk500v1", "ATmega328P", QByteArray(), faults));
        const ClientRun r = rig.project(rig.describe("arduino-isp.cfg", 200),
                                        {BridgeRig::setDevice("ATmega328P", "avr"), BridgeRig::cmd("ident")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(text.arg(rig.sim.link())), qPrintable(r.output));
    }

    // Bus Pirate: twenty resets enter binary mode, four commands set up SPI; the identification's
    // write-then-read is the request after them.
    void buspirate_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::addColumn<QString>("text");
        QTest::newRow("no binary mode")
            << QStringList{"--silent-after", "0"}
            << "The buspirate programmer on %1 does not synchronise: no answer to 0x00 as "
               "the protocol asks";
        QTest::newRow("refused") << QStringList{"--error", "0x04:1"}
                                 << "The buspirate programmer on %1 refused 0x04";
        QTest::newRow("silence") << QStringList{"--silent-after", "24"}
                                 << "The buspirate programmer on %1 did not answer 0x04 within 200 ms";
        QTest::newRow("unplugged") << QStringList{"--unplug-after", "24"}
                                   << "The line to the buspirate programmer on %1 went away during 0x04";
    }
    void buspirate() {
        QFETCH(QStringList, faults);
        QFETCH(QString, text);
        BridgeRig rig;
        QVERIFY(rig.start("buspirate", "W25Q80RV", QByteArray(), faults));
        const ClientRun r = rig.project(rig.describe("buspirate.cfg", 200),
                                        {BridgeRig::setDevice("W25Q80RV", "spi"), BridgeRig::cmd("ident")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(text.arg(rig.sim.link())), qPrintable(r.output));
    }

    // serprog serves SPI only: a 24-series chip is refused at its set-device with error 10,
    void bridgesRefuseOtherBuses() {
        BridgeRig rig;
        QVERIFY(rig.start("serprog", "W25Q80RV", QByteArray()));
        const ClientRun r =
            rig.project(rig.describe("serprog.cfg", 200), {BridgeRig::setDevice("24C02", "i2c")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(Lang.get(415)), qPrintable(r.output));
        // and an Arduino as ISP AVR parts only.
        BridgeRig avr;
        QVERIFY(avr.start("stk500v1", "ATmega328P", QByteArray()));
        const ClientRun flash =
            avr.project(avr.describe("arduino-isp.cfg", 200), {BridgeRig::setDevice("W25Q80RV", "spi")});
        QCOMPARE(flash.status, 1);
        QVERIFY2(flash.output.contains(Lang.get(415)), qPrintable(flash.output));
    }
};

QTEST_GUILESS_MAIN(TestBridgeFaults)
#include "test_bridge_faults.moc"
