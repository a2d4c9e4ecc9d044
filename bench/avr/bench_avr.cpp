// Chip erase, write, verify and read of the whole 256 KiB flash of an ATmega2560 (from the catalogue:
// 256-byte pages, an extended address byte for the upper 128 KiB) through the runner and the AVR family
// against the simulator, beside the same exchanges on the link alone and on a bare pseudo-terminal.
#include "spi/FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    const int size = 256 * 1024;
    QTemporaryDir dir;
    const QString in = dir.filePath("in.bin"), back = dir.filePath("out.bin");
    QFile f(in);
    if (!f.open(QIODevice::WriteOnly) || f.write(pattern(size)) != size) return 1;
    f.close();
    // The first phase is the fixed cost of every run: project, catalogue, programmer and device set-up.
    const QVector<Phase> phases{{"set-up only", {}, 0},
                                {"chip erase", {cmd("erase")}, size},
                                {"write", {fileCmd("flash_file_write", in, size)}, size},
                                {"verify", {fileCmd("flash_file_verify", in, size)}, size},
                                {"read", {fileCmd("flash_file_read", back, size)}, size}};
    const QVector<Result> res = measure("ATmega2560", "avr/ATmega2560.dev", phases, 10);
    if (res.isEmpty()) {
        out << "the run against the simulator failed\n";
        return 1;
    }
    QFile r(back);
    if (!r.open(QIODevice::ReadOnly) || r.readAll() != pattern(size)) {
        out << "the read-back differs from what was written\n";
        return 1;
    }
    printTable(out, phases, res);
    printPair(out, "write + verify", res, 2, 3, 2 * qint64(size));
    return 0;
}
