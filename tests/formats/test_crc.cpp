#include "formats/TCRC.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {
struct TModel {
    QString name;
    QStringList aliases;
    int width = 0;
    unsigned __int128 poly = 0, init = 0, xorout = 0;
    bool refin = false, refout = false;
    QByteArray check;
};

unsigned __int128 parseHex(const QString& text) {
    unsigned __int128 v = 0;
    for (QChar c : text.mid(2))
        v = (v << 4) | static_cast<unsigned>(QString(c).toUInt(nullptr, 16));
    return v;
}

QList<QStringList> readTsv(const QString& rel) {
    QFile f(QString(TARVELIX_SOURCE_DIR) + "/" + rel);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) qFatal("cannot read %s", qPrintable(rel));
    QList<QStringList> rows;
    while (!f.atEnd()) {
        const QString line = QString::fromUtf8(f.readLine()).remove('\n');
        if (!line.isEmpty() && !line.startsWith('#') && !line.startsWith("name\t"))
            rows.append(line.split('\t'));
    }
    return rows;
}

QList<TModel> catalogue() {
    QList<TModel> list;
    for (const QStringList& r : readTsv("tools/data/crc-catalogue.tsv")) {
        TModel m;
        m.name = r[0];
        m.aliases = r[1].split(',', Qt::SkipEmptyParts);
        m.width = r[2].toInt();
        m.poly = parseHex(r[3]);
        m.init = parseHex(r[4]);
        m.refin = r[5] == "true";
        m.refout = r[6] == "true";
        m.xorout = parseHex(r[7]);
        const int digits = 2 * ((m.width + 7) / 8);
        m.check = QByteArray::fromHex(r[8].mid(2).rightJustified(digits, '0').toLatin1());
        list.append(m);
    }
    return list;
}

QStringList checksumNames() {
    QStringList names;
    for (const QStringList& r : readTsv("tools/data/crc-checksums.tsv"))
        names.append(r[0]);
    return names;
}

// Bit by bit, straight from the model's parameters: the reference the tables must agree with.
QByteArray reference(const TModel& m, const QByteArray& data) {
    const unsigned __int128 mask = (static_cast<unsigned __int128>(1) << m.width) - 1;
    unsigned __int128 reg = m.init;
    for (char ch : data)
        for (int bit = 0; bit < 8; ++bit) {
            const unsigned b = (static_cast<uchar>(ch) >> (m.refin ? bit : 7 - bit)) & 1;
            const bool top = ((reg >> (m.width - 1)) & 1) ^ b;
            reg = ((reg << 1) & mask) ^ (top ? m.poly : 0);
        }
    if (m.refout) {
        unsigned __int128 r = 0;
        for (int i = 0; i < m.width; ++i, reg >>= 1)
            r = (r << 1) | (reg & 1);
        reg = r;
    }
    reg = (reg ^ m.xorout) & mask;
    QByteArray out((m.width + 7) / 8, 0);
    for (int i = 0; i < out.size(); ++i)
        out[out.size() - 1 - i] = static_cast<char>(static_cast<uchar>(reg >> (8 * i)));
    return out;
}

QByteArray compute(const QString& name, const QByteArray& data, int piece) {
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject(name));
    if (!crc) return "no object";
    for (int i = 0; i < data.size(); i += piece)
        crc->calc(data.constData() + i, qMin(piece, data.size() - i));
    return crc->getResult();
}

QByteArray randomBytes(int n, quint32 seed) {
    QRandomGenerator gen(seed);
    QByteArray data(n, 0);
    for (char& c : data)
        c = static_cast<char>(gen.bounded(256));
    return data;
}
} // namespace

class TestCRC : public QObject {
    Q_OBJECT
private slots:
    void everyNameAndAliasGivesTheCheckValue() {
        const QList<TModel> models = catalogue();
        QCOMPARE(models.size() + checksumNames().size(), 115);
        for (const TModel& m : models)
            for (const QString& name : QStringList(m.name) + m.aliases)
                QVERIFY2(compute(name, "123456789", 9) == m.check, qPrintable(name));
    }

