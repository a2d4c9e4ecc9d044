#include "app/TLang.h"
#include "support/CliSettings.h"
#include "support/SimFixture.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// "tarvelix --chip PART --erase --write FILE ..." as flashrom and avrdude users type it: a real process
// against the simulator, with the chip's image read back from the simulator afterwards.
class TestCliQuick : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    SimFixture sim;

    QString settings() { return writeCliSettings(dir.path(), sim.link()); }

    struct Result {
        int status;
        QString out, err;
    };

    // Runs in the test's folder, so that relative file names are tried too.
    Result run(const QStringList& args) {
        QProcess p;
        p.setWorkingDirectory(dir.path());
        p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"), QStringList{"--settings", settings()} + args);
        p.waitForFinished(30000);
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }

    void writeFile(const QString& name, const QByteArray& bytes) {
        TestFiles::writeFile(dir.filePath(name), bytes);
    }

    static QByteArray hexRecord(int addr, const QByteArray& data) {
        QByteArray rec;
        rec.append(char(data.size())).append(char(addr >> 8)).append(char(addr)).append(char(0)).append(data);
        int sum = 0;
        for (char c : rec)
            sum += static_cast<unsigned char>(c);
        rec.append(char(-sum));
        return ":" + rec.toHex().toUpper() + "\n";
    }

    static QByteArray pattern(int n, int seed) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i)
            b[i] = char(i * 7 + seed);
        return b;
    }

    QString end() { return Lang.get(391) + "\n"; }
    // The result lines of the file commands carry a speed, which no test can fix.
    static QString withoutResults(const QString& out) {
        static const QRegularExpression result(QStringLiteral("^\\S.* \\d+ bytes .* in [0-9.]+ s.*\n"),
                                               QRegularExpression::MultilineOption);
        return QString(out).remove(result);
    }
    QString header(const QString& chip) {
        return "Set Prog (Sim)\nTarvelix programmer simulator 1.0\nSet Device (" + chip + ")\n";
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void spiFlashEraseWriteVerifyAndRead() {
        const int size = 1 << 20;
        QVERIFY(sim.startChip("W25Q80RV", QByteArray(size, 0)));
        const QByteArray data = pattern(20, 3);
        writeFile("f.hex",
                  hexRecord(0x100, data.left(16)) + hexRecord(0x110, data.mid(16)) + ":00000001FF\n");
        const QString hexFile = dir.filePath("f.hex");
        Result r = run({"--chip", "W25Q80RV", "--erase", "--write", "f.hex", "--verify", "f.hex"});
        QCOMPARE(r.status, 0);
        QCOMPARE(withoutResults(r.out), header("W25Q80RV") + "Erase\nFile Write (" + hexFile +
                                            " (HEX))\nFile Verify (" + hexFile + " (HEX))\n" + end());

        // A file the chip does not hold fails the run; the chip keeps what was written.
        writeFile("other.bin", QByteArray(0x200, 0x5A));
        r = run({"--chip", "w25q80rv", "--verify", "other.bin"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.out.contains(Lang.get(386)), qPrintable(r.out));

        r = run({"--chip", "W25Q80RV", "--read", "out.bin", "--format", "bin"});
        QCOMPARE(r.status, 0);
        QFile read(dir.filePath("out.bin"));
        QVERIFY(read.open(QIODevice::ReadOnly));
        QByteArray expected(size, char(0xFF));
        expected.replace(0x100, data.size(), data);
        QCOMPARE(read.readAll(), expected);
        QCOMPARE(sim.chipImage(), expected);
    }

    void autoDetectReportsEveryMatchingPart() {
        QVERIFY(sim.startChip("W25Q80RV", QByteArray()));
        Result r = run({"--chip", "auto"});
        QCOMPARE(r.status, 0);
        for (const char* name : {"W25Q80BV", "W25Q80DV", "W25Q80RV"})
            QVERIFY2(r.out.contains(Lang.get(401).arg(QString(name) + " (EF4014)")), qPrintable(r.out));
        // An operation needs one part; flashrom refuses the same way.
        r = run({"--chip", "auto", "--read", "x.bin"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err, Lang.get(1703).arg("W25Q80BV, W25Q80DV, W25Q80RV") + "\n");
        QVERIFY(!QFile::exists(dir.filePath("x.bin")));

        // The SPI flash family fails on an AVR; its try is not shown once the AVR family finds the part.
        QVERIFY(sim.startChip("ATmega328P", QByteArray()));
        r = run({"--chip", "auto"});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains(Lang.get(401).arg("ATmega328P (1E950F)")), qPrintable(r.out));
        QVERIFY2(!r.out.contains(Lang.get(386)), qPrintable(r.out));
        sim.stop();
        r = run({"--chip", "auto"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.out.count(Lang.get(393)), 1);
    }

    void avrEepromAndFuses() {
        const int flash = 32768, eeprom = 1024;
        QVERIFY(sim.startChip("ATmega328P", QByteArray()));
        const QByteArray data = pattern(300, 11);
        writeFile("e.bin", data);
        Result r = run({"--chip", "ATmega328P", "--memory", "eeprom", "--write", "e.bin", "--verify", "e.bin",
                        "--fuses", "E2d9fe", "--lock", "FC"});
        QCOMPARE(r.status, 0);
        const QString file = dir.filePath("e.bin");
        QCOMPARE(withoutResults(r.out), header("ATmega328P") + "EEPROM File Write (" + file +
                                            " (BIN))\nEEPROM File Verify (" + file +
                                            " (BIN))\nFuse Bits Write (E2D9FE)\nFuse Bits Verify (E2D9FE)\n"
                                            "Lock Bits Write (FC)\nLock Bits Verify (FC)\n" +
                                            end());
        const QByteArray image = sim.chipImage();
        QCOMPARE(image.size(), flash + eeprom + 4);
        QCOMPARE(image.left(flash), QByteArray(flash, char(0xFF)));
        QCOMPARE(image.mid(flash, data.size()), data);
        QCOMPARE(image.mid(flash + data.size(), eeprom - data.size()),
                 QByteArray(eeprom - data.size(), char(0xFF)));
        QCOMPARE(image.right(4).toHex().toUpper(), QByteArray("E2D9FEFC"));
    }

    void wrongOptionsNameTheProblemAndExitWithTwo() {
        QVERIFY(sim.startChip("W25Q80RV", QByteArray()));
        Result r = run({"--chip", "W25Q99", "--erase"});
        QCOMPARE(r.status, 2);
        QCOMPARE(r.err, Lang.get(1700).arg("W25Q99") + "\n");
        r = run({"--chip", "W25Q80RV", "--memory", "eeprom", "--write", "x.bin"});
        QCOMPARE(r.status, 2);
        QCOMPARE(r.err, Lang.get(1704).arg("W25Q80RV", "write --memory eeprom") + "\n");
        r = run({"--chip", "W25Q80RV", "--fuses", "FF"});
        QCOMPARE(r.status, 2);
        QCOMPARE(r.err, Lang.get(1704).arg("W25Q80RV", "fuses") + "\n");
        r = run({"--chip", "ATmega328P", "--fuses", "E2D9"});
        QCOMPARE(r.status, 2);
        QCOMPARE(r.err, Lang.get(1710).arg("--fuses", Lang.get(388).arg("Fuse Bits Write")) + "\n");
        r = run({"--prog", "Nope", "--chip", "W25Q80RV", "--erase"});
        QCOMPARE(r.status, 2);
        QCOMPARE(r.err, Lang.get(1701).arg("Nope", "Sim") + "\n");
        r = run({"--chip", "W25Q80RV"});
        QCOMPARE(r.err, Lang.get(1702) + "\n");
        r = run({"--chip", "W25Q80RV", "--format", "srec", "--read", "x"});
        QCOMPARE(r.err, Lang.get(1705).arg("srec") + "\n");
        r = run({"--chip", "W25Q80RV", "--read"});
        QCOMPARE(r.status, 2);
        // Nothing of these reached the chip.
        const QByteArray image = sim.chipImage();
        QCOMPARE(image.size(), 1 << 20);
        QCOMPARE(image.count(char(0xFF)), 1 << 20);
    }

    // The fixed texts stay as they are; what the user needs to act on follows on lines of its own.
    void failuresCarryTheirContext() {
        const QString rule(60, '=');
        auto block = [&](const QStringList& lines) {
            return Lang.get(386) + "\n" + rule + "\n" + lines.join('\n') + "\n" + rule + "\n";
        };
        QVERIFY(sim.startChip("W25Q80RV", QByteArray()));
        writeFile("zeros.bin", QByteArray(16, 0));
        Result r = run({"--chip", "W25Q80RV", "--verify", "zeros.bin"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.out.endsWith(
                     block({Lang.get(1731).arg("0x00", "0xFFFFF"), "Address: 0x00, Data: 0x00, Read: 0xFF"})),
                 qPrintable(r.out));
        // The check before running names the file too; without it the write itself finds it missing.
        r = run({"--no-check", "--chip", "W25Q80RV", "--write", "missing.bin"});
        QVERIFY2(r.out.endsWith(block({Lang.get(417), Lang.get(1734).arg(dir.filePath("missing.bin"))})),
                 qPrintable(r.out));
        r = run({"--chip", "W25Q16JV_M", "--detect"});
        QVERIFY2(r.out.endsWith(block({Lang.get(404).arg("EF4014", "W25Q80BV, W25Q80DV, W25Q80RV"),
                                       Lang.get(1735).arg("EF7015", "W25Q16JV_M")})),
                 qPrintable(r.out));
        sim.stop();
        r = run({"--chip", "W25Q80RV", "--erase"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.out.endsWith(block({Lang.get(393), Lang.get(1730).arg(sim.link())})), qPrintable(r.out));
    }

    // The log folder of a production line: one JSON line per run, whose CRC zlib agrees with.
    void logFolderKeepsEveryRun() {
        QVERIFY(sim.startChip("W25Q80RV", QByteArray()));
        const QByteArray data = pattern(5000, 7);
        writeFile("fw.bin", data);
        Result r = run({"--log-dir", "logs", "--chip", "W25Q80RV", "--erase", "--write", "fw.bin", "--verify",
                        "fw.bin"});
        QCOMPARE(r.status, 0);
        writeFile("zeros.bin", QByteArray(16, 0));
        r = run({"--log-dir", "logs", "--chip", "W25Q80RV", "--write", "zeros.bin", "--verify", "fw.bin"});
        QCOMPARE(r.status, 1);

        QFile lines(dir.filePath("logs/runs.jsonl"));
        QVERIFY(lines.open(QIODevice::ReadOnly));
        const QList<QByteArray> records = lines.readAll().split('\n');
        QCOMPARE(records.size(), 3); // two lines and the end
        const QJsonObject good = QJsonDocument::fromJson(records[0]).object();
        QCOMPARE(good.value("configuration").toString(), QString("W25Q80RV"));
        QCOMPARE(good.value("programmer").toString(), QString("Sim"));
        QCOMPARE(good.value("port").toString(), sim.link());
        QCOMPARE(good.value("chip").toString(), QString("W25Q80RV"));
        QCOMPARE(good.value("result").toString(), QString("ok"));
        QVERIFY(QDateTime::fromString(good.value("time").toString(), Qt::ISODateWithMs).isValid());
        QVERIFY(good.value("duration_s").toDouble() > 0);
        QProcess zlib;
        zlib.start("python3",
                   {"-c", "import sys,zlib;print('%08X' % zlib.crc32(open(sys.argv[1],'rb').read()))",
                    dir.filePath("fw.bin")});
        QVERIFY(zlib.waitForFinished(10000));
        const QJsonArray written = good.value("written").toArray();
        QCOMPARE(written.size(), 1);
        QCOMPARE(written[0].toObject().value("command").toString(), QString("file_write"));
        QCOMPARE(written[0].toObject().value("bytes").toInt(), 5000);
        QCOMPARE(written[0].toObject().value("address").toInt(), 0);
        QCOMPARE(written[0].toObject().value("crc32").toString(), QString(zlib.readAll().trimmed()));

        // The write of the failed run completed before its verify failed; the run did not.
        const QJsonObject bad = QJsonDocument::fromJson(records[1]).object();
        QCOMPARE(bad.value("result").toString(), QString("failed"));
        QCOMPARE(bad.value("written").toArray().size(), 1);
        QCOMPARE(bad.value("written").toArray()[0].toObject().value("bytes").toInt(), 16);

        QFile text(dir.filePath("logs/runs.log"));
        QVERIFY(text.open(QIODevice::ReadOnly));
        const QString log = QString::fromUtf8(text.readAll());
        QCOMPARE(log.count("==== "), 2);
        QVERIFY(log.contains(Lang.get(1731).arg("0x00", "0xFFFFF")));
    }

    void listsTheCatalogueAndTheProgrammers() {
        Result r = run({"--list-chips", "w25q80?v"});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, "W25Q80BV\tspi\nW25Q80DV\tspi\nW25Q80RV\tspi\n");
        r = run({"--list-chips", "mega328"});
        const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
        QVERIFY(lines.contains("ATmega328P\tavr"));
        for (const QString& line : lines)
            QVERIFY2(line.contains("mega328", Qt::CaseInsensitive), qPrintable(line));
        r = run({"--list-chips", "nothing-like-it"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err, Lang.get(1712).arg("nothing-like-it") + "\n");
        r = run({"--list-progs"});
        QCOMPARE(r.out, "Sim\tSimulator\t" + sim.link() + "\t*\n");
    }
};

QTEST_GUILESS_MAIN(TestCliQuick)
#include "test_cli_quick.moc"
