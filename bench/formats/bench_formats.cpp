// Throughput of CRC-32 and of Intel HEX writing and reading, each beside a common tool doing the same work
// on the same file in the same run. Prints a Markdown table.
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "misc/dev_misc.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

namespace {
constexpr qint64 crc_size = 256ll << 20;
constexpr qint64 hex_size = 16ll << 20;
constexpr qint64 chunk = 4096;

double mbps(qint64 bytes, double seconds) {
    return seconds > 0 ? bytes / 1048576.0 / seconds : 0;
}

void row(const char* what, const char* who, qint64 bytes, double seconds) {
    std::printf("| %s | %s | %.0f |\n", what, who, mbps(bytes, seconds));
}

QByteArray randomData(qint64 size) {
    QByteArray data(int(size), 0);
    QRandomGenerator gen(1);
    gen.fillRange(reinterpret_cast<quint32*>(data.data()), int(size / 4));
    return data;
}

bool save(const QString& path, const QByteArray& data) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(data) == data.size();
}

// Wall time of an external command; -1 when it fails.
double timed(const QString& program, const QStringList& args, QByteArray* out = nullptr) {
    QElapsedTimer t;
    QProcess p;
    t.start();
    p.start(program, args);
    if (!p.waitForFinished(-1) || p.exitCode() != 0) return -1;
    const double s = t.nsecsElapsed() / 1e9;
    if (out) *out = p.readAllStandardOutput();
    return s;
}

void benchCRC(const QTemporaryDir& dir) {
    const QByteArray data = randomData(crc_size);
    const QString file = dir.filePath("crc.bin");
    save(file, data);
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject("CRC-32"));
    QElapsedTimer t;
    t.start();
    crc->calc(data.constData(), data.size());
    const double own = t.nsecsElapsed() / 1e9;
    crc->getResult();
    row("CRC-32, 256 MiB in memory", "TCRC", crc_size, own);
    row("CRC-32/CKSUM, 256 MiB file (cached)", "cksum", crc_size, timed("cksum", {file}));
    QByteArray out;
    timed("/usr/bin/python3",
          {"-c",
           "import sys,time,zlib; d=open(sys.argv[1],'rb').read(); t=time.perf_counter(); zlib.crc32(d); "
           "print(time.perf_counter()-t)",
           file},
          &out);
    row("CRC-32, 256 MiB in memory", "Python zlib.crc32", crc_size, out.trimmed().toDouble());
}

// Writes and reads 16 MiB through one format key; the rows are named by what.
void benchFormat(const QByteArray& data, const QString& file, const char* key, const char* write,
                 const char* read) {
    QElapsedTimer t;
    t.start();
    TFormat out(key, file, 0, 0, hex_size - 1, chunk);
    out.open(FormatModeWrite);
    for (qint64 a = 0; a < hex_size; a += chunk)
        out.write(a, QByteArray::fromRawData(data.constData() + a, int(chunk)));
    out.close();
    row(write, "TFormat", hex_size, t.nsecsElapsed() / 1e9);

    t.restart();
    TFormat in(key, file, 0, 0, hex_size - 1, chunk);
    in.open(FormatModeRead);
    qint64 total = 0;
    for (long long a = 0;;) {
        QByteArray piece;
        if (!in.read(a, piece) || piece.isEmpty()) break;
        total += piece.size();
        a += piece.size();
    }
    in.close();
    const double seconds = t.nsecsElapsed() / 1e9;
    row(read, total == hex_size ? "TFormat" : "TFormat (SHORT READ)", hex_size, seconds);
}

void benchHEX(const QTemporaryDir& dir) {
    const QByteArray data = randomData(hex_size);
    const QString hex = dir.filePath("out.hex"), bin = dir.filePath("in.bin");
    save(bin, data);
    benchFormat(data, hex, "hex", "Intel HEX write, 16 MiB", "Intel HEX read, 16 MiB");
    benchFormat(data, dir.filePath("out.ihex"), "ihex", "Intel HEX (\"ihex\") write, 16 MiB",
                "Intel HEX (\"ihex\") read, 16 MiB");

    const QString sc_hex = dir.filePath("sc.hex"), sc_bin = dir.filePath("sc.bin");
    row("Intel HEX write, 16 MiB", "srec_cat", hex_size,
        timed("srec_cat", {bin, "-binary", "-o", sc_hex, "-intel", "-obs=16"}));
    row("Intel HEX read, 16 MiB", "srec_cat", hex_size,
        timed("srec_cat", {hex, "-intel", "-o", sc_bin, "-binary"}));
}
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    std::printf("| Work | Program | MB/s |\n|---|---|---|\n");
    benchCRC(dir);
    benchHEX(dir);
    return 0;
}
