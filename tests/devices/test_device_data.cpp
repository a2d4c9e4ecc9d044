#include "app/TAppData.h"
#include "devices/TDeviceList.h"
#include "devices/TSignature.h"
#include "misc/TFormDesc.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QtTest>

// The shipped catalogue read the way the program reads it, checked for what each family relies on.
class TestDeviceData : public QObject {
    Q_OBJECT
    QHash<QString, QString> devices;
    QHash<QString, TData> params; // by description file

    static QString devicesDir() { return QStringLiteral(TARVELIX_DATA_DIR "/devices"); }

    static QStringList tableNames(const QString& table) {
        QFile f(QStringLiteral(TARVELIX_SOURCE_DIR "/tools/data/") + table);
        if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
        QStringList rows = QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts);
        rows.erase(
            std::remove_if(rows.begin(), rows.end(), [](const QString& r) { return r.startsWith('#'); }),
            rows.end());
        rows.removeFirst(); // column names
        return rows;
    }

    static bool isHex(const QString& text, int digits) {
        return text.size() == digits && QRegularExpression("^[0-9A-F]*$").match(text).hasMatch();
    }

    static quint64 num(const TData& d, const char* key) { return d.value(key).toULongLong(); }

    // Every form key parses, and its default bytes come back unchanged through the fields.
    static void checkForm(const TData& d, const char* cfgKey, const char* defKey, const QString& file) {
        const QByteArray def = QByteArray::fromHex(d.value(defKey).toString().toLatin1());
        if (!d.contains(cfgKey)) {
            QVERIFY2(def.isEmpty(), qPrintable(file + " lacks " + cfgKey));
            return;
        }
        TFormDesc form;
        QVERIFY2(form.parse(d.value(cfgKey).toStringList()), qPrintable(file + ": " + form.getErrorText()));
        QVERIFY2(form.getByteCount() == def.size(), qPrintable(file + " " + cfgKey));
        QCOMPARE(form.toBytes(form.toFields(def), def), def);
        QCOMPARE(form.toBytes(form.toFields(def), QByteArray(def.size(), '\x5A')).size(), def.size());
    }

    static void checkCommon(const TData& d, const QString& file) {
        TDeviceList list;
        QString type = d.value("prg_type").toString();
        QVERIFY2(list.getDevCode(type) != 0, qPrintable(file));
        QVERIFY2(QStringList({"I2C", "SPI", "AVR"}).contains(d.value("prg_section").toString()),
                 qPrintable(file));
        for (const char* key : {"cfg_hw", "delay", "reset", "reset_pol", "clk_def", "comment", "info"})
            QVERIFY2(d.contains(key), qPrintable(file + " lacks " + key));
    }

    static void checkDev24(const TData& d, const QString& file) {
        QVERIFY2(num(d, "size") > 0 && num(d, "size") % num(d, "page_size") == 0, qPrintable(file));
        QVERIFY2(num(d, "addr_size") == 1 || num(d, "addr_size") == 2, qPrintable(file));
        QVERIFY2(num(d, "addr_mask") < 8 && d.contains("addr_begin"), qPrintable(file));
        // The address bits beyond the address bytes must fit the three select bits left by the pins.
        const quint64 reach = quint64(1) << (8 * num(d, "addr_size") + num(d, "cfg_hw"));
        QVERIFY2(reach == num(d, "size") || (num(d, "cfg_hw") == 0 && reach > num(d, "size")),
                 qPrintable(file));
        // Pins compared by the chip never sit where the select byte carries address bits.
        QVERIFY2((num(d, "addr_mask") & ((1u << num(d, "cfg_hw")) - 1)) == 0, qPrintable(file));
        QCOMPARE(d.value("alg_read"), QVariant(0u));
        QCOMPARE(d.value("alg_write"), QVariant(0u));
    }

    static void checkEraseText(const QString& text, quint64 size, const QString& file) {
        const QStringList f = text.split('|');
        QVERIFY2(f.size() == 2 && isHex(f.at(0), 2), qPrintable(file + ": " + text));
        const quint64 block = f.at(1).toULongLong();
        QVERIFY2(block > 0 && block <= size && size % block == 0, qPrintable(file + ": " + text));
    }

    static void checkDev25(const TData& d, const QString& file) {
        const quint64 size = num(d, "size");
        QVERIFY2(isHex(d.value("signature").toString(), 6), qPrintable(file));
        QVERIFY2(size >= 65536 && size % num(d, "page_size") == 0, qPrintable(file));
        QCOMPARE(num(d, "addr_size"), 3ull);
        checkEraseText(d.value("erase").toString(), size, file);
        for (const QString& b : d.value("erase_blocks").toStringList())
            checkEraseText(b, size, file);
        const QString regs = d.value("status_reg_def").toString();
        QVERIFY2(regs.size() >= 2 && regs.size() <= 6 && isHex(regs, regs.size()), qPrintable(file));
        checkForm(d, "status_reg_cfg", "status_reg_def", file);
        QVERIFY2(num(d, "security_reg_size") % 256 == 0 && num(d, "security_reg_size") <= 256 * 8,
                 qPrintable(file));
        QVERIFY2(num(d, "sfdp_reg_size") <= 256, qPrintable(file));
        for (const char* key :
             {"alg_ident", "alg_erase", "alg_flash_read", "alg_flash_write", "alg_status_reg_read",
              "alg_status_reg_write", "alg_security_reg_erase", "alg_security_reg_read",
              "alg_security_reg_write", "alg_unique_id_read", "alg_fsdp_read"})
            QVERIFY2(d.value(key) == QVariant(0u), qPrintable(file + " " + key));
    }

    static void checkAvr(const TData& d, const QString& file) {
        const quint64 flash = num(d, "flash_size"), eeprom = num(d, "eeprom_size");
        QVERIFY2(isHex(d.value("signature").toString(), 6), qPrintable(file));
        QVERIFY2(flash > 0 && flash % num(d, "flash_page_size") == 0, qPrintable(file));
        QVERIFY2(num(d, "eeprom_page_size") > 0 && eeprom % num(d, "eeprom_page_size") == 0,
                 qPrintable(file));
        const int fuses = d.value("fuse_def").toString().size() / 2;
        QVERIFY2(isHex(d.value("fuse_def").toString(), 2 * fuses) && fuses >= 1 && fuses <= 3,
                 qPrintable(file));
        const quint64 fuseRead = num(d, "alg_fuse_read"), fuseWrite = num(d, "alg_fuse_write");
        QVERIFY2(fuseRead <= 1 && fuseWrite <= 2 && (fuses == 1 || (fuseRead == 1 && fuseWrite == 2)),
                 qPrintable(file));
        QVERIFY2(num(d, "alg_flash_read") == (flash > 65536 ? 1u : 0u), qPrintable(file));
        QVERIFY2((num(d, "alg_flash_write") == 0) == (flash <= 65536), qPrintable(file));
        QVERIFY2(num(d, "alg_lock_read") <= 1 && num(d, "alg_lock_write") <= 1, qPrintable(file));
        for (const char* key : {"flash_polling", "flash_delay", "eeprom_polling", "eeprom_delay",
                                "erase_polling", "erase_delay", "fuse_polling", "fuse_delay", "lock_polling",
                                "lock_delay", "flash_addr_begin", "eeprom_addr_begin", "osccal_def",
                                "alg_ident", "alg_erase", "alg_eeprom_read", "alg_eeprom_write"})
            QVERIFY2(d.contains(key), qPrintable(file + " lacks " + key));
        QVERIFY2(num(d, "flash_delay") < 255 && num(d, "erase_delay") < 255, qPrintable(file));
        checkForm(d, "fuse_cfg", "fuse_def", file);
        checkForm(d, "lock_cfg", "lock_def", file);
        checkForm(d, "osccal_cfg", "osccal_def", file);
    }