    void checksumsAreTheNegatedByteSum() {
        for (const QString& name : checksumNames()) {
            const QByteArray data = randomBytes(1001, 5);
            uchar sum = 0;
            for (char c : data)
                sum += static_cast<uchar>(c);
            QCOMPARE(compute(name, data, 7), QByteArray(1, static_cast<char>(-sum)));
            QCOMPARE(compute(name, QByteArray::fromHex("010203"), 3), QByteArray::fromHex("fa"));
        }
    }

    // Long and odd-sized inputs reach the eight-bytes-per-step path and its byte-wise tail.
    void tablesAgreeWithBitwiseReference() {
        for (const TModel& m : catalogue())
            for (int n : {0, 1, 7, 8, 9, 15, 16, 17, 64, 1000}) {
                const QByteArray data = randomBytes(n, quint32(n + m.width));
                QVERIFY2(compute(m.name, data, qMax(1, n)) == reference(m, data),
                         qPrintable(QString("%1 over %2 bytes").arg(m.name).arg(n)));
            }
    }

    void piecesGiveTheSameResultAsOneCall() {
        const QByteArray data = randomBytes(777, 11);
        QStringList names = checksumNames();
        for (const TModel& m : catalogue())
            names.append(m.name);
        for (const QString& name : names) {
            const QByteArray whole = compute(name, data, data.size());
            QVERIFY2(compute(name, data, 1) == whole, qPrintable(name));
            QVERIFY2(compute(name, data, 13) == whole, qPrintable(name));
        }
    }

    void calcReturnsTheRunningRegister() {
        for (const TModel& m : catalogue()) {
            if (m.refin != m.refout || m.width > 64) continue;
            std::unique_ptr<ICRC> crc(TCRC::createCRCObject(m.name));
            const quint64 raw = crc->calc("123456789", 9);
            QCOMPARE(toBytes(raw ^ static_cast<quint64>(m.xorout), m.width), m.check);
        }
    }

    void wideModelIsRight() {
        for (const TModel& m : catalogue()) {
            if (m.width <= 64) continue;
            QCOMPARE(m.name, QString("CRC-82/DARC"));
            QCOMPARE(compute(m.name, "123456789", 9).size(), 11);
            const QByteArray data = randomBytes(4096, 82);
            QCOMPARE(compute(m.name, data, 100), reference(m, data));
        }
    }

    void unknownNamesGiveNoObject() {
        for (const char* name : {"CRC-16/MAXIM-DOW", "crc-32", "CRC-32 ", "", "ARC"})
            QVERIFY2(!TCRC::createCRCObject(name), name);
        QCOMPARE(TCRC::getCRCNameDef(), QString("CRC-32"));
        QCOMPARE(TCRC::getFormatDef(), QString("bin"));
    }

    void shippedListOffersEveryName() {
        QStringList expected = checksumNames();
        for (const TModel& m : catalogue())
            expected.append(m.name);
        QCOMPARE(TCRC::getAlgListView(QString(TARVELIX_DATA_DIR) + "/crc.lst"), expected);
    }

    void listFileSwitchesAndComments() {
        QTemporaryDir dir;
        const QString path = dir.filePath("crc.lst");
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("# CRC-8=1\nCRC-32=1\n\nCRC-16/ARC=0\n  CRC-64 = 1  \nno "
                "switch\nCRC-7=1=1\nUNKNOWN=1\nCRC-8=01\n");
        f.close();
        QCOMPARE(TCRC::getAlgListView(path), QStringList({"CRC-32", "CRC-64 ", "UNKNOWN"}));
        QVERIFY(TCRC::getAlgListView(dir.filePath("missing.lst")).isEmpty());
    }

private:
    static QByteArray toBytes(quint64 v, int width) {
        QByteArray out((width + 7) / 8, 0);
        for (int i = 0; i < out.size(); ++i)
            out[out.size() - 1 - i] = static_cast<char>(static_cast<uchar>(v >> (8 * i)));
        return out;
    }
};

QTEST_GUILESS_MAIN(TestCRC)
#include "test_crc.moc"
