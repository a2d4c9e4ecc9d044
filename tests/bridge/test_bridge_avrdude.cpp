// stk500v1 end to end: Debian's avrdude and Tarvelix's bridge drive the same simulated Arduino as
// ISP; flash and fuses must end up byte for byte the same whichever program wrote them.
#include "BridgeRig.h"

#include <QtTest>

namespace {
const QString cfg = QStringLiteral(TARVELIX_DATA_DIR "/progs/arduino-isp.cfg");
} // namespace

class TestBridgeAvrdude : public QObject {
    Q_OBJECT

    ClientRun avrdude(BridgeRig& rig, const QString& part, const QStringList& args) {
        return rig.client(
            "avrdude", QStringList{"-c", "stk500v1", "-P", rig.sim.link(), "-b", "19200", "-p", part} + args);
    }
    static QString flash(const QString& code, const QString& file, qint64 addr, qint64 count) {
        return BridgeRig::fileCmd(code, file, addr, count);
    }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    // Image layout of the simulated part: flash, EEPROM, three fuse bytes, lock byte.
    void atmega328pSameFlashAndFuses() {
        const int flashSize = 32768, eepromSize = 1024;
        const QByteArray old = BridgeRig::noise(flashSize + eepromSize, 3) + QByteArray::fromHex("62D9FFFF");
        const QByteArray code = BridgeRig::noise(flashSize, 4);
        const QByteArray eeprom = BridgeRig::noise(eepromSize, 5);
        QTemporaryDir dir;
        const QString file = dir.filePath("code.bin"), eeFile = dir.filePath("ee.bin");
        BridgeRig::write(file, code);
        BridgeRig::write(eeFile, eeprom);

        BridgeRig a;
        QVERIFY(a.start("stk500v1", "ATmega328P", old));
        const ClientRun r =
            avrdude(a, "m328p",
                    {"-e", "-U", "flash:w:" + file + ":r", "-U", "flash:r:" + dir.filePath("back.bin") + ":r",
                     "-U", "lfuse:w:0xE2:m", "-U", "hfuse:w:0xD7:m", "-U", "efuse:w:0xFD:m"});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QVERIFY2(r.output.contains("device signature = 0x1e950f (probably m328p)"), qPrintable(r.output));
        QVERIFY2(r.output.contains("32768 bytes of flash verified"), qPrintable(r.output));
        QCOMPARE(BridgeRig::read(dir.filePath("back.bin")), code);
        const QByteArray byAvrdude = a.stop();
        QCOMPARE(byAvrdude.left(flashSize), code);
        QCOMPARE(byAvrdude.mid(flashSize + eepromSize), QByteArray::fromHex("E2D7FDFF"));

        BridgeRig t;
        QVERIFY(t.start("stk500v1", "ATmega328P", old));
        const QString back = dir.filePath("tarvelix.bin");
        const ClientRun run =
            t.project(cfg, {BridgeRig::setDevice("ATmega328P", "avr"), BridgeRig::cmd("ident"),
                            BridgeRig::cmd("erase"), flash("flash_file_write", file, 0, flashSize),
                            flash("flash_file_verify", file, 0, flashSize),
                            flash("flash_file_read", back, 0, flashSize),
                            BridgeRig::cmd("fuse_write", R"("data": "E2D7FD")"),
                            BridgeRig::cmd("fuse_verify", R"("data": "E2D7FD")"),
                            flash("eeprom_file_write", eeFile, 0, eepromSize),
                            flash("eeprom_file_verify", eeFile, 0, eepromSize)});
        QVERIFY2(run.status == 0, qPrintable(run.output));
        QVERIFY2(run.output.contains("ArduinoISP (STK500 v1), hardware 2, firmware 1.18"),
                 qPrintable(run.output));
        QCOMPARE(BridgeRig::read(back), code);
        const QByteArray byTarvelix = t.stop();
        QCOMPARE(byTarvelix.left(flashSize), byAvrdude.left(flashSize));
        QCOMPARE(byTarvelix.mid(flashSize + eepromSize), byAvrdude.mid(flashSize + eepromSize));
        QCOMPARE(byTarvelix.mid(flashSize, eepromSize), eeprom);
    }

    // Above 128 KiB the part takes the extended address: pages at the top and across the boundary.
    void atmega2560AboveTheExtendedAddress() {
        const int flashSize = 262144;
        QByteArray code(flashSize, char(0xFF));
        code.replace(0, 256, BridgeRig::noise(256, 6));
        code.replace(0x1FF00, 0x200, BridgeRig::noise(0x200, 7));
        code.replace(0x3FF00, 0x100, BridgeRig::noise(0x100, 8));
        QTemporaryDir dir;
        const QString file = dir.filePath("code.bin");
        BridgeRig::write(file, code);

        BridgeRig a;
        QVERIFY(a.start("stk500v1", "ATmega2560", QByteArray()));
        const ClientRun r = avrdude(a, "m2560", {"-e", "-U", "flash:w:" + file + ":r"});
        QVERIFY2(r.status == 0 && r.output.contains("bytes of flash verified"), qPrintable(r.output));
        const QByteArray byAvrdude = a.stop();
        QCOMPARE(byAvrdude.left(flashSize), code);

        BridgeRig t;
        QVERIFY(t.start("stk500v1", "ATmega2560", QByteArray()));
        const ClientRun run = t.project(
            cfg, {BridgeRig::setDevice("ATmega2560", "avr"), BridgeRig::cmd("erase"),
                  flash("flash_file_write", file, 0, 256), flash("flash_file_write", file, 0x1FF00, 0x200),
                  flash("flash_file_write", file, 0x3FF00, 0x100),
                  flash("flash_file_verify", file, 0, flashSize)});
        QVERIFY2(run.status == 0, qPrintable(run.output));
        QCOMPARE(t.stop(), byAvrdude);
    }
};

QTEST_GUILESS_MAIN(TestBridgeAvrdude)
#include "test_bridge_avrdude.moc"
