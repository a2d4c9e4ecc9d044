#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "project/CTagCmdCode.h"
#include "project/TCmdCode.h"
#include "project/TCtrlProject.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/CmdText.h"
#include "support/TestFiles.h"
#include "support/WindowTest.h"
#include "ui/TDialogCfg.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtCmdList.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

// Answers the window's questions and forms in place of the user.
class TestWindow : public TMainWindow {
public:
    QStringList errors;
    QList<TData> forms; // the records the command form was opened with
    bool acceptForm = true;
    TData formEdits; // written over the record when the form is accepted

protected:
    QMessageBox::StandardButton ask(const QString&, QMessageBox::StandardButtons) override {
        return QMessageBox::Yes;
    }
    void showError(const QString& text) override { errors << text; }
    bool askCmdParam(int, TData& param, bool) override {
        forms << param;
        for (auto it = formEdits.constBegin(); it != formEdits.constEnd(); ++it)
            param.insert(it.key(), it.value());
        return acceptForm;
    }
};

namespace {
QString delay(int ms) {
    return cmd("delay", QStringLiteral(R"("value": "%1")").arg(ms));
}
const QString setProg = cmd("set_prog", R"("alt_enabled": "false", "alt_port": "", "prog": "Sim")");
const QString setDevice =
    cmd("set_device", R"("addr": "0", "clk": "1", "device": "24C256", "file": "i2c/24C256.dev")");

QByteArray bytes() {
    return TCtrlProject::project_to_data(&ProjectData);
}
int cfgId(const QString& name) {
    return ProjectData.getIdCfgFromNameCfg(name);
}
int cmdId(const QString& cfg, int pos) {
    return ProjectData.getCmdListCfg(cfgId(cfg)).at(pos)->getUIN();
}
// A command's code and parameters as "code value": enough to tell the test's commands apart.
QString shown(int idCmd) {
    const TData d = ProjectData.getCmdData(idCmd);
    return (d.value("cmd").toString() + " " + d.value("value").toString()).trimmed();
}
QStringList shownCfg(const QString& cfg) {
    QStringList out;
    for (TDataCmd* c : ProjectData.getCmdListCfg(cfgId(cfg)))
        out << shown(c->getUIN());
    return out;
}
// A submenu of the insert menu as codes, separators included.
QStringList menuCodes(QMenu* menu) {
    QStringList codes;
    for (QAction* a : menu->actions())
        codes << (a->isSeparator() ? QString(CTagCmdCode::separator) : a->data().toString());
    return codes;
}
} // namespace

