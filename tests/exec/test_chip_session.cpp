#include "app/TLang.h"
#include "devices/TDeviceList.h"
#include "exec/TChipSession.h"
#include "exec/TRunControl.h"
#include "misc/TNormCmdParam.h"
#include "project/TChipCmds.h"
#include "project/TCtrlProject.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"
#include "support/SimFixture.h"
#include "support/WorkerFixture.h"

#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

// The chip panel's actions without the panel: each one a run outside the project, through a run
// controller, against the simulator.
class TestChipSession : public QObject {
    Q_OBJECT

    SimFixture sim;

    // Runs one action to its end; its outcome.
    static bool runAction(TChipSession& s, TChipSession::Action a, const QString& memory,
                          const QByteArray& data = QByteArray(), const QString& value = QString()) {
        QSignalSpy done(&s, &TChipSession::signalFinished);
        if (!s.start(a, memory, data, value)) {
            qWarning() << s.error();
            return false;
        }
        if (!done.wait(20000) && done.isEmpty()) return false;
        return done.first().at(0).toInt() == int(a) && done.first().at(1).toBool();
    }

    static IDevice* device(const QString& name) {
        return ProjectData.createDevice(name, DeviceList.getDeviceList().value(name));
    }

    static QByteArray pattern(int size, int seed) {
        QByteArray b(size, 0);
        for (int i = 0; i < size; ++i)
            b[i] = char((i * 7 + seed) & 0xFF);
        return b;
    }

private slots:
    void initTestCase() {
        WorkerFixture();
        qRegisterMetaType<TData>("TData");
        qRegisterMetaType<TCodeView>("TCodeView");
    }

    // What a family offers comes from its command table.
    void memoriesAndCodesComeFromTheFamily() {
        QCOMPARE(TChipCmds::memories(device("W25Q80RV")), QStringList({"flash", "status"}));
        QCOMPARE(TChipCmds::memories(device("ATmega328P")),
                 QStringList({"flash", "eeprom", "fuses", "lock"}));
        QCOMPARE(TChipCmds::memories(device("24C256")), QStringList({"flash"}));
        QCOMPARE(TChipCmds::code(device("W25Q80RV"), TChipCmds::BlankCheck, "flash"), QString("test_empty"));
        QCOMPARE(TChipCmds::code(device("ATmega328P"), TChipCmds::BlankCheck, "eeprom"),
                 QString("test_empty_eeprom"));
        QCOMPARE(TChipCmds::code(device("ATmega328P"), TChipCmds::Write, "flash"),
                 QString("flash_file_write"));
        QCOMPARE(TChipCmds::code(device("W25Q80RV"), TChipCmds::Write, "eeprom"), QString());
        QCOMPARE(TChipCmds::code(device("W25Q80RV"), TChipCmds::Read, "status"), QString("status_reg_read"));
        QCOMPARE(TChipCmds::values(TChipCmds::Write, "fuses", "x", "bin", "e2d9fe"),
                 TData({{CTagCmdRWV::data, "E2D9FE"}}));
        QCOMPARE(TChipCmds::values(TChipCmds::Verify, "flash", "/t/a.bin", "bin", "FF"),
                 TData({{CTagCmdRWV::file, "/t/a.bin"}, {CTagCmdRWV::format, "bin"}}));
    }

    // A configuration outside the project: neither listed nor saved, and making, filling and dropping it
    // changes nothing the window or the project's change flag would see.
    void transientConfigurationsStayOutOfTheProject() {
        ProjectData.clrPrj();
        ProjectData.newCfg("Main", QString(), -1);
        ProjectData.resetChange();
        QSignalSpy changes(&ProjectData, &TDataPrj::signalChangeData);
        QSignalSpy flag(&ProjectData, &TDataPrj::signalChangePrj);
        const int t = ProjectData.newTransientCfg("Scratch");
        TPrjBuilder::addCmd(ProjectData, t, "delay", {{"value", 5}});
        ProjectData.setCfgStatus(t, CfgStatusRun);
        QCOMPARE(ProjectData.getCfgListName(), QStringList{"Main"});
        QCOMPARE(ProjectData.getIdCfgFromNameCfg("Scratch"), -1);
        QCOMPARE(ProjectData.getCmdListCfg(t).size(), 1);
        const QByteArray saved = TCtrlProject::project_to_data(&ProjectData);
        QVERIFY2(!saved.contains("Scratch") && !saved.contains("delay"), saved.constData());
        ProjectData.delCfg(t);
        QVERIFY(ProjectData.getCmdList().isEmpty());
        QVERIFY(!ProjectData.isChange());
        QVERIFY(changes.isEmpty());
        QVERIFY(flag.isEmpty());
    }

