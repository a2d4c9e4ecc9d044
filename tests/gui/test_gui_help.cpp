#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "project/TDataPrj.h"
#include "ui/TDialogShortcuts.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtPrjList.h"

#include <QAction>
#include <QMessageBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

// A new user's first minutes: the window opens on the demo project with its list, Help explains where
// things are and which keys do what, and a hand-written project says what it got wrong.
class TestGuiHelp : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

    QAction* actionOf(TMainWindow& w, const QString& key) {
        for (QAction* a : w.findChildren<QAction*>())
            if (a->objectName() == key) return a;
        return nullptr;
    }

private slots:
    void initTestCase() {
        TSettings::setFileNameIniOverride(dir.filePath("t.ini"));
        AppData.loadData();
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        AppData.pathProjects = dir.filePath("projects");
        AppData.selectPrjListFile = dir.filePath("sp.lpl");
        AppData.confirmQuit = false;
        QDir().mkpath(AppData.pathProjects);
        for (const char* name : {"demo.prj", "demo.hex"})
            QVERIFY(QFile::copy(QStringLiteral(TARVELIX_DATA_DIR "/projects/") + name,
                                dir.filePath(QStringLiteral("projects/") + name)));
    }

    void firstStartOpensTheDemoWithItsList() {
        const QString demo = dir.filePath("projects/demo.prj");
        {
            TMainWindow w;
            QCOMPARE(ProjectData.getPrjFileName(), demo);
            auto* tree = w.findChild<TWgtPrjList*>();
            QCOMPARE(tree->topLevelItemCount(), 1);
            QCOMPARE(tree->topLevelItem(0)->text(0), Lang.get(1757));
            QCOMPARE(tree->fileOf(tree->topLevelItem(0)), demo);
            // A project that opens cleanly has nothing to report.
            QVERIFY(!w.findChild<QMessageBox*>("projectProblems"));
        }
        ProjectData.clrPrj();
        // Only the first start: the user's own choice (here: no last project) holds afterwards.
        AppData.openLastPrj = false;
        TMainWindow again;
        QCOMPARE(ProjectData.getPrjFileName(), QString());
    }

    void helpNamesThePlacesAndTheKeys() {
        TMainWindow w;
        QString text;
        QTimer::singleShot(0, [&] {
            auto* box = w.findChild<QMessageBox*>("gettingStarted");
            if (!box) return;
            text = box->text();
            box->accept();
        });
        actionOf(w, "GettingStarted")->trigger();
        QVERIFY(text.contains(dir.filePath("projects/demo.prj")));
        QVERIFY(text.contains(TSettings().fileName()));
        QVERIFY(text.contains("tarvelix-progsim --chip W25Q80RV --devices " TARVELIX_DATA_DIR "/devices"));

        // The table shows the keys as they are set now, the changed ones included.
        actionOf(w, "Run")->setShortcut(QKeySequence("Ctrl+R"));
        TDialogShortcuts shortcuts(w.findChildren<QAction*>());
        QMap<QString, QString> keys;
        for (int r = 0; r < shortcuts.table()->rowCount(); ++r)
            keys.insert(shortcuts.table()->item(r, 0)->text(), shortcuts.table()->item(r, 1)->text());
        QCOMPARE(keys.value(actionOf(w, "Run")->text().remove('&')), QString("Ctrl+R"));
        QCOMPARE(keys.value(actionOf(w, "RunAll")->text().remove('&')), QString("Ctrl+F5"));
        QVERIFY(!keys.contains(actionOf(w, "GettingStarted")->text().remove('&')));
    }

    void aHandWrittenProjectSaysWhatIsWrong() {
        const QString file = dir.filePath("hand.prj");
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(R"({"configurations": [{"name": "Hand", "commands": [{"cmd": "delay", "value": "5"}]}]})");
        f.close();
        TMainWindow w;
        QVERIFY(w.openProject(file));
        auto* box = w.findChild<QMessageBox*>("projectProblems");
        QVERIFY(box && box->isVisible() && !box->isModal());
        QCOMPARE(box->detailedText(), Lang.get(1740).arg("Hand").arg(1).arg("delay", Lang.get(1743)));
    }
};

QTEST_MAIN(TestGuiHelp)
#include "test_gui_help.moc"
