#pragma once

#include <QString>

// Which serial ports the runs of this application hold. A run claims its programmer's port before it
// opens it and gives it back when it closes it, so two runs never talk to one programmer at once. A
// port is known by its canonical path: a link and the terminal it points to are one port.
class TPortLock {
public:
    // Claims port for holder (named by name, the configuration). False when another holder has it;
    // heldBy then names that one. Claiming again what one holds succeeds.
    static bool claim(const QString& port, const void* holder, const QString& name,
                      QString* heldBy = nullptr);
    // Gives back whatever holder holds.
    static void release(const void* holder);
};
