// Write, verify and read of a whole 64 KiB 24-series EEPROM (24C512 from the catalogue) through the
// runner and the 24-series family against the simulator, beside the same exchanges on the link alone
// and on a bare pseudo-terminal.
#include "spi/FamilyBench.h"

#include <QCoreApplication>

using namespace FamilyBench;

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    MemoryBench b;
    b.chip = "24C512";
    b.deviceFile = "i2c/24C512.dev";
    b.size = 64 * 1024;
    b.write = "file_write";
    b.verify = "file_verify";
    b.read = "file_read";
    b.rounds = 20;
    b.pairLabel = "write + verify";
    return runMemoryBench(b);
}
