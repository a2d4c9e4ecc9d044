#include "FormatTestUtil.h"

#include "app/TLang.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

// Damaged HEX files must end the data or yield correct pieces, never crash, hang or break the range.
class TestFormatFuzz : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    static QByteArray mutate(QByteArray text, QRandomGenerator& gen, bool& substitutionOnly) {
        static const QByteArray alphabet = ":0123456789ABCDEFabcdefxz \r\n";
        const int count = 1 + gen.bounded(3);
        substitutionOnly = true;
        for (int i = 0; i < count && !text.isEmpty(); ++i) {
            const int at = gen.bounded(text.size());
            const char ch = alphabet[gen.bounded(alphabet.size())];
            switch (gen.bounded(4)) {
            case 0:
                text[at] = ch;
                break;
            case 1:
                text.remove(at, 1 + gen.bounded(40));
                substitutionOnly = false;
                break;
            case 2:
                text.insert(at, QByteArray(1 + gen.bounded(3), ch));
                substitutionOnly = false;
                break;
            default:
                text.truncate(at);
                substitutionOnly = false;
            }
        }
        substitutionOnly = substitutionOnly && count == 1;
        return text;
    }

private slots:
    void initTestCase() { Lang.loadData(QString(TARVELIX_DATA_DIR) + "/language/eng.lng"); }

    void mutatedFiles() {
        const qint64 first = 0x10FF00, size = 700;
        QRandomGenerator gen(20231019);
        QByteArray original(int(size), 0);
        for (char& c : original)
            c = char(gen.bounded(256));
        const QString file = dir.filePath("base.hex");
        {
            TFormat out("hex", file, first, first, first + size - 1, 256);
            QVERIFY(out.open(FormatModeWrite));
            QVERIFY(out.write(first, original));
            QVERIFY(out.close());
        }
        const QByteArray base = readFile(file);
        int withData = 0;
        for (int round = 0; round < 1200; ++round) {
            bool substitution = false;
            writeFile(file, mutate(base, gen, substitution));
            const qint64 chunk = QList<qint64>({16, 33, 64, 256, 4096})[gen.bounded(5)];
            const qint64 from = first + gen.bounded(int(size));
            TFormat in("hex", file, first, first, first + size - 1, chunk);
            QVERIFY(in.open(FormatModeRead));
            bool ok = false;
            const QList<TPiece> pieces = readPieces(in, from, &ok);
            QVERIFY2(ok, qPrintable(in.getErrorText()));
            qint64 next = from;
            for (const TPiece& p : pieces) {
                const qint64 end = p.first + p.second.size() - 1;
                QVERIFY(p.first >= next && end < first + size);
                QVERIFY2(p.second.size() <= chunk && p.first / chunk == end / chunk, "piece crosses a chunk");
                // One changed character breaks its record's checksum: whatever is read is the original.
                if (substitution) QCOMPARE(p.second, original.mid(int(p.first - first), p.second.size()));
                next = end + 1;
            }
            withData += pieces.isEmpty() ? 0 : 1;
        }
        QVERIFY(withData > 100);
    }
};

QTEST_GUILESS_MAIN(TestFormatFuzz)
#include "test_format_fuzz.moc"
