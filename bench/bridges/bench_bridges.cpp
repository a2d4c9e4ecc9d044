// The same work on the same simulated chip by flashrom and by Tarvelix over serprog (read; erase,
// write and verify; of a W25Q80 and a W25Q128), and by avrdude and by Tarvelix over stk500v1 (write and
// verify of a 32 KiB ATmega328P flash). Each figure is a whole run: the client's process, or the
// project's run through the in-process runner as "tarvelix --run" does it. Best of the rounds given.
#include "BridgeRig.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {
struct Case {
    QString work, chip, protocol;
    int size;
    QByteArray before;                            // the chip's contents at the start of each round
    std::function<ClientRun(BridgeRig&)> client;  // flashrom or avrdude
    std::function<ClientRun(BridgeRig&)> tarvelix;
};

double timeOnce(const Case& c, const std::function<ClientRun(BridgeRig&)>& run, bool& ok) {
    BridgeRig rig;
    if (!rig.start(c.protocol, c.chip, c.before)) {
        ok = false;
        return 0;
    }
    QElapsedTimer t;
    t.start();
    const ClientRun r = run(rig);
    const double s = t.nsecsElapsed() / 1e9;
    if (r.status != 0) {
        std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(c.work), qPrintable(r.output.right(2000)));
        ok = false;
    }
    return s;
}

// Rounds alternate between the two programs, as the machine is shared.
void measure(const Case& c, int rounds) {
    double best[2] = {1e9, 1e9};
    bool ok = true;
    for (int i = 0; i < rounds && ok; ++i) {
        best[0] = qMin(best[0], timeOnce(c, c.client, ok));
        best[1] = qMin(best[1], timeOnce(c, c.tarvelix, ok));
    }
    if (!ok) return;
    const double mb = c.size / 1048576.0;
    std::printf("| %s | %.2f | %.2f | %.2f | %.2f | %.2f |\n", qPrintable(c.work), best[0], mb / best[0], best[1],
                mb / best[1], best[1] / best[0]);
    std::fflush(stdout);
}

QString fileCmd(const QString& code, const QString& file, int size) {
    return BridgeRig::fileCmd(code, file, 0, size);
}
} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    const int rounds = argc > 1 ? QString(argv[1]).toInt() : 3;
    QTemporaryDir dir;
    const QString serprog = QStringLiteral(TARVELIX_DATA_DIR "/progs/serprog.cfg");
    const QString isp = QStringLiteral(TARVELIX_DATA_DIR "/progs/arduino-isp.cfg");
    std::printf("| Work | Other s | Other MB/s | Tarvelix s | Tarvelix MB/s | Tarvelix / other |\n");
    std::printf("|---|---|---|---|---|---|\n");

    struct Part {
        QString chip, flashrom, device;
        int size;
    };
    for (const Part& p : {Part{"W25Q80RV", "W25Q80.V", "W25Q80RV", 1 << 20},
                          Part{"W25Q128xV", "W25Q128.V", "W25Q128xV", 1 << 24}}) {
        const QString image = dir.filePath(p.chip + ".bin"), back = dir.filePath(p.chip + "-back.bin");
        const QByteArray data = BridgeRig::noise(p.size, 1), old = BridgeRig::noise(p.size, 2);
        BridgeRig::write(image, data);
        const QString mib = QString::number(p.size >> 20) + " MiB";
        const QStringList dev{"-c", p.flashrom};
        auto flashrom = [](BridgeRig& r, const QStringList& args) {
            return r.client("flashrom", QStringList{"-p", "serprog:dev=" + r.sim.link() + ":115200"} + args, 600000);
        };
        const int n = p.size > (1 << 20) ? 1 : rounds;
        measure({"serprog read, " + mib + " (flashrom)", p.chip, "serprog", p.size, data,
                 [&](BridgeRig& r) { return flashrom(r, dev + QStringList{"-r", back}); },
                 [&](BridgeRig& r) {
                     return r.project(serprog, {BridgeRig::setDevice(p.device, "spi"), fileCmd("file_read", back, p.size)});
                 }},
                n);
        measure({"serprog erase + write + verify, " + mib + " (flashrom)", p.chip, "serprog", p.size, old,
                 [&](BridgeRig& r) { return flashrom(r, dev + QStringList{"-w", image}); },
                 [&](BridgeRig& r) {
                     return r.project(serprog, {BridgeRig::setDevice(p.device, "spi"), BridgeRig::cmd("erase"),
                                                fileCmd("file_write", image, p.size), fileCmd("file_verify", image, p.size)});
                 }},
                n);
    }

    const int flash = 32768;
    const QString code = dir.filePath("code.bin");
    BridgeRig::write(code, BridgeRig::noise(flash, 3));
    measure({"stk500v1 erase + write + verify, 32 KiB ATmega328P (avrdude)", "ATmega328P", "stk500v1", flash,
             BridgeRig::noise(flash + 1024, 4) + QByteArray::fromHex("62D9FFFF"),
             [&](BridgeRig& r) {
                 return r.client("avrdude", {"-c", "stk500v1", "-P", r.sim.link(), "-b", "19200", "-p", "m328p", "-e",
                                             "-U", "flash:w:" + code + ":r"});
             },
             [&](BridgeRig& r) {
                 return r.project(isp, {BridgeRig::setDevice("ATmega328P", "avr"), BridgeRig::cmd("erase"),
                                        fileCmd("flash_file_write", code, flash), fileCmd("flash_file_verify", code, flash)});
             }},
            rounds);
    return 0;
}
