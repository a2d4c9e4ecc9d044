#include "support/WorkerFixture.h"

#include "misc/dev_misc.h"
#include "support/TestFiles.h"

#include <QtTest>

using TestFiles::readFile;
using TestFiles::writeFile;

// The part in the simulator's socket, and the one the project names.
struct Chip {
    QString name = "ATmega328PB";
    QString project = "ATmega328PB";
    QByteArray image; // empty: erased flash and EEPROM, catalogue fuses
    QString devices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
};

// Whole runs of the AVR family against the simulated parts of the shipped catalogue: the ATmega328PB
// (32 KiB flash in 128-byte pages, 1 KiB EEPROM, three fuse bytes, signature 1E9516), the ATmega2560
// (256 KiB flash in 256-byte pages) and the AT90S1200 (word writes, timed erase).
class TestAvrRun : public QObject {
    Q_OBJECT

    static QString cmd(const QString& code, const QString& params = QString()) {
        return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
            .arg(code, params.isEmpty() ? QString() : ", " + params);
    }
    static QString setDevice(const QString& name) {
        return cmd("set_device", QStringLiteral(R"("device": "%1", "file": "avr/%1.dev")").arg(name));
    }
    static QString data(const QString& code, qint64 addr, const QString& hex) {
        return cmd(code, QStringLiteral(R"("addr_device": "%1", "data": "%2")").arg(addr).arg(hex));
    }
    static QString bytes(const QString& code, const QString& hex) {
        return cmd(code, QStringLiteral(R"("data": "%1")").arg(hex));
    }
    static QString file(const QString& code, const QString& name, const QString& format, qint64 addr,
                        qint64 count) {
        return cmd(code, QStringLiteral(R"("file": "%1", "format": "%2", "addr_file": "%3", )"
                                        R"("addr_device": "%3", "count": "%4")")
                             .arg(name, format)
                             .arg(addr)
                             .arg(count));
    }

    struct Run {
        int status;
        QString output;
        QStringList packets; // "command:payload" of the family packets 1 to 7
        QByteArray image;    // flash, EEPROM, three fuse bytes, lock byte
    };

    static Run run(const QStringList& cmds, const Chip& chip = Chip()) {
        WorkerFixture w;
        SimFixture sim;
        const QString imageFile = sim.path("image.bin");
        if (!chip.image.isEmpty()) writeFile(imageFile, chip.image);
        if (!sim.start({"--chip", chip.name, "--devices", chip.devices, "--trace", sim.path("trace.txt"),
                        "--image", imageFile}))
            return {-1, sim.errorOutput(), {}, {}};
        w.addProgrammer("Sim", sim);
        TRunner::Options o;
        o.project = w.writeProject(project(
            {{"Main", QStringList{R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": )"
                                  R"("false", "alt_port": ""})",
                                  setDevice(chip.project)} +
                          cmds}}));
        Run r{w.run(o), w.output, {}, {}};
        sim.stop();
        for (const QString& f : WorkerFixture::requests(sim.path("trace.txt"))) {
            const QStringList b = f.split(' ');
            if (b.size() >= 5 && b.at(1).toInt(nullptr, 16) <= 7)
                r.packets << b.at(1) + ":" + b.mid(4, b.size() - 5).join("");
        }
        QFile f(imageFile);
        if (f.open(QIODevice::ReadOnly)) r.image = f.readAll();
        return r;
    }

    // One Intel HEX data record.
    static QByteArray hexRecord(int addr, const QByteArray& bytes) {
        QByteArray rec;
        rec.append(char(bytes.size())).append(char(addr >> 8)).append(char(addr)).append(char(0)) += bytes;
        int sum = 0;
        for (char c : rec)
            sum += uchar(c);
        rec.append(char(-sum));
        return ":" + rec.toHex().toUpper() + "\n";
    }

    static QByteArray image328(const QByteArray& fuses = QByteArray::fromHex("62D9F7")) {
        return QByteArray(32768 + 1024, char(0xFF)) + fuses + QByteArray(1, char(0xFF));
    }
    static Chip withImage(const QByteArray& image, const QString& name = "ATmega328PB") {
        Chip c;
        c.name = c.project = name;
        c.image = image;
        return c;
    }
    static QString instr(const QString& hex) { return "07:" + hex; }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void identRightAndWrongPart() {
        const Run ok = run({cmd("ident")});
        QCOMPARE(ok.status, 0);
        QCOMPARE(ok.packets.filter("07:").join(' '), QString("07:0030000000 07:0030000100 07:0030000200"));
        Chip other;
        other.name = "ATmega2560";
        const Run wrong = run({cmd("ident")}, other);
        QCOMPARE(wrong.status, 1);
        QVERIFY2(wrong.output.contains(Lang.get(404).arg("1E9801", "ATmega2560")), qPrintable(wrong.output));
    }

