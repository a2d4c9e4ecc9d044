#include "support/WorkerFixture.h"

#include "misc/dev_misc.h"
#include "support/CmdText.h"
#include "support/TestFiles.h"

#include <QElapsedTimer>
#include <QtTest>

using TestFiles::writeFile;

// Whole runs of the SPI flash family against the simulated W25Q80RV (1 MiB, 256-byte pages, JEDEC ID
// EF4014, three status registers, 768 bytes of security registers, 256 bytes of SFDP).
class TestSpiRun : public QObject {
    Q_OBJECT

    const QString setProg =
        R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})";

    static QString setDevice(const QString& name = "W25Q80RV") {
        return cmd("set_device", QStringLiteral(R"("device": "%1", "file": "spi/%1.dev")").arg(name));
    }

    struct Run {
        int status;
        QString output;
        QStringList frames;
        QByteArray image;
    };

    // Runs the commands after set_prog and set_device on a simulator with the given chip and options.
    Run run(const QStringList& cmds, const QStringList& simOptions = {}, const QString& chip = "W25Q80RV",
            const QByteArray& image = QByteArray()) {
        WorkerFixture w;
        SimFixture sim;
        const QString imageFile = sim.path("image.bin");
        if (!image.isEmpty()) writeFile(imageFile, image);
        if (!sim.start(QStringList{"--chip", chip, "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                                   "--trace", sim.path("trace.txt"), "--image", imageFile} +
                       simOptions))
            return {-1, sim.errorOutput(), {}, {}};
        w.addProgrammer("Sim", sim);
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", QStringList{setProg, setDevice()} + cmds}}));
        Run r{w.run(o), w.output, {}, {}};
        sim.stop();
        r.frames = WorkerFixture::requests(sim.path("trace.txt"));
        QFile f(imageFile);
        if (f.open(QIODevice::ReadOnly)) r.image = f.readAll();
        return r;
    }

    // The device frames (command bytes 1 to 4) after the handshake, without frame marker and check byte:
    // "command payload" in hex.
    static QStringList devicePackets(const QStringList& frames) {
        QStringList out;
        for (const QString& f : frames) {
            const QStringList b = f.split(' ');
            if (b.size() >= 5 && b.at(1).toInt(nullptr, 16) <= 4)
                out << b.at(1) + ":" + b.mid(4, b.size() - 5).join("");
        }
        return out;
    }

    static QByteArray pattern(int n, int seed = 0) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i)
            b[i] = char((i * 7 + seed + (i >> 8)) & 0xFF);
        return b;
    }

    static QString fileCmd(const QString& code, const QString& file, const QString& format, qint64 addrFile,
                           qint64 addr, qint64 count) {
        return cmd(
            code,
            QStringLiteral(
                R"("file": "%1", "format": "%2", "addr_file": "%3", "addr_device": "%4", "count": "%5")")
                .arg(file, format)
                .arg(addrFile)
                .arg(addr)
                .arg(count));
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void identRightAndWrongChip() {
        const Run ok = run({cmd("ident")});
        QCOMPARE(ok.status, 0);
        QVERIFY(devicePackets(ok.frames).contains("03:03009F"));
        // A W25Q16JV_M in the socket while the project expects a W25Q80RV.
        const Run wrong = run({cmd("ident")}, {}, "W25Q16JV_M");
        QCOMPARE(wrong.status, 1);
        QVERIFY2(wrong.output.contains(Lang.get(404).arg("EF7015", "W25Q16JV_M")), qPrintable(wrong.output));
    }

    void chipEraseAndBlockErase() {
        const Run chip = run({cmd("erase")}, {}, "W25Q80RV", pattern(1 << 20));
        QCOMPARE(chip.status, 0);
        QVERIFY(devicePackets(chip.frames).contains("04:C7000000"));
        QCOMPARE(chip.image, QByteArray(1 << 20, char(0xFF)));
        // Two 4 KiB sectors from sector 3: 0x3000..0x4FFF erased, the rest kept.
        const Run blocks = run({cmd("erase_blocks", R"("size": "4096", "begin": "3", "count": "2")")}, {},
                               "W25Q80RV", pattern(1 << 20));
        QCOMPARE(blocks.status, 0);
        const QStringList p = devicePackets(blocks.frames);
        QVERIFY(p.contains("04:20003000") && p.contains("04:20004000"));
        QByteArray expected = pattern(1 << 20);
        expected.replace(0x3000, 0x2000, QByteArray(0x2000, char(0xFF)));
        QCOMPARE(blocks.image, expected);
    }

    void writesCutAtPagesAndReadsAtMaxData() {
        // 600 bytes from page offset 200: 56, 256, 256 and 32 bytes; read back in one 4096-byte piece.
        QTemporaryDir dir;
        const QByteArray data = pattern(600, 3);
        writeFile(dir.filePath("in.bin"), data);
        const Run r = run({fileCmd("file_write", dir.filePath("in.bin"), "bin", 0, 0x10C8, 600),
                           fileCmd("file_verify", dir.filePath("in.bin"), "bin", 0, 0x10C8, 600),
                           cmd("test_empty_blocks", R"("size": "4096", "begin": "0", "count": "1")")});
        QCOMPARE(r.status, 0);
        QStringList writes;
        for (const QString& p : devicePackets(r.frames))
            if (p.startsWith("04:02")) writes << p.mid(5, 6) + "/" + QString::number((p.size() - 11) / 2);
        QCOMPARE(writes, (QStringList{"0010C8/56", "001100/256", "001200/256", "001300/32"}));
        QVERIFY(devicePackets(r.frames).contains("03:00100B00000000"));
        QCOMPARE(r.image.mid(0x10C8, 600), data);
    }

    void filesAtOffsetsRoundTrip() {
        QTemporaryDir dir;
        const QByteArray data = pattern(5000, 9);
        writeFile(dir.filePath("in.bin"), data);
        // bin+ keeps what lies outside the written range.
        writeFile(dir.filePath("plus.bin"), QByteArray(16, 'x'));
        const Run r = run({fileCmd("file_write", dir.filePath("in.bin"), "bin", 100, 0x20000, 4900),
                           fileCmd("file_read", dir.filePath("out.hex"), "hex", 0, 0x20000, 4900),
                           fileCmd("file_read", dir.filePath("plus.bin"), "bin+", 8, 0x20000, 4),
                           fileCmd("file_verify", dir.filePath("out.hex"), "hex", 0, 0x20000, 4900)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(r.image.mid(0x20000, 4900), data.mid(100));
        QFile plus(dir.filePath("plus.bin"));
        QVERIFY(plus.open(QIODevice::ReadOnly));
        QCOMPARE(plus.readAll(), QByteArray(8, 'x') + data.mid(100, 4) + QByteArray(4, 'x'));
    }

    void verifyMismatchAndEmptyTestNameTheAddress() {
        QByteArray image(1 << 20, char(0xFF));
        image[0x1234] = char(0x5A);
        const Run empty = run({cmd("test_empty")}, {}, "W25Q80RV", image);
        QCOMPARE(empty.status, 1);
        QVERIFY2(empty.output.contains(Lang.get(1736) + "\nAddress: 0x1234, Data: 0xFF, Read: 0x5A"),
                 qPrintable(empty.output));
        const Run data =
            run({cmd("data_verify", R"("addr_device": "4658", "data": "FF FF 5B")")}, {}, "W25Q80RV", image);
        QCOMPARE(data.status, 1);
        // The range is the command's own: 0x1232 (4658) and its three bytes.
        QVERIFY2(data.output.contains(Lang.get(1731).arg("0x1232", "0x1234") +
                                      "\nAddress: 0x1234, Data: 0x5B, Read: 0x5A"),
                 qPrintable(data.output));
    }

    void registers() {
        QTemporaryDir dir;
        const QByteArray sec = pattern(768, 5);
        writeFile(dir.filePath("sec.bin"), sec);
        const Run r = run(
            {cmd("status_reg_write", R"("data": "000260")"), cmd("status_reg_verify", R"("data": "000260")"),
             cmd("status_reg_read", R"("data": "")"), cmd("security_reg_erase", R"("data": "7")"),
             fileCmd("security_reg_write", dir.filePath("sec.bin"), "bin", 0, 0, 768),
             fileCmd("security_reg_verify", dir.filePath("sec.bin"), "bin", 0, 0, 768),
             cmd("unique_id_read", R"("data": "")"),
             fileCmd("sfdp_reg_read", dir.filePath("sfdp.bin"), "bin", 0, 0, 256)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        const QStringList p = devicePackets(r.frames);
        QVERIFY(p.contains("04:0100") && p.contains("04:3102") && p.contains("04:1160"));
        QVERIFY(p.contains("04:44001000") && p.contains("04:44003000"));
        QVERIFY2(r.output.contains("\n000260\n"), qPrintable(r.output));
        QFile sfdp(dir.filePath("sfdp.bin"));
        QVERIFY(sfdp.open(QIODevice::ReadOnly));
        const QByteArray table = sfdp.readAll();
        QCOMPARE(table.left(4), QByteArray("SFDP"));
        // Density of the basic table: 8 Mbit - 1.
        QCOMPARE(TMiscDev::getHexFromByteArray(table.mid(0x34, 4)), QString("FFFF7F00"));
        // Each SFDP piece carries only the low address byte; each security piece one register.
        QVERIFY(p.contains("03:00015A00000000"));
        QVERIFY(p.contains("03:000148002000" + QString("00")));
    }

    void protectedChipFailsVerify() {
        // BP2..BP0 all set: the whole part is protected, the write does nothing and the verify says where.
        QByteArray image(1 << 20, char(0xFF));
        const Run r = run({cmd("status_reg_write", R"("data": "1C0000")"),
                           cmd("data_write", R"("addr_device": "16", "data": "01 02")"),
                           cmd("data_verify", R"("addr_device": "16", "data": "01 02")")},
                          {}, "W25Q80RV", image);
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains("Address: 0x10, Data: 0x01, Read: 0xFF"), qPrintable(r.output));
        QCOMPARE(r.image, image);
    }

    void noisyOrSilentProgrammer() {
        const Run silent = run({cmd("test_empty")}, {"--silent-after", "5"});
        QCOMPARE(silent.status, 1);
        QVERIFY2(silent.output.contains(Lang.get(389)), qPrintable(silent.output));
        const Run noisy = run({cmd("test_empty")}, {"--corrupt", "6"});
        QCOMPARE(noisy.status, 1);
        QVERIFY2(noisy.output.contains(Lang.get(389)), qPrintable(noisy.output));
    }
    void autoDetectWithAndWithoutRoute() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(
            w.startSim(sim, {"--chip", "W25Q80RV", "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                             "--trace", sim.path("trace.txt")}));
        const QString detect =
            cmd("auto_detect", R"("name": "Dev25", "route": "%1", "stop": "%2", "execute": "true")");
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", {setProg, detect.arg("W25Q80RV=1", "true")}},
                                            {"Second", {setProg, setDevice(), cmd("ident")}}}));
        QCOMPARE(w.run(o), 0);
        QVERIFY2(w.output.contains(Lang.get(401).arg("W25Q80RV (EF4014)")), qPrintable(w.output));
        QVERIFY2(w.output.contains(Lang.get(403).arg("Second")), qPrintable(w.output));
        QVERIFY(w.output.contains("Ident"));
        // No route for the part: the run stays in its configuration.
        o.project = w.writeProject(project({{"Main", {setProg, detect.arg("", "true")}}}));
        QCOMPARE(w.run(o), 0);
        QVERIFY2(w.output.contains("--> " + Lang.get(394) + " \"Main\""), qPrintable(w.output));
    }

    // An empty socket reads FF FF FF, which no detection list knows: a note without stop, a failure with it.
    void autoDetectWithoutMatch() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--bus", "spi"}));
        const QString detect =
            cmd("auto_detect", R"("name": "Dev25", "route": "", "stop": "%1", "execute": "true")");
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", {setProg, detect.arg("false")}}}));
        QCOMPARE(w.run(o), 0);
        QVERIFY2(w.output.contains(Lang.get(402) + " (FFFFFF)\n" + Lang.get(391)), qPrintable(w.output));
        o.project = w.writeProject(project({{"Main", {setProg, detect.arg("true")}}}));
        QCOMPARE(w.run(o), 1);
        QVERIFY2(w.output.contains(Lang.get(386)), qPrintable(w.output));
        QVERIFY2(w.output.contains(Lang.get(402) + " (FFFFFF)"), qPrintable(w.output));
    }

    void stopDuringALongWrite() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(
            w.startSim(sim, {"--chip", "W25Q80RV", "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                             "--trace", sim.path("trace.txt"), "--timing", "on"}));
        TRunner::Options o;
        o.project = w.writeProject(
            project({{"Main",
                      {setProg, setDevice(),
                       cmd("char_write", R"("addr_device": "0", "count": "1048576", "fill_char": "0")")}}}));
        FILE* out = std::tmpfile();
        TRunner runner(out, std::tmpfile());
        QTimer::singleShot(500, &runner, &TRunner::stopAll);
        runner.run(o);
        std::rewind(out);
        char buf[2048] = {};
        QVERIFY(std::fread(buf, 1, sizeof buf - 1, out) > 0);
        QVERIFY2(QString::fromUtf8(buf).contains(Lang.get(390)), buf);
        sim.stop();
        const QStringList frames = WorkerFixture::requests(sim.path("trace.txt"));
        QCOMPARE(frames.mid(frames.size() - 2), (QStringList{"C0 85 00 00 BB", "C0 83 01 00 00 BC"}));
    }
};

QTEST_GUILESS_MAIN(TestSpiRun)
#include "test_spi_run.moc"
