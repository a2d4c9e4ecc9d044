#include "formats/FormatTestUtil.h"
#include "support/CmdText.h"
#include "support/TestFiles.h"
#include "support/WorkerFixture.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

using TestFiles::writeFile;

// The check a run makes before it touches the chip, against the simulator: damaged or unsuitable data
// files and invalid commands end the run before a single frame reaches the programmer, naming file,
// line and fault; with the check off runs behave as they always did.
class TestRunCheck : public QObject {
    Q_OBJECT

    struct Run {
        int status;
        QString output;
        QStringList frames;
        QByteArray image;
    };

    static QString file(const QString& code, const QString& name, const QString& format, qint64 addrFile,
                        qint64 addr, qint64 count) {
        return cmd(code, QStringLiteral(R"("file": "%1", "format": "%2", "addr_file": "%3", )"
                                        R"("addr_device": "%4", "count": "%5")")
                             .arg(name, format)
                             .arg(addrFile)
                             .arg(addr)
                             .arg(count));
    }
    static QStringList head(const QString& chip, const QString& family) {
        return {
            cmd("set_prog", R"("prog": "Sim", "alt_enabled": "false", "alt_port": "")"),
            cmd("set_device", QStringLiteral(R"("device": "%1", "file": "%2/%1.dev")").arg(chip, family))};
    }

