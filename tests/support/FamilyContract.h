#pragma once

#include "support/TestFiles.h"
#include "support/WorkerFixture.h"

#include "misc/dev_misc.h"
#include "support/CmdText.h"

#include <QDir>
#include <QTimer>
#include <QtTest>

// The contract every device family keeps, as one set of tests run against the simulator: a subclass
// names a chip of the catalogue and one memory space of it (its command codes, its chunks, where it
// lies in the simulator's image) and inherits every test. Adding a family is adding a subclass.
class FamilyContract : public QObject {
    Q_OBJECT

protected:
    struct Space {
        QString chip;        // catalogue name
        QString description; // description file, relative to the devices folder
        QString erase;       // command that makes the space writable, or empty
        QString writeFile, verifyFile, readFile;
        qint64 begin = 0, size = 0; // the space's device addresses
        qint64 imageOffset = 0;     // where the space starts in the simulator's image file
        int writeChunk = 0;         // writes never cross a multiple of it
        unsigned char writeCmd = 0; // packet of a written piece
        int writeHeader = 0;        // bytes of that packet before the data
        QString writePrefix;        // how that packet's payload starts when the packet serves more uses
        QString algWrite;           // catalogue key of the writer's algorithm
        QString unknownAlgText;     // the failure text of an algorithm the program does not have
        QString pending; // why the tests that move data do not apply to the family yet; empty when they do
    };
    virtual Space space() const = 0;
    // Makes the application serve the space's chip; the catalogue does so for every finished family.
    virtual void offerFamily() {}

    struct Run {
        int status = -1;
        QString output;
        QStringList frames; // every request frame
        QByteArray image;   // the simulator's memory afterwards
    };

    // Runs the commands after set_prog and set_device on the space's chip, from image.
    Run run(const QStringList& commands, const QByteArray& image, const QStringList& simOptions = {},
            int stopAfterMs = -1) {
        const Space s = space();
        WorkerFixture w;
        SimFixture sim;
        const QString imageFile = sim.path("image.bin");
        TestFiles::writeFile(imageFile, image);
        Run r;
        if (!sim.start(QStringList{"--chip", s.chip, "--devices", devices, "--trace", sim.path("trace.txt"),
                                   "--image", imageFile} +
                       simOptions)) {
            r.output = sim.errorOutput();
            return r;
        }
        w.addProgrammer("Sim", sim);
        AppData.pathDevices = devices;
        offerFamily();
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", QStringList{setProg(), setDevice()} + commands}}));
        if (stopAfterMs < 0) {
            r.status = w.run(o);
            r.output = w.output;
        } else {
            FILE* out = std::tmpfile();
            {
                TRunner runner(out, std::tmpfile());
                QTimer::singleShot(stopAfterMs, &runner, &TRunner::stopAll);
                r.status = runner.run(o);
            }
            std::rewind(out);
            QByteArray bytes(1 << 16, 0);
            bytes.resize(int(std::fread(bytes.data(), 1, size_t(bytes.size()), out)));
            r.output = QString::fromUtf8(bytes);
        }
        sim.stop();
        r.frames = WorkerFixture::requests(sim.path("trace.txt"));
        r.image = TestFiles::readFile(imageFile);
        return r;
    }

    QString fileCmd(const QString& code, const QString& file, const QString& format, qint64 addr,
                    qint64 count) const {
        return cmd(code, QStringLiteral(R"("file": "%1", "format": "%2", "addr_file": "0", )"
                                        R"("addr_device": "%3", "count": "%4")")
                             .arg(file, format)
                             .arg(addr)
                             .arg(count));
    }

    // A blank chip image: 0xFF over the space and everything before it.
    QByteArray blankImage() const { return QByteArray(int(space().imageOffset + space().size), char(0xFF)); }

