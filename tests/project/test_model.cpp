#include "TestFamily.h"

#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QSignalSpy>
#include <QtTest>

class TestModel : public QObject {
    Q_OBJECT

    QList<int> idsOfCfg(TDataPrj& prj, int idCfg) {
        QList<int> ids;
        for (TDataCmd* c : prj.getCmdListCfg(idCfg))
            ids << c->getUIN();
        return ids;
    }
    QList<int> allIds(TDataPrj& prj) {
        QList<int> ids;
        for (TDataCmd* c : prj.getCmdList())
            ids << c->getUIN();
        return ids;
    }

private slots:
    void init() { qRegisterMetaType<TCodeView>("TCodeView"); }

    void idsAndPositions() {
        TDataPrj prj;
        const int a = prj.newCfg("A", "", -1), b = prj.newCfg("B", "", -1), c = prj.newCfg("C", "", 0);
        QCOMPARE((QList<int>{a, b, c}), (QList<int>{0, 1, 2}));
        QCOMPARE(prj.getCfgListName(), (QStringList{"C", "A", "B"}));
        const int a0 = prj.newCmd(cmd(a, "delay"), -1);
        const int b0 = prj.newCmd(cmd(b, "delay"), -1);
        const int a1 = prj.newCmd(cmd(a, "pause"), 1); // before b0
        const int b1 = prj.newCmd(cmd(b, "stop"), 3);  // equal to the length: appends
        const int a2 = prj.newCmd(cmd(a, "stop"), -7); // negative: appends
        QCOMPARE(allIds(prj), (QList<int>{a0, a1, b0, b1, a2}));
        QCOMPARE(prj.getPosCmdFromAPosCmd(4), 2);
        QCOMPARE(prj.getPosCmdFromAPosCmd(3), 1);
        QCOMPARE(prj.getIdCfgFromAPosCmd(2), b);
        QCOMPARE(prj.getPosCfgFromIdCmd(b1), 2);
        QCOMPARE(prj.getIdCmdFromAPosCmd(5), -1);
        QCOMPARE(prj.getCmdData(a1).value("cmd").toString(), QString("pause"));
        QCOMPARE(prj.getCmdData(a1).value("id_cfg").toInt(), a);
        // Deleting leaves gaps: ids are not reused until the project is cleared.
        prj.delCmd(b0);
        QCOMPARE(prj.newCmd(cmd(b, "delay"), -1), 5);
        prj.delCfg(a);
        QCOMPARE(allIds(prj), (QList<int>{b1, 5}));
        QCOMPARE(prj.newCfg("D", "", -1), 3);
        prj.clrPrj();
        QCOMPARE(prj.newCfg("E", "", -1), 0);
        QCOMPARE(prj.newCmd(cmd(0, "delay"), -1), 0);
    }

    void modelKeysNeverStoredAsParameters() {
        TDataPrj prj;
        const int cfg = prj.newCfg("A", "", -1);
        const int id =
            prj.newCmd(cmd(cfg, "delay", {{"delay", "5"}, {"valid_dev", true}, {"id_cmd", 77}}, 0), -1);
        TDataCmd* c = prj.getCmdObjectFromIdCmd(id);
        QCOMPARE(c->getParam(), (TData{{"delay", "5"}}));
        QVERIFY(!c->getEnable());
        const TData data = c->getData();
        QCOMPARE(data.value("id_cmd").toInt(), id);
        QCOMPARE(data.value("status").toInt(), 0);
        c->setData(cmd(cfg, "stop", {{"x", 1}}, 1));
        QCOMPARE(c->getCmdCode(), QString("stop"));
        QCOMPARE(c->getParam(), (TData{{"x", 1}}));
    }

    void movesStayInsideTheirConfiguration() {
        TDataPrj prj;
        const int a = prj.newCfg("A", "", -1), b = prj.newCfg("B", "", -1);
        const int a0 = prj.newCmd(cmd(a, "delay"), -1), a1 = prj.newCmd(cmd(a, "pause"), -1);
        const int b0 = prj.newCmd(cmd(b, "stop"), -1), b1 = prj.newCmd(cmd(b, "delay"), -1);
        prj.moveCmd(a1, 1);  // the neighbour belongs to B
        prj.moveCmd(a0, -1); // past the start
        prj.moveCmd(b1, 1);  // past the end
        QCOMPARE(allIds(prj), (QList<int>{a0, a1, b0, b1}));
        prj.moveCmd(a1, -1);
        prj.moveCmd(b0, 1);
        QCOMPARE(allIds(prj), (QList<int>{a1, a0, b1, b0}));
        // Moving configurations never reorders the commands.
        prj.movCfg(-1, 0);
        prj.movCfg(0, 5);
        QCOMPARE(prj.getCfgListName(), (QStringList{"A", "B"}));
        prj.movCfg(1, 0);
        QCOMPARE(prj.getCfgListName(), (QStringList{"B", "A"}));
        QCOMPARE(allIds(prj), (QList<int>{a1, a0, b1, b0}));
        QCOMPARE(idsOfCfg(prj, a), (QList<int>{a1, a0}));
    }

