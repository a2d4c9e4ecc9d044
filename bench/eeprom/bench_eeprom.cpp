// Write, verify and read of a whole 64 KiB 24-series EEPROM (24C512 from the catalogue) through the
// runner and the 24-series family against the simulator, beside the same exchanges on the link alone
// and on a bare pseudo-terminal.
#include "FamilyBench.h"

int main(int argc, char* argv[]) {
    const FamilyBench::MemoryBench b("24C512", "i2c/24C512.dev", 64 * 1024, 20, false);
    return FamilyBench::memoryBenchMain(argc, argv, b);
}
