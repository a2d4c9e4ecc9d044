// Write, verify and read of a whole 64 KiB 24-series EEPROM (24C512 from the catalogue) through the
// runner and the 24-series family against the simulator, beside the same exchanges on the link alone
// and on a bare pseudo-terminal.
#include "spi/FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    const int size = 64 * 1024;
    QTemporaryDir dir;
    const QString in = dir.filePath("in.bin"), back = dir.filePath("out.bin");
    QFile f(in);
    if (!f.open(QIODevice::WriteOnly) || f.write(pattern(size)) != size) return 1;
    f.close();
    // The first phase is the fixed cost of every run: project, catalogue, programmer and device set-up.
    const QVector<Phase> phases{{"set-up only", {}, 0},
                                {"write", {fileCmd("file_write", in, size)}, size},
                                {"verify", {fileCmd("file_verify", in, size)}, size},
                                {"read", {fileCmd("file_read", back, size)}, size}};
    const QVector<Result> res = measure("24C512", "i2c/24C512.dev", phases, 20);
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
    const double app2 = res.at(1).app + res.at(2).app, raw2 = res.at(1).raw + res.at(2).raw;
    out << QString("\nwrite + verify: %1 s, %2 MB/s; raw %3 s; family / raw %4\n")
               .arg(app2, 0, 'f', 4)
               .arg(2 * size / 1048576.0 / app2, 0, 'f', 1)
               .arg(raw2, 0, 'f', 4)
               .arg(app2 / raw2, 0, 'f', 2);
    // Each phase is a run of its own and pays the set-up once; a project doing both pays it once.
    out << QString("the same without one set-up run: family / raw %1\n")
               .arg((app2 - res.at(0).app) / (raw2 - res.at(0).raw), 0, 'f', 2);
    return 0;
}
