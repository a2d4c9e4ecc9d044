// How bridged hardware gets into an installation: the fresh settings know the types, every type's
// description names a protocol the link has a bridge for, and an unknown protocol is reported.
#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"
#include "link/bridge/TBridgeTable.h"
#include "support/SimFixture.h"

#include <QtTest>

class TestBridgeSetup : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void freshInstallationKnowsTheBridgedTypes() {
        QTemporaryDir dir;
        TSettings::setFileNameIniOverride(dir.filePath("fresh.ini"));
        AppData.loadData();
        TSettings::setFileNameIniOverride(QString());
        QCOMPARE(AppData.progType.getFile("serprog"), QString("serprog.cfg"));
        QCOMPARE(AppData.progType.getFile("Arduino as ISP"), QString("arduino-isp.cfg"));
        QCOMPARE(AppData.progType.getFile("Bus Pirate"), QString("buspirate.cfg"));
        QVERIFY(AppData.progName.contains("Simulator"));
        for (int i = 0; i < AppData.progType.count(); ++i) {
            const TProg prog(QStringLiteral(TARVELIX_DATA_DIR "/progs/") +
                             AppData.progType.getFileFromIndex(i));
            QVERIFY2(TBridgeTable::contains(prog.getProtocol()), qPrintable(prog.getProtocol()));
            if (prog.getProtocol() != TBridgeTable::native)
                QCOMPARE(prog.getInterface(), TBridgeTable::create(prog.getProtocol())->interfaceCode());
        }
    }

    void unknownProtocolIsNamed() {
        SimFixture sim;
        QVERIFY(sim.start());
        QTemporaryDir dir;
        QFile f(dir.filePath("odd.cfg"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[Main]\nInterface=2561\nProtocol=jtag\n");
        f.close();
        TSerialPort port;
        QVERIFY(port.open(sim.link(), TSerialPort::ReadWrite));
        port.applySettings(TProg(dir.filePath("odd.cfg")));
        QByteArray data;
        QVERIFY(!port.sendPackage(0x80, data));
        QCOMPARE(port.getErrorText(),
                 QString("The programmer description asks for the protocol \"jtag\"; Tarvelix "
                         "knows native, serprog, stk500v1, buspirate"));
    }
};

QTEST_GUILESS_MAIN(TestBridgeSetup)
#include "test_bridge_setup.moc"
