// Chip erase, program, verify and read of a whole 16 MiB SPI NOR flash (W25Q128xV from the catalogue)
// through the runner and the 25-series family against the simulator, beside the same exchanges on the
// link alone and on a bare pseudo-terminal.
#include "FamilyBench.h"

int main(int argc, char* argv[]) {
    FamilyBench::MemoryBench b("W25Q128xV", "spi/W25Q128xV.dev", 16 * 1024 * 1024, 5, true);
    b.writeLabel = "program";
    return FamilyBench::memoryBenchMain(argc, argv, b);
}
