// Programmer descriptions and the registries kept in the settings.
#include "app/TAppData.h"
#include "app/TSettings.h"
#include "devices/TDevTools.h"
#include "link/TProg.h"
#include "project/TDataPrj.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestProg : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    QString write(const QString& name, const QByteArray& text) {
        QFile f(dir.filePath(name));
        if (!f.open(QIODevice::WriteOnly)) return QString();
        f.write(text);
        return f.fileName();
    }

private slots:
    void defaultsOfAnEmptyDescription() {
        TProg prog(write("empty.cfg", ""));
        unsigned int baud = 0;
        int data = 0, stop = 0, timeOut = 0;
        QString parity = "x", flow = "x";
        prog.getPortSettings(baud, data, parity, stop, flow, timeOut);
        QCOMPARE(baud, 115200u);
        QCOMPARE(data, 8);
        QCOMPARE(stop, 1);
        QCOMPARE(timeOut, 1000);
        QVERIFY(parity.isEmpty() && flow.isEmpty());
        unsigned short maxData = 0;
        prog.getProtocolSettings(maxData);
        QCOMPARE(maxData, 64);
        QCOMPARE(prog.getInterface(), 0);
        QCOMPARE(prog.getPinsType(), QString("-"));
        QCOMPARE(prog.getPinsTypeView(), QStringList{"- (not change)"});
        QCOMPARE(prog.getResetDef(), -400);
        int min = 0, max = 0, fq = 0, dt = 0;
        prog.getReset(min, max);
        QCOMPARE(min, 10);
        QCOMPARE(max, 1000);
        prog.getFreqDef(fq, dt);
        QCOMPARE(fq, 100000);
        QCOMPARE(dt, 50);
        double vmin = 1, vmax = 1;
        prog.getIppRange(vmin, vmax);
        QCOMPARE(vmin, 0.0);
        QCOMPARE(prog.getVccDef(), 0.0);
        QVERIFY(!prog.supportCmd("set_vcc"));
    }

    void pinTypesKeepTheirFixedOrder() {
        TProg prog(write("pins.cfg", "[PinType]\nZ=true\nH=true\nI=true\nl=false\n"));
        QCOMPARE(prog.getPinsType(), QString("-IHZ"));
        QCOMPARE(prog.getPinsTypeView(),
                 (QStringList{"- (not change)", "I (input)", "H (output - high)", "Z (tri-stated)"}));
        const QString letters = "-IlhLHoOZx";
        for (int i = 0; i < letters.size(); ++i)
            QCOMPARE(prog.getPinsTypeCode(letters.at(i)), i < 9 ? i : 0);
    }

    void clockAndGeneratorLists() {
        TProg prog(write("clk.cfg", "[SPI]\nCLK_LIST=true\nCLK_MIN=1\nCLK_MAX=9\nCLK_DEF=2\n"
                                    "CLKLV_10=4000000\nCLKLV_2=500000\nCLKLV_x=7\nclklv_3=1\n"
                                    "[I2C]\nCLKLV_1=5\n"
                                    "[Generator]\nFQ_LIST=true\nFQ_MIN=5\nFQ_MAX=50\nFQLV_20=1\nFQLV_5=1\n"
                                    "DT_SHOW=true\nDTLV_75=1\nDTLV_25=1\nDT_MAX=90\n"));
        bool isList = false;
        int min = 0, max = 0;
        QVector<int> values;
        prog.getCLK("SPI", isList, min, max, values);
        QVERIFY(isList);
        QCOMPARE(min, 1);
        QCOMPARE(max, 9);
        QCOMPARE(values, (QVector<int>{0, 2, 10}));
        QCOMPARE(prog.getCLKDef("SPI"), 2);
        QCOMPARE(prog.getCLKValue("SPI", 10), 4000000);
        QCOMPARE(prog.getCLKValue("SPI", 3), 3); // list mode, no such key
        QCOMPARE(prog.getCLKValue("I2C", 1), 1); // range mode: the value itself
        QCOMPARE(prog.getCLKValue("I2C", 400000), 400000);
        bool fqList = false, dtShow = false, dtList = true;
        int fqMin = 0, fqMax = 0, dtMin = 1, dtMax = 0;
        QVector<int> fq, dt;
        prog.getFreq(fqList, fqMin, fqMax, fq, dtShow, dtList, dtMin, dtMax, dt);
        QVERIFY(fqList && dtShow && !dtList);
        QCOMPARE(fqMin, 5);
        QCOMPARE(fqMax, 50);
        QCOMPARE(dtMin, 0);
        QCOMPARE(dtMax, 90);
        QCOMPARE(fq, (QVector<int>{5, 20}));
        QCOMPARE(dt, (QVector<int>{25, 75}));
    }

    void pinConnections() {
        TProg prog(write("conn.cfg", "[Pins]\nP1=1, 3\nP2=0, 4\nP3=1, 5\nP4=1\nP5=1, 6, 7\n"
                                     "[SPI]\nPIN_3=MOSI\nPIN_4=SCK\n"));
        QCOMPARE(prog.getPinsConnect("SPI", 0), (QStringList{"P1 - MOSI", "P2 - SCK", "P3"}));
        QCOMPARE(prog.getPinsConnect("SPI", 1), (QStringList{"MOSI - P1", "P3"}));
        QCOMPARE(prog.getPinsConnect("I2C", 0), (QStringList{"P1", "P2", "P3"}));
    }

    void simulatorDescription() {
        TProg prog(TARVELIX_DATA_DIR "/progs/sim.cfg");
        unsigned int baud = 0;
        int data = 0, stop = 0, timeOut = 0;
        QString parity, flow;
        prog.getPortSettings(baud, data, parity, stop, flow, timeOut);
        QCOMPARE(data, 3); // an index: 8 data bits
        QCOMPARE(stop, 0);
        QCOMPARE(parity, QString("None"));
        QCOMPARE(prog.getPinsType(), QString("-IlhLHoOZ"));
        QCOMPARE(prog.getCLKValue("I2C", 1), 400000);
        QVERIFY(prog.supportCmd("set_vicc") && prog.supportCmd("file_write") && !prog.supportCmd("lock"));
        QCOMPARE(prog.getPinsConnect("I2C", 1),
                 (QStringList{"SDA - P1", "SCL - P2", "WP - P3", "P4", "P5", "P6"}));
    }

    // Every bound command is checked against the programmer's list, the tools commands too.
    void simulatorListsTheToolsCommands() {
        TProg prog(TARVELIX_DATA_DIR "/progs/sim.cfg");
        for (const QString& code : TDevTools::getCmdList())
            if (code != "separator") QVERIFY2(prog.supportCmd(code), qPrintable(code));
    }

    // The order of the [Pins] names is the order of the pin states the application sends; the Nano's
    // firmware keeps its pin table in that order (firmware/pins.c).
    void nanoDescription() {
        TProg prog(TARVELIX_DATA_DIR "/progs/arduino-nano.cfg");
        QCOMPARE(prog.getInterface(), 0x0A10);
        QCOMPARE(prog.getPinsType(), QString("-IhLHoOZ"));
        QCOMPARE(prog.getPinsConnect("SPI", 0),
                 (QStringList{"A2", "A3", "A4", "A5", "D10 - CS", "D11 - MOSI", "D12 - MISO", "D13 - SCK",
                              "D4", "D5", "D6", "D8 - HOLD", "D9 - WP"}));
        QCOMPARE(prog.getPinsConnect("MW", 1),
                 (QStringList{"DO - A2", "A3", "A4", "A5", "D10", "D11", "D12", "D13", "CS - D4", "SK - D5",
                              "DI - D6", "D8", "D9"}));
        QVERIFY(prog.supportCmd("fuse_write") && !prog.supportCmd("set_vcc") && !prog.supportCmd("gen"));
    }

    void registriesInTheSettings() {
        const QString ini = dir.filePath("app.ini");
        TSettings::setFileNameIniOverride(ini);
        TAppData data;
        data.loadData();
        // The simulator first, then the types of the bridged hardware (tests/bridge) and the Nano.
        QCOMPARE(data.progType.getTypeFromIndex(0), QString("Simulator"));
        QCOMPARE(data.progType.getFile("Simulator"), QString("sim.cfg"));
        QCOMPARE(data.progType.getFile("Arduino Nano"), QString("arduino-nano.cfg"));
        QCOMPARE(data.progName.getNameList(), (QStringList{"Simulator", "Arduino Nano"}));
        QCOMPARE(data.progName.getData("Simulator").port, QString("/tmp/tarvelix-sim"));
        QCOMPARE(data.progName.getData("Arduino Nano").type, QString("Arduino Nano"));
        QVERIFY(QFile::exists(TARVELIX_DATA_DIR "/progs/" + data.progType.getFile("Arduino Nano")));
        data.progName.append(true, "Bench", "/dev/ttyUSB0", "Simulator");
        data.progDefault = 2;
        data.saveData();
        {
            TSettings s(ini);
            QCOMPARE(s.value("/ProgNameList/Name2").toStringList(),
                     (QStringList{"1", "Bench", "/dev/ttyUSB0", "Simulator"}));
            QCOMPARE(s.value("/ProgTypeList/Type0").toStringList(), (QStringList{"Simulator", "sim.cfg"}));
        }
        TAppData again;
        again.loadData();
        QCOMPARE(again.progName.getNameList(), (QStringList{"Simulator", "Arduino Nano", "Bench"}));
        QVERIFY(again.progName.getData("Bench").flag);
        QVERIFY(!again.progName.getDataFromIndex(0).flag);
        QCOMPARE(again.progDefault, 2);
        // A shorter list replaces the stored one whole.
        again.progName.clear();
        again.progName.append(false, "Only", "/dev/ttyS0", "Simulator");
        again.saveData();
        TAppData third;
        third.loadData();
        QCOMPARE(third.progName.getNameList(), QStringList{"Only"});
        TSettings::setFileNameIniOverride(QString());
    }

    // The project resolves a programmer name through the names and the types to a description file.
    void projectFindsTheDescription() {
        AppData.pathProgs = TARVELIX_DATA_DIR "/progs";
        AppData.progType.clear();
        AppData.progName.clear();
        AppData.progType.append("Simulator", "sim.cfg");
        AppData.progName.append(false, "Bench", "/tmp/x", "Simulator");
        AppData.progName.append(false, "Orphan", "/tmp/y", "NoSuchType");
        TDataPrj prj;
        TProg* prog = prj.createProg("Bench");
        QVERIFY(prog);
        QCOMPARE(prog->getFileName(), QString(TARVELIX_DATA_DIR "/progs/sim.cfg"));
        QCOMPARE(prog->getInterface(), 2561);
        QVERIFY(!prj.createProg("Orphan"));
        QVERIFY(!prj.createProg("Nobody"));
    }
};

QTEST_GUILESS_MAIN(TestProg)
#include "test_prog.moc"
