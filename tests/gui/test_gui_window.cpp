#include "app/TAppData.h"
#include "app/TIcons.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "exec/TRunControl.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/CmdText.h"
#include "support/TestFiles.h"
#include "support/WindowTest.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtCmdList.h"
#include "ui/TWgtLogExec.h"

#include <QAction>
#include <QElapsedTimer>
#include <QStatusBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

// Answers the window's questions in place of the user and keeps what it was told.
class TestWindow : public TMainWindow {
public:
    QStringList asked, errors;
    QMessageBox::StandardButton answer = QMessageBox::Cancel;

protected:
    QMessageBox::StandardButton ask(const QString& text, QMessageBox::StandardButtons) override {
        asked << text;
        return answer;
    }
    void showError(const QString& text) override { errors << text; }
};

namespace {

QByteArray readFile(const QString& name) {
    QFile f(name);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

// The log line of each command as the command list shows it.
QString cmdLine(TWgtCmdList* list, int row) {
    const QTreeWidgetItem* item = list->topLevelItem(row);
    return item->text(1).isEmpty() ? item->text(0)
                                   : QStringLiteral("%1 (%2)").arg(item->text(0), item->text(1));
}

QString logText(TMainWindow& w, const QString& cfg) {
    return w.cfgView(ProjectData.getIdCfgFromNameCfg(cfg))->log()->textEdit()->toPlainText();
}
} // namespace

class TestGuiWindow : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString ini, prj;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }
    int id(const QString& cfg) { return ProjectData.getIdCfgFromNameCfg(cfg); }

