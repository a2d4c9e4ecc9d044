#include "FormatTestUtil.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// intelhex from Debian's python3-intelhex, run by the system interpreter it is installed for.
QByteArray python(const char* script, const QStringList& args) {
    return run("/usr/bin/python3", QStringList{"-c", script} + args);
}

const char* writeScript = R"(
import sys
from intelhex import IntelHex
ih = IntelHex()
for seg in sys.argv[3].split(","):
    start, data = seg.split(":")
    for i, b in enumerate(bytes.fromhex(data)):
        ih[int(start, 16) + i] = b
ih.write_hex_file(sys.argv[1], byte_count=int(sys.argv[2]))
)";

const char* dumpScript = R"(
import sys
from intelhex import IntelHex
ih = IntelHex(sys.argv[1])
for start, end in ih.segments():
    print("%x:%s" % (start, bytes(ih[a] for a in range(start, end)).hex()))
)";

QString segmentsArg(const TSegments& segments) {
    QStringList parts;
    for (auto it = segments.begin(); it != segments.end(); ++it)
        parts.append(QString::number(it.key(), 16) + ":" + it.value().toHex());
    return parts.join(",");
}

TSegments parseDump(const QByteArray& dump) {
    TSegments segments;
    for (const QByteArray& line : dump.trimmed().split('\n')) {
        const QList<QByteArray> f = line.split(':');
        if (f.size() == 2) segments.insert(f[0].toLongLong(nullptr, 16), QByteArray::fromHex(f[1]));
    }
    return segments;
}
} // namespace

class TestFormatInterop : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

private slots:
    void initTestCase() {
        Lang.loadData(QString(TARVELIX_DATA_DIR) + "/language/eng.lng");
        QVERIFY2(QFile::exists("/usr/bin/srec_cat"), "srecord is missing: run tools/deps.sh");
        QVERIFY2(python("import intelhex", {}).isEmpty(), "python3-intelhex is missing: run tools/deps.sh");
    }

    void readsWhatIntelhexWrites() {
        const QList<TSegments> cases = {
            {{0x0, randomBytes(100, 1)}, {0x300, randomBytes(37, 2)}, {0x1000, randomBytes(5, 3)}},
            {{0xFFF0, randomBytes(40, 4)},
             {0x123456, randomBytes(300, 5)},
             {0x7FFFFFF0, randomBytes(20, 6)}}};
        for (const TSegments& segments : cases)
            for (int record : {16, 7}) {
                const QString file = dir.filePath("ih.hex");
                QCOMPARE(python(writeScript, {file, QString::number(record), segmentsArg(segments)}),
                         QByteArray());
                const qint64 last = segments.lastKey() + segments.last().size() - 1;
                QCOMPARE(readThrough("hex", file, last, 256), segments);
                writeFile(file, readFile(file).toLower());
                QCOMPARE(readThrough("hex", file, last, 64), segments);
            }
    }

    void readsWhatSrecCatWrites() {
        const QByteArray a = randomBytes(1000, 7), b = randomBytes(77, 8);
        writeFile(dir.filePath("a.bin"), a);
        writeFile(dir.filePath("b.bin"), b);
        const QString file = dir.filePath("sc.hex");
        for (const char* block : {"11", "16", "32"}) {
            const QByteArray out = run("srec_cat", {dir.filePath("a.bin"), "-binary", "-offset", "0x1FF00",
                                                    dir.filePath("b.bin"), "-binary", "-offset", "0x300000",
                                                    "-o", file, "-intel", "-obs=" + QString(block)});
            QCOMPARE(out, QByteArray());
            QCOMPARE(readThrough("hex", file, 0x300000 + 76, 4096), TSegments({{0x1FF00, a}, {0x300000, b}}));
        }
    }

    void toolsReadWhatTFormatWrites() {
        const TSegments low = {{0x10, randomBytes(1000, 9)}, {0x500, randomBytes(3, 10)}};
        const TSegments high = {{0x1FFF00, randomBytes(700, 11)}, {0x200400, randomBytes(33, 12)}};
        for (const TSegments& segments : {low, high}) {
            const QString file = dir.filePath("tf.hex");
            const qint64 first = segments.firstKey(), last = segments.lastKey() + segments.last().size() - 1;
            QVERIFY(writeThrough("hex", file, first, last, segments));
            QCOMPARE(parseDump(python(dumpScript, {file})), segments);
            const QString bin = dir.filePath("tf.bin");
            QCOMPARE(run("srec_cat",
                         {file, "-intel", "-offset", "-" + QString::number(first), "-o", bin, "-binary"}),
                     QByteArray());
            QByteArray want(int(last - first + 1), '\0');
            for (auto it = segments.begin(); it != segments.end(); ++it)
                want.replace(int(it.key() - first), it.value().size(), it.value());
            QCOMPARE(readFile(bin), want);
        }
    }

    void binaryRoundTripWithOffsets() {
        const QByteArray data = randomBytes(3000, 13);
        const QString file = dir.filePath("rt.bin");
        TFormat out("bin", file, 0x123, 0x8000, 0x8000 + data.size() - 1, 256);
        QVERIFY(out.open(FormatModeWrite));
        for (qint64 a = 0x8000; a < 0x8000 + data.size();) {
            const qint64 n = TMiscDev::getSize(a, 0x8000 + data.size() - 1, 256);
            QVERIFY(out.write(0x123 + a - 0x8000, data.mid(int(a - 0x8000), int(n))));
            a += n;
        }
        QVERIFY(out.close());
        QCOMPARE(readFile(file), QByteArray(0x123, '\0') + data);
        TFormat in("bin", file, 0x123, 0x8000, 0x8000 + data.size() - 1, 256);
        QVERIFY(in.open(FormatModeRead));
        QByteArray back;
        for (const TPiece& p : readPieces(in, 0x8000))
            back += p.second;
        QCOMPARE(back, data);
    }
};

QTEST_GUILESS_MAIN(TestFormatInterop)
#include "test_format_interop.moc"
