#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "devices/IDevice.h"
#include "exec/TRunControl.h"
#include "link/CLink.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/SimFixture.h"
#include "support/WindowTest.h"
#include "support/WorkerFixture.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtLogExec.h"

#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextEdit>
#include <QtTest>

// The demo project in the window, run against the simulator: what a user sees after a good run and
// after a failed one, and a run cut short by closing the window.
class TestGuiDemo : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString prj;

    // The simulator with a chip in its socket, made the "Simulator" programmer of the settings.
    // An empty chip name leaves the two-wire socket empty.
    static bool startSim(SimFixture& sim, const QString& chip, const QStringList& more = QStringList()) {
        const QStringList socket =
            chip.isEmpty() ? QStringList{"--bus", "i2c"}
                           : QStringList{"--chip", chip, "--devices", TARVELIX_DATA_DIR "/devices"};
        if (!sim.start(socket + QStringList{"--trace", sim.path("t.txt")} + more)) return false;
        WindowTest::useSimulator(sim);
        return true;
    }

    static TWgtLogExec* log(TMainWindow& w, int idCfg) { return w.cfgView(idCfg)->log(); }

    // The last line of a log and the colour it was written in.
    static QPair<QString, QColor> lastLine(TWgtLogExec* log) {
        QTextBlock block = log->textEdit()->document()->lastBlock();
        while (block.text().isEmpty() && block.previous().isValid())
            block = block.previous();
        const QTextFragment last = (--block.end()).fragment();
        return {block.text(), last.charFormat().foreground().color()};
    }

    int runToEnd(TMainWindow& w, const QString& cfg) {
        const int id = ProjectData.getIdCfgFromNameCfg(cfg);
        if (id < 0 || !w.runThread(id)) return -1;
        return QTest::qWaitFor([&] { return w.runCount() == 0; }, 120000) ? id : -1;
    }

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        WindowTest::useShippedData();
        AppData.confirmSavePrj = false;
        AppData.logShowTime = false;
        for (const char* name : {"demo.prj", "demo.hex"})
            QVERIFY(QFile::copy(QStringLiteral(TARVELIX_DATA_DIR "/projects/") + name, dir.filePath(name)));
        prj = dir.filePath("demo.prj");
    }

    void goodRunEndsInTheSuccessColour() {
        SimFixture sim;
        QVERIFY(startSim(sim, "W25Q80RV"));
        TMainWindow w;
        QVERIFY(w.openProject(prj));
        const int id = runToEnd(w, "SPI flash");
        QVERIFY(id >= 0);
        QCOMPARE(ProjectData.getCfgStatus(id), CfgStatusOk);
        const QString text = log(w, id)->textEdit()->toPlainText();
        // Every checked command has its line, in the order of the list.
        int at = 0;
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(id)) {
            if (!cmd->getEnable()) continue;
            const QString name = cmd->getGroupObject()->getViewCmdName(cmd->getData());
            at = text.indexOf(name, at);
            QVERIFY2(at >= 0, qPrintable(name));
        }
        QCOMPARE(lastLine(log(w, id)), qMakePair(Lang.get(391), AppData.colorSuccess));
        QCOMPARE(ProjectData.getCfgStatus(id), CfgStatusOk);
        // The programmer is left idle: leave (0x85), then the idle light (0x83).
        const QStringList frames = WorkerFixture::requests(sim.path("t.txt"));
        QVERIFY(frames.size() > 4);
        QCOMPARE(frames.mid(frames.size() - 2), (QStringList{"C0 85 00 00 BB", "C0 83 01 00 00 BC"}));
    }

    void failedRunShowsTheProgrammersError() {
        SimFixture sim;
        QVERIFY(startSim(sim, QString())); // the 24C256 the configuration expects is not in the socket
        TMainWindow w;
        QVERIFY(w.openProject(prj));
        const int id = runToEnd(w, "24C256 EEPROM");
        QVERIFY(id >= 0);
        QCOMPARE(ProjectData.getCfgStatus(id), CfgStatusError);
        const auto last = lastLine(log(w, id));
        QCOMPARE(last.second, AppData.colorFailed);
        const QString text = log(w, id)->textEdit()->toPlainText();
        QVERIFY2(text.contains(Lang.get(410)), qPrintable(text));
        QVERIFY(!text.contains(Lang.get(391)));
    }

    // The demo's configurations share one programmer: run all of them, a few times, and each run waits
    // for the port in its turn instead of failing on it (ten tries through the runner: test_run_control).
    void runAllTakesTurnsOnTheSharedProgrammer() {
        SimFixture sim;
        QVERIFY(startSim(sim, "W25Q80RV"));
        AppData.logClearBeforeRun = true;
        // The demo as it is, but for the half-second delay that would only make the tries slow.
        QFile demo(prj);
        QVERIFY(demo.open(QIODevice::ReadOnly));
        QByteArray json = demo.readAll();
        json.replace(R"({"status": "1", "cmd": "delay", "value": "500"})",
                     R"({"status": "0", "cmd": "delay", "value": "500"})");
        const QString quick = dir.filePath("quick.prj");
        QFile out(quick);
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write(json) == json.size());
        out.close();
        TMainWindow w;
        QVERIFY(w.openProject(quick));
        connect(w.runControl(), &TRunControl::signalPaused, &w, [&w](int id) { w.continueRun(id); });
        const QRegularExpression answered("Set Prog \\(Simulator\\)\n(waiting for the programmer on "
                                          "[^\n]*\n)?Tarvelix programmer simulator 1.0\n");
        int waited = 0;
        for (int attempt = 0; attempt < 3; ++attempt) {
            w.runAll();
            QCOMPARE(w.runCount(), 4);
            QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 60000);
            for (const QString& name : ProjectData.getCfgListName()) {
                const QString text = log(w, ProjectData.getIdCfgFromNameCfg(name))->textEdit()->toPlainText();
                // Its programmer answered: the port was its own when it came to it.
                QVERIFY2(answered.match(text).hasMatch(), qPrintable(name + ": " + text));
                if (text.contains(Lang.get(1302).section("%1", 0, 0))) ++waited;
            }
        }
        QVERIFY(waited > 0);
        // One after another: each run's handshake (0x80) comes after the previous run's last light (0x83).
        const QStringList frames = WorkerFixture::requests(sim.path("t.txt"));
        QCOMPARE(frames.filter(QRegularExpression("^C0 80 ")).size(), 12);
        for (int i = 1; i < frames.size(); ++i)
            if (frames.at(i).startsWith("C0 80 "))
                QVERIFY2(frames.at(i - 1).startsWith("C0 83 "), qPrintable(QString::number(i)));
    }

    void closingTheWindowLeavesTheProgrammerCleanly() {
        SimFixture sim;
        // A slow link keeps the run busy long enough to be interrupted.
        QVERIFY(startSim(sim, "W25Q80RV", {"--delay-ms", "20"}));
        auto* w = new TMainWindow;
        QVERIFY(w->openProject(prj));
        const int id = ProjectData.getIdCfgFromNameCfg("SPI flash");
        QVERIFY(w->runThread(id));
        QTRY_VERIFY_WITH_TIMEOUT(WorkerFixture::requests(sim.path("t.txt")).size() > 6, 60000);
        QVERIFY(w->close());
        QCOMPARE(w->runCount(), 0);
        delete w;
        const QStringList frames = WorkerFixture::requests(sim.path("t.txt"));
        QCOMPARE(frames.mid(frames.size() - 2), (QStringList{"C0 85 00 00 BB", "C0 83 01 00 00 BC"}));
    }
};

QTEST_MAIN(TestGuiDemo)
#include "test_gui_demo.moc"
