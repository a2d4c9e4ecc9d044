#include "app/TLang.h"
#include "formats/TSaveAside.h"
#include "misc/TRangeReport.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// The result line of a range command, and the file a read writes aside.
class TestRangeReport : public QObject {
    Q_OBJECT

    static QStringList asides(const QTemporaryDir& dir) {
        return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).filter(".part");
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void lineNamesBytesRangeFileTimeAndRate() {
        QCOMPARE(
            TRangeReport::text(TRangeReport::Written, 4000, {{0, 0xF9F}}, "/p/demo.hex", "hex", 410000000),
            QString("Written 4,000 bytes to 0x000000..0x000F9F from demo.hex (HEX) in 0.41 s, 9.8 KB/s"));
        QCOMPARE(
            TRangeReport::text(TRangeReport::Read, 16777216, {{0, 0xFFFFFF}}, "a.bin", "bin+", 1000000000),
            QString("Read 16,777,216 bytes from 0x000000..0xFFFFFF into a.bin (BIN+) in 1.00 s, 16.8 MB/s"));
        QCOMPARE(TRangeReport::text(TRangeReport::Verified, 16, {{0x10, 0x1F}}, QString(), QString(), 0),
                 QString("Verified 16 bytes at 0x000010..0x00001F in 0.00 s, 16.0 MB/s"));
    }

    // Touching pieces are one range; a file with gaps shows each range, the first three by address.
    void piecesJoinIntoRanges() {
        TRangeReport r;
        r.add(0x100, 0x10);
        r.add(0x110, 0x10);
        r.add(0x200, 4);
        r.add(0x300, 0);
        QCOMPARE(r.bytes(), qint64(0x24));
        QCOMPARE(r.ranges(), (QList<TRangeReport::Range>{{0x100, 0x11F}, {0x200, 0x203}}));
        r.add(0x400, 1);
        r.add(0x500, 1);
        QVERIFY(
            r.text(TRangeReport::Written, QString(), QString())
                .startsWith("Written 38 bytes to 0x000100..0x00011F, 0x000200..0x000203, 0x000400..0x000400 "
                            "and 1 more ranges in "));
    }

    void asideReplacesTheTargetOnlyOnCommit() {
        QTemporaryDir dir;
        const QString target = dir.filePath("out.bin");
        TestFiles::writeFile(target, "previous");
        {
            TSaveAside aside(target);
            QVERIFY(aside.begin(false));
            QVERIFY(aside.targetExisted());
            TestFiles::writeFile(aside.path(), "half");
            QCOMPARE(TestFiles::readFile(target), QByteArray("previous"));
        }
        QCOMPARE(TestFiles::readFile(target), QByteArray("previous"));
        QCOMPARE(asides(dir), QStringList());

        TSaveAside aside(target);
        QVERIFY(aside.begin(true));
        QCOMPARE(TestFiles::readFile(aside.path()),
                 QByteArray("previous")); // "bin+" starts from the file as it is
        TestFiles::writeFile(aside.path(), "new");
        QVERIFY(aside.commit());
        QCOMPARE(TestFiles::readFile(target), QByteArray("new"));
        QCOMPARE(asides(dir), QStringList());
    }

    void asideInAMissingFolderNamesIt() {
        QTemporaryDir dir;
        TSaveAside aside(dir.filePath("gone/out.bin"));
        QVERIFY(!aside.begin(false));
        QVERIFY2(aside.getErrorText().contains(dir.filePath("gone/")), qPrintable(aside.getErrorText()));
        QVERIFY(!aside.targetExisted());
    }
};

QTEST_GUILESS_MAIN(TestRangeReport)
#include "test_range_report.moc"
