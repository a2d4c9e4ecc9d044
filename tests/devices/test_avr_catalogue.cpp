#include "app/TAppData.h"
#include "devices/TDevAVR8Alg.h"
#include "devices/TDeviceList.h"

#include <QtTest>

#include <cmath>

// The catalogue's AVR parts against the parts' own serial programming instructions (the avrdude
// patterns of tools/data/avr-isp.tsv): every instruction the family sends for an operation the part
// offers, rendered by TDevAVR8Alg with the part's catalogue parameters, must be the part's pattern bit
// for bit, and every wait at least the part's minimum write time.
class TestAvrCatalogue : public QObject {
    Q_OBJECT

    struct Token {
        char kind; // '0', '1', 'x', 'a' address bit, 'i' data bit written, 'o' data bit read back
        int bit;
    };
    using Pattern = QVector<Token>;
    using Row = QHash<QString, QString>;

    QHash<QString, Row> table;
    QStringList mismatches;
    QString part;

    static Pattern parse(const QString& column, const Row& row) {
        const QString text = QString(row.value(column)).remove('.');
        Pattern p;
        if (text.size() != 32) return p;
        for (int k = 0; k < 32; ++k) {
            const char c = text.at(k).toLatin1();
            const int byte = k / 8, n = 7 - k % 8;
            const int addrBase = byte == 1 ? 8 : column == "load_ext_addr" ? 16 : 0;
            p.append({c, c == 'a' ? addrBase + n : n});
        }
        // "column: bitN=tokN ...": instruction bit N (31 = first bit sent) stands for data bit tok.
        for (const QString& entry : row.value("nonstandard_bits").split(';', Qt::SkipEmptyParts)) {
            if (entry.section(':', 0, 0).trimmed() != column) continue;
            for (const QString& item : entry.section(':', 1).split(' ', Qt::SkipEmptyParts)) {
                const QRegularExpressionMatch m = QRegularExpression("^bit(\\d+)=([aio])(\\d+)$").match(item);
                if (m.hasMatch())
                    p[31 - m.captured(1).toInt()] = {m.captured(2).at(0).toLatin1(), m.captured(3).toInt()};
            }
        }
        return p;
    }

    static bool isRead(const Pattern& p) {
        return std::any_of(p.begin(), p.end(), [](const Token& t) { return t.kind == 'o'; });
    }

    // The data values a write is checked with: every combination of the part's data bits, the bits it
    // does not carry left unprogrammed (1).
    static QList<unsigned> dataValues(const Pattern& p) {
        unsigned mask = 0;
        for (const Token& t : p)
            if (t.kind == 'i') mask |= 1u << t.bit;
        QList<unsigned> out;
        for (unsigned v = 0; v < 256; ++v)
            if ((v | mask) == 0xFF) out << v;
        return out;
    }

    // Compares the four instruction bytes of a payload (after its wait byte) with the pattern.
    void compare(const QString& what, const Pattern& p, const QByteArray& payload, quint64 addr,
                 unsigned data) {
        if (p.isEmpty()) {
            mismatches << part + " " + what + ": the part has no such instruction";
            return;
        }
        const int bits = isRead(p) ? 24 : 32; // a read's fourth byte is what the part shifts out
        for (int k = 0; k < bits; ++k) {
            const int sent = uchar(payload.at(1 + k / 8)) >> (7 - k % 8) & 1;
            const Token t = p.at(k);
            const int want = t.kind == '0'   ? 0
                             : t.kind == '1' ? 1
                             : t.kind == 'a' ? int(addr >> t.bit & 1)
                             : t.kind == 'i' ? int(data >> t.bit & 1)
                                             : -1;
            if (want >= 0 && want != sent) {
                mismatches << QString("%1 %2: bit %3 of %4 (address %5, data %6)")
                                  .arg(part, what)
                                  .arg(31 - k)
                                  .arg(QString(payload.mid(1).toHex().toUpper()))
                                  .arg(addr, 0, 16)
                                  .arg(data, 2, 16, QChar('0'));
                return;
            }
        }
    }

