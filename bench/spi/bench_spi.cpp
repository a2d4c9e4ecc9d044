// Chip erase, program, verify and read of a whole 16 MiB SPI NOR flash (W25Q128xV from the catalogue)
// through the runner and the 25-series family against the simulator, beside the same exchanges on the
// link alone and on a bare pseudo-terminal.
#include "FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    const int size = 16 * 1024 * 1024;
    QTemporaryDir dir;
    const QString in = dir.filePath("in.bin"), back = dir.filePath("out.bin");
    QFile f(in);
    if (!f.open(QIODevice::WriteOnly) || f.write(pattern(size)) != size) return 1;
    f.close();
    // The first phase is the fixed cost of every run: project, catalogue, programmer and device set-up.
    const QVector<Phase> phases{{"set-up only", {}, 0},
                                {"chip erase", {cmd("erase")}, size},
                                {"program", {fileCmd("file_write", in, size)}, size},
                                {"verify", {fileCmd("file_verify", in, size)}, size},
                                {"read", {fileCmd("file_read", back, size)}, size}};
    const QVector<Result> res = measure("W25Q128xV", "spi/W25Q128xV.dev", phases, 5);
    if (res.isEmpty()) {
        out << "the run against the simulator failed\n";
        return 1;
    }
    QFile r(back);
    if (!r.open(QIODevice::ReadOnly) || r.readAll() != pattern(size)) {
        out << "the read-back differs from what was programmed\n";
        return 1;
    }
    printTable(out, phases, res);
    printPair(out, "program + verify", res, 2, 3, 2 * qint64(size));
    return 0;
}
