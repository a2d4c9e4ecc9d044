#pragma once

#include "formats/TFormat.h"
#include "misc/dev_misc.h"
#include "support/TestFiles.h"

#include <QFile>
#include <QList>
#include <QMap>
#include <QPair>
#include <QProcess>
#include <QRandomGenerator>

#include <initializer_list>

using TPiece = QPair<qint64, QByteArray>;
using TSegments = QMap<qint64, QByteArray>; // start address -> contiguous bytes
using TestFiles::writeFile;

// The records, each ended by CR LF.
inline QByteArray lines(std::initializer_list<const char*> records) {
    QByteArray out;
    for (const char* r : records)
        out += QByteArray(r) + "\r\n";
    return out;
}

inline QByteArray randomBytes(int n, quint32 seed) {
    QRandomGenerator gen(seed);
    QByteArray data(n, 0);
    for (char& c : data)
        c = char(gen.bounded(256));
    return data;
}

// The standard output of a program that ends well, else "failed: " and its error output.
inline QByteArray run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return "failed: " + p.readAllStandardError();
    return p.readAllStandardOutput();
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

// Writes segments the way executors do: chunk by chunk, each at its file address.
inline bool writeThrough(const char* formatName, const QString& file, qint64 first, qint64 last,
                         const TSegments& segments) {
    TFormat format(formatName, file, first, first, last, 256);
    if (!format.open(FormatModeWrite)) return false;
    for (auto it = segments.begin(); it != segments.end(); ++it)
        for (qint64 a = it.key(); a < it.key() + it.value().size();) {
            const qint64 n = TMiscDev::getSize(a, it.key() + it.value().size() - 1, 256);
            if (!format.write(a, it.value().mid(int(a - it.key()), int(n)))) return false;
            a += n;
        }
    return format.close();
}

// A whole file read through the format as pieces joined where they touch, the way executors read;
// an error as {-1, text}, a piece that crosses a chunk boundary as {-2, ...}.
inline TSegments readThrough(const char* formatName, const QString& file, qint64 last, qint64 chunk) {
    TFormat format(formatName, file, 0, 0, last, chunk);
    if (!format.open(FormatModeRead)) return {{-1, format.getErrorText().toUtf8()}};
    TSegments segments;
    qint64 end = -1;
    for (const TPiece& p : readPieces(format, 0)) {
        if (p.second.size() > chunk || p.first / chunk != (p.first + p.second.size() - 1) / chunk)
            return {{-2, "piece crosses the chunk"}};
        if (p.first == end)
            segments.last() += p.second;
        else
            segments.insert(p.first, p.second);
        end = p.first + p.second.size();
    }
    return segments;
}
