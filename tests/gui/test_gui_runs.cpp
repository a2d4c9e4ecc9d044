#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "exec/TRunJournal.h"
#include "project/TDataPrj.h"
#include "support/TestFiles.h"
#include "support/WindowTest.h"
#include "ui/TMainWindow.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

// What the window keeps of its runs: the log folder's entries and the counts on the tabs, which outlive
// the session.
class TestGuiRuns : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    static bool runToEnd(TMainWindow& w, const QString& cfg) {
        return w.runThread(ProjectData.getIdCfgFromNameCfg(cfg)) &&
               QTest::qWaitFor([&] { return w.runCount() == 0; }, 20000);
    }

    static QString tab(TMainWindow& w, int i) { return w.cfgTabWidget()->tabText(i); }

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        AppData.confirmSavePrj = false;
        AppData.logShowTime = false;
    }

    void logFolderAndCountsOutliveTheSession() {
        const QString prj = dir.filePath("p.prj");
        QFile f(prj);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(R"({"version": 1, "configurations": [
            {"name": "Main", "description": "", "commands": [{"status": "1", "cmd": "delay", "value": "1"}]},
            {"name": "Ends", "description": "", "commands": [{"status": "1", "cmd": "set_prog", "prog": "Nope"}]}]})");
        f.close();
        QTemporaryDir logs;
        AppData.logDir = logs.path();
        {
            TMainWindow w;
            QVERIFY(w.openProject(prj));
            QVERIFY(runToEnd(w, "Main"));
            QVERIFY(runToEnd(w, "Main"));
            QVERIFY(runToEnd(w, "Ends"));
            QCOMPARE(tab(w, 0), Lang.get(1307).arg("Main").arg(2).arg(0));
            QCOMPARE(tab(w, 1), Lang.get(1307).arg("Ends").arg(0).arg(1));
        }
        AppData.logDir.clear();
        TMainWindow w;
        QVERIFY(w.openProject(prj));
        QCOMPARE(tab(w, 0), Lang.get(1307).arg("Main").arg(2).arg(0));
        QCOMPARE(tab(w, 1), Lang.get(1307).arg("Ends").arg(0).arg(1));
        QVERIFY(runToEnd(w, "Main"));
        QCOMPARE(tab(w, 0), Lang.get(1307).arg("Main").arg(3).arg(0));
        // Three runs while the log folder was set: three blocks of text, three JSON lines.
        const QString text =
            QString::fromUtf8(TestFiles::readFile(QDir(logs.path()).filePath(TRunJournal::textFile)));
        QCOMPARE(text.count(QStringLiteral("==== ")), 3);
        QVERIFY2(text.contains(QStringLiteral(" %1 [Main]\nDelay (1 ms)\n").arg(prj)), qPrintable(text));
        const QList<QByteArray> lines =
            TestFiles::readFile(QDir(logs.path()).filePath(TRunJournal::jsonFile)).trimmed().split('\n');
        QCOMPARE(lines.size(), 3);
        const QStringList results = {"ok", "ok", "failed"}, names = {"Main", "Main", "Ends"};
        for (int i = 0; i < 3; ++i) {
            const QJsonObject o = QJsonDocument::fromJson(lines.at(i)).object();
            QCOMPARE(o.value("project").toString(), prj);
            QCOMPARE(o.value("configuration").toString(), names.at(i));
            QCOMPARE(o.value("result").toString(), results.at(i));
        }
    }
};

QTEST_MAIN(TestGuiRuns)
#include "test_gui_runs.moc"
