#include "support/ChipKit.h"

#include "devices/TDev93C.h"
#include "devices/TDev93CExec.h"

#include <QtTest>

using namespace ChipKit;

// The unfinished 93 series: what it sends and that the rest refuses without sending.
class TestDev93C : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    QHash<QString, TData> records;

    QString devices() const { return dir.filePath("devices"); }

    int runOn(WorkerFixture& w, SimFixture& sim, const QStringList& commands, QStringList& frames) {
        AppData.pathDevices = devices();
        if (!sim.start({"--chip", "93C46", "--devices", devices(), "--trace", sim.path("t.txt"), "--image",
                        sim.path("image.bin")}))
            return -1;
        w.addProgrammer("Sim", sim);
        const int status = w.run(options(w.writeProject(project(
            {{"Main", QStringList{setProg, cmd("set_device", R"("device": "93C46", "file": "93c46.cfg")")} +
                          commands}}))));
        sim.stop();
        // After the handshake and the set-device packet, without the worker's final leave and LED.
        frames.clear();
        for (const QString& f : WorkerFixture::requests(sim.path("t.txt")).mid(4))
            if (!f.startsWith("C0 85") && !f.startsWith("C0 83")) frames << f;
        return status;
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        records.insert("93C46", writeChip(devices(), "93C46",
                                          {{"gui_type", "Dev93"},
                                           {"prg_section", "MW"},
                                           {"addr_begin", 0},
                                           {"size", 128},
                                           {"page_size", 1}}));
        useFamily(records, TCmdFamily::create<TDev93C>);
    }

    void editingSideIsFixed() {
        std::unique_ptr<IDevice> dev(TCmdFamily::create<TDev93C>("93C46", records.value("93C46")));
        QCOMPARE(dev->getSupportCmdList().mid(0, 6),
                 (QStringList{"set_clk", "erase", "test_empty", "lock", "unlock", "separator"}));
        QVERIFY(dev->checkCmdSetDeviceParam(TData{{"anything", 99}}));
        QVERIFY(dev->getCmdSetDeviceExec(TData()).isEmpty());
    }

    void eraseWithClosedPortFails() {
        TSerialPort port;
        TDev93CExec exec(TData{{"cmd", "erase"}});
        bool finish = false;
        int cfg = 0, id = 0;
        QVERIFY(!exec.execute(port, finish, cfg, id));
        QCOMPARE(exec.getErrorText(), Lang.get(392));
    }

    void eraseSendsOnePacketAndSetDeviceIsEmpty() {
        WorkerFixture w;
        SimFixture sim;
        writeFile(sim.path("image.bin"), QByteArray(128, 0x11));
        QStringList frames;
        QCOMPARE(runOn(w, sim, {cmd("erase")}, frames), 0);
        QCOMPARE(frames, QStringList{frame(3, QByteArray())});
        QCOMPARE(WorkerFixture::requests(sim.path("t.txt")).at(3), frame(0x84, QByteArray()));
        QCOMPARE(readFile(sim.path("image.bin")), QByteArray(128, char(0xFF)));
    }

    void readWriteVerifyFailAtOnceAndSendNothing() {
        const QStringList codes{"test_empty",  "char_write", "char_verify", "data_read",   "data_write",
                                "data_verify", "file_read",  "file_write",  "file_verify", "leave"};
        // The executors themselves are under test here, not the check before running (x.bin is missing).
        AppData.checkBeforeRun = false;
        for (const QString& code : codes) {
            WorkerFixture w;
            SimFixture sim;
            QStringList frames;
            QString params = R"("addr_device": "0", "count": "4", "fill_char": "0", "data": "00")";
            if (code.startsWith("file")) params += R"(, "file": "x.bin", "format": "bin", "addr_file": "0")";
            if (code == "leave") params = R"("state": "", "duration": "0")";
            QCOMPARE(runOn(w, sim, {cmd(code, params)}, frames), 1);
            QVERIFY2(frames.isEmpty(), qPrintable(code + ": " + frames.join('|')));
            QVERIFY2(w.output.contains(Lang.get(486)), qPrintable(code + ": " + w.output));
        }
        AppData.checkBeforeRun = true;
    }
};

QTEST_GUILESS_MAIN(TestDev93C)
#include "test_dev93c.moc"
