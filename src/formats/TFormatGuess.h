#pragma once

#include <QString>

// The format key ("hex" or "bin") a data file most likely has: an existing file by its contents (Intel
// HEX starts with a record, ":" and hex digits), a new one by its extension.
class TFormatGuess {
public:
    static QString keyOf(const QString& file);
    static QString keyOfName(const QString& file);
};
