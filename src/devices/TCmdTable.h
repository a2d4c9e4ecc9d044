#pragma once

#include "app/TTypes.h"

#include <QStringList>
#include <QVector>

#include <initializer_list>

class IDevice;
class TCmdFamily;
class TFormCmd;
struct TCmdRow;

// What a command's parameters are. The shared kinds are defaulted, shown, edited and checked here, the
// same way for every family; a row of the family's own kind (Own) names its own handling (TCmdOwn).
enum class TCmdKind {
    Separator, // a divider in the offered list, not a command
    Plain,     // no parameters (identification, erase, empty test)
    Clock,     // the bus clock of the device's pin connection
    Leave,     // pin states and a duration
    Char,      // a range filled with one byte
    Data,      // literal bytes at an address
    File,      // a data file over a range
    Own,       // the family's own parameters (registers, blocks, set address)
};

// What a read, write or verify command does with its range.
enum class TCmdOp { None, Read, Write, Verify };

// The handling of a command of a family's own kind, kept in the family's source beside its table. A
// hook left nullptr means no defaults, an empty view, no form, or always valid. The row is passed so one
// handling can serve the read, write and verify of the same parameters.
struct TCmdOwn {
    void (*defaults)(const TCmdFamily& dev, const TCmdRow& row, TData& p);
    QString (*view)(const TCmdFamily& dev, const TCmdRow& row, const TData& p);
    TFormCmd* (*form)(const TCmdFamily& dev, const TCmdRow& row, const TData& p);
    bool (*check)(const TCmdFamily& dev, const TCmdRow& row, const TData& p);
};

// Hooks of a TCmdOwn for handling that needs only the record's parameters, not the device or the row.
template <void (*F)(TData&)> void ownDefaultsOf(const TCmdFamily&, const TCmdRow&, TData& p) {
    F(p);
}
template <QString (*F)(const TData&)> QString ownViewOf(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return F(p);
}
template <TFormCmd* (*F)(const TData&)>
TFormCmd* ownFormOf(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return F(p);
}
template <bool (*F)(const TData&)> bool ownCheckOf(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return F(p);
}

// One row of a family's command table: the command code, its kind, what it does, the memory space it
// works on (the family's own numbering; 0 is the main memory) and, for its own kind, its handling.
struct TCmdRow {
    const char* code;
    TCmdKind kind;
    TCmdOp op;
    int space;
    const TCmdOwn* own = nullptr;
};

// A row of a table whose commands have no memory space: the code and its handling (none: a command
// without parameters).
struct TCmdOwnRow {
    const char* code;
    const TCmdOwn* own;
};
using TCmdRows = QVector<TCmdRow>;

// The shared handling of a family's command table: adding a command is adding a row.
class TCmdTable {
public:
    static QStringList codes(const TCmdRows& rows);
    // The table of a family whose commands are all of its own kind, in this order; "separator" divides.
    static TCmdRows ownRows(std::initializer_list<TCmdOwnRow> rows);
    // nullptr for a code the table does not have and for the separator.
    static const TCmdRow* find(const TCmdRows& rows, const QString& code);

    // Each returns whether the row's kind is a shared one (and so was handled); begin and size are the
    // range of the row's memory space.
    static bool defaults(const TCmdRow& row, const IDevice* dev, TData& p, qint64 begin, qint64 size);
    static bool view(const TCmdRow& row, const TData& p, QString& text);
    static bool form(const TCmdRow& row, const IDevice* dev, const TData& p, qint64 begin, qint64 size,
                     TFormCmd*& form);
    static bool check(const TCmdRow& row, const TData& p, qint64 begin, qint64 size, bool& valid);
};
