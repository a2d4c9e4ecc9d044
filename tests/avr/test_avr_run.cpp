#include "support/WorkerFixture.h"

#include "misc/dev_misc.h"

#include <QtTest>

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

    static void writeFile(const QString& name, const QByteArray& content) {
        QFile f(name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
    }

    static QByteArray readFile(const QString& name) {
        QFile f(name);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
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
};

QTEST_GUILESS_MAIN(TestAvrRun)
#include "test_avr_run.moc"