    // A read takes each data bit from where the part shifts it out.
    void compareRead(const QString& what, const Pattern& p, unsigned char (*take)(int, unsigned char),
                     int alg) {
        for (int k = 24; k < 32 && !p.isEmpty(); ++k) {
            const Token t = p.at(k);
            if (t.kind != 'o') continue;
            const unsigned char r3 = uchar(1u << (31 - k));
            if ((take(alg, r3) >> t.bit & 1) != 1)
                mismatches << QString("%1 %2: data bit %3 not taken from reply bit %4")
                                  .arg(part, what)
                                  .arg(t.bit)
                                  .arg(31 - k);
        }
    }

    static unsigned char whole(int, unsigned char r3) { return r3; }

    // The wait byte of a write: polling, or at least the part's minimum rounded up to whole ms.
    void compareWait(const QString& what, const TData& d, const QString& prefix, double minUs) {
        if (d.value(prefix + "_polling").toBool()) return;
        const unsigned wait = d.value(prefix + "_delay").toUInt();
        if (wait > 254 || wait < std::ceil(minUs / 1000.0))
            mismatches
                << QString("%1 %2: wait %3 ms, the part needs %4 us").arg(part, what).arg(wait).arg(minUs);
    }

    double minUs(const QString& memory) const {
        const Row& r = table.value(part);
        const double lo = r.value("min_write_delay_" + memory + "_us").toDouble();
        return lo > 0 ? lo : r.value("max_write_delay_" + memory + "_us").toDouble();
    }

    QStringList fuseMemories() const {
        const Row& r = table.value(part);
        if (!r.value("fuse_write").isEmpty() || !r.value("fuse_read").isEmpty()) return {"fuse"};
        QStringList out;
        for (const QString m : {"lfuse", "hfuse", "efuse"})
            if (!r.value(m + "_write").isEmpty() || !r.value(m + "_read").isEmpty()) out << m;
        return out;
    }

    void checkFuses(const TData& d) {
        const Row& r = table.value(part);
        const QStringList mems = fuseMemories();
        const QByteArray def = QByteArray::fromHex(d.value("fuse_def").toString().toLatin1());
        if (d.contains("alg_fuse_read") || d.contains("alg_fuse_write"))
            QVERIFY2(def.size() == mems.size(), qPrintable(part));
        if (d.contains("alg_fuse_read")) {
            const int alg = d.value("alg_fuse_read").toInt();
            const QList<QByteArray> reads = TDevAVR8Alg::payloadReadFuse(alg, def.size());
            QCOMPARE(reads.size(), mems.size());
            for (int i = 0; i < reads.size(); ++i) {
                const Pattern p = parse(mems.at(i) + "_read", r);
                compare(mems.at(i) + "_read", p, reads.at(i), 0, 0);
                compareRead(mems.at(i) + "_read", p, TDevAVR8Alg::fuseFromReply, alg);
            }
        }
        if (d.contains("alg_fuse_write")) {
            double wait = 0;
            for (int i = 0; i < mems.size(); ++i) {
                const Pattern p = parse(mems.at(i) + "_write", r);
                wait = std::max(wait, minUs(mems.at(i)));
                for (unsigned v : dataValues(p)) {
                    QByteArray fuses = def;
                    fuses[i] = char(v);
                    const QList<QByteArray> w =
                        TDevAVR8Alg::payloadWriteFuse(d.value("alg_fuse_write").toInt(), 0, fuses);
                    if (w.size() != mems.size()) {
                        mismatches << part + " fuse_write: " + QString::number(w.size()) + " instructions";
                        return;
                    }
                    compare(mems.at(i) + "_write", p, w.at(i), 0, v);
                }
            }
            compareWait("fuse_write", d, "fuse", wait);
        }
    }

