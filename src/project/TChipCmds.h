#pragma once

#include "app/TTypes.h"

#include <QString>
#include <QStringList>

class IDevice;

// What an operation on one memory of a chip becomes as commands. The codes come from the family's own
// command table (IDevice::supportCmd), so a memory is offered exactly when the family has a command for
// it; the chip panel and the command-line one-liners build their configurations from here.
class TChipCmds {
public:
    enum Op { Detect, Erase, BlankCheck, Read, Write, Verify };

    // The memories a device has a read or write command for, in the order "flash", "eeprom", "fuses",
    // "lock", "status".
    static QStringList memories(const IDevice* dev);
    // Fuses, lock bits and status registers take a hexadecimal value instead of a file.
    static bool isRegister(const QString& memory);
    // The command the device offers for op on memory (the memory's own before the plain one the
    // single-memory families use); empty when it has none. Detect and Erase ignore the memory.
    static QString code(const IDevice* dev, Op op, const QString& memory);
    // The values a command of op takes on top of its family's defaults: the file and its format key for
    // the file commands of a memory, the value for writing and verifying a register.
    static TData values(Op op, const QString& memory, const QString& file, const QString& format,
                        const QString& value);
};
