#include "app/TLang.h"
#include "support/CliSettings.h"
#include "support/CmdText.h"
#include "support/SimFixture.h"
#include "support/WorkerFixture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

// "tarvelix --run" and "--list" as a user or a production script runs them: a real process with its
// own settings file, against the simulator.
class TestCliRun : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    SimFixture sim;

    QString settings(const QString& link) { return writeCliSettings(dir.path(), link); }

    QString project(const QStringList& commands) {
        const QString file = dir.filePath("p.prj");
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        f.write(
            QStringLiteral(
                R"({"configurations": [{"name": "Main", "commands": [%1]}, {"name": "Other", "commands": []}]})")
                .arg(commands.join(','))
                .toUtf8());
        return file;
    }

    struct Result {
        int status;
        QString out, err;
    };

    Result run(const QStringList& args, std::function<void(QProcess&)> during = {}, QString link = {}) {
        QProcess p;
        p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"),
                QStringList{"--settings", settings(link.isEmpty() ? sim.link() : link)} + args);
        p.waitForStarted();
        if (during) during(p);
        p.waitForFinished(20000);
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        QVERIFY(sim.start());
    }

    void runsAndReportsItsStatus() {
        const QString setProg = cmd("set_prog", R"("prog": "Sim")");
        Result r = run({"--run", project({setProg, cmd("set_vcc", R"("vcc": "5.0")")})});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("Set Prog (Sim)\nTarvelix programmer simulator 1.0\nSet Vcc (5.0 V)\n%1\n")
                            .arg(Lang.get(391)));
        r = run({"--run", project({setProg, cmd("set_vcc", R"("vcc": "7.0")")})});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.out.contains(Lang.get(388).arg("Set Vcc")), qPrintable(r.out));
    }

    // The check before running refuses the invalid command before the programmer is opened; --no-check
    // runs up to it.
    void noCheckRunsUpToTheInvalidCommand() {
        const QString prj = project({cmd("set_prog", R"("prog": "Sim")"), cmd("set_vcc", R"("vcc": "7.0")")});
        Result r = run({"--run", prj});
        QCOMPARE(r.status, 1);
        QVERIFY(r.out.contains(Lang.get(1017) + "\n") && !r.out.contains("Set Prog"));
        r = run({"--run", prj, "--no-check"});
        QCOMPARE(r.status, 1);
        QVERIFY(r.out.startsWith("Set Prog (Sim)\nTarvelix programmer simulator 1.0\nSet Vcc (7.0 V)\n"));
    }

    void wrongProjectOrArgumentsExitWithTwo() {
        Result r = run({"--run", dir.filePath("missing.prj")});
        QCOMPARE(r.status, 2);
        QVERIFY2(r.err.contains(Lang.get(464).arg(dir.filePath("missing.prj"), "No such file or directory")),
                 qPrintable(r.err));
        r = run({"--run", project({}), "--config", "Nope"});
        QCOMPARE(r.status, 2);
        QVERIFY(r.err.contains(Lang.get(465).arg("Nope")));
        r = run({"--run"});
        QCOMPARE(r.status, 2);
        r = run({"--frobnicate"});
        QCOMPARE(r.status, 2);
    }

    void interruptStopsTheRunAsTheStopButtonDoes() {
        Result r = run(
            {"--run", project({cmd("delay", R"("value": "10000")"), cmd("delay", R"("value": "10000")")})},
            [](QProcess& p) {
                QTest::qWait(500);
                ::kill(pid_t(p.processId()), SIGINT);
            });
        QCOMPARE(r.status, 3);
        QCOMPARE(r.out, "Delay (10000 ms)\n" + Lang.get(390) + "\n");
    }

    void endOfInputStopsAPause() {
        Result r = run({"--run", project({cmd("pause"), cmd("delay", R"("value": "1")")})},
                       [](QProcess& p) { p.closeWriteChannel(); });
        QCOMPARE(r.status, 3);
        QVERIFY2(r.out.endsWith(Lang.get(390) + "\n"), qPrintable(r.out));
        QVERIFY(!r.out.contains("Delay"));
        r = run({"--run", project({cmd("pause"), cmd("delay", R"("value": "1")")})}, [](QProcess& p) {
            QTest::qWait(300);
            p.write("\n");
        });
        QCOMPARE(r.status, 0);
        QVERIFY(r.out.contains("Delay (1 ms)"));
    }

    // Ctrl-C in a write and the end of input at a pause: no success to a script, and the programmer is
    // left with its LED idle all the same.
    void stoppedRunsExitWithThreeAndLeaveTheProgrammer() {
        const QString setProg = cmd("set_prog", R"("prog": "Sim")");
        const QString setDevice = cmd("set_device", R"("device": "W25Q80RV", "file": "spi/W25Q80RV.dev")");
        const QString write =
            cmd("char_write", R"("addr_device": "0", "count": "1048576", "fill_char": "0")");
        const QStringList leaveAndIdle{"C0 85 00 00 BB", "C0 83 01 00 00 BC"};
        auto interrupt = [](QProcess& p) {
            QTest::qWait(800);
            ::kill(pid_t(p.processId()), SIGINT);
        };
        auto endOfInput = [](QProcess& p) { p.closeWriteChannel(); };
        for (const auto& step : QList<QPair<QStringList, std::function<void(QProcess&)>>>{
                 {{setProg, setDevice, write}, interrupt},
                 {{setProg, setDevice, cmd("pause"), write}, endOfInput}}) {
            SimFixture chip;
            QVERIFY(chip.start({"--chip", "W25Q80RV", "--devices", TARVELIX_DATA_DIR "/devices", "--timing",
                                "on", "--trace", chip.path("trace.txt")}));
            const Result r = run({"--run", project(step.first)}, step.second, chip.link());
            QCOMPARE(r.status, 3);
            QVERIFY2(r.out.endsWith(Lang.get(390) + "\n"), qPrintable(r.out));
            chip.stop();
            const QStringList frames = WorkerFixture::requests(chip.path("trace.txt"));
            QCOMPARE(frames.mid(frames.size() - 2), leaveAndIdle);
        }
    }

    void configurationWithoutCheckedCommandsHasNothingToRun() {
        const Result r = run({"--run", project({R"({"status": "0", "cmd": "delay", "value": "1"})"})});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.err, Lang.get(1305) + "\n");
    }

    void listShowsWhatCannotRun() {
        Result r =
            run({"--list", project({cmd("set_vcc", R"("vcc": "3.3")"), cmd("delay", R"("value": "5")")})});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("Main\n  [x] Set Vcc (3.3 V)  ! %1\n  [x] Delay (5 ms)\nOther\n")
                            .arg(Lang.get(387).arg("Set Vcc")));
    }
};

QTEST_GUILESS_MAIN(TestCliRun)
#include "test_cli_run.moc"