    void nextCommandSkipsUncheckedAndNeverCrossesConfigurations() {
        TDataPrj prj;
        const int a = prj.newCfg("A", "", -1), b = prj.newCfg("B", "", -1);
        const int a0 = prj.newCmd(cmd(a, "delay", {}, 0), -1);
        const int b0 = prj.newCmd(cmd(b, "delay"), -1);
        const int a1 = prj.newCmd(cmd(a, "pause"), -1);
        prj.newCmd(cmd(a, "stop", {}, 0), -1);
        const int b1 = prj.newCmd(cmd(b, "stop"), -1);
        QCOMPARE(prj.getNextCmd(a, -1)->getUIN(), a1);
        QVERIFY(prj.getNextCmd(a, a1) == nullptr);
        QCOMPARE(prj.getNextCmd(a, a0)->getUIN(), a1);
        QCOMPARE(prj.getNextCmd(b, -1)->getUIN(), b0);
        QCOMPARE(prj.getNextCmd(b, b0)->getUIN(), b1);
        QCOMPARE(prj.getNextCmd(b, a0)->getUIN(), b0); // a jump may continue after another's command
        TData data;
        QVERIFY(prj.getNextCmdData(b, b0, data));
        QCOMPARE(data.value("id_cmd").toInt(), b1);
        prj.enbCmdCfg(a, false);
        QVERIFY(prj.getNextCmd(a, -1) == nullptr);
        QVERIFY(!prj.getNextCmdData(a, -1, data));
        QVERIFY(data.isEmpty());
        QVERIFY(!prj.existCmdSelectCfg(a));
        QVERIFY(prj.existCmdSelectCfg(b));
    }

    void bindingFollowsTheNearestPrecedingChoiceOfItsConfiguration() {
        TDataPrj prj;
        TestWorld world(prj);
        const int a = prj.newCfg("A", "", -1), b = prj.newCfg("B", "", -1);
        const int setProg = prj.newCmd(cmd(a, "set_prog", {{"prog", "progA"}}), -1);
        const int setDev = prj.newCmd(cmd(a, "set_device", {{"device", "chipA"}, {"file", ""}}), -1);
        const int erase = prj.newCmd(cmd(a, "erase"), -1);
        const int ident = prj.newCmd(cmd(a, "ident"), -1); // chipA does not know it
        const int vcc = prj.newCmd(cmd(a, "set_vcc"), -1);
        const int badRead = prj.newCmd(cmd(a, "data_read", {{"bad", "1"}}), -1);
        const int eraseB = prj.newCmd(cmd(b, "erase"), -1); // B chose nothing
        const int delayB = prj.newCmd(cmd(b, "delay"), -1); // tools need no programmer
        auto valid = [&](int id) {
            TDataCmd* c = prj.getCmdObjectFromIdCmd(id);
            return qMakePair(c->getValidDev(), c->getValidParam());
        };
        QCOMPARE(valid(setProg), qMakePair(true, true));
        QCOMPARE(valid(setDev), qMakePair(true, true));
        QCOMPARE(valid(erase), qMakePair(true, true));
        QCOMPARE(valid(ident).first, false);
        QCOMPARE(valid(vcc), qMakePair(true, true));
        QCOMPARE(valid(badRead), qMakePair(true, false));
        QCOMPARE(valid(eraseB).first, false);
        QCOMPARE(valid(delayB), qMakePair(true, true));
        QCOMPARE(prj.getCmdObjectFromIdCmd(erase)->getDeviceObject()->getDeviceCode(), QString("chipA"));
        QCOMPARE(prj.getProgName(a, prj.getAPosCmdFromIdCmd(erase)), QString("progA"));
        QCOMPARE(prj.getProgName(b, -1), QString());
        QCOMPARE(prj.getGroupName(a, prj.getAPosCmdFromIdCmd(erase), "erase"), QString("chipA"));
        QCOMPARE(prj.getGroupName(b, -1, "delay"), QString("Tools"));
        QCOMPARE(prj.getGroupName(b, -1, "set_vcc"), QString("Prog"));
        QVERIFY(prj.existCmdErrorCfg(a));
        QVERIFY(prj.existCmdDeviceCfg(b));

        // A programmer that lacks a command makes it invalid; a new programmer forgets the device.
        const int setProgB =
            prj.newCmd(cmd(a, "set_prog", {{"prog", "progB"}}), prj.getAPosCmdFromIdCmd(erase));
        prj.updCmdObjectAll();
        QCOMPARE(valid(erase).first, false);
        QCOMPARE(prj.getDeviceName(a, prj.getAPosCmdFromIdCmd(erase)), QString());
        QCOMPARE(prj.getAPosCmdSetProg(erase), prj.getAPosCmdFromIdCmd(setProgB));
        // The check mark is not consulted: an unchecked set_prog still decides.
        prj.enbCmd(setProgB, false);
        QCOMPARE(prj.getAPosCmdSetProg(erase), prj.getAPosCmdFromIdCmd(setProgB));
        prj.delCmd(setProgB);
        prj.updCmdObjectAll();
        QCOMPARE(valid(erase).first, true);

        // Moving the set-device command below a command re-binds it.
        prj.moveCmd(setDev, 1);
        QCOMPARE(valid(erase).first, false);
        QCOMPARE(prj.getAPosCmdSetDevice(erase), -1);
        prj.moveCmd(setDev, -1);
        QCOMPARE(valid(erase).first, true);

        // An unknown programmer makes set_prog invalid and so unbinds everything after it.
        prj.updCmdParam(setProg, {{"prog", "nobody"}});
        prj.updCmdObjectAll();
        QCOMPARE(valid(setProg).first, false);
        QCOMPARE(valid(vcc).first, false);
    }