private slots:
    void initTestCase() {
        ini = WindowTest::setUp(dir);
        AppData.logShowTime = false;
        prj = write(
            "runs.prj",
            project({{"A", {cmd("delay", R"("value": "50")"), cmd("stop"), cmd("delay", R"("value": "50")")}},
                     {"B", {cmd("delay", R"("value": "50")")}},
                     {"Long", {cmd("delay", R"("value": "60000")")}},
                     {"Pause", {cmd("pause"), cmd("delay", R"("value": "1")")}}}));
    }

    void projectOpensIntoTabs() {
        TestWindow w;
        QVERIFY(w.openProject(prj));
        QCOMPARE(w.cfgTabWidget()->count(), 4);
        QCOMPARE(w.cfgTabWidget()->tabText(2), QString("Long"));
        QCOMPARE(w.cfgView(id("A"))->cmdList()->topLevelItemCount(), 3);
        QCOMPARE(w.recentProjects(), QStringList{prj});
        QVERIFY(w.windowTitle().startsWith("runs.prj - "));
        // A change of the model reaches the views.
        ProjectData.setCfgName(id("B"), "Beta");
        QCOMPARE(w.cfgTabWidget()->tabText(1), QString("Beta"));
        ProjectData.enbCmd(ProjectData.getCmdListCfg(id("A")).at(1)->getUIN(), false);
        QCOMPARE(w.cfgView(id("A"))->cmdList()->topLevelItem(1)->checkState(0), Qt::Unchecked);
        w.answer = QMessageBox::Discard;
        QVERIFY(w.closeProject());
        QCOMPARE(w.cfgTabWidget()->count(), 0);
    }

    void invalidCommandsAreMarkedWithTheReason() {
        const QString file =
            write("invalid.prj", project({{"V", {cmd("process", R"("file": "")"), cmd("stop")}}}));
        TestWindow w;
        QVERIFY(w.openProject(file));
        TWgtCmdList* list = w.cfgView(id("V"))->cmdList();
        const QTreeWidgetItem* bad = list->topLevelItem(0);
        QCOMPARE(bad->toolTip(0), Lang.get(388).arg(bad->text(0)));
        QCOMPARE(bad->toolTip(1), bad->toolTip(0));
        QVERIFY(!bad->icon(0).isNull());
        QCOMPARE(list->topLevelItem(1)->toolTip(0), QString());
        QVERIFY(list->topLevelItem(1)->icon(0).isNull());
        // The run stops at the invalid command with the same reason.
        QVERIFY(w.runThread(id("V")));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        QVERIFY(logText(w, "V").contains(Lang.get(388).arg(bad->text(0))));
        QCOMPARE(ProjectData.getCfgStatus(id("V")), CfgStatusError);
    }

    void hotKeysAndGeometryComeFromTheSettings() {
        {
            TSettings s;
            s.setValue("/HotKeyMain/Run", "F9");
            s.setValue("/HotKeyMain/Undo", "Alt+Backspace");
            s.setValue("/WindowMain/Left", 40);
            s.setValue("/WindowMain/Top", 30);
            s.setValue("/WindowMain/Width", 700);
            s.setValue("/WindowMain/Height", 500);
        }
        TestWindow w;
        QCOMPARE(w.findChild<QAction*>("Run")->shortcut(), QKeySequence("F9"));
        QCOMPARE(w.findChild<QAction*>("Stop")->shortcut(), QKeySequence("F6"));
        QCOMPARE(w.findChild<QAction*>("Undo")->shortcut(), QKeySequence("Alt+Backspace"));
        QCOMPARE(w.findChild<QAction*>("PasteCmd")->shortcut(), QKeySequence("Ctrl+V"));
        QCOMPARE(w.geometry().size(), QSize(700, 500));
        TSettings().remove("/HotKeyMain/Run");
        TSettings().remove("/HotKeyMain/Undo");
    }

    void twoRunsAtOnce() {
        TestWindow w;
        w.openProject(prj);
        QVERIFY(w.runThread(id("A")));
        QVERIFY(w.runThread(id("B")));
        QVERIFY(!w.runThread(id("A")));
        QCOMPARE(w.runCount(), 2);
        QCOMPARE(ProjectData.getCfgStatus(id("A")), CfgStatusRun);
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        TWgtCmdList* a = w.cfgView(id("A"))->cmdList();
        QCOMPARE(logText(w, "A"), QStringList({cmdLine(a, 0), cmdLine(a, 1), Lang.get(391)}).join('\n'));
        QCOMPARE(logText(w, "B"), cmdLine(w.cfgView(id("B"))->cmdList(), 0) + "\n" + Lang.get(391));
        QCOMPARE(ProjectData.getCfgStatus(id("A")), CfgStatusOk);
        QCOMPARE(w.cfgView(id("A"))->currentIndex(), 1);
    }

    void logIsClearedBeforeARunWhenSet() {
        TestWindow w;
        w.openProject(prj);
        // Runs of earlier tests count too: the counts outlive the window.
        const int before = w.runControl()->tally(id("B")).passed;
        AppData.logClearBeforeRun = false;
        for (int i = 0; i < 2; ++i) {
            QVERIFY(w.runThread(id("B")));
            QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        }
        QCOMPARE(logText(w, "B").count(Lang.get(391)), 2);
        AppData.logClearBeforeRun = true;
        QVERIFY(w.runThread(id("B")));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        QCOMPARE(logText(w, "B").count(Lang.get(391)), 1);
        // Each run counts on the tab, passed / failed.
        QCOMPARE(w.cfgTabWidget()->tabText(ProjectData.getPosCfgFromIdCfg(id("B"))),
                 Lang.get(1307).arg("B").arg(before + 3).arg(0));
    }

    void stopEndsALongDelay() {
        TestWindow w;
        w.openProject(prj);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(w.runThread(id("Long")));
        QTest::qWait(200);
        w.stopRun(id("Long"));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 30000);
        QVERIFY(clock.elapsed() < 30000); // far short of the minute the delay asks for
        QVERIFY(logText(w, "Long").endsWith("\n" + Lang.get(390)));
        // A stopped run is no success: a tab icon, a state and a status line of its own.
        QCOMPARE(ProjectData.getCfgStatus(id("Long")), CfgStatusStopped);
        const int tab = ProjectData.getPosCfgFromIdCfg(id("Long"));
        auto image = [](const QIcon& icon) { return icon.pixmap(32).toImage(); };
        const QImage shown = image(w.cfgTabWidget()->tabIcon(tab));
        QCOMPARE(shown, image(TIcons::getIcon(AppData.iconsSet, "stopped")));
        QVERIFY(shown != image(TIcons::getIcon(AppData.iconsSet, "ok")));
        QCOMPARE(w.statusBar()->currentMessage(), Lang.get(1306).arg("Long"));
        QCOMPARE(w.cfgTabWidget()->tabText(tab), QString("Long"));
    }

    void pauseWaitsForContinue() {
        TestWindow w;
        w.openProject(prj);
        QVERIFY(w.runThread(id("Pause")));
        QTRY_VERIFY_WITH_TIMEOUT(w.isPaused(id("Pause")), 10000);
        QTest::qWait(300);
        QCOMPARE(w.runCount(), 1);
        w.continueRun(id("Pause"));
        QVERIFY(!w.isPaused(id("Pause")));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        QVERIFY(logText(w, "Pause").endsWith("\n" + Lang.get(391)));
    }

    void closingStopsRunsCleanly() {
        TestWindow w;
        w.show();
        w.openProject(prj);
        QVERIFY(w.runThread(id("Long")));
        QVERIFY(w.runThread(id("Pause")));
        QTRY_VERIFY_WITH_TIMEOUT(w.isPaused(id("Pause")), 10000);
        QTest::qWait(200); // the long delay has begun
        QElapsedTimer clock;
        clock.start();
        QVERIFY(w.close());
        QCOMPARE(w.runCount(), 0);
        QVERIFY(clock.elapsed() < 30000); // the minute-long delay was cut short
        QSettings s(ini, QSettings::IniFormat);
        QCOMPARE(s.value("/WindowMain/Width").toInt(), w.normalGeometry().width());
        QCOMPARE(s.value("/Main/LastPrj").toString(), prj);
    }

    void damagedProjectChangesNothing() {
        TestWindow w;
        w.openProject(prj);
        const QString bad = write("bad.prj", "{\"version\": 1, \"configurations\": [");
        QVERIFY(!w.openProject(bad));
        QCOMPARE(w.errors.size(), 1);
        QVERIFY(w.errors.first().startsWith(Lang.get(39).arg(bad, Lang.get(45).arg(QString())).chopped(1)));
        QCOMPARE(ProjectData.getPrjFileName(), prj);
        QCOMPARE(w.cfgTabWidget()->count(), 4);
        QVERIFY(!w.openProject(dir.filePath("missing.prj")));
        QCOMPARE(w.errors.size(), 2);
        QVERIFY(w.errors.last().startsWith(Lang.get(39).arg(dir.filePath("missing.prj"), QString())));
        QCOMPARE(ProjectData.getPrjFileName(), prj);
        QVERIFY(w.asked.isEmpty());
    }

    void unsavedChangesAreAskedAbout() {
        const QString file = write("edit.prj", project({{"One", {cmd("stop")}}}));
        const QByteArray before = readFile(file);
        TestWindow w;
        w.openProject(file);
        ProjectData.setCfgName(id("One"), "Renamed");
        w.answer = QMessageBox::Cancel;
        QVERIFY(!w.closeProject());
        QCOMPARE(w.asked, QStringList{Lang.get(41)});
        QCOMPARE(ProjectData.getPrjFileName(), file);
        w.answer = QMessageBox::Discard;
        QVERIFY(w.closeProject());
        QCOMPARE(readFile(file), before);
        w.openProject(file);
        ProjectData.setCfgName(id("One"), "Renamed");
        w.answer = QMessageBox::Save;
        QVERIFY(w.close());
        QVERIFY(readFile(file).contains("\"name\": \"Renamed\""));
        QCOMPARE(w.asked.size(), 3);
    }

    void processCommandsAreConfirmedFirst() {
        const QString file =
            write("proc.prj", project({{"P", {cmd("process", R"("file": "/bin/true --x")")}}}));
        AppData.confirmProcess = true;
        TestWindow w;
        w.openProject(file);
        w.answer = QMessageBox::No;
        QVERIFY(!w.runThread(id("P")));
        QCOMPARE(w.asked, QStringList{Lang.get(47).arg("/bin/true --x")});
        QCOMPARE(w.runCount(), 0);
    }
};

QTEST_MAIN(TestGuiWindow)
#include "test_gui_window.moc"
