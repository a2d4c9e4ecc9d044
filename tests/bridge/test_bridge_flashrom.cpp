// serprog end to end: Debian's flashrom and Tarvelix's serprog bridge drive the same simulated
// programmer; the chip must end up byte for byte the same whichever program wrote it.
#include "BridgeRig.h"

#include <QtTest>

namespace {
const QString cfg = QStringLiteral(TARVELIX_DATA_DIR "/progs/serprog.cfg");

// A chip image with data in a low and a high region, the rest erased: flashrom writes only what
// differs, so the runs stay short even on a 16 MiB part.
QByteArray sparse(int size, int low, int highAt, int high) {
    QByteArray b(size, char(0xFF));
    b.replace(0, low, BridgeRig::noise(low, 1));
    b.replace(highAt, high, BridgeRig::noise(high, 2));
    return b;
}
} // namespace

class TestBridgeFlashrom : public QObject {
    Q_OBJECT

    ClientRun flashrom(BridgeRig& rig, const QStringList& args) {
        return rig.client("flashrom", QStringList{"-p", "serprog:dev=" + rig.sim.link() + ":115200"} + args);
    }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }

    void w25q80SameImageFromFlashromAndTarvelix() {
        const int size = 1 << 20;
        const QByteArray old = BridgeRig::noise(size, 7); // the chip holds something else before
        const QByteArray want = sparse(size, 0x10000, 0xF0000, 0x1000);
        QTemporaryDir dir;
        const QString file = dir.filePath("want.bin");
        BridgeRig::write(file, want);

        BridgeRig f;
        QVERIFY(f.start("serprog", "W25Q80RV", old));
        // Every run probes first (flashrom's sync alone takes a second, so the runs are few).
        ClientRun r = flashrom(f, {"-E"});
        QVERIFY2(r.output.contains(R"(Found Winbond flash chip "W25Q80.V" (1024 kB, SPI))"),
                 qPrintable(r.output));
        QVERIFY2(r.status == 0 && r.output.contains("Erase/write done"), qPrintable(r.output));
        r = flashrom(f, {"-c", "W25Q80.V", "-w", file}); // reads, erases what needs it, writes, verifies
        QVERIFY2(r.status == 0 && r.output.contains("VERIFIED"), qPrintable(r.output));
        r = flashrom(f, {"-c", "W25Q80.V", "-r", dir.filePath("flashrom.bin")});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QCOMPARE(BridgeRig::read(dir.filePath("flashrom.bin")), want);
        const QByteArray byFlashrom = f.stop();
        QCOMPARE(byFlashrom, want);

        BridgeRig t;
        QVERIFY(t.start("serprog", "W25Q80RV", old));
        const QString read = dir.filePath("tarvelix.bin");
        r = t.project(cfg, {BridgeRig::setDevice("W25Q80RV", "spi"), BridgeRig::cmd("ident"),
                            BridgeRig::cmd("erase"), BridgeRig::fileCmd("file_write", file, 0, 0x10000),
                            BridgeRig::fileCmd("file_write", file, 0xF0000, 0x1000),
                            BridgeRig::fileCmd("file_verify", file, 0, size),
                            BridgeRig::fileCmd("file_read", read, 0, size)});
        QVERIFY2(r.status == 0, qPrintable(r.output));
        QVERIFY2(r.output.contains("serprog: tarvelix-sim"), qPrintable(r.output));
        QCOMPARE(BridgeRig::read(read), want);
        QCOMPARE(t.stop(), byFlashrom);
    }

    // 24-bit addresses up to the top of a 16 MiB part; flashrom works on two layout regions.
    void w25q128TopOfTheChip() {
        const int size = 1 << 24;
        const QByteArray want = sparse(size, 0x1000, 0xFF0000, 0x10000);
        QTemporaryDir dir;
        const QString file = dir.filePath("want.bin");
        BridgeRig::write(file, want);
        BridgeRig::write(dir.filePath("layout.txt"), "000000:000fff low\nff0000:ffffff top\n");
        const QStringList regions{"-c", "W25Q128.V", "-l", dir.filePath("layout.txt"), "-i", "low",
                                  "-i", "top",       "-N"};

        BridgeRig f;
        QVERIFY(f.start("serprog", "W25Q128xV", QByteArray()));
        const ClientRun r = flashrom(f, regions + QStringList{"-w", file});
        QVERIFY2(r.output.contains(R"(Found Winbond flash chip "W25Q128.V" (16384 kB, SPI))"),
                 qPrintable(r.output));
        QVERIFY2(r.status == 0 && r.output.contains("VERIFIED"), qPrintable(r.output));
        const QByteArray byFlashrom = f.stop();
        QCOMPARE(byFlashrom, want);

        BridgeRig t;
        QVERIFY(t.start("serprog", "W25Q128xV", QByteArray()));
        const ClientRun run =
            t.project(cfg, {BridgeRig::setDevice("W25Q128xV", "spi"), BridgeRig::cmd("ident"),
                            BridgeRig::fileCmd("file_write", file, 0, 0x1000),
                            BridgeRig::fileCmd("file_write", file, 0xFF0000, 0x10000),
                            BridgeRig::fileCmd("file_verify", file, 0xFF0000, 0x10000)});
        QVERIFY2(run.status == 0, qPrintable(run.output));
        QCOMPARE(t.stop(), byFlashrom);
    }
};

QTEST_GUILESS_MAIN(TestBridgeFlashrom)
#include "test_bridge_flashrom.moc"
