#pragma once

#include <QString>

// Addresses, counts and byte values as people type them: "0x1F00" (hexadecimal), "32768" (decimal),
// "32K", "1M" (binary kilo and mega, "KiB" and "MiB" too), and "1F00" when hex letters make the base
// plain. Shown back as "0x" hexadecimal, the way datasheets give addresses.
class TNumberText {
public:
    // ok is false for anything else, for a negative number and for a value beyond 64 bits.
    static qint64 parse(const QString& text, bool& ok);
    static QString show(qint64 value);
};