    // A part whose reset line the programmer drives at the wrong level never enters programming mode:
    // its replies carry no echo.
    void wrongEchoIsNoAnswer() {
        QTemporaryDir dir;
        QString desc = QString::fromLatin1(readFile(TARVELIX_DATA_DIR "/devices/avr/ATmega328PB.dev"));
        desc.replace("reset_pol=u|0", "reset_pol=u|1");
        QDir(dir.path()).mkpath("avr");
        writeFile(dir.filePath("avr/ATmega328PB.dev"), desc.toLatin1());
        writeFile(dir.filePath("devices.lst"), "ATmega328PB=avr/ATmega328PB.dev\n");
        Chip chip;
        chip.devices = dir.path();
        for (const QString& c :
             {cmd("ident"), cmd("erase"), bytes("fuse_read", "62D9F7"), cmd("osccal_read")}) {
            const Run r = run({c}, chip);
            QCOMPARE(r.status, 1);
            QVERIFY2(r.output.contains(Lang.get(389)), qPrintable(r.output));
        }
    }

    // EESAVE (high fuse bit 3) unprogrammed: the erase clears flash and EEPROM; programmed: EEPROM stays.
    // The lock bits are unprogrammed afterwards either way.
    void chipEraseWithAndWithoutEesave() {
        QByteArray image = image328();
        image.replace(0, 4, "\x01\x02\x03\x04");
        image.replace(32768, 2, "\x55\xAA");
        image[image.size() - 1] = char(0xFC);
        const Run plain = run({cmd("erase")}, withImage(image));
        QCOMPARE(plain.status, 0);
        QVERIFY(plain.packets.contains(instr("FFAC800000")));
        QCOMPARE(plain.image, image328());
        image.replace(32768 + 1024, 3, QByteArray::fromHex("62D7F7"));
        const Run kept = run({cmd("erase")}, withImage(image));
        QCOMPARE(kept.status, 0);
        QCOMPARE(kept.image.mid(32768, 2), QByteArray("\x55\xAA"));
        QCOMPARE(kept.image.left(4), QByteArray(4, char(0xFF)));
        QCOMPARE(uchar(kept.image.back()), uchar(0xFF));
    }

