#include "FormatTestUtil.h"

#include "app/TLang.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {
const QByteArray tail = ":00000001FF" + QByteArray(13, '\n');

QByteArray counting(int from, int n) {
    QByteArray out;
    for (int i = 0; i < n; ++i)
        out += char(from + i);
    return out;
}

// Gap after 0x18, and a type 02 record whose value is taken as address bits 31-16.
const QByteArray sample = lines({":020000040000FA", ":10000000000102030405060708090A0B0C0D0E0F78",
                                 ":0400000300000000F9", ":0800100010111213141516174C", ":040020002021222356",
                                 ":0400000500000000F7", ":020000021000EC", ":02000000AABB99", ":00000001FF"});
} // namespace

class TestFormat : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString path(const char* name) const { return dir.filePath(name); }

    QList<TPiece> readHex(const QByteArray& content, qint64 addr_file, qint64 addr_device, qint64 last,
                          qint64 chunk, qint64 from) {
        writeFile(path("in.hex"), content);
        TFormat format("hex", path("in.hex"), addr_file, addr_device, last, chunk);
        if (!format.open(FormatModeRead)) return {{-1, format.getErrorText().toUtf8()}};
        bool ok = false;
        const QList<TPiece> pieces = readPieces(format, from, &ok);
        format.close();
        return ok ? pieces : QList<TPiece>{{-2, {}}};
    }

