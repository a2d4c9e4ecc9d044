#include "app/TLang.h"
#include "support/CliSettings.h"
#include "support/SimFixture.h"

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

    QString settings() { return writeCliSettings(dir.path(), sim.link()); }

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

    Result run(const QStringList& args, std::function<void(QProcess&)> during = {}) {
        QProcess p;
        p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"), QStringList{"--settings", settings()} + args);
        p.waitForStarted();
        if (during) during(p);
        p.waitForFinished(20000);
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }

    static QString cmd(const QString& code, const QString& params = QString()) {
        return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
            .arg(code, params.isEmpty() ? QString() : ", " + params);
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
        QVERIFY(r.out.contains(Lang.get(388).arg("Set Vcc")));
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
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, "Delay (10000 ms)\n" + Lang.get(390) + "\n");
    }

    void endOfInputStopsAPause() {
        Result r = run({"--run", project({cmd("pause"), cmd("delay", R"("value": "1")")})},
                       [](QProcess& p) { p.closeWriteChannel(); });
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.endsWith(Lang.get(390) + "\n"), qPrintable(r.out));
        QVERIFY(!r.out.contains("Delay"));
        r = run({"--run", project({cmd("pause"), cmd("delay", R"("value": "1")")})}, [](QProcess& p) {
            QTest::qWait(300);
            p.write("\n");
        });
        QCOMPARE(r.status, 0);
        QVERIFY(r.out.contains("Delay (1 ms)"));
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
