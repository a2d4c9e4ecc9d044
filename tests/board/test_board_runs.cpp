#include "BoardRun.h"

#include "devices/TDev93C.h"
#include "support/ChipKit.h"
#include "support/TestFiles.h"

#include <QtTest>

// The same projects through the programmer simulator and through the Nano firmware on the simulated
// board: every request and reply frame (but the identification text) and the chip afterwards agree.
class TestBoardRuns : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

    static QString setDevice(const QString& file, const QString& more = QString()) {
        const QString name = file.section('/', 1);
        return cmd("set_device",
                   QStringLiteral(R"("device": "%1", "file": "%2.dev"%3)").arg(name, file, more));
    }
    QString fileCmd(const QString& code, const QString& file, qint64 addr, qint64 count) const {
        return cmd(code, QStringLiteral(R"("file": "%1", "format": "bin", "addr_file": "0", )"
                                        R"("addr_device": "%2", "count": "%3")")
                             .arg(dir.filePath(file))
                             .arg(addr)
                             .arg(count));
    }
    static QByteArray pattern(int n, int seed) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i)
            b[i] = char((i * 13 + seed + (i >> 7)) & 0xFF);
        return b;
    }
    void writeFile(const QString& name, const QByteArray& bytes) const {
        TestFiles::writeFile(dir.filePath(name), bytes);
    }
    // The identification text is the one thing each programmer says of itself.
    static QStringList comparable(QStringList frames) {
        for (QString& f : frames)
            if (f.startsWith("< C0 81 ")) f = "< C0 81 (identification)";
        return frames;
    }

    // Runs on both and checks that they agree; returns the board's run.
    static BoardRun both(const ChipSetup& chip, const QStringList& cmds) {
        const BoardRun sim =
            BoardRun::on(SimFixture::program(), {"--interface", BoardRun::nanoInterface}, chip, cmds);
        const BoardRun nano = BoardRun::on(BoardRun::board(), {}, chip, cmds);
        [&] {
            QVERIFY2(sim.status == 0, qPrintable(sim.output));
            QVERIFY2(nano.status == 0, qPrintable(nano.output));
            QCOMPARE(comparable(nano.frames), comparable(sim.frames));
            QCOMPARE(nano.image.size(), sim.image.size());
            QVERIFY(nano.image == sim.image);
        }();
        return nano;
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    // Sector erase, page program across pages, fast reads of MAX_DATA, status, unique ID and SFDP.
    void spiFlash() {
        ChipSetup chip{"W25Q80RV"};
        chip.image = pattern(1 << 20, 1);
        const QByteArray data = pattern(3000, 7);
        writeFile("spi.bin", data);
        const BoardRun r = both(chip, {setDevice("spi/W25Q80RV"), cmd("ident"),
                                       cmd("erase_blocks", R"("size": "4096", "begin": "0", "count": "1")"),
                                       fileCmd("file_write", "spi.bin", 100, 3000),
                                       fileCmd("file_verify", "spi.bin", 100, 3000), cmd("status_reg_read"),
                                       cmd("unique_id_read"),
                                       cmd("sfdp_reg_read", R"("file": ")" + dir.filePath("sfdp.bin") +
                                                                R"(", "format": "bin", "addr_file": "0", )"
                                                                R"("addr_device": "0", "count": "256")")});
        QCOMPARE(r.image.mid(100, 3000), data);
        QCOMPARE(r.image.left(100), QByteArray(100, char(0xFF)));
        QCOMPARE(r.image.mid(4096, 100), pattern(1 << 20, 1).mid(4096, 100));
        QVERIFY(r.frames.contains("> " + ChipKit::frame(4, QByteArray::fromHex("20000000")))); // sector erase
    }

    // A part with block bits and two strapped address pins; writes wrap at the 16-byte pages.
    void i2cEeprom() {
        ChipSetup chip{"24C04"};
        chip.image = pattern(512, 3);
        chip.options = QStringList{"--pins", "2"};
        const QByteArray data = pattern(300, 9);
        writeFile("i2c.bin", data);
        const BoardRun r = both(chip, {setDevice("i2c/24C04", R"(, "addr": "2")"), cmd("erase"),
                                       cmd("test_empty"), fileCmd("file_write", "i2c.bin", 200, 300),
                                       fileCmd("file_verify", "i2c.bin", 200, 300),
                                       cmd("data_write", R"("addr_device": "14", "data": "A1 B2 C3 D4")")});
        QByteArray expected(512, char(0xFF));
        expected.replace(200, 300, data);
        expected.replace(14, 4, QByteArray::fromHex("A1B2C3D4"));
        QCOMPARE(r.image, expected);
    }

    // Signature, chip erase, flash pages through the page buffer, EEPROM bytes, fuses, lock and
    // calibration bytes of an ATtiny13.
    void avrTarget() {
        ChipSetup chip{"ATtiny13"};
        const QByteArray flash = pattern(700, 5), eeprom = QByteArray::fromHex("0102FF7F");
        writeFile("avr.bin", flash);
        const QString flashFile =
            QStringLiteral(
                R"("file": "%1", "format": "bin", "addr_file": "0", "addr_device": "0", "count": "700")")
                .arg(dir.filePath("avr.bin"));
        const BoardRun r =
            both(chip, {setDevice("avr/ATtiny13"), cmd("ident"), cmd("erase"),
                        cmd("flash_file_write", flashFile), cmd("flash_file_verify", flashFile),
                        cmd("eeprom_data_write", R"("addr_device": "3", "data": "01 02 FF 7F")"),
                        cmd("eeprom_data_verify", R"("addr_device": "3", "data": "01 02 FF 7F")"),
                        cmd("fuse_write", R"("data": "7AFB")"), cmd("fuse_verify", R"("data": "7AFB")"),
                        cmd("lock_read"), cmd("osccal_read")});
        QCOMPARE(r.image.left(700), flash);
        QCOMPARE(r.image.mid(700, 324), QByteArray(324, char(0xFF)));
        QCOMPARE(r.image.mid(1024 + 3, 4), eeprom);
        QCOMPARE(r.image.mid(1024 + 64, 2), QByteArray::fromHex("7AFB"));
    }

    // The 93 series erases the whole part; the board finds the address width by itself.
    void microwire() {
        const QString devices = dir.filePath("mw");
        const TData record = ChipKit::writeChip(devices, "93C46",
                                                {{"gui_type", "Dev93"},
                                                 {"prg_section", "MW"},
                                                 {"addr_begin", 0},
                                                 {"size", 128},
                                                 {"page_size", 1},
                                                 {"width_addr", 7},
                                                 {"width_data", 8}});
        ChipKit::useFamily({{"93C46", record}}, TCmdFamily::create<TDev93C>);
        ChipSetup chip{"93C46", devices, QByteArray(128, 0x11)};
        const BoardRun r =
            both(chip, {cmd("set_device", R"("device": "93C46", "file": "93c46.cfg")"), cmd("erase")});
        QCOMPARE(r.image, QByteArray(128, char(0xFF)));
        ProjectData.setDeviceFactory(nullptr);
    }
};

QTEST_MAIN(TestBoardRuns)
#include "test_board_runs.moc"
