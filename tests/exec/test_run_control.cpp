#include "app/TLang.h"
#include "exec/TRunControl.h"
#include "link/TSerialPort.h"
#include "project/TCtrlProject.h"
#include "project/TDataPrj.h"
#include "support/CmdText.h"
#include "support/SimFixture.h"
#include "support/WorkerFixture.h"

#include <QRegularExpression>
#include <QtTest>

// Runs that share one programmer, through the run controller as the window and "tarvelix --run" use it.
class TestRunControl : public QObject {
    Q_OBJECT

    // The demo project as it is, but for the half-second delay that would only make ten tries slow.
    QString demo(WorkerFixture& w) {
        QFile::copy(QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.hex"), w.dir.filePath("demo.hex"));
        QFile in(QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.prj"));
        in.open(QIODevice::ReadOnly);
        QByteArray json = in.readAll();
        json.replace(R"({"status": "1", "cmd": "delay")", R"({"status": "0", "cmd": "delay")");
        return w.writeProject(json);
    }

private slots:
    // Every configuration of the demo at once, ten times over: each run gets the programmer in its
    // turn, and the runs follow one another on the wire.
    void demoRunAllTakesTurnsTenTimes() {
        SimFixture sim;
        QVERIFY(sim.start(
            {"--chip", "W25Q80RV", "--devices", TARVELIX_DATA_DIR "/devices", "--trace", sim.path("t.txt")}));
        WorkerFixture w;
        w.addProgrammer("Simulator", sim);
        TRunner::Options o;
        o.project = demo(w);
        o.configs = QStringList{"SPI flash", "Programmer check", "24C256 EEPROM", "ATmega328PB"};
        o.continuePauses = true;
        const QString answered = "] Tarvelix programmer simulator 1.0\n";
        for (int attempt = 0; attempt < 10; ++attempt) {
            // The EEPROM and the AVR are not in the socket: those two fail, after their programmer answered.
            QCOMPARE(w.run(o), int(TRunner::ExitFailed));
            for (const QString& name : o.configs)
                QVERIFY2(w.output.contains("[" + name + answered), qPrintable(w.output));
            QVERIFY2(w.output.contains("[SPI flash] " + Lang.get(391)), qPrintable(w.output));
            QVERIFY2(w.output.contains("[Programmer check] " + Lang.get(391)), qPrintable(w.output));
            QVERIFY(!w.output.contains("Port in use"));
        }
        sim.stop();
        const QStringList frames = WorkerFixture::requests(sim.path("t.txt"));
        QCOMPARE(frames.filter(QRegularExpression("^C0 80 ")).size(), 40);
        for (int i = 1; i < frames.size(); ++i)
            if (frames.at(i).startsWith("C0 80 "))
                QVERIFY2(frames.at(i - 1).startsWith("C0 83 "), qPrintable(frames.mid(i - 3, 4).join('|')));
    }

    // With time stamps each command is followed by its duration and the run by its total.
    void durationsFollowCommandsAndRun() {
        WorkerFixture w;
        AppData.logShowTime = true;
        AppData.logShowMSec = false;
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", {cmd("delay", R"("value": "30")"), cmd("stop")}}}));
        const int status = w.run(o);
        AppData.logShowTime = false;
        QCOMPARE(status, 0);
        const QString stamp = "\\d\\d:\\d\\d:\\d\\d ",
                      took = " {9}" + Lang.get(1300).arg("(\\d+\\.\\d\\d)") + "\n";
        const QRegularExpression log("^" + stamp + "Delay \\(30 ms\\)\n" + took + stamp + "Stop\n" + took +
                                     stamp + Lang.get(391) + "\n {9}" +
                                     Lang.get(1301).arg("(\\d+\\.\\d\\d)") + "\n$");
        const QRegularExpressionMatch m = log.match(w.output);
        QVERIFY2(m.hasMatch(), qPrintable(w.output));
        QVERIFY(m.captured(1).toDouble() >= 0.03);
        QVERIFY(m.captured(3).toDouble() >= m.captured(1).toDouble());
        QCOMPARE(TRunControl::seconds(12449), QString("12.4"));
        QCOMPARE(TRunControl::seconds(410), QString("0.41"));
    }

    // A run waiting for the port says whose it is; stop ends the wait, and the holder is not disturbed.
    void stopEndsTheWaitForAPort() {
        SimFixture sim;
        QVERIFY(sim.start());
        WorkerFixture w;
        w.addProgrammer("Sim", sim);
        const QString setProg = cmd("set_prog", R"("prog": "Sim")");
        const QString file = w.writeProject(project(
            {{"Holder", {setProg, cmd("pause")}}, {"Waiter", {setProg, cmd("delay", R"("value": "1")")}}}));
        ProjectData.clrPrj();
        TCtrlProject ctrl;
        QCOMPARE(ctrl.load(file, &ProjectData), int(TCtrlProject::Loaded));
        const int holder = ProjectData.getIdCfgFromNameCfg("Holder"),
                  waiter = ProjectData.getIdCfgFromNameCfg("Waiter");
        TRunControl control;
        QStringList waiterLog;
        connect(&control, &TRunControl::signalEventText, this, [&](int id, TCodeExec, QString text, QString) {
            if (id == waiter) waiterLog << text;
        });
        QVERIFY(control.start(holder));
        QTRY_VERIFY_WITH_TIMEOUT(control.isPaused(holder), 10000);
        QVERIFY(control.start(waiter));
        const QString waiting = Lang.get(1302).arg(sim.link(), "Holder");
        QTRY_VERIFY_WITH_TIMEOUT(waiterLog.contains(waiting), 10000);
        // While it waits, a port of ours refuses to open and names who holds it.
        TSerialPort port;
        QVERIFY(!port.open(sim.link(), TSerialPort::ReadWrite));
        QCOMPARE(port.getErrorText(), Lang.get(1303).arg(sim.link(), "Holder"));
        control.stop(waiter);
        QTRY_VERIFY_WITH_TIMEOUT(!control.isRunning(waiter), 10000);
        QCOMPARE(waiterLog.last(), Lang.get(390));
        QCOMPARE(ProjectData.getCfgStatus(waiter), CfgStatusStopped);
        QVERIFY(control.isPaused(holder));
        QVERIFY(control.resume(holder));
        QTRY_VERIFY_WITH_TIMEOUT(!control.isRunning(holder), 10000);
        QCOMPARE(ProjectData.getCfgStatus(holder), CfgStatusOk);
        QCOMPARE(control.tally(holder).passed, 1);
        QCOMPARE(control.tally(waiter).stopped, 1);
        // The port is free again.
        QVERIFY2(port.open(sim.link(), TSerialPort::ReadWrite), qPrintable(port.getErrorText()));
        port.close();
    }
};

QTEST_GUILESS_MAIN(TestRunControl)
#include "test_run_control.moc"
