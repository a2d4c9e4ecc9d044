#pragma once

#include "formats/TFormat.h"

#include <QFile>
#include <QList>
#include <QPair>

using TPiece = QPair<qint64, QByteArray>;

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("missing");
}

// Every piece an opened format hands out from addr on, as the executors ask for them. The bound on the
// loop turns a reader that never ends into a failure instead of a hang.
inline QList<TPiece> readPieces(TFormat& format, qint64 addr, bool* ok = nullptr) {
    QList<TPiece> pieces;
    for (int guard = 0; guard < 1000000; ++guard) {
        long long at = addr;
        QByteArray data;
        if (!format.read(at, data)) {
            if (ok) *ok = false;
            return pieces;
        }
        if (data.isEmpty()) break;
        pieces.append({at, data});
        addr = at + data.size();
    }
    if (ok) *ok = true;
    return pieces;
}