    // Runs the configurations (the first one starts) on a simulator with chip in its socket.
    static Run run(const QList<QPair<QString, QStringList>>& cfgs, const QString& chip = "W25Q80RV",
                   bool check = true) {
        WorkerFixture w;
        SimFixture sim;
        AppData.checkBeforeRun = check;
        if (!sim.start({"--chip", chip, "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"), "--trace",
                        sim.path("trace.txt"), "--image", sim.path("image.bin")}))
            return {-1, sim.errorOutput(), {}, {}};
        w.addProgrammer("Sim", sim);
        TRunner::Options o;
        o.project = w.writeProject(project(cfgs));
        Run r{w.run(o), w.output, {}, {}};
        AppData.checkBeforeRun = true;
        sim.stop();
        r.frames = WorkerFixture::requests(sim.path("trace.txt"));
        r.image = TestFiles::readFile(sim.path("image.bin"));
        return r;
    }
    static Run spi(const QStringList& cmds, bool check = true) {
        return run({{"Main", head("W25Q80RV", "spi") + cmds}}, "W25Q80RV", check);
    }
    // Erase, write and verify of the whole file range on the 1 MiB SPI flash.
    static QStringList program(const QString& name, const QString& format, qint64 count,
                               qint64 addrFile = 0) {
        return {cmd("erase"), file("file_write", name, format, addrFile, 0, count),
                file("file_verify", name, format, addrFile, 0, count)};
    }
    // Whether a frame with one of the device family's erase or write commands reached the simulator.
    static bool touched(const QStringList& frames) {
        for (const QString& f : frames)
            if (f.split(' ').value(1).toInt(nullptr, 16) <= 7) return true;
        return false;
    }

    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }
    QStringList dataFiles; // every HEX and BIN file this test programs, for the invariant

    // A HEX file of 3 data lines and an end record, its data at 0..0x2F.
    QByteArray goodHex() const {
        return ":10000000000102030405060708090A0B0C0D0E0F78\r\n"
               ":10001000101112131415161718191A1B1C1D1E1F68\r\n"
               ":10002000202122232425262728292A2B2C2D2E2F58\r\n"
               ":00000001FF\r\n";
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        for (const char* program : {"/usr/bin/srec_cat", "/usr/bin/avr-gcc", "/usr/bin/avr-objcopy"})
            QVERIFY2(QFile::exists(program), "a tool is missing: run tools/deps.sh");
    }

    // avr-gcc output above 64 KiB: its HEX carries segment records. "Intel HEX" programs exactly what
    // avr-objcopy's binary holds; "HEX" is refused before the erase with the text that names Intel HEX.
    void avrProgramAbove64KiB() {
        QByteArray source = "#include <avr/pgmspace.h>\n#include <stdint.h>\n";
        for (int i = 0; i < 3; ++i) {
            QStringList values;
            for (char c : randomBytes(24000, quint32(i)))
                values << QString::number(uchar(c));
            source += QStringLiteral("const uint8_t part%1[24000] PROGMEM __attribute__((used)) = {%2};\n")
                          .arg(i)
                          .arg(values.join(','))
                          .toUtf8();
        }
        source += "int main(void) { return pgm_read_byte(&part0[1]) + pgm_read_byte(&part2[5]); }\n";
        writeFile(path("p.c"), source);
        QCOMPARE(::run("avr-gcc", {"-mmcu=atmega2560", "-Os", "-o", path("p.elf"), path("p.c")}),
                 QByteArray());
        QCOMPARE(::run("avr-objcopy", {"-O", "ihex", "-R", ".eeprom", path("p.elf"), path("p.hex")}),
                 QByteArray());
        QCOMPARE(::run("avr-objcopy", {"-O", "binary", "-R", ".eeprom", path("p.elf"), path("p.bin")}),
                 QByteArray());
        const QByteArray bin = TestFiles::readFile(path("p.bin"));
        const QByteArray text = TestFiles::readFile(path("p.hex"));
        QVERIFY(bin.size() > 0x10000 && text.contains(":020000021000EC"));
        const int segmentLine = text.left(text.indexOf(":020000021000EC")).count('\n') + 1;
        dataFiles << path("p.hex") << path("p.bin");

        const auto avr = [&](const QString& format) {
            return run(
                {{"Main", head("ATmega2560", "avr") +
                              QStringList{cmd("erase"),
                                          file("flash_file_write", path("p.hex"), format, 0, 0, 0x40000),
                                          file("flash_file_verify", path("p.hex"), format, 0, 0, 0x40000)}}},
                "ATmega2560");
        };
        const Run ihex = avr("IHEX");
        QCOMPARE(ihex.status, 0);
        QCOMPARE(ihex.image.left(0x40000), bin + QByteArray(0x40000 - bin.size(), char(0xFF)));

        const Run hex = avr("HEX");
        QCOMPARE(hex.status, 1);
        QVERIFY(hex.frames.isEmpty());
        QVERIFY2(hex.output.contains(
                     Lang.get(1000).arg(path("p.hex")).arg(segmentLine).arg(Lang.get(1013).arg("1000"))),
                 qPrintable(hex.output));
    }

    void damagedFilesFailBeforeTheErase() {
        QByteArray hex = goodHex();
        writeFile(path("checksum.hex"), QByteArray(hex).replace("1F68", "1F69"));
        writeFile(path("cut.hex"), QByteArray(hex).replace("18191A1B1C1D1E1F68", ""));
        writeFile(path("noend.hex"), hex.left(hex.indexOf(":00000001FF")));
        writeFile(path("data.bin"), randomBytes(300, 9));
        writeFile(path("good.hex"), hex);
        const QString line = Lang.get(1000);
        const struct {
            QString name, format;
            qint64 addrFile;
            QString text;
        } cases[] = {
            {"checksum.hex", "HEX", 0, line.arg(path("checksum.hex")).arg(2).arg(Lang.get(1004))},
            {"checksum.hex", "IHEX", 0, line.arg(path("checksum.hex")).arg(2).arg(Lang.get(1004))},
            {"cut.hex", "HEX", 0, line.arg(path("cut.hex")).arg(2).arg(Lang.get(1003))},
            {"noend.hex", "HEX", 0, line.arg(path("noend.hex")).arg(3).arg(Lang.get(1001))},
            {"noend.hex", "IHEX", 0, line.arg(path("noend.hex")).arg(3).arg(Lang.get(1001))},
            {"data.bin", "HEX", 0, line.arg(path("data.bin")).arg(1).arg(Lang.get(1002))},
            {"good.hex", "HEX", 0x30, Lang.get(1012).arg(path("good.hex"), "00", "2F", "30")},
            {"data.bin", "BIN", 300, Lang.get(1012).arg(path("data.bin"), "00", "2F", "12C")},
        };
        for (const auto& c : cases) {
            const Run r = spi(program(path(c.name), c.format, 0x30, c.addrFile));
            QCOMPARE(r.status, 1);
            QVERIFY2(r.frames.isEmpty(), qPrintable(c.name));
            const QString where = Lang.get(1010).arg(4).arg("File Write", "Main", c.text);
            QVERIFY2(r.output.contains(where), qPrintable(r.output + "\nwanted: " + where));
        }
        dataFiles << path("checksum.hex") << path("cut.hex") << path("noend.hex") << path("data.bin")
                  << path("good.hex");

        // Without the check the HEX dialect reads up to the damaged line, and the run programs that part.
        const Run old = spi(program(path("checksum.hex"), "HEX", 0x30), false);
        QCOMPARE(old.status, 0);
        QVERIFY(touched(old.frames));
        QCOMPARE(old.image.left(0x30), QByteArray::fromHex(hex.mid(9, 32)) + QByteArray(0x20, char(0xFF)));
    }

    // Commands that cannot run, after an erase or behind a jump, stop the run before the erase; with the
    // check off the erase happens and the run fails where the Part says.
    void invalidCommandsFailBeforeTheErase() {
        const QString tooLong = file("file_write", path("good.hex"), "HEX", 0, 0x10, 0x100000);
        Run r = spi({cmd("erase"), tooLong});
        QCOMPARE(r.status, 1);
        QVERIFY(r.frames.isEmpty());
        QVERIFY2(r.output.contains(
                     Lang.get(1010).arg(4).arg("File Write", "Main", Lang.get(388).arg("File Write"))),
                 qPrintable(r.output));
        QVERIFY2(r.output.contains(Lang.get(1014).arg("addr_device")), qPrintable(r.output));

        // Command 4 is the first of "Other", the target of the jump; its second command cannot run.
        const Run jump = run(
            {{"Main", head("W25Q80RV", "spi") + QStringList{cmd("erase"), cmd("jamp", R"("to_cmd": "4")")}},
             {"Other", QStringList{head("W25Q80RV", "spi").first(), cmd("set_vcc", R"("vcc": "9.0")")}}});
        QCOMPARE(jump.status, 1);
        QVERIFY(jump.frames.isEmpty());
        QVERIFY2(
            jump.output.contains(Lang.get(1010).arg(2).arg("Set Vcc", "Other", Lang.get(388).arg("Set Vcc"))),
            qPrintable(jump.output));

        r = spi({cmd("erase"), tooLong}, false);
        QCOMPARE(r.status, 1);
        QVERIFY(touched(r.frames));
        QVERIFY(r.output.contains(Lang.get(388).arg("File Write")));
    }

    // A file that a read of the same run writes is checked when its command comes; a HEX read between
    // 64 KiB and 1 MiB warns that other tools read it differently.
    void fileWrittenByAnEarlierRead() {
        QFile::remove(path("copy.hex"));
        const Run r = spi({file("file_read", path("copy.hex"), "HEX", 0, 0, 0x20000),
                           file("file_verify", path("copy.hex"), "HEX", 0, 0, 0x20000)});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.output.count(Lang.get(1016)), 1);
        const Run small = spi({file("file_read", path("copy.hex"), "HEX", 0, 0, 0x10000),
                               file("file_read", path("copy.ihex"), "IHEX", 0, 0, 0x20000)});
        QCOMPARE(small.status, 0);
        QVERIFY(!small.output.contains(Lang.get(1016)));
        dataFiles << path("copy.hex") << path("copy.ihex");
    }

    // Every HEX and BIN file above, and the demo's: whenever a write and verify run ends well, the chip
    // holds the file as srec_cat reads it.
    void chipEqualsWhatSrecCatReads() {
        writeFile(path("a.bin"), randomBytes(5000, 3));
        // 16-bit addresses only below 64 KiB; segments and linear records across the 64 KiB line.
        for (const char* length : {"2", "3", "4"}) {
            const QString out = path(QStringLiteral("sc%1.hex").arg(length));
            const QString offset = QString(length) == "2" ? "0x1000" : "0xFF00";
            QCOMPARE(::run("srec_cat", {path("a.bin"), "-binary", "-offset", offset, "-o", out, "-intel",
                                        QString("-address-length=") + length}),
                     QByteArray());
            dataFiles << out;
        }
        dataFiles << path("a.bin") << QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.hex");
        int compared = 0;
        for (const QString& name : dataFiles) {
            const bool isBin = name.endsWith(".bin");
            const QByteArray judged = ::run("srec_cat", {name, isBin ? "-binary" : "-intel", "-fill", "0xFF",
                                                         "0", "0x100000", "-o", "-", "-binary"});
            for (const QString& format : isBin ? QStringList{"BIN"} : QStringList{"HEX", "IHEX"}) {
                const Run r = spi(program(name, format, 0x100000));
                if (r.status != 0) continue;
                QVERIFY2(!judged.startsWith("failed:"), qPrintable(name + " " + format + ": " + judged));
                QVERIFY2(r.image == judged, qPrintable(name + " " + format));
                ++compared;
            }
        }
        QVERIFY(compared >= 8);
    }
};

QTEST_GUILESS_MAIN(TestRunCheck)
#include "test_run_check.moc"
