// Bus Pirate end to end: the same project runs on the native simulator and, through the bridge, on
// the simulated Bus Pirate with the same chip; both chips must end up byte for byte the same.
#include "BridgeRig.h"

#include <QtTest>

class TestBridgeBusPirate : public QObject {
    Q_OBJECT

    // Runs the commands after the set-device on both programmers; gives back both chip images.
    void both(const QString& chip, const QString& folder, const QByteArray& image,
              const QStringList& commands, QByteArray& native, QByteArray& bridged) {
        BridgeRig n;
        QVERIFY(n.start("native", chip, image));
        ClientRun r = n.project(TARVELIX_DATA_DIR "/progs/sim.cfg",
                                QStringList{BridgeRig::setDevice(chip, folder)} + commands);
        QVERIFY2(r.status == 0, qPrintable(r.output));
        native = n.stop();
        BridgeRig b;
        QVERIFY(b.start("buspirate", chip, image));
        r = b.project(TARVELIX_DATA_DIR "/progs/buspirate.cfg",
                      QStringList{BridgeRig::setDevice(chip, folder)} + commands);
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QVERIFY2(r.output.contains("Bus Pirate, binary mode BBIO1"), qPrintable(r.output));
        bridged = b.stop();
    }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void spiFlash() {
        const int size = 1 << 20;
        QByteArray want(size, char(0xFF));
        want.replace(0x1F00, 0x10000, BridgeRig::noise(0x10000, 11));
        QTemporaryDir dir;
        const QString file = dir.filePath("want.bin"), back = dir.filePath("back.bin");
        BridgeRig::write(file, want);
        QByteArray native, bridged;
        both("W25Q80RV", "spi", BridgeRig::noise(size, 12),
             {BridgeRig::cmd("ident"), BridgeRig::cmd("erase"),
              BridgeRig::fileCmd("file_write", file, 0x1F00, 0x10000),
              BridgeRig::fileCmd("file_verify", file, 0, size),
              BridgeRig::fileCmd("file_read", back, 0x1F00, 0x10000)},
             native, bridged);
        QCOMPARE(bridged, want);
        QCOMPARE(bridged, native);
        QCOMPARE(BridgeRig::read(back).mid(0x1F00), want.mid(0x1F00, 0x10000));
    }

    // One address byte with the block in the select byte (24C16), and two address bytes (24C512).
    void i2cEeproms_data() {
        QTest::addColumn<QString>("chip");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("count");
        QTest::newRow("24C16") << "24C16" << 2048 << 0 << 2048;
        QTest::newRow("24C512") << "24C512" << 65536 << 0xFC10 << 0x3F0;
    }
    void i2cEeproms() {
        QFETCH(QString, chip);
        QFETCH(int, size);
        QFETCH(int, from);
        QFETCH(int, count);
        QByteArray want = BridgeRig::noise(size, 13);
        want.replace(from, count, BridgeRig::noise(count, 14));
        QTemporaryDir dir;
        const QString file = dir.filePath("want.bin");
        BridgeRig::write(file, want);
        QByteArray native, bridged;
        both(chip, "i2c", BridgeRig::noise(size, 13),
             {BridgeRig::fileCmd("file_write", file, from, count),
              BridgeRig::fileCmd("file_verify", file, from, count)},
             native, bridged);
        QCOMPARE(bridged, want);
        QCOMPARE(bridged, native);
    }
};

QTEST_GUILESS_MAIN(TestBridgeBusPirate)
#include "test_bridge_buspirate.moc"
