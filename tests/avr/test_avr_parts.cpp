#include "support/WorkerFixture.h"

#include "project/TCmdCode.h"

#include <QtTest>

// Fuse and lock commands of the catalogue's parts against the simulator's model of each part, which
// knows only the part's own instructions and write times: with timing on, a wait shorter than the
// part's write loses the next instruction.
class TestAvrParts : public QObject {
    Q_OBJECT

    static QString cmd(const QString& code, const QString& hex = QString()) {
        return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
            .arg(code, hex.isEmpty() ? QString() : QStringLiteral(R"(, "data": "%1")").arg(hex));
    }

    struct Run {
        int status;
        QString output;
        QStringList instructions; // payloads of packet 7
    };

    // The project sees the catalogue in devices (the shipped one unless a test changed a copy); the
    // simulator always models the shipped part.
    static Run run(const QString& part, const QStringList& cmds, const QString& devices = QString()) {
        WorkerFixture w;
        if (!devices.isEmpty()) AppData.pathDevices = devices;
        SimFixture sim;
        if (!sim.start({"--chip", part, "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"), "--timing",
                        "on", "--trace", sim.path("trace.txt")}))
            return {-1, sim.errorOutput(), {}};
        w.addProgrammer("Sim", sim);
        const QString setDevice =
            QStringLiteral(R"({"status": "1", "cmd": "set_device", "device": "%1", "file": "avr/%1.dev"})")
                .arg(part);
        TRunner::Options o;
        o.project = w.writeProject(project(
            {{"Main",
              QStringList{R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", )"
                          R"("alt_port": ""})",
                          setDevice} +
                  cmds}}));
        Run r{w.run(o), w.output, {}};
        sim.stop();
        for (const QString& f : WorkerFixture::requests(sim.path("trace.txt"))) {
            const QStringList b = f.split(' ');
            if (b.size() >= 5 && b.at(1) == "07") r.instructions << b.mid(4, b.size() - 5).join("");
        }
        return r;
    }

    // A copy of the catalogue entry of part with one key changed.
    static QString changedCatalogue(const QTemporaryDir& dir, const QString& part, const QString& key,
                                    const QString& value) {
        const QString from = QStringLiteral(TARVELIX_DATA_DIR "/devices/");
        QDir().mkpath(dir.filePath("avr"));
        for (const QString& f : {QStringLiteral("devices.lst"), QStringLiteral("types.lst")})
            QFile::copy(from + f, dir.filePath(f));
        QFile in(from + "avr/" + part + ".dev"), out(dir.filePath("avr/" + part + ".dev"));
        if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly)) return QString();
        for (QByteArray line : in.readAll().split('\n')) {
            if (line.startsWith(key.toLatin1() + "="))
                line = line.left(line.indexOf('|') + 1) + value.toLatin1();
            out.write(line + "\n");
        }
        return dir.path();
    }

    static int fuseDelay(const QString& part) {
        QFile f(QStringLiteral(TARVELIX_DATA_DIR "/devices/avr/") + part + ".dev");
        f.open(QIODevice::ReadOnly);
        const QRegularExpressionMatch m =
            QRegularExpression("\nfuse_delay=u\\|(\\d+)\n").match(QString::fromLatin1(f.readAll()));
        return m.captured(1).toInt();
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void fuseWriteWaitsThePartsTime_data() {
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("fuses");
        QTest::addColumn<int>("minimumMs"); // the part's fuse write time, rounded up
        QTest::newRow("ATmega328P") << "ATmega328P"
                                    << "63D9FF" << 5;
        QTest::newRow("ATtiny85") << "ATtiny85"
                                  << "63DFFF" << 9;
        QTest::newRow("ATtiny13") << "ATtiny13"
                                  << "6BFF" << 5;
    }

    void fuseWriteWaitsThePartsTime() {
        QFETCH(QString, part);
        QFETCH(QString, fuses);
        QFETCH(int, minimumMs);
        QCOMPARE(fuseDelay(part), minimumMs);
        const QStringList cmds = {cmd("fuse_write", fuses), cmd("fuse_verify", fuses)};
        const Run ok = run(part, cmds);
        QVERIFY2(ok.status == 0, qPrintable(ok.output));
        const QString wait = QString("%1AC").arg(minimumMs, 2, 16, QChar('0')).toUpper();
        QCOMPARE(ok.instructions.filter(QRegularExpression("^..AC")).size(), fuses.size() / 2);
        QCOMPARE(ok.instructions.filter(wait).size(), fuses.size() / 2);

        QTemporaryDir dir;
        const QString half = changedCatalogue(dir, part, "fuse_delay", QString::number(minimumMs / 2));
        const Run shortWait = run(part, cmds, half);
        QCOMPARE(shortWait.status, 1);
        QVERIFY2(shortWait.output.contains(Lang.get(389)), qPrintable(shortWait.output));
    }

    // The oldest parts: fuse and lock bits where serial programming has them, in the part's own bits.
    void oldPartsFuseAndLock_data() {
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("fuses");
        QTest::addColumn<QString>("lock");
        QTest::newRow("ATtiny12") << "ATtiny12"
                                  << "53"
                                  << "F9";
        QTest::newRow("ATmega161") << "ATmega161"
                                   << "FB"
                                   << "FC";
    }

    void oldPartsFuseAndLock() {
        QFETCH(QString, part);
        QFETCH(QString, fuses);
        QFETCH(QString, lock);
        const Run r = run(part, {cmd("fuse_write", fuses), cmd("fuse_verify", fuses), cmd("lock_write", lock),
                                 cmd("lock_verify", lock)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        const Run wrong = run(part, {cmd("fuse_write", fuses), cmd("fuse_verify", "FF")});
        QVERIFY2(wrong.output.contains(Lang.get(480).arg("FF", fuses)), qPrintable(wrong.output));
    }

    // Serial programming of the AT90S2313 reaches no fuse bits and cannot read its lock bits: those
    // commands are refused by name before anything is sent, even the lock write before them; alone,
    // its lock write runs.
    void partWithoutFuseInstructions() {
        const QString refused = Lang.get(1100).arg(CmdCode.getName("fuse_write"), "AT90S2313");
        const Run r = run("AT90S2313", {cmd("lock_write", "F9"), cmd("fuse_write", "DF")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(refused), qPrintable(r.output));
        QCOMPARE(r.instructions.filter(QRegularExpression("^..AC")), QStringList());
        const Run lock = run("AT90S2313", {cmd("lock_write", "F9")});
        QVERIFY2(lock.status == 0, qPrintable(lock.output));
        QCOMPARE(lock.instructions.filter(QRegularExpression("^..AC")), QStringList({"09ACF90000"}));
    }
};

QTEST_GUILESS_MAIN(TestAvrParts)
#include "test_avr_parts.moc"