    // A part that answers alone becomes the chip (the panel's test lists several).
    void detectionTakesAUniquePart() {
        QVERIFY(sim.startChip("ATtiny85", QByteArray()));
        WorkerFixture w;
        w.addProgrammer("Sim", sim);
        TRunControl control;
        TChipSession s(&control);
        s.setProg("Sim");
        QVERIFY(runAction(s, TChipSession::Detect, QString()));
        QCOMPARE(s.detected(), QStringList{"ATtiny85"});
        QCOMPARE(s.chip(), QString("ATtiny85"));
    }

    // Registers go by value; the actions done become a configuration with the user's data file.
    void registersAndSaveAsConfiguration() {
        QVERIFY(sim.startChip("ATmega328P", QByteArray()));
        WorkerFixture w;
        w.addProgrammer("Sim", sim);
        ProjectData.clrPrj();
        ProjectData.updPrjParam({{"work_path", w.dir.path()}});
        TRunControl control;
        TChipSession s(&control);
        s.setProg("Sim");
        s.setChip("ATmega328P");
        QVERIFY(!s.offers(TChipSession::CompareChip, "fuses"));
        QVERIFY(runAction(s, TChipSession::WriteVerify, "fuses", QByteArray(), "e2d9fe"));
        QVERIFY(runAction(s, TChipSession::Read, "fuses"));
        QCOMPARE(s.registerValue(), QString("E2D9FE"));
        // A busy session refuses a second action, naming why.
        QVERIFY(s.start(TChipSession::Read, "eeprom"));
        QVERIFY(!s.start(TChipSession::Read, "flash"));
        QCOMPARE(s.error(), Lang.get(1872));
        QTRY_VERIFY_WITH_TIMEOUT(!s.isBusy(), 20000);
        QCOMPARE(s.readData(), QByteArray(1024, char(0xFF)));
        const int id = s.saveAsConfiguration(ProjectData, "Chip", w.dir.filePath("data/eeprom.hex"));
        QVERIFY(id >= 0);
        QStringList cmds;
        for (TDataCmd* c : ProjectData.getCmdListCfg(id)) {
            const TData p = c->getParam();
            cmds << QStringList{c->getCmdCode(),
                                p.value("prog").toString(),
                                p.value("device").toString(),
                                p.value("data").toString(),
                                p.value("file").toString(),
                                p.value("format").toString()}
                        .join('|');
            QVERIFY2(c->getValidDev() && c->getValidParam(), qPrintable(cmds.last()));
        }
        QCOMPARE(cmds, QStringList({"set_prog|Sim||||", "set_device||ATmega328P||avr/ATmega328P.dev|",
                                    "fuse_write|||E2D9FE||", "fuse_verify|||E2D9FE||", "fuse_read|||E2D9FE||",
                                    "eeprom_file_read||||data/eeprom.hex|ihex"}));
        QVERIFY(ProjectData.isChange());
    }

    // The buffer saved for a configuration: Intel HEX as srec_cat reads it, above 64 KiB too, and a
    // failed save keeps the previous file.
    void savedDataIsStandardIntelHex() {
        TRunControl control;
        TChipSession s(&control);
        QTemporaryDir dir;
        const QByteArray data = pattern(70000, 9);
        const QString hex = dir.filePath("d.hex"), bin = dir.filePath("d.bin");
        QVERIFY2(s.saveData(data, hex), qPrintable(s.error()));
        QProcess p;
        p.start("srec_cat", {hex, "-intel", "-o", bin, "-binary"});
        QVERIFY(p.waitForFinished(10000));
        QCOMPARE(p.exitCode(), 0);
        QFile f(bin);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), data);
        QVERIFY(!s.saveData(data, dir.filePath("no/such/folder/d.bin")));
        QVERIFY(s.error().contains("no/such/folder"));
    }
};

QTEST_GUILESS_MAIN(TestChipSession)
#include "test_chip_session.moc"
