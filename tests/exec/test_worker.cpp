#include "support/WorkerFixture.h"

#include "formats/ICRC.h"
#include "formats/TCRC.h"

#include <QElapsedTimer>
#include <QtTest>
#include <memory>

// Whole runs against the simulator: the frames on the wire, the log and the exit status.
class TestWorker : public QObject {
    Q_OBJECT

    const QString setProg =
        R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})";

    static QString cmd(const QString& code, const QString& params = QString(), int status = 1) {
        return QStringLiteral(R"({"status": "%1", "cmd": "%2"%3})")
            .arg(status)
            .arg(code, params.isEmpty() ? QString() : ", " + params);
    }

    TRunner::Options options(const QString& file, const QStringList& configs = {}) {
        TRunner::Options o;
        o.project = file;
        o.configs = configs;
        return o;
    }

private slots:
    void initTestCase() {
        ProjectData.setDeviceFactory([](const QString& name, const QString&) -> IDevice* {
            if (name == "Tools") return TCmdFamily::create<TDevTools>(name, TData());
            if (name == "Prog") return TCmdFamily::create<TDevProg>(name, TData());
            return nullptr;
        });
    }

    void handshakeSuppliesResetAndFinalLeave() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--trace", sim.path("trace.txt")}));
        const QString file = w.writeProject(
            project({{"Main",
                      {setProg, cmd("set_vcc", R"("vcc": "3.3")"),
                       cmd("set_vicc", R"("vcc": "5.0", "icc": "0.2", "ocp": "true")"),
                       cmd("reset", R"("duration": "-400")"), cmd("delay", R"("value": "10")", 0)}}}));
        QCOMPARE(w.run(options(file)), 0);
        QCOMPARE(WorkerFixture::requests(sim.path("trace.txt")),
                 (QStringList{"C0 80 00 00 C0", "C0 81 00 00 BF", "C0 83 01 00 01 BB", "C0 89 01 00 21 95",
                              "C0 8B 06 00 32 C8 00 00 00 01 B4", "C0 86 02 00 70 FE 4A", "C0 85 00 00 BB",
                              "C0 83 01 00 00 BC"}));
        QCOMPARE(w.output, QString("Set Prog (Sim)\nTarvelix programmer simulator 1.0\nSet Vcc (3.3 V)\n"
                                   "Set VIcc (5.0 V, 0.200 mA, OCP)\nReset (-400 ms)\n%1\n")
                               .arg(Lang.get(391)));
    }

    void interfaceMismatchFailsAndLeaves() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--trace", sim.path("trace.txt"), "--interface", "7"}));
        QCOMPARE(
            w.run(options(w.writeProject(project({{"Main", {setProg, cmd("set_vcc", R"("vcc": "3.3")")}}})))),
            1);
        QVERIFY2(w.output.contains(Lang.get(386) + "\n" + QString(60, '=') + "\n" + Lang.get(399) + "\n"),
                 qPrintable(w.output));
        const QStringList frames = WorkerFixture::requests(sim.path("trace.txt"));
        QCOMPARE(frames.mid(2), (QStringList{"C0 85 00 00 BB", "C0 83 01 00 02 BA"}));
    }

    void silentProgrammerEndsWithoutFinalLeave() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--trace", sim.path("trace.txt"), "--silent-after", "2"}));
        QElapsedTimer t;
        t.start();
        QCOMPARE(
            w.run(options(w.writeProject(project({{"Main", {setProg, cmd("set_vcc", R"("vcc": "3.3")")}}})))),
            1);
        QVERIFY(t.elapsed() < 20000); // one time-out of a second, then the end: no hang
        QVERIFY2(w.output.contains(Lang.get(389)), qPrintable(w.output));
        QCOMPARE(WorkerFixture::requests(sim.path("trace.txt")),
                 (QStringList{"C0 80 00 00 C0", "C0 81 00 00 BF", "C0 83 01 00 01 BB"}));
    }

    void unpluggedPortEndsWithAClearText() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--unplug-after", "3"}));
        QCOMPARE(
            w.run(options(w.writeProject(project({{"Main", {setProg, cmd("set_vcc", R"("vcc": "3.3")")}}})))),
            1);
        QVERIFY2(w.output.contains(Lang.get(431)) || w.output.contains(Lang.get(389)), qPrintable(w.output));
    }

    void missingPortSaysSo() {
        WorkerFixture w;
        SimFixture sim; // never started: its link does not exist
        w.addProgrammer("Sim", sim);
        QCOMPARE(w.run(options(w.writeProject(project({{"Main", {setProg}}})))), 1);
        QVERIFY2(w.output.contains(Lang.get(393)), qPrintable(w.output));
    }

    void invalidCommandsStopTheRunBeforeTheyRun() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--trace", sim.path("trace.txt")}));
        // 9.9 V is beyond the simulator's supply range. Checked before running, nothing is sent at all;
        // without the check the run opens the programmer and fails when it reaches the command.
        const QString prj = w.writeProject(project({{"Main", {setProg, cmd("set_vcc", R"("vcc": "9.9")")}}}));
        QCOMPARE(w.run(options(prj)), 1);
        QVERIFY(w.output.contains(Lang.get(388).arg("Set Vcc")));
        QCOMPARE(WorkerFixture::requests(sim.path("trace.txt")), QStringList());
        AppData.checkBeforeRun = false;
        QCOMPARE(w.run(options(prj)), 1);
        AppData.checkBeforeRun = true;
        QVERIFY(w.output.contains(Lang.get(388).arg("Set Vcc")));
        QCOMPARE(WorkerFixture::requests(sim.path("trace.txt")).mid(3),
                 (QStringList{"C0 85 00 00 BB", "C0 83 01 00 02 BA"}));
        // A programmer command before any programmer is chosen has no programmer to run on.
        QCOMPARE(w.run(options(w.writeProject(project({{"Main", {cmd("set_vcc", R"("vcc": "3.3")")}}})))), 1);
        QVERIFY(w.output.contains(Lang.get(387).arg("Set Vcc")));
    }

    void emptyConfigurationSucceedsAtOnce() {
        WorkerFixture w;
        QCOMPARE(w.run(options(w.writeProject(project({{"Main", {cmd("delay", R"("value": "5")", 0)}}})))),
                 0);
        QCOMPARE(w.output, Lang.get(391) + "\n");
        QCOMPARE(w.errors, Lang.get(1305) + "\n");
    }

    // The programmer refuses the final leave: every command went well, the run did not.
    void aRefusedFinalLeaveFailsTheRun() {
        WorkerFixture w;
        SimFixture sim;
        QVERIFY(w.startSim(sim, {"--error", "133:1"}));
        const QString file =
            w.writeProject(project({{"Main", {setProg, cmd("set_vcc", R"("vcc": "3.3")")}}}));
        QCOMPARE(w.run(options(file)), int(TRunner::ExitFailed));
        QVERIFY2(w.output.contains(Lang.get(386)), qPrintable(w.output));
        QVERIFY(!w.output.contains(Lang.get(391)));
    }

    // A file name with a line break and escape bytes, as a hostile project holds it.
    void controlCharactersNeverReachTheTerminal() {
        WorkerFixture w;
        // In the project's JSON text: a backslash-n and a backslash-u001b escape.
        const QString name = "x\\n" + Lang.get(391) + "\\u001b[2J.bin";
        const QString params =
            QStringLiteral("\"crc_name\": \"CRC-32\", \"file\": \"%1\", \"format\": \"bin\", "
                           "\"addr\": \"0\", \"count\": \"1\", \"fill\": \"255\"")
                .arg(name);
        const QString file = w.writeProject(project({{"Main", {cmd("calc_crc", params)}}}));
        // Past the check before running, so that the command itself shows its parameters.
        AppData.checkBeforeRun = false;
        const int status = w.run(options(file));
        AppData.checkBeforeRun = true;
        QCOMPARE(status, int(TRunner::ExitFailed));
        QVERIFY(!w.output.contains(QChar(0x1b)));
        // Such a value cannot be kept in a project file, so the command is refused by its key.
        QVERIFY2(w.output.contains(Lang.get(1400).arg("Calc CRC", "file")), qPrintable(w.output));
        QVERIFY2(!w.output.split('\n').contains(Lang.get(391)), qPrintable(w.output));
    }

    void stopEndsTheRunDuringALongDelay() {
        WorkerFixture w;
        const QString file =
            w.writeProject(project({{"Main", {cmd("delay", R"("value": "5000")"), cmd("stop")}}}));
        TRunner::Options o = options(file);
        FILE* out = std::tmpfile();
        TRunner runner(out, std::tmpfile());
        QTimer::singleShot(300, &runner, &TRunner::stopAll);
        QCOMPARE(runner.run(o), int(TRunner::ExitStopped));
        std::rewind(out);
        char buf[512] = {};
        QVERIFY(std::fread(buf, 1, sizeof buf - 1, out) > 0);
        QCOMPARE(QString::fromUtf8(buf), "Delay (5000 ms)\n" + Lang.get(390) + "\n");
    }

    void counterJumpAndStop() {
        WorkerFixture w;
        // A loop: the counter ends the run on its third pass; the jump goes back to the delay.
        const QString file = w.writeProject(project(
            {{"Main",
              {cmd("delay", R"("value": "1")"), cmd("counter", R"("value": "0", "limit": "3", "delta": "1")"),
               cmd("jamp", R"("to_cmd": "0")")}}}));
        TRunner::Options o = options(file);
        o.save = true;
        QCOMPARE(w.run(o), 0);
        QCOMPARE(w.output.count("Counter (Value:"), 3);
        QVERIFY(w.output.contains("Counter (Value: 2, Limit: 3, Delta: 1)"));
        // The count went back into the project and was saved with it.
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(f.readAll().contains(R"("value": "3")"));
        // Run again: the counter is at its limit at once.
        QCOMPARE(w.run(o), 0);
        QCOMPARE(w.output.count("Counter"), 1);
    }

    void jumpIntoAnotherConfiguration() {
        WorkerFixture w;
        const QString file = w.writeProject(project({{"A", {cmd("jamp", R"("to_cmd": "2")"), cmd("stop")}},
                                                     {"B", {cmd("delay", R"("value": "1")")}}}));
        QCOMPARE(w.run(options(file)), 0);
        QCOMPARE(w.output, QString("Jamp (B: 1. Delay)\n\n--> %1 \"B\"\nDelay (1 ms)\n%2\n")
                               .arg(Lang.get(394), Lang.get(391)));
    }

    void executeStartsAnotherRun() {
        WorkerFixture w;
        const QString file = w.writeProject(
            project({{"A", {cmd("execute", R"("cfg": "1")")}}, {"B", {cmd("delay", R"("value": "300")")}}}));
        QCOMPARE(w.run(options(file)), 0);
        QVERIFY2(w.output.contains("[B] Delay (300 ms)"), qPrintable(w.output));
        QCOMPARE(w.output.count(Lang.get(391)), 2);
        QCOMPARE(w.run(options(w.writeProject(project({{"A", {cmd("execute", R"("cfg": "-1")")}}})))), 1);
        QVERIFY(w.output.contains(Lang.get(388).arg("Execute")));
    }

    void pauseContinuesOnRequest() {
        WorkerFixture w;
        TRunner::Options o =
            options(w.writeProject(project({{"Main", {cmd("pause"), cmd("delay", R"("value": "1")")}}})));
        o.continuePauses = true;
        QCOMPARE(w.run(o), 0);
        QCOMPARE(w.output, QString("Pause\n%1\n%2\nDelay (1 ms)\n%3\n")
                               .arg(Lang.get(463).arg("Main"), Lang.get(396), Lang.get(391)));
    }

    void processNeedsPermission() {
        WorkerFixture w;
        const QString marker = w.dir.filePath("ran");
        const QString file = w.writeProject(
            project({{"Main", {cmd("process", QStringLiteral(R"("file": "touch %1")").arg(marker))}}}));
        QCOMPARE(w.run(options(file)), 1);
        QVERIFY(w.output.contains(Lang.get(460).arg("touch " + marker)));
        QVERIFY(!QFile::exists(marker));
        TRunner::Options o = options(file);
        o.allowProcess = true;
        QCOMPARE(w.run(o), 0);
        QVERIFY(QFile::exists(marker));
    }

    void crcOfAFileWithGapsFilled() {
        WorkerFixture w;
        QFile bin(w.dir.filePath("data.bin"));
        QVERIFY(bin.open(QIODevice::WriteOnly));
        bin.write("123456789");
        bin.close();
        const QString file = w.writeProject(project(
            {{"Main",
              {cmd("calc_crc",
                   R"("crc_name": "CRC-32", "file": "data.bin", "format": "bin", "addr": "0", "count": "0", "fill": "255")"),
               cmd("calc_crc",
                   R"("crc_name": "CRC-16/ARC", "file": "data.bin", "format": "bin", "addr": "0", "count": "9", "fill": "255")"),
               // Three bytes past the file's end are taken as the fill value: "789" + FF FF FF.
               cmd("calc_crc",
                   R"("crc_name": "CRC-32", "file": "data.bin", "format": "bin", "addr": "6", "count": "6", "fill": "255")")}}}));
        QCOMPARE(w.run(options(file)), 0);
        QVERIFY2(w.output.contains("CRC-32: CBF43926\n"), qPrintable(w.output));
        QVERIFY(w.output.contains("CRC-16/ARC: BB3D\n"));
        // The models themselves are tested elsewhere: here the question is which bytes went in.
        std::unique_ptr<ICRC> crc(TCRC::createCRCObject("CRC-32"));
        const QByteArray tail("789\xFF\xFF\xFF", 6);
        crc->calc(tail.constData(), tail.size());
        QVERIFY2(w.output.contains("CRC-32: " + crc->getResult().toHex().toUpper() + "\n"),
                 qPrintable(w.output));
    }

    void twoConfigurationsOnTwoSimulatorsAtOnce() {
        WorkerFixture w;
        SimFixture simA, simB;
        QVERIFY(simA.start({"--trace", simA.path("trace.txt"), "--delay-ms", "5"}));
        QVERIFY(simB.start({"--trace", simB.path("trace.txt"), "--delay-ms", "5"}));
        w.addProgrammer("SimA", simA);
        w.addProgrammer("SimB", simB);
        QStringList a{QString(setProg).replace("\"Sim\"", "\"SimA\"")},
            b{QString(setProg).replace("\"Sim\"", "\"SimB\"")};
        for (int i = 0; i < 20; ++i) {
            a << cmd("set_vcc", QStringLiteral(R"("vcc": "3.%1")").arg(i % 10));
            b << cmd("set_vpp", QStringLiteral(R"("vpp": "12.%1")").arg(i % 10));
        }
        TRunner::Options o = options(w.writeProject(project({{"A", a}, {"B", b}})), {"A", "B"});
        QCOMPARE(w.run(o), 0);
        QStringList linesA, linesB;
        for (const QString& line : w.output.split('\n', Qt::SkipEmptyParts))
            (line.startsWith("[A] ") ? linesA : linesB) << line.mid(4);
        QCOMPARE(linesA.size(), 23);
        QCOMPARE(linesB.size(), 23);
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(linesA.at(2 + i), QStringLiteral("Set Vcc (3.%1 V)").arg(i % 10));
            QCOMPARE(linesB.at(2 + i), QStringLiteral("Set Vpp (12.%1 V)").arg(i % 10));
        }
        QCOMPARE(WorkerFixture::requests(simA.path("trace.txt")).size(), 3 + 20 + 2);
        QCOMPARE(WorkerFixture::requests(simB.path("trace.txt")).size(), 3 + 20 + 2);
    }
};

QTEST_GUILESS_MAIN(TestWorker)
#include "test_worker.moc"
