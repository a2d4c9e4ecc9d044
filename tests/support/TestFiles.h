#pragma once

// The scratch files of a test, written and read whole. A file the test cannot write is a broken test
// set-up, not a result, so it ends the test program at once.

#include <QFile>
#include <QTemporaryDir>

namespace TestFiles {

inline void writeFile(const QString& file, const QByteArray& bytes) {
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write the test file %s", qPrintable(file));
}

// Empty when the file cannot be read.
inline QByteArray readFile(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Writes name in dir and returns its path.
inline QString writeIn(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    const QString file = dir.filePath(name);
    writeFile(file, bytes);
    return file;
}

} // namespace TestFiles