    void checkLock(const TData& d) {
        const Row& r = table.value(part);
        if (d.contains("alg_lock_read")) {
            const Pattern p = parse("lock_read", r);
            compare("lock_read", p, TDevAVR8Alg::payloadReadLock(), 0, 0);
            compareRead("lock_read", p, TDevAVR8Alg::lockFromReply, d.value("alg_lock_read").toInt());
        }
        if (d.contains("alg_lock_write")) {
            const Pattern p = parse("lock_write", r);
            for (unsigned v : dataValues(p))
                compare("lock_write", p,
                        TDevAVR8Alg::payloadWriteLock(d.value("alg_lock_write").toInt(), 0, uchar(v)), 0, v);
            compareWait("lock_write", d, "lock", minUs("lock"));
        }
    }

    void checkPart(const TData& d) {
        const Row& r = table.value(part);
        QCOMPARE(d.value("alg_ident"), QVariant(0u));
        for (unsigned char i = 0; i < 3; ++i) {
            compare("signature_read", parse("signature_read", r), TDevAVR8Alg::payloadIdent(i), i, 0);
            compareRead("signature_read", parse("signature_read", r), whole, 0);
        }
        if (d.contains("alg_erase")) {
            compare("chip_erase", parse("chip_erase", r), TDevAVR8Alg::payloadErase(0), 0, 0);
            compareWait("erase", d, "erase", r.value("chip_erase_delay_us").toDouble());
        }
        checkFuses(d);
        checkLock(d);
        const int cal = QByteArray::fromHex(d.value("osccal_def").toString().toLatin1()).size();
        for (int i = 0; d.contains("alg_osccal_read") && i < cal; ++i)
            compare("calibration_read", parse("calibration_read", r),
                    TDevAVR8Alg::payloadReadOscCal(uchar(i)), i, 0);
        // Pages committed by the host: several pages across the flash, word addresses.
        const int flashAlg = d.value("alg_flash_write").toInt();
        const qint64 size = d.value("flash_size").toLongLong(),
                     page = d.value("flash_page_size").toLongLong();
        for (qint64 a = 0; flashAlg != 0 && a < qMin<qint64>(size, 1 << 17); a += page * 37)
            compare("flash_writepage", parse("flash_writepage", r), TDevAVR8Alg::payloadPageCommit(0, a),
                    quint64(a / 2), 0);
        compareWait("flash write", d, "flash", minUs("flash"));
        if (d.value("eeprom_size").toUInt() > 0) compareWait("eeprom write", d, "eeprom", minUs("eeprom"));
    }

private slots:
    void initTestCase() {
        QFile f(QStringLiteral(TARVELIX_SOURCE_DIR "/tools/data/avr-isp.tsv"));
        QVERIFY(f.open(QIODevice::ReadOnly | QIODevice::Text));
        QStringList columns;
        for (const QString& line : QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts)) {
            if (line.startsWith('#')) continue;
            const QStringList cells = line.split('\t');
            if (columns.isEmpty()) {
                columns = cells;
                continue;
            }
            Row row;
            for (int i = 0; i < columns.size() && i < cells.size(); ++i)
                row.insert(columns.at(i), cells.at(i));
            table.insert(cells.at(0), row);
        }
        QCOMPARE(table.size(), 185);
    }

    void everyOfferedInstructionIsThePartsOwn() {
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        TDeviceList list;
        int parts = 0;
        const auto devices = list.getDeviceList();
        for (auto it = devices.begin(); it != devices.end(); ++it) {
            if (!it.value().startsWith("avr/")) continue;
            part = it.key();
            QVERIFY2(table.contains(part), qPrintable(part));
            TData d;
            QVERIFY(list.getDeviceInstance(part, it.value(), d));
            checkPart(d);
            ++parts;
        }
        QCOMPARE(parts, 185);
        QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.mid(0, 20).join('\n')));
    }
};

QTEST_GUILESS_MAIN(TestAvrCatalogue)
#include "test_avr_catalogue.moc"