class TestGuiEdit : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }
    // Opens the project, shows the configuration and makes the command at pos current.
    void open(TestWindow& w, const QByteArray& data, const QString& cfg, int pos) {
        QVERIFY(w.openProject(write("edit.prj", data)));
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(cfgId(cfg)));
        if (pos >= 0) w.currentCmdList()->setCurrentIdCmd(cmdId(cfg, pos));
    }
    const QByteArray twoCfgs =
        project({{"A", {delay(1), delay(2), delay(3)}}, {"B", {cmd("stop"), delay(9)}}});

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        AppData.confirmSavePrj = false;
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        AppData.progType.clear();
        AppData.progName.clear();
        AppData.progType.append("Simulator", QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg"));
        AppData.progName.append(false, "Sim", "none", "Simulator");
    }

    void pastePutsCommandsAfterTheCurrentOne() {
        TestWindow w;
        open(w, twoCfgs, "A", 0);
        const int maxId = cmdId("B", 1);
        w.currentCmdList()->selectIdCmds({cmdId("A", 0), cmdId("A", 1)});
        QVERIFY(w.copyCmds());
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(cfgId("B")));
        w.currentCmdList()->setCurrentIdCmd(cmdId("B", 0));
        const QByteArray before = bytes();
        QVERIFY(w.pasteCmds());
        const QList<int> pasted = w.currentCmdList()->selectedIdCmds();
        QCOMPARE(pasted.size(), 2);
        QVERIFY(pasted.at(0) > maxId && pasted.at(1) > maxId);
        QCOMPARE(ProjectData.getAPosCmdFromIdCmd(pasted.at(0)), 4);
        QCOMPARE(ProjectData.getAPosCmdFromIdCmd(pasted.at(1)), 5);
        QCOMPARE(shownCfg("B"), QStringList({"stop", "delay 1", "delay 2", "delay 9"}));
        QCOMPARE(shownCfg("A"), QStringList({"delay 1", "delay 2", "delay 3"}));
        // Pasting again goes after the pasted ones, which are now current.
        QVERIFY(w.pasteCmds());
        QCOMPARE(shownCfg("B"), QStringList({"stop", "delay 1", "delay 2", "delay 1", "delay 2", "delay 9"}));
        QVERIFY(w.undo());
        QVERIFY(w.undo());
        QCOMPARE(bytes(), before);
        QVERIFY(!ProjectData.isChange());

        // An empty configuration gets them at the end of the project.
        const int idC = w.addCfg("C", "");
        QVERIFY(idC >= 0);
        QVERIFY(w.pasteCmds());
        QCOMPARE(ProjectData.getAPosCmdFromIdCmd(w.currentCmdList()->selectedIdCmds().at(0)), 5);
        QCOMPARE(shownCfg("C"), QStringList({"delay 1", "delay 2"}));
    }

    // Each edit, undone, gives the project's bytes back exactly; redone, the edited bytes.
    void undoAndRedoRestoreTheBytes() {
        TestWindow w;
        open(w, twoCfgs, "A", 1);
        const QString file = ProjectData.getPrjFileName();
        const QList<QPair<const char*, std::function<bool()>>> edits = {
            {"insert", [&] { return w.insertCmd("pause") >= 0; }},
            {"insert with form", [&] { return w.insertCmdForm("stop"); }},
            {"delete", [&] { return w.deleteCmds(); }},
            {"cut", [&] { return w.cutCmds(); }},
            {"move up", [&] { return w.moveCurrentCmd(-1); }},
            {"move down", [&] { return w.moveCurrentCmd(1); }},
            {"paste", [&] { return w.copyCmds() && w.pasteCmds(); }},
            {"parameters",
             [&] {
                 return w.editCmd(cmdId("A", 1), TData{{"value", 77}});
             }},
            {"uncheck", [&] { return w.checkCmds(false); }},
            {"uncheck all", [&] { return w.checkAllCmds(false); }},
            {"cfg add", [&] { return w.addCfg("New", "made here") >= 0; }},
            {"cfg rename", [&] { return w.renameCfg(cfgId("B"), "Beta", "second"); }},
            {"cfg move", [&] { return w.moveCfg(cfgId("A"), 1); }},
            {"cfg delete", [&] { return w.deleteCfg(cfgId("A")); }},
        };
        for (const auto& e : edits) {
            const QByteArray before = bytes();
            w.currentCmdList()->setCurrentIdCmd(cmdId("A", 1));
            QVERIFY2(e.second(), e.first);
            const QByteArray after = bytes();
            QVERIFY2(after != before, e.first);
            QVERIFY2(ProjectData.isChange(), e.first);
            QVERIFY(w.undo());
            QVERIFY2(bytes() == before, e.first);
            QVERIFY2(!ProjectData.isChange(), e.first);
            QVERIFY(!w.windowTitle().contains('*'));
            QVERIFY(w.redo());
            QVERIFY2(bytes() == after, e.first);
            QVERIFY(ProjectData.isChange());
            QVERIFY(w.undo());
            w.cfgTabWidget()->setCurrentWidget(w.cfgView(cfgId("A")));
        }
        QCOMPARE(ProjectData.getPrjFileName(), file);
        QCOMPARE(w.cfgTabWidget()->count(), 2);
        QCOMPARE(w.cfgView(cfgId("B"))->cmdList()->topLevelItemCount(), 2);
        // A new edit ends the redo; an edit that changes nothing leaves no step.
        QVERIFY(w.canRedo());
        QVERIFY(w.insertCmd("pause") >= 0);
        QVERIFY(!w.canRedo());
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(cfgId("A")));
        w.currentCmdList()->setCurrentIdCmd(cmdId("A", 0));
        QVERIFY(w.undo());
        QVERIFY(!w.canUndo());
        QVERIFY(w.moveCurrentCmd(-1));
        QVERIFY(!w.canUndo());
        QVERIFY(!ProjectData.isChange());
    }

    void newCommandTakesDefaultsAndItsForm() {
        TestWindow w;
        open(w, twoCfgs, "A", 0);
        const int id = w.insertCmd("delay");
        QCOMPARE(ProjectData.getAPosCmdFromIdCmd(id), 1);
        QCOMPARE(ProjectData.getCmdData(id).value("value").toInt(), 100);
        QVERIFY(w.undo());

        w.currentCmdList()->setCurrentIdCmd(cmdId("A", 0));
        const QByteArray before = bytes();
        w.formEdits = TData{{"value", 250}};
        QVERIFY(w.insertCmdForm("delay"));
        QCOMPARE(w.forms.size(), 1);
        QCOMPARE(w.forms.at(0).value("value").toInt(), 100);
        QCOMPARE(shownCfg("A"), QStringList({"delay 1", "delay 250", "delay 2", "delay 3"}));
        QVERIFY(w.undo()); // the insert and its form are one step
        QCOMPARE(bytes(), before);

        w.acceptForm = false;
        QVERIFY(!w.insertCmdForm("delay"));
        QCOMPARE(bytes(), before);
        QVERIFY(!ProjectData.isChange());
        QVERIFY(w.canRedo()); // the cancelled insert was no edit

        // Editing an existing command goes through the form too.
        w.acceptForm = true;
        w.formEdits = TData{{"value", 5}};
        QVERIFY(w.editCmdForm(cmdId("A", 2)));
        QCOMPARE(shownCfg("A"), QStringList({"delay 1", "delay 2", "delay 5"}));
    }

    void insertMenuOffersTheSupportListsOfThePlace() {
        TestWindow w;
        open(w, project({{"P", {setProg, setDevice, cmd("ident")}}, {"T", {delay(1)}}}), "P", 2);
        const int id = cmdId("P", 2);
        QMenu menu;
        w.fillInsertMenu(&menu);
        const QList<QAction*> subs = menu.actions();
        QCOMPARE(subs.size(), 3);
        QCOMPARE(subs.at(0)->text(), Lang.get(624));
        const QStringList device = ProjectData.getSupportDeviceCmdList(id);
        QVERIFY(device.contains("separator") && device.contains("file_write"));
        QCOMPARE(menuCodes(subs.at(0)->menu()), ProjectData.getSupportToolsCmdList());
        QCOMPARE(menuCodes(subs.at(1)->menu()), ProjectData.getSupportProgCmdList(id));
        QCOMPARE(menuCodes(subs.at(2)->menu()), device);
        QAction* write = subs.at(2)->menu()->actions().at(device.indexOf("file_write"));
        QCOMPARE(write->text(), CmdCode.getName("file_write"));
        // Chosen, it lands after the current command, bound to the device with its defaults.
        write->trigger();
        const TData added = ProjectData.getCmdData(cmdId("P", 3));
        QCOMPARE(added.value("cmd").toString(), QString("file_write"));
        QVERIFY(added.value("valid_dev").toBool());
        QCOMPARE(w.forms.size(), 1);

        // Without a programmer there is nothing of the programmer or a device to insert.
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(cfgId("T")));
        w.fillInsertMenu(&menu);
        QCOMPARE(menu.actions().size(), 3);
        QVERIFY(menu.actions().at(0)->isEnabled());
        QVERIFY(!menu.actions().at(1)->isEnabled() && !menu.actions().at(2)->isEnabled());
    }

    void clipboardCarriesCommandsBetweenProjects() {
        TestWindow w;
        open(w, project({{"P", {setProg, delay(7)}}}), "P", -1);
        w.currentCmdList()->selectIdCmds({cmdId("P", 0), cmdId("P", 1)});
        ProjectData.enbCmd(cmdId("P", 1), false);
        QVERIFY(w.copyCmds());
        const QString text =
            R"([{"alt_enabled":"false","alt_port":"","cmd":"set_prog","prog":"Sim","status":"1"},)"
            R"({"cmd":"delay","status":"0","value":"7"}])";
        const QMimeData* mime = QApplication::clipboard()->mimeData();
        QCOMPARE(QString::fromUtf8(mime->data("application/x-tarvelix-commands")), text);
        QCOMPARE(mime->text(), text);

        open(w, project({{"Q", {cmd("stop")}}}), "Q", 0);
        QVERIFY(w.pasteCmds());
        QCOMPARE(shownCfg("Q"), QStringList({"stop", "set_prog", "delay 7"}));
        const TData prog = ProjectData.getCmdData(cmdId("Q", 1));
        QCOMPARE(prog.value("prog").toString(), QString("Sim"));
        QVERIFY(prog.value("valid_dev").toBool());
        QCOMPARE(ProjectData.getCmdData(cmdId("Q", 2)).value("status").toInt(), 0);

        // Plain text from elsewhere is taken when it is a list of commands, and refused otherwise.
        QApplication::clipboard()->setText(R"([{"cmd": "pause", "status": "1"}])");
        QVERIFY(w.pasteCmds());
        QCOMPARE(shownCfg("Q"), QStringList({"stop", "set_prog", "delay 7", "pause"}));
        QApplication::clipboard()->setText(R"([{"cmd": "no_such", "status": "1"}])");
        QVERIFY(!w.pasteCmds());
        QCOMPARE(w.errors, QStringList{Lang.get(652)});
    }

    void checksMarksAndNamesThroughTheWindow() {
        TestWindow w;
        open(w, project({{"A", {cmd("process", R"("file": "")"), delay(1)}}, {"B", {}}}), "A", 0);
        TWgtCmdList* list = w.currentCmdList();
        const QString name = list->topLevelItem(0)->text(0);
        QCOMPARE(list->topLevelItem(0)->toolTip(0), Lang.get(388).arg(name));
        // Enter opens the form of the current command; what it gives back is the edit.
        w.formEdits = TData{{"file", "true"}};
        list->setCurrentIdCmd(cmdId("A", 0));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(w.forms.size(), 1);
        QCOMPARE(w.forms.at(0).value("cmd").toString(), QString("process"));
        QCOMPARE(ProjectData.getCmdData(cmdId("A", 0)).value("file").toString(), QString("true"));
        QCOMPARE(list->topLevelItem(0)->toolTip(0), QString());

        // The check box is an edit like any other.
        list->topLevelItem(1)->setCheckState(0, Qt::Unchecked);
        QTRY_COMPARE(ProjectData.getCmdData(cmdId("A", 1)).value("status").toInt(), 0);
        QVERIFY(w.undo());
        QCOMPARE(w.currentCmdList()->topLevelItem(1)->checkState(0), Qt::Checked);

        // Names the file cannot hold, and names already taken, are refused.
        QCOMPARE(TDialogCfg::checkName(-1, "B"), Lang.get(650).arg("B"));
        QCOMPARE(TDialogCfg::checkName(cfgId("B"), "B"), QString());
        QCOMPARE(TDialogCfg::checkName(-1, " "), Lang.get(649));
        QCOMPARE(TDialogCfg(cfgId("B"), "B", "tab\there").getError(), Lang.get(651));
        QCOMPARE(TDialogCfg(-1, "C", "fine").getError(), QString());
        QCOMPARE(w.addCfg("say \"hi\"", ""), -1);
        QVERIFY(!w.renameCfg(cfgId("B"), "B", "back\\slash"));
        QCOMPARE(w.errors, QStringList({Lang.get(651), Lang.get(651)}));
        QVERIFY(!w.moveCfg(cfgId("B"), 1));
    }

    void editingWaitsForTheRuns() {
        TestWindow w;
        open(w, project({{"Long", {delay(60000)}}, {"B", {delay(1)}}}), "B", 0);
        const QByteArray before = bytes();
        QVERIFY(w.runThread(cfgId("Long")));
        QCOMPARE(w.insertCmd("pause"), -1);
        QVERIFY(!w.deleteCmds());
        QVERIFY(!w.canEdit());
        QCOMPARE(w.errors, QStringList({Lang.get(645), Lang.get(645)}));
        w.stopAll();
        QTRY_COMPARE(w.runCount(), 0);
        QCOMPARE(bytes(), before);
        QVERIFY(w.deleteCmds());
    }
};

QTEST_MAIN(TestGuiEdit)
#include "test_gui_edit.moc"
