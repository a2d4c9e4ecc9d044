#include "app/TLang.h"
#include "devices/TDevProg.h"
#include "devices/TDevProgExec.h"
#include "devices/TDevTools.h"
#include "devices/TDevToolsExec.h"
#include "devices/TProgSupply.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

// The programmer and tools commands on their own: payload bytes, range checks against the simulator's
// description, and the tools executors' bookkeeping.
class TestToolsProg : public QObject {
    Q_OBJECT

    int cfgA = -1, cfgB = -1;

    // A command of configuration cfg in the global project, bound to the simulator's description.
    int add(int cfg, const QString& code, TData p = {}) {
        p.insert("id_cfg", cfg);
        p.insert("cmd", code);
        p.insert("status", 1);
        return ProjectData.newCmd(p, -1);
    }
    TData data(int id) { return ProjectData.getCmdData(id); }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        qRegisterMetaType<TCodeExec>("TCodeExec");
        ProjectData.setProgFactory(
            [](const QString&) { return new TProg(QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg")); });
        ProjectData.setDeviceFactory([](const QString& name, const QString&) -> IDevice* {
            if (name == "Tools") return TCmdFamily::create<TDevTools>(name, TData());
            return name == "Prog" ? TCmdFamily::create<TDevProg>(name, TData()) : nullptr;
        });
    }

    void init() {
        ProjectData.clrPrj();
        cfgA = ProjectData.newCfg("A", "", -1);
        cfgB = ProjectData.newCfg("B", "", -1);
    }

    void payloadsTruncateWhatChecksRound() {
        QCOMPARE(TDevProgExec::payloadVolt(3.3), QByteArray("\x21"));
        QCOMPARE(TDevProgExec::payloadVolt(3.35), QByteArray("\x21"));
        QCOMPARE(TDevProgExec::payloadVolt(4.1), QByteArray("\x29"));
        QCOMPARE(TDevProgExec::payloadVIcc(5.0, 0.2, true), QByteArray("\x32\xC8\x00\x00\x00\x01", 6));
        QCOMPARE(TDevProgExec::payloadVIpp(12.0, 0.05, false), QByteArray("\x78\x32\x00\x00", 4));
        QCOMPARE(TDevProgExec::payloadReset(-400), QByteArray("\x70\xFE"));
        QCOMPARE(TDevProgExec::payloadReset(0), QByteArray("\x00\x00", 2));
        QCOMPARE(TDevProgExec::payloadGenerator(100000, 50), QByteArray("\xA0\x86\x01\x00\xF4\x01", 6));

        TDevProg prog("Prog", TData());
        auto valid = [&](const QString& code, const TData& p) {
            TData d = data(add(cfgA, code, p));
            return prog.checkCmdParam(d);
        };
        add(cfgA, "set_prog", {{"prog", "Sim"}});
        // The simulator's supply range is 1.8 .. 5.5 V: 5.54 rounds to 55 tenths, 5.55 to 56.
        QVERIFY(valid("set_vcc", {{"vcc", 5.54}}));
        QVERIFY(!valid("set_vcc", {{"vcc", 5.55}}));
        QVERIFY(valid("set_vcc", {{"vcc", 1.75}}));
        QVERIFY(!valid("set_vcc", {{"vcc", 1.74}}));
        QVERIFY(!valid("set_vcc", {{"vcc", "x"}}));
        QVERIFY(valid("set_vicc", {{"vcc", 3.3}, {"icc", 0.5}, {"ocp", true}}));
        QVERIFY(!valid("set_vicc", {{"vcc", 3.3}, {"icc", 0.56}}));
        // Reset pulses of 10 .. 1000 ms either way, or none.
        QVERIFY(valid("reset", {{"duration", 0}}));
        QVERIFY(valid("reset", {{"duration", -1000}}));
        QVERIFY(!valid("reset", {{"duration", 1001}}));
        QVERIFY(!valid("reset", {{"duration", -9}}));
        // The generator's duty is chosen from its list of 25, 50, 75.
        QVERIFY(valid("gen", {{"freq", 100000}, {"duty_cycle", 50}}));
        QVERIFY(!valid("gen", {{"freq", 100000}, {"duty_cycle", 60}}));
        QVERIFY(!valid("gen", {{"freq", 0}, {"duty_cycle", 50}}));
        QCOMPARE(TProgSupply::vipp.view({{"vpp", 12}, {"ipp", 0.05}, {"ocp", false}}),
                 QString("12.0 V, 0.050 mA"));
    }

    void counterCountsDownToItsLimit() {
        const int id = add(cfgA, "counter", {{"value", 3}, {"limit", 0}, {"delta", -1}});
        TSerialPort port;
        QList<bool> finishes;
        for (int i = 0; i < 3; ++i) {
            TDevToolsExec exec(data(id));
            bool finish = false;
            int c = cfgA, cmd = id;
            QVERIFY(exec.execute(port, finish, c, cmd));
            finishes << finish;
        }
        QCOMPARE(finishes, (QList<bool>{false, false, true}));
        QCOMPARE(data(id).value("value").toInt(), 0);
        TDevToolsExec below(data(id));
        bool finish = false;
        int c = cfgA, cmd = id;
        QVERIFY(!below.execute(port, finish, c, cmd));
        QCOMPARE(below.getErrorText(), Lang.get(395));
    }

    void counterWithoutLimitFailsAtTheTop() {
        const int id = add(cfgA, "counter",
                           {{"value", std::numeric_limits<qint32>::max() - 1}, {"limit", 0}, {"delta", 1}});
        TSerialPort port;
        bool finish = false;
        int c = cfgA, cmd = id;
        TDevToolsExec first(data(id));
        QVERIFY(first.execute(port, finish, c, cmd));
        QVERIFY(finish); // reaching 2^31-1 is reaching the limit
        TDevToolsExec second(data(id));
        QVERIFY(!second.execute(port, finish, c, cmd));
    }

    void jumpToTheFirstCommandOfAnotherConfiguration() {
        add(cfgA, "delay", {{"value", 1}});
        const int target = add(cfgB, "delay", {{"value", 1}});
        const int jump = add(cfgA, "jamp", {{"to_cmd", target}});
        TSerialPort port;
        TDevToolsExec exec(data(jump));
        QSignalSpy events(&exec, &IDeviceExec::signalEventText);
        bool finish = false;
        int c = cfgA, cmd = jump;
        QVERIFY(exec.execute(port, finish, c, cmd));
        QCOMPARE(c, cfgB);
        QCOMPARE(cmd, -1); // the command before the target belongs to A
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.at(0).at(1).toString(), QString("\n--> %1 \"B\"").arg(Lang.get(394)));
        ProjectData.delCmd(target);
        TDevToolsExec gone(data(jump));
        QVERIFY(!gone.execute(port, finish, c, cmd));
        QCOMPARE(gone.getErrorText(), Lang.get(462));
    }

    void delayShowsProgressFromHalfASecond() {
        TSerialPort port;
        for (int ms : {499, 500}) {
            TDevToolsExec exec({{"cmd", "delay"}, {"value", ms}});
            QSignalSpy progress(&exec, &IDeviceExec::signalEventProc);
            bool finish = false;
            int c = -1, cmd = -1;
            QVERIFY(exec.execute(port, finish, c, cmd));
            if (ms == 499) {
                QVERIFY(progress.isEmpty());
            } else {
                QVERIFY(progress.size() > 2);
                QVERIFY(progress.first().at(0).toInt() >= 1);
                QCOMPARE(progress.last().at(0).toInt(), 0);
                for (int i = 1; i + 1 < progress.size(); ++i)
                    QVERIFY(progress.at(i).at(0).toInt() > progress.at(i - 1).at(0).toInt());
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestToolsProg)
#include "test_tools_prog.moc"
