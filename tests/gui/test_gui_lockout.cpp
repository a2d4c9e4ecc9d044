#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "link/CLink.h"
#include "project/TDataPrj.h"
#include "support/SimFixture.h"
#include "support/TestFiles.h"
#include "support/WindowTest.h"
#include "support/WorkerFixture.h"
#include "ui/TMainWindow.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// Answers the window's questions in place of the user and keeps what it was asked.
class AskingWindow : public TMainWindow {
public:
    QStringList asked;
    QMessageBox::StandardButton answer = QMessageBox::No;

protected:
    QMessageBox::StandardButton ask(const QString& text, QMessageBox::StandardButtons) override {
        asked << text;
        return answer;
    }
};

// The high fuse DF with SPIEN (bit 5) unprogrammed.
const QString spienOff = "62FFFF";

// A run writing the ATtiny85's fuses with serial programming turned off, and reading them back.
QByteArray fuseProject(const QString& prog) {
    const QStringList cmds = {cmd("set_prog", QStringLiteral(R"("prog": "%1")").arg(prog)),
                              cmd("set_device", R"("device": "ATtiny85", "file": "avr/ATtiny85.dev")"),
                              cmd("fuse_write", QStringLiteral(R"("data": "%1")").arg(spienOff)),
                              cmd("fuse_verify", QStringLiteral(R"("data": "%1")").arg(spienOff))};
    return project({{"Fuses", cmds}});
}

// The high fuse write instruction as the simulator's trace shows it.
bool highFuseWritten(const SimFixture& sim) {
    return !WorkerFixture::requests(sim.path("t.txt")).filter(" 07 05 00 09 AC A8 00 FF ").isEmpty();
}
} // namespace

// A fuse write that would turn off the part's serial programming: asked about once per run in the
// window, refused on the command line without --allow-lockout.
class TestGuiLockout : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }

    static QString reason() { return Lang.get(1101).arg("SPIEN"); }

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        WindowTest::useShippedData();
        AppData.confirmSavePrj = false;
    }

    void windowAsksOncePerRun() {
        SimFixture sim;
        QVERIFY(sim.start(
            {"--chip", "ATtiny85", "--devices", TARVELIX_DATA_DIR "/devices", "--trace", sim.path("t.txt")}));
        WindowTest::useSimulator(sim);
        AskingWindow w;
        QVERIFY(w.openProject(write("fuses.prj", fuseProject(CLink::simProgName))));
        const int id = ProjectData.getIdCfgFromNameCfg("Fuses");
        const QString question = Lang.get(1106).arg("ATtiny85", reason());

        w.answer = QMessageBox::No;
        QVERIFY(!w.runThread(id));
        QCOMPARE(w.asked, QStringList{question});
        QCOMPARE(w.runCount(), 0);
        QVERIFY(!highFuseWritten(sim));

        w.answer = QMessageBox::Yes;
        QVERIFY(w.runThread(id));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 20000);
        QCOMPARE(w.asked, QStringList({question, question}));
        QCOMPARE(ProjectData.getCfgStatus(id), CfgStatusOk);
        QVERIFY(highFuseWritten(sim));
    }

    void commandLineNeedsAllowLockout() {
        SimFixture sim;
        QVERIFY(sim.start(
            {"--chip", "ATtiny85", "--devices", TARVELIX_DATA_DIR "/devices", "--trace", sim.path("t.txt")}));
        const QString ini =
            write("cli.ini", QStringLiteral("[Main]\nLanguage=eng.lng\n[Interface]\nExecLogShowTime=false\n"
                                            "[ProgTypeList]\nType0=Simulator, " TARVELIX_DATA_DIR
                                            "/progs/sim.cfg\n[ProgNameList]\nName0=0, Sim, %1, Simulator\n")
                                 .arg(sim.link())
                                 .toUtf8());
        const QString prj = write("cli.prj", fuseProject("Sim"));
        auto run = [&](const QStringList& more) {
            QProcess p;
            p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"),
                    QStringList{"--settings", ini, "--run", prj} + more);
            p.waitForFinished(20000);
            return qMakePair(p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()));
        };
        const auto refused = run({});
        QCOMPARE(refused.first, 1);
        QVERIFY2(refused.second.contains(Lang.get(1105).arg("ATtiny85", reason())),
                 qPrintable(refused.second));
        QVERIFY(!highFuseWritten(sim));

        const auto allowed = run({"--allow-lockout"});
        QVERIFY2(allowed.first == 0, qPrintable(allowed.second));
        QVERIFY(highFuseWritten(sim));
    }
};

QTEST_MAIN(TestGuiLockout)
#include "test_gui_lockout.moc"