    void supportListsFollowTheBinding() {
        TDataPrj prj;
        TestWorld world(prj);
        const int a = prj.newCfg("A", "", -1);
        prj.newCmd(cmd(a, "set_prog", {{"prog", "progB"}}), -1);
        prj.newCmd(cmd(a, "set_device", {{"device", "chipA"}}), -1);
        const int last = prj.newCmd(cmd(a, "delay"), -1);
        QCOMPARE(prj.getSupportToolsCmdList(),
                 (QStringList{"delay", "jamp", "execute", "set_prog", "pause", "stop"}));
        QCOMPARE(prj.getSupportProgCmdList(last), (QStringList{"set_vcc", "set_device"}));
        QCOMPARE(prj.getSupportDeviceCmdList(last), QStringList());
        prj.updCmdParam(prj.getIdCmdFromAPosCmd(0), {{"prog", "progA"}});
        prj.updCmdObjectAll();
        QCOMPARE(prj.getSupportDeviceCmdList(last), (QStringList{"erase", "data_read", "file_write"}));
    }

    void deviceCommandsGoWithTheirDevice() {
        TDataPrj prj;
        TestWorld world(prj);
        const int a = prj.newCfg("A", "", -1);
        prj.newCmd(cmd(a, "set_prog", {{"prog", "progA"}}), -1);
        const int dev = prj.newCmd(cmd(a, "set_device", {{"device", "chipA"}}), -1);
        prj.newCmd(cmd(a, "erase"), -1);
        const int delay = prj.newCmd(cmd(a, "delay"), -1);
        prj.newCmd(cmd(a, "data_read"), -1);
        const int dev2 = prj.newCmd(cmd(a, "set_device", {{"device", "chipB"}}), -1);
        const int ident = prj.newCmd(cmd(a, "ident"), -1);
        prj.delCmdDev(dev);
        QCOMPARE(allIds(prj), (QList<int>{0, dev, delay, dev2, ident}));
    }

    void changesAreAnnounced() {
        TDataPrj prj;
        QSignalSpy changed(&prj, &TDataPrj::signalChangePrj);
        QSignalSpy data(&prj, &TDataPrj::signalChangeData);
        const int a = prj.newCfg("A", "", -1);
        QVERIFY(prj.isChange());
        QCOMPARE(changed.last().at(0).toBool(), true);
        const int id = prj.newCmd(cmd(a, "delay"), -1);
        QCOMPARE(data.last().at(0).value<TCodeView>(), CodeViewCmdNew);
        QCOMPARE(data.last().at(1).value<TData>().value("id_cmd").toInt(), id);
        prj.resetChange();
        QVERIFY(!prj.isChange());
        QCOMPARE(changed.last().at(0).toBool(), false);
        prj.setCfgStatus(a, CfgStatusRun);
        QVERIFY(!prj.isChange()); // a run is not an edit
        QCOMPARE(prj.getCfgStatus(a), CfgStatusRun);
        prj.delCfg(a);
        QCOMPARE(data.last().at(0).value<TCodeView>(), CodeViewCfgDel);
        QVERIFY(prj.getCmdList().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestModel)
#include "test_model.moc"
