#pragma once

#include <QByteArray>
#include <QString>

// Writes a whole file aside and renames it into place, so the previous file stays whole when anything
// fails; the error is the system's own reason ("No space left on device"), taken when the write fails.
class TFileSave {
public:
    static bool write(const QString& fileName, const QByteArray& data, QString& error);
};
