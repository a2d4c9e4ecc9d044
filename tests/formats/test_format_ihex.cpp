#include "FormatTestUtil.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// The bytes from first to last as a tool's binary output gives them: gaps are zero.
QByteArray image(const TSegments& segments, qint64 first, qint64 last) {
    QByteArray out(int(last - first + 1), '\0');
    for (auto it = segments.begin(); it != segments.end(); ++it)
        out.replace(int(it.key() - first), it.value().size(), it.value());
    return out;
}
} // namespace

class TestFormatIHEX : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }

    // A whole file read through "ihex"; an error as {-1, text}.
    static TSegments readAll(const QString& file, qint64 last = 0x7FFFFFFF, qint64 chunk = 4096) {
        return readThrough("ihex", file, last, chunk);
    }

    QString errorOf(const QByteArray& content) {
        writeFile(path("bad.hex"), content);
        const TSegments got = readAll(path("bad.hex"));
        return got.firstKey() == -1 ? QString::fromUtf8(got.first()) : QString("no error");
    }

private slots:
    void initTestCase() {
        Lang.loadData(QString(TARVELIX_DATA_DIR) + "/language/eng.lng");
        QVERIFY2(QFile::exists("/usr/bin/srec_cat"), "srecord is missing: run tools/deps.sh");
        QVERIFY2(QFile::exists("/usr/bin/avr-objcopy"), "binutils-avr is missing: run tools/deps.sh");
    }

    // Segment records count in 16-byte paragraphs, linear ones in 64 KiB; start addresses are skipped;
    // records out of order and repeated bytes are taken as long as no address gets two values.
    void readsSegmentAndLinearAddressing() {
        writeFile(path("s.hex"),
                  lines({":020000021000EC", ":02000000AABB99", ":0400000300001000E9", ":020000040002F8",
                         ":02FFFE00CCDD58", ":020000040000FA", ":020010001122BB", ":0100110022CC",
                         ":0400000500000000F7", ":00000001FF"}) +
                      "\n\n");
        QCOMPARE(readAll(path("s.hex")),
                 TSegments({{0x10, "\x11\x22"}, {0x10000, "\xAA\xBB"}, {0x2FFFE, "\xCC\xDD"}}));
        // Device address 0x100 is file address 0x10000 here, and pieces stop at the range's end.
        TFormat format("ihex", path("s.hex"), 0x10000, 0x100, 0x100, 16);
        QVERIFY(format.open(FormatModeRead));
        QCOMPARE(readPieces(format, 0x100), QList<TPiece>({{0x100, "\xAA"}}));
    }

    void damagedFilesNameLineAndFault() {
        const QByteArray good = lines(
            {":10000000000102030405060708090A0B0C0D0E0F78", ":0800100010111213141516174C", ":00000001FF"});
        const QString at = path("bad.hex") + ", line %1: %2";
        QByteArray bad = good;
        QCOMPARE(errorOf(bad.replace("174C", "174D")), at.arg(2).arg("the checksum is wrong"));
        bad = good;
        QCOMPARE(errorOf(bad.replace(":0800100010111213141516174C", ":08001000101112")),
                 at.arg(2).arg("the record is cut or its length byte does not match the line"));
        QCOMPARE(errorOf(good.left(good.indexOf(":00000001FF"))),
                 at.arg(2).arg("no end record (type 01) after the last line"));
        QCOMPARE(errorOf(good + ":010020009946\r\n"), at.arg(4).arg("data after the end record of line 3"));
        QCOMPARE(errorOf(good.left(good.indexOf(":0800")) + ":0100050099" + "61\r\n" +
                         good.mid(good.indexOf(":0800"))),
                 at.arg(2).arg("a second record gives address 0x05 another value"));
        QCOMPARE(errorOf(QByteArray("\x7F"
                                    "ELF\x01\x02",
                                    6) +
                         good),
                 at.arg(1).arg("not an Intel HEX record"));
        QCOMPARE(errorOf(":00000006FA\r\n" + good), at.arg(1).arg("unknown record type 6"));
        QCOMPARE(errorOf(":0100000400FB\r\n" + good),
                 at.arg(1).arg("a record of type 4 with the wrong number of data bytes"));
        QCOMPARE(errorOf(":" + QByteArray(5000, '0') + "\r\n" + good),
                 at.arg(1).arg("the record is cut or its length byte does not match the line"));
    }

    // Type 04 only when an address above 0xFFFF occurs, 16-byte records on 16-byte boundaries, CRLF,
    // one end record.
    void writesLinearRecordsOnly() {
        QVERIFY(writeThrough("ihex", path("w.hex"), 0xFFF8, 0x10013,
                             {{0xFFF8, QByteArray::fromHex("0001020304050607") +
                                           QByteArray::fromHex("08090A0B0C0D0E0F1011121314")}}));
        QCOMPARE(readFile(path("w.hex")), lines({":08FFF8000001020304050607E5", ":020000040001F9",
                                                 ":0D00000008090A0B0C0D0E0F10111213143D", ":00000001FF"}));
        QVERIFY(writeThrough("ihex", path("low.hex"), 0, 0xFF, {{0x0E, "\x01\x02\x03"}}));
        QCOMPARE(readFile(path("low.hex")), lines({":02000E000102ED", ":0100100003EC", ":00000001FF"}));
    }

    // Files srec_cat writes in every addressing mode, record size and line end, in either case.
    void readsWhatSrecCatWrites() {
        const struct {
            const char* length;
            qint64 a, b;
        } modes[] = {{"2", 0x10, 0xF000}, {"3", 0x1FF00, 0xE0000}, {"4", 0xFFF0, 0x1000000}};
        for (const auto& m : modes) {
            const QByteArray a = randomBytes(700, quint32(m.a)), b = randomBytes(77, quint32(m.b));
            writeFile(path("a.bin"), a);
            writeFile(path("b.bin"), b);
            for (const char* block : {"16", "32"})
                for (const char* ending : {"nl", "crlf"}) {
                    const QByteArray out =
                        run("srec_cat",
                            {path("a.bin"), "-binary", "-offset", QString::number(m.a), path("b.bin"),
                             "-binary", "-offset", QString::number(m.b), "-o", path("sc.hex"), "-intel",
                             "-obs=" + QString(block), QString("-address-length=") + m.length,
                             QString("-line-termination=") + ending});
                    QCOMPARE(out, QByteArray());
                    const TSegments want = {{m.a, a}, {m.b, b}};
                    QCOMPARE(readAll(path("sc.hex")), want);
                    writeFile(path("sc.hex"), readFile(path("sc.hex")).toLower());
                    QCOMPARE(readAll(path("sc.hex"), m.b + 76, 256), want);
                }
        }
    }

    // What Tarvelix writes for a range below 64 KiB, up to 1 MiB and above reads back the same in
    // srec_cat and avr-objcopy.
    void toolsReadWhatItWrites() {
        const QList<TSegments> cases = {
            {{0x10, randomBytes(1000, 1)}, {0xFF00, randomBytes(256, 2)}},
            {{0x0, randomBytes(300, 3)}, {0xFFF8, randomBytes(70000, 4)}, {0xFFF00, randomBytes(256, 5)}},
            {{0x1FFF00, randomBytes(700, 6)},
             {0x200400, randomBytes(33, 7)},
             {0xFFFFF0, randomBytes(16, 8)}}};
        for (const TSegments& segments : cases) {
            const qint64 first = segments.firstKey(), last = segments.lastKey() + segments.last().size() - 1;
            QVERIFY(writeThrough("ihex", path("tw.hex"), first, last, segments));
            QCOMPARE(readAll(path("tw.hex")), segments);
            const QByteArray want = image(segments, first, last);
            QCOMPARE(run("srec_cat", {path("tw.hex"), "-intel", "-offset", "-" + QString::number(first), "-o",
                                      path("sc.bin"), "-binary"}),
                     QByteArray());
            QCOMPARE(readFile(path("sc.bin")), want);
            QCOMPARE(run("avr-objcopy", {"-I", "ihex", "-O", "binary", path("tw.hex"), path("oc.bin")}),
                     QByteArray());
            QCOMPARE(readFile(path("oc.bin")), want);
        }
    }
};

QTEST_GUILESS_MAIN(TestFormatIHEX)
#include "test_format_ihex.moc"