    static QByteArray pattern(int n, int seed) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i)
            b[i] = char((i * 13 + seed + (i >> 7)) & 0xFF);
        return b;
    }
    static QString setProg() {
        return R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})";
    }
    QString setDevice() const {
        return cmd("set_device",
                   QStringLiteral(R"("device": "%1", "file": "%2")").arg(space().chip, space().description));
    }
    static QString cmdByte(const QString& frame) { return frame.section(' ', 1, 1); }
    // The last two requests of a failed run: the programmer's leave and the error LED.
    static QStringList failedEnd(const Run& r) { return r.frames.mid(r.frames.size() - 2); }
    static QStringList leaveWithErrorLed() { return {"C0 85 00 00 BB", "C0 83 01 00 02 BA"}; }

    // Runs that follow read a copy of the catalogue holding the space's chip alone, its description with
    // from changed to to; false when the description has no from.
    bool patchDescription(const QByteArray& from, const QByteArray& to) {
        const Space s = space();
        const QString copy = scratch.filePath("devices");
        const QString base = QStringLiteral(TARVELIX_DATA_DIR "/devices/");
        QDir().mkpath(copy + "/" + QFileInfo(s.description).path());
        QFile::remove(copy + "/types.lst");
        QFile::copy(base + "types.lst", copy + "/types.lst");
        TestFiles::writeFile(copy + "/devices.lst", (s.chip + "=" + s.description + "\n").toUtf8());
        QByteArray desc = TestFiles::readFile(base + s.description);
        if (!desc.contains(from)) return false;
        TestFiles::writeFile(copy + "/" + s.description, desc.replace(from, to));
        devices = copy;
        return true;
    }

    // The folder the application and the simulator read the catalogue from; a test may swap in a copy.
    QString devices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
    QTemporaryDir scratch;

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.logShowTime = false;
    }

    // A file that starts a few bytes before a chunk boundary and ends a few bytes after one goes out in
    // exactly those cuts, verifies, and reads back into an identical file; each command says what it did.
    void unalignedFileRoundTrip() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        // A space smaller than its chunk (AVR EEPROM) goes out in one piece.
        const bool cut = 3 * qint64(s.writeChunk) + 10 <= s.size;
        const qint64 addr = cut ? s.begin + s.writeChunk - 6 : s.begin + 6;
        const int count = cut ? 3 * s.writeChunk + 10 : int(s.size) - 16;
        const QByteArray data = pattern(count, 5);
        const QString in = scratch.filePath("in.bin"), out = scratch.filePath("out.bin");
        TestFiles::writeFile(in, data);
        QStringList cmds;
        if (!s.erase.isEmpty()) cmds << cmd(s.erase);
        cmds << fileCmd(s.writeFile, in, "bin", addr, count) << fileCmd(s.verifyFile, in, "bin", addr, count)
             << fileCmd(s.readFile, out, "bin", addr, count);
        const Run r = run(cmds, blankImage());
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(TestFiles::readFile(out), data);
        QCOMPARE(r.image.mid(int(s.imageOffset + addr - s.begin), count), data);

        QList<int> cuts;
        const QString writeByte = QStringLiteral("%1").arg(s.writeCmd, 2, 16, QLatin1Char('0')).toUpper();
        for (const QString& f : r.frames)
            if (cmdByte(f) == writeByte && f.section(' ', 4, 4).startsWith(s.writePrefix))
                cuts << f.count(' ') - 4 - s.writeHeader;
        const QList<int> expected =
            cut ? QList<int>{6, s.writeChunk, s.writeChunk, s.writeChunk, 4} : QList<int>{count};
        QCOMPARE(cuts, expected);

        const QString range = QStringLiteral("0x%1..0x%2")
                                  .arg(addr, 6, 16, QLatin1Char('0'))
                                  .arg(addr + count - 1, 6, 16, QLatin1Char('0'))
                                  .toUpper()
                                  .replace("0X", "0x");
        const QString bytes = QLocale(QLocale::English).toString(count);
        for (const QString& line : {QStringLiteral("Written %1 bytes to %2 from in.bin (BIN) in "),
                                    QStringLiteral("Verified %1 bytes at %2 against in.bin (BIN) in "),
                                    QStringLiteral("Read %1 bytes from %2 into out.bin (BIN) in ")}) {
            const QRegularExpression re(QRegularExpression::escape(line.arg(bytes, range)) +
                                        R"(\d+\.\d\d s, \d+\.\d (KB|MB)/s\n)");
            QVERIFY2(re.match(r.output).hasMatch(), qPrintable(line + "\n" + r.output));
        }
    }

    void verifyMismatchNamesTheAddress() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        QByteArray image = blankImage();
        const qint64 bad = s.begin + 37;
        image[int(s.imageOffset + 37)] = char(0x5A);
        const QString in = scratch.filePath("blank.bin");
        TestFiles::writeFile(in, QByteArray(64, char(0xFF)));
        const Run r = run({fileCmd(s.verifyFile, in, "bin", s.begin, 64)}, image);
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(TMiscDev::getMsgVerifyError(bad, 0xFF, 0x5A)), qPrintable(r.output));
    }

    // The link lost in the middle: the run fails with the link's text, and nothing more is sent.
    void silentProgrammerFails() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const int count = int(qMin<qint64>(s.size, 4 * qint64(s.writeChunk)));
        const QString in = scratch.filePath("in.bin");
        TestFiles::writeFile(in, pattern(count, 1));
        // Silent after the set-up and one piece, or from the only piece on.
        const int after = count > s.writeChunk ? 5 : 4;
        const Run r = run({fileCmd(s.writeFile, in, "bin", s.begin, count)}, blankImage(),
                          {"--silent-after", QString::number(after)});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(Lang.get(389)), qPrintable(r.output));
        QCOMPARE(r.frames.size(), after + 1);
    }

    void corruptingProgrammerFails() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const int count = int(qMin<qint64>(s.size, 4 * qint64(s.writeChunk)));
        const QString in = scratch.filePath("in.bin");
        TestFiles::writeFile(in, pattern(count, 2));
        const Run r =
            run({fileCmd(s.writeFile, in, "bin", s.begin, count)}, blankImage(), {"--corrupt", "5"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(Lang.get(389)), qPrintable(r.output));
        QCOMPARE(cmdByte(r.frames.last()).toInt(nullptr, 16), int(s.writeCmd));
    }

    // A stop in the middle of a long write ends the run as stopped, with the leave and the idle LED.
    void stopMidWriteLeavesAndSetsTheLed() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const int count = int(qMin<qint64>(s.size, 64 * qint64(s.writeChunk)));
        if (count < 8 * s.writeChunk) QSKIP("the space is written in one or a few pieces");
        const QString in = scratch.filePath("in.bin");
        TestFiles::writeFile(in, pattern(count, 3));
        const Run r =
            run({fileCmd(s.writeFile, in, "bin", s.begin, count)}, blankImage(), {"--delay-ms", "20"}, 300);
        QVERIFY2(r.output.contains(Lang.get(390)), qPrintable(r.output));
        QVERIFY(r.frames.size() < 6 + 64);
        QCOMPARE(r.frames.mid(r.frames.size() - 2), (QStringList{"C0 85 00 00 BB", "C0 83 01 00 00 BC"}));
    }

    // A device that asks for an algorithm this program does not have: nothing is written, and the
    // failure says why.
    void unknownAlgorithmSendsNothingAndSaysWhy() {
        const Space s = space();
        QVERIFY(patchDescription("\n" + s.algWrite.toUtf8() + "=u|0", "\n" + s.algWrite.toUtf8() + "=u|9"));
        const QString in = scratch.filePath("in.bin");
        const int count = int(qMin<qint64>(s.size, s.writeChunk));
        TestFiles::writeFile(in, pattern(count, 4));
        const Run r = run({fileCmd(s.writeFile, in, "bin", s.begin, count)}, blankImage());
        devices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(s.unknownAlgText), qPrintable(r.output));
        const QString writeByte = QStringLiteral("%1").arg(s.writeCmd, 2, 16, QLatin1Char('0')).toUpper();
        for (const QString& f : r.frames.mid(4))
            QVERIFY2(cmdByte(f) != writeByte, qPrintable(f));
        // A family without a write packet yet sends nothing of its own at all.
        if (s.writeCmd == 0) QCOMPARE(r.frames.mid(4), leaveWithErrorLed());
    }

    // A read whose file cannot be made fails naming the file, and the chip was not read for nothing.
    void readIntoAMissingFolderNamesTheFile() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const QString out = scratch.filePath("no/such/folder/out.bin");
        const Run r = run({fileCmd(s.readFile, out, "bin", s.begin, 16)}, blankImage());
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(scratch.filePath("no/such/folder/")), qPrintable(r.output));
        QVERIFY(!QFileInfo::exists(out));
    }

    // A read that the unplugged link ends half-way leaves the previous file exactly as it was, and says
    // so; "bin+" keeps the bytes of the file outside the range it reads.
    void failedReadKeepsThePreviousFile() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const QString out = scratch.filePath("keep.bin");
        const QByteArray previous = pattern(3000, 9);
        TestFiles::writeFile(out, previous);
        // Unplugged after the set-up and the first piece of the read, or before the read when it is one
        // piece.
        const int count = int(qMin<qint64>(s.size, 3 * 4096));
        const QString after = count > 4096 ? "5" : "4";
        const Run r =
            run({fileCmd(s.readFile, out, "bin", s.begin, count)}, blankImage(), {"--unplug-after", after});
        QCOMPARE(r.status, 1);
        QCOMPARE(TestFiles::readFile(out), previous);
        QVERIFY2(r.output.contains(Lang.get(1213).arg("keep.bin")), qPrintable(r.output));
        QCOMPARE(QDir(scratch.path()).entryList(QDir::Hidden | QDir::Files).filter(".part"), QStringList());

        const Run plus = run({fileCmd(s.readFile, out, "bin+", s.begin, 16)}, blankImage());
        QVERIFY2(plus.status == 0, qPrintable(plus.output));
        QCOMPARE(TestFiles::readFile(out), QByteArray(16, char(0xFF)) + previous.mid(16));
    }

    // A reply that brings fewer bytes than asked, in a well-formed frame, fails a verify and a read with
    // both counts; the read leaves no file, and the run still leaves the programmer.
    void shortReplyFailsVerifyAndRead() {
        if (!space().pending.isEmpty()) QSKIP(qPrintable(space().pending));
        const Space s = space();
        const int count = 8, cut = 3;
        const QString in = scratch.filePath("blank8.bin"), out = scratch.filePath("short.bin");
        TestFiles::writeFile(in, QByteArray(count, char(0xFF)));
        for (const QString& c : {fileCmd(s.verifyFile, in, "bin", s.begin, count),
                                 fileCmd(s.readFile, out, "bin", s.begin, count)}) {
            const Run r = run({c}, blankImage(), {"--short", QString::number(cut)});
            QCOMPARE(r.status, 1);
            QVERIFY2(r.output.contains(Lang.get(484).arg(count - cut).arg(count)), qPrintable(r.output));
            QCOMPARE(failedEnd(r), leaveWithErrorLed());
        }
        QVERIFY(!QFileInfo::exists(out));
    }
};