private slots:
    void initTestCase() { Lang.loadData(QString(TARVELIX_DATA_DIR) + "/language/eng.lng"); }

    void formatLists() {
        QCOMPARE(TFormat::getViewFormats(), QStringList({"HEX", "BIN", "BIN+", "Intel HEX"}));
        QCOMPARE(TFormat::getMaskFormats(), QString("*.bin *.hex"));
    }

    void hexWriteCrossingA64KBoundary() {
        TFormat format("hex", path("w.hex"), 0xFFF8, 0, 0x13, 256);
        QVERIFY(format.open(FormatModeWrite));
        QVERIFY(format.write(0xFFF8, counting(0, 5)));
        QVERIFY(format.write(0xFFFD, counting(5, 15)));
        QVERIFY(format.close());
        QCOMPARE(readFile(path("w.hex")), lines({":020000020000FC", ":08FFF8000001020304050607E5",
                                                 ":020000020001FB", ":0C00000008090A0B0C0D0E0F1011121352"}) +
                                              tail);
    }

    void hexWriteSmallRangeAndUnknownKey() {
        for (const char* key : {"hex", "", "intel"}) {
            TFormat format(key, path("s.hex"), 0, 0x100, 0x1FF, 256);
            QVERIFY(format.open(FormatModeWrite));
            QVERIFY(format.write(0x00, QByteArray::fromHex("AABBCC")));
            QVERIFY(format.write(0x20, QByteArray::fromHex("1122")));
            QVERIFY(format.close());
            QCOMPARE(readFile(path("s.hex")), lines({":03000000AABBCCCC", ":020020001122AB"}) + tail);
        }
    }

    void hexWriteAbove1MiBUsesLinearRecords() {
        TFormat format("hex", path("l.hex"), 0x100000, 0, 0xFF, 256);
        QVERIFY(format.open(FormatModeWrite));
        QVERIFY(format.close());
        QCOMPARE(readFile(path("l.hex")), lines({":020000040010EA"}) + tail);
    }

    void hexReadPiecesGapsAndSegmentRecord() {
        const QList<TPiece> expected = {{0, counting(0, 16)},
                                        {0x10, counting(0x10, 8)},
                                        {0x20, counting(0x20, 4)},
                                        {0x10000000, "\xAA\xBB"}};
        QCOMPARE(readHex(sample, 0, 0, 0x10000001, 16, 0), expected);
        QCOMPARE(readHex(sample.toLower(), 0, 0, 0x10000001, 16, 0), expected);
        QCOMPARE(readHex(sample, 0, 0, 0x10000001, 12, 0), QList<TPiece>({{0, counting(0, 12)},
                                                                          {12, counting(12, 12)},
                                                                          {0x20, counting(0x20, 4)},
                                                                          {0x10000000, "\xAA\xBB"}}));
        // Bytes before the wanted address are dropped, the record past the range ends the data.
        QCOMPARE(readHex(sample, 0, 0, 0x21, 16, 5),
                 QList<TPiece>({{5, counting(5, 11)}, {0x10, counting(0x10, 8)}, {0x20, counting(0x20, 2)}}));
        // File address 0x10 holds device address 0x1000.
        QCOMPARE(readHex(sample, 0x10, 0x1000, 0x1007, 256, 0x1000),
                 QList<TPiece>({{0x1000, counting(0x10, 8)}}));
    }

    void hexDamagedLineEndsDataSilently() {
        QByteArray bad = sample;
        bad.replace(":0800100010111213141516174C", ":0800100010111213141516174D");
        QCOMPARE(readHex(bad, 0, 0, 0x10000001, 256, 0), QList<TPiece>({{0, counting(0, 16)}}));
        QByteArray cut = sample;
        cut.replace(":0800100010111213141516174C", ":08001000101112");
        QCOMPARE(readHex(cut, 0, 0, 0x10000001, 256, 0), QList<TPiece>({{0, counting(0, 16)}}));
        QCOMPARE(readHex("garbage\n" + sample, 0, 0, 0xFF, 256, 0), QList<TPiece>());
        QCOMPARE(readHex(QByteArray(5000, ':'), 0, 0, 0xFF, 256, 0), QList<TPiece>());
    }

    void missingFiles() {
        for (const char* key : {"hex", "bin", "bin+"}) {
            TFormat format(key, path("none"), 0, 0, 0xFF, 16);
            QVERIFY(!format.open(FormatModeRead));
            QCOMPARE(format.getErrorText(), QString("The file does not exist"));
        }
        TFormat format("hex", path("no/such/dir.hex"), 0, 0, 0xFF, 16);
        QVERIFY(!format.open(FormatModeWrite));
        QVERIFY(format.getErrorText().startsWith("The file cannot be opened: "));
        QVERIFY(format.getErrorText().size() > QString("The file cannot be opened: ").size());
    }

    void binReadWithOffsetsAndShortFile() {
        writeFile(path("in.bin"), counting(0, 100));
        TFormat format("bin", path("in.bin"), 10, 0x200, 0x200 + 199, 32);
        QVERIFY(format.open(FormatModeRead));
        QCOMPARE(
            readPieces(format, 0x200),
            QList<TPiece>({{0x200, counting(10, 32)}, {0x220, counting(42, 32)}, {0x240, counting(74, 26)}}));
        QVERIFY(format.close());

        TFormat exact("bin", path("in.bin"), 100, 0, 9, 32);
        QVERIFY(exact.open(FormatModeRead));
        QCOMPARE(readPieces(exact, 0), QList<TPiece>());
        TFormat beyond("bin", path("in.bin"), 101, 0, 9, 32);
        QVERIFY(!beyond.open(FormatModeRead));
        QCOMPARE(beyond.getErrorText(), QString("The file is shorter than the file offset"));
    }

    void binWriteTruncatesAndBinPlusKeeps() {
        for (const char* key : {"bin", "bin+"}) {
            writeFile(path("out.bin"), QByteArray(16, 'x'));
            TFormat format(key, path("out.bin"), 4, 0x80, 0x87, 4);
            QVERIFY(format.open(FormatModeWrite));
            QVERIFY(format.write(4, "abcd"));
            QVERIFY(format.write(8, "ef"));
            QVERIFY(format.close());
            const QByteArray want = QByteArray(key) == "bin" ? QByteArray("xxxxabcdef").replace('x', '\0')
                                                             : QByteArray("xxxxabcdefxxxxxx");
            QCOMPARE(readFile(path("out.bin")), want);
        }
        TFormat back("bin", path("out.bin"), 4, 0x80, 0x85, 4);
        QVERIFY(back.open(FormatModeRead));
        QCOMPARE(readPieces(back, 0x80), QList<TPiece>({{0x80, "abcd"}, {0x84, "ef"}}));
    }

    void hexRoundTripThroughChunks() {
        const QByteArray data = counting(0, 256) + counting(0, 256) + counting(7, 100);
        TFormat out("hex", path("rt.hex"), 0x1FFF0, 0x400, 0x400 + data.size() - 1, 64);
        QVERIFY(out.open(FormatModeWrite));
        for (int i = 0; i < data.size(); i += 50)
            QVERIFY(out.write(0x1FFF0 + i, data.mid(i, 50)));
        QVERIFY(out.close());
        TFormat in("hex", path("rt.hex"), 0x1FFF0, 0x400, 0x400 + data.size() - 1, 64);
        QVERIFY(in.open(FormatModeRead));
        QByteArray back;
        for (const TPiece& p : readPieces(in, 0x400)) {
            QCOMPARE(p.first, 0x400 + back.size());
            QVERIFY(p.second.size() <= 64 && (p.first + p.second.size() - 1) / 64 == p.first / 64);
            back += p.second;
        }
        QCOMPARE(back, data);
    }
};

QTEST_GUILESS_MAIN(TestFormat)
#include "test_format.moc"
