// Chip erase, write, verify and read of the whole 256 KiB flash of an ATmega2560 (from the catalogue:
// 256-byte pages, an extended address byte for the upper 128 KiB) through the runner and the AVR family
// against the simulator, beside the same exchanges on the link alone and on a bare pseudo-terminal.
#include "FamilyBench.h"

int main(int argc, char* argv[]) {
    FamilyBench::MemoryBench b("ATmega2560", "avr/ATmega2560.dev", 256 * 1024, 10, true);
    b.commandsOf("flash_");
    return FamilyBench::memoryBenchMain(argc, argv, b);
}
