// Chip erase, program, verify and read of a whole 16 MiB SPI NOR flash (W25Q128xV from the catalogue)
// through the runner and the 25-series family against the simulator, beside the same exchanges on the
// link alone and on a bare pseudo-terminal.
#include "FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    MemoryBench b;
    b.chip = "W25Q128xV";
    b.deviceFile = "spi/W25Q128xV.dev";
    b.size = 16 * 1024 * 1024;
    b.write = "file_write";
    b.verify = "file_verify";
    b.read = "file_read";
    b.writeLabel = "program";
    b.erase = true;
    b.rounds = 5;
    b.pairLabel = "program + verify";
    return runMemoryBench(b);
}