    // Gaps in a HEX file and odd ends: the padding bytes are FF, so flash already written next to them
    // keeps its value (flash cells only go from 1 to 0).
    void flashHexWithGapsWriteVerifyRead() {
        QTemporaryDir dir;
        const QString hex = dir.filePath("in.hex");
        writeFile(hex, hexRecord(0x0000, QByteArray::fromHex("0C9434")) +
                           hexRecord(0x0105, QByteArray::fromHex("A1B2C3D4")) + ":00000001FF\n");
        const Run r =
            run({data("flash_data_write", 0x104, "12"), file("flash_file_write", hex, "hex", 0, 0x200),
                 file("flash_file_verify", hex, "hex", 0, 0x200),
                 file("flash_file_read", dir.filePath("out.bin"), "bin", 0, 0x200)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(r.packets.filter("04:"),
                 QStringList({"04:040112FF", "04:00000C9434FF", "04:0401FFA1B2C3D4FF"}));
        QVERIFY(r.packets.contains("03:00000300") && r.packets.contains("03:05010400"));
        QVERIFY(r.packets.contains("03:00000002"));
        QByteArray flash(0x200, char(0xFF));
        flash.replace(0, 3, QByteArray::fromHex("0C9434"));
        flash.replace(0x104, 5, QByteArray::fromHex("12A1B2C3D4"));
        QCOMPARE(r.image.left(0x200), flash);
        QCOMPARE(readFile(dir.filePath("out.bin")), flash);
    }

    void eepromHexWriteVerifyReadAndMismatch() {
        QTemporaryDir dir;
        const QString hex = dir.filePath("e.hex");
        writeFile(hex, hexRecord(0x0003, QByteArray::fromHex("1122")) + hexRecord(0x0010, "\x33") +
                           ":00000001FF\n");
        const Run r = run({file("eeprom_file_write", hex, "hex", 0, 1024),
                           file("eeprom_file_verify", hex, "hex", 0, 1024),
                           file("eeprom_file_read", dir.filePath("e.bin"), "bin", 0, 32)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        // No word padding and no wait byte: the programmer times EEPROM writes.
        QCOMPARE(r.packets.filter("06:"), QStringList({"06:03001122", "06:100033"}));
        QVERIFY(r.packets.contains("05:03000200") && r.packets.contains("05:00002000"));
        QByteArray eeprom(32, char(0xFF));
        eeprom.replace(3, 2, QByteArray::fromHex("1122")).replace(0x10, 1, "\x33");
        QCOMPARE(r.image.mid(32768, 32), eeprom);
        QCOMPARE(readFile(dir.filePath("e.bin")), eeprom);
        const Run bad = run({data("eeprom_data_verify", 2, "FF1123")}, withImage(r.image));
        QCOMPARE(bad.status, 1);
        QVERIFY2(bad.output.contains(TMiscDev::getMsgVerifyError(4, 0x23, 0x22)), qPrintable(bad.output));
    }

    // Beyond 64 KiB: the extended address goes out before the first access and whenever bits 23-16
    // change; reads from address 0 send it again.
    void largePartExtendedAddress() {
        const QString cross = "A1A2A3A4";
        const Run r = run({data("flash_data_write", 0x1FFFE, cross),
                           data("flash_data_verify", 0x1FFFE, cross), data("flash_data_read", 0, "FFFF")},
                          withImage(QByteArray(), "ATmega2560"));
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(r.packets.mid(r.packets.indexOf("07:004D000100")),
                 QStringList({"07:004D000100", "04:FEFFA1A2", "07:FF4CFFFF00", "07:004D000200", "04:0000A3A4",
                              "07:FF4C000000", "07:004D000100", "03:FEFF0200", "07:004D000200", "03:00000200",
                              "07:004D000000", "03:00000200"}));
        QCOMPARE(r.image.mid(0x1FFFE, 4), QByteArray::fromHex("A1A2A3A4"));
        QCOMPARE(r.image.mid(0x1FF00, 0xFE), QByteArray(0xFE, char(0xFF)));
    }

    // Fuse writes wait the catalogue's 5 ms (no polling; the part needs 4.5 ms); a lock mode without further
    // programming makes a later flash write do nothing, which the verify catches, until a chip erase.
    void fusesAndLockBits() {
        const Run r =
            run({bytes("fuse_write", "E2D7FD"), bytes("fuse_verify", "E2D7FD"), bytes("fuse_read", "62D9F7"),
                 bytes("lock_write", "FE"), bytes("lock_verify", "FE"), bytes("lock_read", "FF"),
                 data("flash_data_write", 0x40, "1234"), data("flash_data_verify", 0x40, "1234")});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.packets.filter(QRegularExpression("^07:05AC")),
                 QStringList({"07:05ACA000E2", "07:05ACA800D7", "07:05ACA400FD", "07:05ACE000FE"}));
        QVERIFY(r.packets.contains("07:0050000000") && r.packets.contains("07:0058080000") &&
                r.packets.contains("07:0050080000") && r.packets.contains("07:0058000000"));
        QVERIFY2(r.output.contains("\nE2D7FD\n") && r.output.contains("\nFE\n"), qPrintable(r.output));
        QVERIFY2(r.output.contains(TMiscDev::getMsgVerifyError(0x40, 0x12, 0xFF)), qPrintable(r.output));
        QCOMPARE(r.image.mid(32768 + 1024), QByteArray::fromHex("E2D7FDFE"));

        const Run wrong =
            run({bytes("fuse_verify", "62D9F7"), bytes("lock_verify", "FC")}, withImage(r.image));
        QCOMPARE(wrong.status, 1);
        QVERIFY2(wrong.output.contains(Lang.get(480).arg("62D9F7", "E2D7FD")), qPrintable(wrong.output));
        const Run lock = run({bytes("lock_verify", "FC")}, withImage(r.image));
        QVERIFY2(lock.output.contains(Lang.get(481).arg("FC", "FE")), qPrintable(lock.output));

        const Run erased = run({cmd("erase"), data("flash_data_write", 0x40, "1234"),
                                data("flash_data_verify", 0x40, "1234"), bytes("lock_verify", "FF")},
                               withImage(r.image));
        QVERIFY2(erased.status == 0, qPrintable(erased.output));
    }

    void calibrationBytes() {
        const Run r = run({cmd("osccal_read")});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(r.packets.filter("07:"), QStringList({"07:0038000000"}));
        QVERIFY2(r.output.contains("\nA0\n"), qPrintable(r.output));
    }

    // Parts without polling get their delay as the wait byte; reads always wait 00.
    void delayWithoutPolling() {
        const Run r = run({cmd("erase"), data("flash_data_write", 1, "55"), cmd("ident")},
                          withImage(QByteArray(), "AT90S1200"));
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QVERIFY(r.packets.contains("07:14AC800000")); // 20 ms, the part's chip erase time
        QVERIFY(r.packets.contains("04:0000FF55"));
        QCOMPARE(r.image.left(2), QByteArray::fromHex("FF55"));
    }

    void autoDetectRoutesThePart() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim,
                           {"--chip", "ATmega2560", "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                            "--trace", sim.path("trace.txt")}));
        const QString prog = R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", )"
                             R"("alt_port": ""})";
        const QString detect = cmd("auto_detect", R"("name": "DevAVR8_SPI", "route": "ATmega2560=1", )"
                                                  R"("stop": "true", "execute": "true")");
        TRunner::Options o;
        o.project = w.writeProject(
            project({{"Main", {prog, detect}}, {"Mega", {prog, setDevice("ATmega2560"), cmd("ident")}}}));
        QCOMPARE(w.run(o), 0);
        QVERIFY2(w.output.contains(Lang.get(401).arg("ATmega2560 (1E9801)")), qPrintable(w.output));
        QVERIFY2(w.output.contains(Lang.get(403).arg("Mega")), qPrintable(w.output));
    }
};

QTEST_GUILESS_MAIN(TestAvrRun)
#include "test_avr_run.moc"
