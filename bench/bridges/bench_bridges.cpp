// The same work on the same simulated chip by flashrom and by Tarvelix over serprog (read; erase,
// write and verify; of a W25Q80 and a W25Q128), and by avrdude and by Tarvelix over stk500v1 (write and
// verify of a 32 KiB ATmega328P flash). Each figure is a whole run: the client's process, or the
// project's run through the in-process runner as "tarvelix --run" does it. Best of the rounds given.
#include "BridgeRig.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>
#include <sys/resource.h>

namespace {
struct Case {
    QString work, chip, protocol;
    int size;
    QByteArray before;                           // the chip's contents at the start of each round
    std::function<ClientRun(BridgeRig&)> client; // flashrom or avrdude
    std::function<ClientRun(BridgeRig&)> tarvelix;
};

double cpuSeconds(int who) {
    rusage u{};
    getrusage(who, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

struct Timing {
    double wall = 0, cpu = 0; // cpu: this process, the client and the simulator together
};

// Where to keep the simulator's trace of each run (BENCH_TRACE_DIR), to count operations and bytes.
QString traceCopy(const Case& c, bool tarvelix) {
    const QString dir = qEnvironmentVariable("BENCH_TRACE_DIR");
    if (dir.isEmpty()) return QString();
    QString name = c.work;
    name.replace(QRegularExpression("[^A-Za-z0-9]+"), "-");
    return dir + '/' + name + (tarvelix ? "-tarvelix" : "-other") + ".txt";
}

Timing timeOnce(const Case& c, bool tarvelix, bool& ok) {
    const double cpu0 = cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN);
    Timing t;
    {
        BridgeRig rig;
        if (!rig.start(c.protocol, c.chip, c.before)) {
            ok = false;
            return t;
        }
        QElapsedTimer wall;
        wall.start();
        const ClientRun r = (tarvelix ? c.tarvelix : c.client)(rig);
        t.wall = wall.nsecsElapsed() / 1e9;
        const QString keep = traceCopy(c, tarvelix);
        if (!keep.isEmpty()) {
            QFile::remove(keep);
            QFile::copy(rig.sim.path("trace.txt"), keep);
        }
        if (r.status != 0) {
            std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(c.work), qPrintable(r.output.right(2000)));
            ok = false;
        }
    } // the simulator's time counts once it has ended
    t.cpu = cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN) - cpu0;
    return t;
}

QString filter;

// Rounds alternate between the two programs, as the machine is shared. CPU seconds (of the program
// and the simulator) tell what a busy machine will make of a run: there, waiting for a core costs
// each process in proportion to what it uses.
void measure(const Case& c, int rounds) {
    if (!c.work.contains(filter)) return;
    Timing best[2] = {{1e9, 1e9}, {1e9, 1e9}};
    bool ok = true;
    for (int i = 0; i < rounds && ok; ++i)
        for (int k = 0; k < 2; ++k) {
            const Timing t = timeOnce(c, k == 1, ok);
            best[k].wall = qMin(best[k].wall, t.wall);
            best[k].cpu = qMin(best[k].cpu, t.cpu);
        }
    if (!ok) return;
    const double mb = c.size / 1048576.0;
    std::printf("| %s | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", qPrintable(c.work), best[0].wall,
                mb / best[0].wall, best[1].wall, mb / best[1].wall, best[1].wall / best[0].wall, best[0].cpu,
                best[1].cpu);
    std::fflush(stdout);
}

QString fileCmd(const QString& code, const QString& file, int size) {
    return BridgeRig::fileCmd(code, file, 0, size);
}
} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    // bench_bridges [rounds [part of a work's name]]
    const int rounds = argc > 1 ? QString(argv[1]).toInt() : 3;
    filter = argc > 2 ? QString(argv[2]) : QString();
    QTemporaryDir dir;
    const QString serprog = QStringLiteral(TARVELIX_DATA_DIR "/progs/serprog.cfg");
    const QString isp = QStringLiteral(TARVELIX_DATA_DIR "/progs/arduino-isp.cfg");
    std::printf(
        "| Work | Other s | Other MB/s | Tarvelix s | Tarvelix MB/s | Tarvelix / other | Other CPU s | "
        "Tarvelix CPU s |\n");
    std::printf("|---|---|---|---|---|---|---|---|\n");

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
            return r.client("flashrom", QStringList{"-p", "serprog:dev=" + r.sim.link() + ":115200"} + args,
                            600000);
        };
        const int n = p.size > (1 << 20) ? 1 : rounds;
        measure({"serprog read, " + mib + " (flashrom)", p.chip, "serprog", p.size, data,
                 [&](BridgeRig& r) {
                     return flashrom(r, dev + QStringList{"-r", back});
                 },
                 [&](BridgeRig& r) {
                     return r.project(serprog, {BridgeRig::setDevice(p.device, "spi"),
                                                fileCmd("file_read", back, p.size)});
                 }},
                n);
        measure({"serprog erase + write + verify, " + mib + " (flashrom)", p.chip, "serprog", p.size, old,
                 [&](BridgeRig& r) {
                     return flashrom(r, dev + QStringList{"-w", image});
                 },
                 [&](BridgeRig& r) {
                     return r.project(serprog, {BridgeRig::setDevice(p.device, "spi"),
                                                BridgeRig::cmd("erase"), fileCmd("file_write", image, p.size),
                                                fileCmd("file_verify", image, p.size)});
                 }},
                n);
    }

    const int flash = 32768;
    const QString code = dir.filePath("code.bin");
    BridgeRig::write(code, BridgeRig::noise(flash, 3));
    measure({"stk500v1 erase + write + verify, 32 KiB ATmega328P (avrdude)", "ATmega328P", "stk500v1", flash,
             BridgeRig::noise(flash + 1024, 4) + QByteArray::fromHex("62D9FFFF"),
             [&](BridgeRig& r) {
                 return r.client("avrdude", {"-c", "stk500v1", "-P", r.sim.link(), "-b", "19200", "-p",
                                             "m328p", "-e", "-U", "flash:w:" + code + ":r"});
             },
             [&](BridgeRig& r) {
                 return r.project(isp, {BridgeRig::setDevice("ATmega328P", "avr"), BridgeRig::cmd("erase"),
                                        fileCmd("flash_file_write", code, flash),
                                        fileCmd("flash_file_verify", code, flash)});
             }},
            rounds);
    return 0;
}
