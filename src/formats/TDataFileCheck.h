#pragma once

#include <QString>

// Reads a data file whole before anything is programmed from it, so that a run never starts with a file
// that would program a part of what the user meant: the file must open, every line of a HEX file must be
// sound up to its end record, and the file must hold at least one byte of the device range
// [addr_device, last_address] (file address addr_file holding addr_device).
class TDataFileCheck {
public:
    // key is the format key as the file commands use it (lower case; unknown keys are this program's HEX).
    static bool check(const QString& key, const QString& file, qint64 addr_file, qint64 addr_device,
                      qint64 last_address, QString& error);

private:
    // The HEX dialect reads past damage silently; this finds it, and type 02 records of other tools.
    static bool scanHex(const QString& file, QString& error);
};
