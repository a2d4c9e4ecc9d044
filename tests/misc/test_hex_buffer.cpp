#include "app/TLang.h"
#include "formats/FormatTestUtil.h"
#include "misc/THexBuffer.h"
#include "support/TestBytes.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class TestHexBuffer : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void editsUndoAndRedoInOrder() {
        THexBuffer buf;
        buf.setData(countingBytes(16), 0x100);
        QSignalSpy changed(&buf, &THexBuffer::changed);
        QVERIFY(buf.setByte(1, char(0xAA)));
        QVERIFY(buf.fill(4, 5, QByteArray("\x11\x22", 2)));
        QCOMPARE(buf.paste(14, QByteArray("\x77\x88\x99")), qint64(2)); // never grows
        QCOMPARE(buf.data().toHex(), QByteArray("00aa02031122112211090a0b0c0d7788"));
        QCOMPARE(buf.size(), qint64(16));
        QCOMPARE(changed.takeAt(1), (QList<QVariant>{qint64(4), qint64(5)}));

        buf.undo();
        buf.undo();
        QCOMPARE(buf.data().toHex(), QByteArray("00aa02030405060708090a0b0c0d0e0f"));
        QVERIFY(buf.canRedo());
        buf.redo();
        QCOMPARE(buf.data().toHex(), QByteArray("00aa02031122112211090a0b0c0d0e0f"));
        // A new edit drops what could be redone.
        QVERIFY(buf.setByte(0, 'Z'));
        QVERIFY(!buf.canRedo());
        buf.undo();
        buf.undo();
        buf.undo();
        QCOMPARE(buf.data(), countingBytes(16));
        QVERIFY(!buf.canUndo());
        buf.undo(); // nothing left: no change, no crash
        QCOMPARE(buf.data(), countingBytes(16));
    }

    void undoHistoryIsBoundedOldestFirst() {
        THexBuffer buf;
        buf.setData(QByteArray(16, '\0'));
        buf.setUndoLimits(3, 1000);
        for (int i = 0; i < 5; ++i)
            buf.setByte(i, 'a');
        for (int i = 0; i < 5; ++i)
            buf.undo();
        QCOMPARE(buf.data().left(6), QByteArray("aa\0\0\0\0", 6));
        QVERIFY(buf.isModified()); // the saved state cannot come back

        buf.setData(QByteArray(16, '\0'));
        buf.setUndoLimits(100, 20); // a fill of 8 bytes holds 16
        buf.fill(0, 8, "x");
        buf.fill(8, 8, "y");
        buf.undo();
        QVERIFY(!buf.canUndo());
        QCOMPARE(buf.data(), QByteArray(8, 'x') + QByteArray(8, '\0'));
        buf.setUndoLimits(100, 1); // the newest edit stays whatever its size
        buf.redo();
        buf.fill(0, 16, "z");
        QVERIFY(buf.canUndo());
        buf.undo();
        QVERIFY(!buf.canUndo());
    }

    void editsPastTheEndAreRefused() {
        THexBuffer buf;
        buf.setData(countingBytes(8));
        QVERIFY(!buf.setByte(8, 1) && !buf.setByte(-1, 1) && !buf.fill(6, 3, "A") && !buf.fill(0, 2, ""));
        QCOMPARE(buf.paste(8, "AB"), qint64(0));
        QCOMPARE(buf.data(), countingBytes(8));
        QVERIFY(!buf.canUndo());
    }

    void modifiedFollowsTheSavedState() {
        THexBuffer buf;
        buf.setData(countingBytes(4));
        QSignalSpy modified(&buf, &THexBuffer::modifiedChanged);
        QVERIFY(!buf.isModified());
        buf.setByte(0, 9);
        buf.setByte(1, 9);
        QVERIFY(buf.isModified());
        buf.setModified(false); // saved here
        buf.undo();
        QVERIFY(buf.isModified());
        buf.redo();
        QVERIFY(!buf.isModified());
        // An edit that writes the same value is no edit.
        buf.setByte(1, 9);
        QVERIFY(!buf.isModified());
        // Undoing past the saved state and editing leaves it unreachable.
        buf.undo();
        buf.setByte(3, 7);
        buf.undo();
        QVERIFY(buf.isModified());
        QCOMPARE(modified.count(), 5);
        buf.setData(countingBytes(2));
        QVERIFY(!buf.isModified());
        QVERIFY(!buf.canUndo());
    }

    void findsHexAndTextBothWays() {
        THexBuffer buf;
        buf.setData(QByteArray("\x00\xDE\xAD\xBE\xEFhello\xDE\xAD", 12));
        QString error;
        const QByteArray dead = THexBuffer::hexNeedle("0xDEAD", &error);
        QCOMPARE(dead.toHex(), QByteArray("dead"));
        QCOMPARE(THexBuffer::hexNeedle("DE AD be,ef").toHex(), QByteArray("deadbeef"));
        QCOMPARE(buf.find(dead, 0), qint64(1));
        QCOMPARE(buf.find(dead, 2), qint64(10));
        QCOMPARE(buf.find(dead, 11), qint64(-1));
        QCOMPARE(buf.find(dead, 9, true), qint64(1));
        QCOMPARE(buf.find(dead, 100, true), qint64(10));
        QCOMPARE(buf.find(THexBuffer::textNeedle("hello"), 0), qint64(5));
        QCOMPARE(buf.find(THexBuffer::textNeedle("Hello"), 0), qint64(-1));
        QCOMPARE(buf.find(QByteArray(), 0), qint64(-1));

        for (const char* bad : {"DEA", "0x", "GG", "DE 0xZZ", ""}) {
            error.clear();
            QVERIFY2(THexBuffer::hexNeedle(bad, &error).isEmpty(), qPrintable(bad));
            QCOMPARE(
                error,
                QString("\"%1\" is not a list of hexadecimal bytes (\"DE AD BE EF\", \"0xDEAD\")").arg(bad));
        }
    }

    void compareListsRunsAtDeviceAddresses() {
        THexBuffer buf;
        buf.setData(QByteArray(0x40, '\0'), 0x8000);
        QByteArray other(0x48, '\0');
        other.replace(0x10, 16, QByteArray(16, 'x'));
        other[0x3F] = 1;
        const QList<THexBuffer::Diff> runs = buf.compare(other);
        QCOMPARE(runs, (QList<THexBuffer::Diff>{{0x10, 16}, {0x3F, 1}, {0x40, 8, true}}));
        QCOMPARE(buf.diffText(runs),
                 QString("0x008010-0x00801F: 16 bytes differ\n"
                         "0x00803F: 1 byte differs\n"
                         "0x008040-0x008047: 8 bytes beyond the end of the shorter image"));
        QCOMPARE(buf.diffText(runs, 1), QString("0x008010-0x00801F: 16 bytes differ\n... and 2 more"));
        QCOMPARE(buf.diffText(buf.compare(buf.data())), QString("No differences"));
        // A shorter other image: the run past its end.
        QCOMPARE(buf.compare(QByteArray(0x3E, '\0')), (QList<THexBuffer::Diff>{{0x3E, 2, true}}));
    }

    void crcOfBufferAndSelection() {
        THexBuffer buf;
        buf.setData("123456789");
        QCOMPARE(buf.crc("CRC-32", 0, 9), quint64(0xCBF43926));
        QCOMPARE(buf.crc("CRC-16/XMODEM", 0, 9), quint64(0x31C3));
        buf.setData("xx123456789yy");
        QCOMPARE(buf.crcBytes("CRC-32", 2, 9).toHex(), QByteArray("cbf43926"));
        QString error;
        QVERIFY(buf.crcBytes("CRC-99", 0, 1, &error).isEmpty());
        QCOMPARE(error, QString("Unknown CRC model \"CRC-99\""));
        QVERIFY(buf.crcBytes("CRC-32", 10, 4, &error).isEmpty());
        QCOMPARE(error, QString("The range 0x0A, 4 bytes lies beyond the end of the data"));
    }

    void savesExactFilesAndLoadsThemBack() {
        THexBuffer buf;
        buf.setData(countingBytes(20));
        buf.setByte(0, 0x55);
        QString error;
        const QString bin = dir.filePath("a.bin"), ihex = dir.filePath("a.hex");
        QVERIFY2(buf.save(bin, "bin", error), qPrintable(error));
        QVERIFY(!buf.isModified());
        QCOMPARE(readFile(bin), buf.data());
        QVERIFY2(buf.save(ihex, "ihex", error), qPrintable(error));
        QCOMPARE(readFile(ihex), QByteArray(":10000000550102030405060708090A0B0C0D0E0F23\r\n"
                                            ":0400100010111213A6\r\n"
                                            ":00000001FF\r\n"));
        for (const QString key : {"bin", "hex", "ihex"}) {
            const QString file = dir.filePath("rt." + key);
            QVERIFY2(buf.save(file, key, error), qPrintable(error));
            THexBuffer back;
            QVERIFY2(back.load(file, key, error), qPrintable(key + error));
            QCOMPARE(back.data(), buf.data());
        }
        // Without a key: the contents decide on loading, the name on saving.
        THexBuffer guessed;
        QVERIFY(guessed.load(ihex, QString(), error));
        QCOMPARE(guessed.data(), buf.data());
        QVERIFY(buf.save(dir.filePath("b.hex"), QString(), error));
        QVERIFY(readFile(dir.filePath("b.hex")).startsWith(":10000000"));
    }

    void intelHexAboveOneSegmentAsSrecCatReadsIt() {
        QVERIFY2(QFile::exists("/usr/bin/srec_cat"), "srecord is missing: run tools/deps.sh");
        THexBuffer buf;
        QByteArray image = countingBytes(256);
        image.append(QByteArray(0x20, char(0xC3)));
        buf.setData(image, 0x1FFF0);
        QString error;
        const QString file = dir.filePath("high.ihex"), out = dir.filePath("high.bin");
        QVERIFY2(buf.save(file, "ihex", error), qPrintable(error));
        QProcess p;
        p.start("srec_cat", {file, "-intel", "-offset", "-0x1FFF0", "-o", out, "-binary"});
        QVERIFY(p.waitForFinished());
        QCOMPARE(p.exitCode(), 0);
        QCOMPARE(readFile(out), image);
        // Loading at the same base gives the image back; a BIN file always starts at the base.
        THexBuffer back;
        back.setData(QByteArray(), 0x1FFF0);
        QVERIFY2(back.load(file, "ihex", error), qPrintable(error));
        QCOMPARE(back.data(), image);
        QCOMPARE(back.base(), quint32(0x1FFF0));
        // The same image in this program's HEX dialect would mislead other tools: the user is told first.
        QVERIFY(buf.saveWarning(file, "hex").startsWith("Warning: other tools read the type 02 records"));
        QVERIFY(buf.saveWarning(file, "ihex").isEmpty());
        QVERIFY(buf.saveWarning("x.bin", QString()).isEmpty());

        // Comparing with the file read the same way: one changed byte.
        back.setByte(0x20, 0);
        QList<THexBuffer::Diff> diffs;
        QVERIFY2(back.compareFile(file, QString(), diffs, error), qPrintable(error));
        QCOMPARE(back.diffText(diffs), QString("0x020010: 1 byte differs"));
        QVERIFY(!back.compareFile(dir.filePath("none.hex"), "ihex", diffs, error));
    }

    void hexGapsLoadErasedAndBadFilesLoseNothing() {
        const QString gap = dir.filePath("gap.hex");
        writeFile(gap, ":020000000102FB\n:020004000304F3\n:00000001FF\n");
        THexBuffer buf;
        QString error;
        QVERIFY(buf.load(gap, "hex", error));
        QCOMPARE(buf.data().toHex(), QByteArray("0102ffff0304"));

        const QByteArray before = buf.data();
        QVERIFY(!buf.load(dir.filePath("none.bin"), "bin", error));
        QVERIFY2(error.contains("none.bin"), qPrintable(error));
        QVERIFY(!buf.load(gap, "srec", error));
        QCOMPARE(error, QString("Unknown data file format \"srec\" (bin, hex or ihex)\nFile: %1").arg(gap));
        const QString damaged = dir.filePath("damaged.hex");
        writeFile(damaged, ":020000000102FB\n:0200040003\n:00000001FF\n");
        QVERIFY(!buf.load(damaged, "ihex", error));
        QVERIFY2(error.contains("damaged.hex") && error.contains('2'), qPrintable(error));
        QCOMPARE(buf.data(), before);

        // More than the editor takes is refused, not cut.
        QByteArray image;
        QVERIFY(!THexBuffer::readImage(gap, "hex", 0, 5, image, error));
        QCOMPARE(error, QString("%1 holds data beyond 5 bytes from the start address, more than the editor "
                                "holds")
                            .arg(gap));
        QVERIFY(THexBuffer::readImage(gap, "hex", 0, 6, image, error));
    }

    void failedSaveKeepsThePreviousFile() {
        THexBuffer buf;
        buf.setData("new");
        buf.setByte(0, 'N');
        QString error;
        QVERIFY(!buf.save(dir.filePath("no/such/dir/x.bin"), "bin", error));
        QVERIFY2(error.contains("x.bin"), qPrintable(error));
        QVERIFY(buf.isModified());
    }
};

QTEST_GUILESS_MAIN(TestHexBuffer)
#include "test_hex_buffer.moc"
