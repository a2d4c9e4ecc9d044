// Chip erase, write, verify and read of the whole 256 KiB flash of an ATmega2560 (from the catalogue:
// 256-byte pages, an extended address byte for the upper 128 KiB) through the runner and the AVR family
// against the simulator, beside the same exchanges on the link alone and on a bare pseudo-terminal.
#include "spi/FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    MemoryBench b;
    b.chip = "ATmega2560";
    b.deviceFile = "avr/ATmega2560.dev";
    b.size = 256 * 1024;
    b.write = "flash_file_write";
    b.verify = "flash_file_verify";
    b.read = "flash_file_read";
    b.erase = true;
    b.rounds = 10;
    b.pairLabel = "write + verify";
    return runMemoryBench(b);
}