private slots:
    void initTestCase() {
        AppData.pathDevices = devicesDir();
        devices = TDeviceList().getDeviceList();
        QVERIFY(!devices.isEmpty());
        for (const QString& file : devices) {
            if (params.contains(file)) continue;
            TData d;
            TDeviceList().getDeviceInstance(QString(), file, d);
            QVERIFY2(!d.isEmpty(), qPrintable(file + " cannot be read"));
            params.insert(file, d);
        }
    }

    void entriesAndFilesMatchOneToOne() {
        QSet<QString> onDisk;
        for (const QString& folder : QStringList{"i2c", "spi", "avr"}) {
            QDirIterator it(devicesDir() + "/" + folder, {"*.dev"}, QDir::Files);
            while (it.hasNext())
                onDisk.insert(folder + QStringLiteral("/") + QFileInfo(it.next()).fileName());
        }
        onDisk.remove("spi/auto.dev");
        onDisk.remove("avr/auto.dev");
        QCOMPARE(onDisk, QSet<QString>(params.keyBegin(), params.keyEnd()));
        for (auto it = devices.begin(); it != devices.end(); ++it)
            QVERIFY2(!it.key().contains('/') && !it.key().contains('.') && !it.key().trimmed().isEmpty() &&
                         it.key().trimmed() == it.key(),
                     qPrintable(it.key()));
    }

    void everyDescriptionHoldsWhatItsFamilyReads() {
        for (auto it = params.begin(); it != params.end(); ++it) {
            const TData& d = it.value();
            const QString family = d.value("gui_type").toString();
            QVERIFY2(TDeviceList::getFamilyNames().contains(family), qPrintable(it.key()));
            QCOMPARE(d.value("dev_file").toString(), it.key());
            checkCommon(d, it.key());
            if (family == "Dev24")
                checkDev24(d, it.key());
            else if (family == "Dev25")
                checkDev25(d, it.key());
            else if (family == "DevAVR8_SPI")
                checkAvr(d, it.key());
            else
                QFAIL(qPrintable(it.key() + " has family " + family));
            if (QTest::currentTestFailed()) return;
        }
    }

    void everyTableRowIsCatalogued() {
        QSet<QString> spiFiles, avrFiles, i2cFiles;
        for (const QString& file : params.keys())
            (file.startsWith("spi/") ? spiFiles : file.startsWith("avr/") ? avrFiles : i2cFiles).insert(file);
        QCOMPARE(spiFiles.size(), tableNames("spi-flash.tsv").size());
        QVERIFY(spiFiles.size() >= 300);
        const QStringList avr = tableNames("avr.tsv");
        QCOMPARE(avrFiles.size(), avr.size());
        for (const QString& row : avr)
            QVERIFY2(devices.value(row.section('\t', 0, 0)).startsWith("avr/"), qPrintable(row));
        for (const char* name : {"24C01", "24C02", "24C04", "24C08", "24C16", "24C32", "24C64", "24C128",
                                 "24C256", "24C512", "24C1024", "24M02", "AT24C02"})
            QVERIFY2(devices.value(name).startsWith("i2c/"), name);
        QCOMPARE(i2cFiles.size(), tableNames("i2c-eeprom.tsv").size());
        QCOMPARE(devices.value("W25Q128xV"), QString("spi/W25Q128xV.dev"));
        QCOMPARE(devices.value("MX25L4005C"), devices.value("MX25L4006E"));
        // Named fields where the device files or the register table know the part, one box per bit
        // where they do not; the device file's lock-out values follow their field.
        const QStringList fuses328 = params.value("avr/ATmega328P.dev").value("fuse_cfg").toStringList();
        const int spien = fuses328.indexOf("ckl|20|i|e|1|Serial program downloading (SPI) enabled (SPIEN)");
        QVERIFY(spien > 0 && fuses328.value(spien + 1) == "brk|20|spien|SPIEN");
        QVERIFY(params.value("avr/ATmega161.dev")
                    .value("fuse_cfg")
                    .toStringList()
                    .contains("ckl|80|i|e|0|Fuse bit 7"));
        QVERIFY(params.value("spi/W25Q128xV.dev")
                    .value("status_reg_cfg")
                    .toStringList()
                    .contains("ckl|01|-|ro|0|BUSY"));
        // Microwire parts have descriptions but no family to serve them, so they stay unlisted.
        QVERIFY(QFile::exists(devicesDir() + "/mw/93C46.dev"));
        for (const QString& file : devices)
            QVERIFY2(!file.startsWith("mw/"), qPrintable(file));
    }

    void signatureListsNameCataloguedDevicesWithThatSignature() {
        for (const QString& folder : QStringList{"spi", "avr"}) {
            const TPairStringList pairs =
                TSignature::getSignatureListFromFile(devicesDir() + "/" + folder + "/signature.lst");
            QVERIFY(pairs.size() > 100);
            QSet<QString> seen;
            for (const auto& p : pairs) {
                QVERIFY2(!seen.contains(p.first), qPrintable(p.first));
                seen.insert(p.first);
                for (const QString& name : p.second.split(", ")) {
                    QVERIFY2(devices.contains(name), qPrintable(name));
                    QCOMPARE(params.value(devices.value(name)).value("signature").toString(), p.first);
                }
            }
        }
        QCOMPARE(TSignature::getSignatureDeviceName(devicesDir() + "/avr", "1E9307"),
                 QString("ATmega8, ATmega8A"));
    }

    void detectionListsNameFamilyDevices() {
        QCOMPARE(TSignature::getAutoFamilyList(), QStringList({"Dev25", "DevAVR8_SPI"}));
        for (const QString& family : TSignature::getAutoFamilyList()) {
            TData d;
            TDeviceList().getDeviceInstance(QString(), TSignature::getAutoDevFile(family), d);
            QCOMPARE(d.value("gui_type").toString(), family);
            checkCommon(d, family);
            const TPairStringList pairs = TSignature::getSignatureListFromName(family);
            QVERIFY(pairs.size() > 100);
            for (const auto& p : pairs) {
                const TData& dev = params.value(devices.value(p.second));
                QVERIFY2(dev.value("gui_type").toString() == family, qPrintable(p.second));
                QCOMPARE(dev.value("signature").toString(), p.first);
            }
        }
    }

    void typeCodesAreDistinct() {
        TDeviceList list;
        QSet<unsigned int> codes;
        for (QString type : {"I2C_EEPROM", "SPI_FLASH", "AVR_ISP", "MICROWIRE"})
            codes.insert(list.getDevCode(type));
        QCOMPARE(codes.size(), 4);
        QVERIFY(!codes.contains(0));
    }
};

QTEST_GUILESS_MAIN(TestDeviceData)
#include "test_device_data.moc"
