#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDev24.h"
#include "devices/TDev25.h"
#include "devices/TDev93C.h"
#include "devices/TDevAVR8_SPI.h"
#include "devices/TDevProg.h"
#include "devices/TDevTools.h"
#include "devices/TDeviceList.h"
#include "support/TestFiles.h"
#include "ui/TDialogSelectDevice.h"

#include <QTemporaryDir>
#include <QtTest>

class TestDeviceList : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    void put(const QString& name, const QByteArray& text) { TestFiles::writeFile(dir.filePath(name), text); }

private slots:
    void init() { AppData.pathDevices = dir.path(); }

    void typeCodeComparesTheUntrimmedName() {
        put("types.lst", "# codes\n  SPI_FLASH =7\nSPI_FLASH=2\nAVR=3\nAVR=9\nbad line\nBIG=x\n");
        TDeviceList list;
        QString name = "SPI_FLASH";
        QCOMPARE(list.getDevCode(name), 2u);
        name = "AVR";
        QCOMPARE(list.getDevCode(name), 3u);
        name = "SPI_FLASH ";
        QCOMPARE(list.getDevCode(name), 7u);
        name = "  SPI_FLASH ";
        QCOMPARE(list.getDevCode(name), 0u);
        name = "avr";
        QCOMPARE(list.getDevCode(name), 0u);
        name = "BIG";
        QCOMPARE(list.getDevCode(name), 0u);
        AppData.pathDevices = dir.filePath("none");
        name = "AVR";
        QCOMPARE(list.getDevCode(name), 0u);
    }

    void deviceListSkipsCommentsAndKeepsTheLastLine() {
        put("devices.lst", "# list\n\n  24C02=i2c/a.dev  \nno equals\n24C02=i2c/b.dev\nW25Q=spi/w=1.dev\n");
        const QHash<QString, QString> devices = TDeviceList().getDeviceList();
        QCOMPARE(devices.size(), 2);
        QCOMPARE(devices.value("24C02"), QString("i2c/b.dev"));
        QCOMPARE(devices.value("W25Q"), QString("spi/w=1.dev"));
        AppData.pathDevices = dir.filePath("none");
        QVERIFY(TDeviceList().getDeviceList().isEmpty());
    }

    void paramFieldsSplitAtTheFirstEqualsAndBar() {
        QString key, type, value;
        QVERIFY(TDeviceList::getParamFields(" size = D | 8192 ", key, type, value));
        QCOMPARE(key, QString("size"));
        QCOMPARE(type, QString("D"));
        QCOMPARE(value, QString(" 8192 "));
        QVERIFY(TDeviceList::getParamFields("cfg=l|ckl|01|-|e|0|a=b", key, type, value));
        QCOMPARE(value, QString("ckl|01|-|e|0|a=b"));
        QVERIFY(!TDeviceList::getParamFields("size=D8192", key, type, value));
        QVERIFY(!TDeviceList::getParamFields("size|D|8192", key, type, value));
    }

    void everyTypeLetterConverts() {
        const TData d = TDeviceList::getParamData(
            {"s=s| text ", "d=d|-12", "D=D|8192", "u=u|40000", "U=U|5000000000", "x=x|ff", "X=X|1FFFFFFFF",
             "b=b|101", "B=B|100000000000000000000000000000000", "o=o|17", "O=O|40000000000", "f=f|1.5",
             "F=F|-2.25", "q=q|1", "nobar=D8192", "bad=d|12z", "two=ss|1"});
        QCOMPARE(d.value("s"), QVariant(QString(" text ")));
        QCOMPARE(d.value("d"), QVariant(-12));
        QCOMPARE(d.value("D"), QVariant(qlonglong(8192)));
        QCOMPARE(d.value("u"), QVariant(40000u));
        QCOMPARE(d.value("U"), QVariant(qulonglong(5000000000ULL)));
        QCOMPARE(d.value("x"), QVariant(255u));
        QCOMPARE(d.value("X"), QVariant(qulonglong(0x1FFFFFFFFULL)));
        QCOMPARE(d.value("b"), QVariant(5u));
        QCOMPARE(d.value("B"), QVariant(qulonglong(1ULL << 32)));
        QCOMPARE(d.value("o"), QVariant(15u));
        QCOMPARE(d.value("O"), QVariant(qulonglong(1ULL << 32)));
        QCOMPARE(d.value("f"), QVariant(1.5f));
        QCOMPARE(d.value("F"), QVariant(-2.25));
        QCOMPARE(d.value("bad"), QVariant(0));
        QVERIFY(!d.contains("q"));
        QVERIFY(!d.contains("nobar"));
        QVERIFY(!d.contains("two"));
        QCOMPARE(d.size(), 14);
    }

    void listLinesInARowBuildOneList() {
        const TData d = TDeviceList::getParamData({"erase_blocks=l|4096", "erase_blocks=l|32768", "size=u|1",
                                                   "size=u|2", "cfg=l| a|b ", "other=l|x", "cfg=l|c"});
        QCOMPARE(d.value("erase_blocks").toStringList(), QStringList({"4096", "32768"}));
        QCOMPARE(d.value("size"), QVariant(2u));
        QCOMPARE(d.value("other").toStringList(), QStringList({"x"}));
        QCOMPARE(d.value("cfg").toStringList(), QStringList({"c"}));
    }

    void factoryServesTheBuiltFamilies() {
        QCOMPARE(TDeviceList::getFamilyNames(),
                 QStringList({"Tools", "Prog", "Dev24", "Dev25", "DevAVR8_SPI"}));
        TDeviceList list;
        QVERIFY(list.getCreator("Tools") == TCmdFamily::create<TDevTools>);
        QVERIFY(list.getCreator("Prog") == TCmdFamily::create<TDevProg>);
        QVERIFY(list.getCreator("Dev24") == TCmdFamily::create<TDev24>);
        QVERIFY(list.getCreator("Dev25") == TCmdFamily::create<TDev25>);
        QVERIFY(!list.getCreator("Dev93"));
        QVERIFY(!list.getCreator("tools"));
    }

    void familyNameWithoutFileReadsNothing() {
        AppData.pathDevices = dir.filePath("none");
        TData param{{"kept", 1}};
        QVERIFY(TDeviceList().getDeviceInstance("Tools", QString(), param) == TCmdFamily::create<TDevTools>);
        QCOMPARE(param, TData({{"kept", 1}}));
        QVERIFY(!TDeviceList().getDeviceInstance("W25Q", QString(), param));
    }

    void descriptionFileGivesParamsLinesAndFamily() {
        put("p.dev", "# comment\n\ngui_type=s|Prog\n size = u|4096\n #not a comment=s|x\nlist=l|a\n");
        TData param;
        QStringList desc;
        TDeviceList list;
        QVERIFY(list.getDeviceInstance("Chip", "p.dev", param, &desc) == TCmdFamily::create<TDevProg>);
        QCOMPARE(desc, QStringList({"gui_type=s|Prog", " size = u|4096", " #not a comment=s|x", "list=l|a"}));
        QCOMPARE(param.value("dev_file"), QVariant(QString("p.dev")));
        QCOMPARE(param.value("size"), QVariant(4096u));
        QCOMPARE(param.value("#not a comment"), QVariant(QString("x")));
        QCOMPARE(param.size(), 5);

        put("u.dev", "gui_type=s|Dev93\n");
        QVERIFY(!list.getDeviceInstance("Chip", "u.dev", param));
        QCOMPARE(param.value("dev_file"), QVariant(QString("u.dev")));
        TData untouched{{"a", 1}};
        QVERIFY(!list.getDeviceInstance("Chip", "missing.dev", untouched));
        QCOMPARE(untouched, TData({{"a", 1}}));
    }

    // The selection dialog names each family the descriptions use, the 93 series' "Dev93" too.
    void selectionNamesEveryFamilyOfTheDescriptions() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        QCOMPARE(TDialogSelectDevice::getFamilyView("Dev24"), Lang.get(548));
        QCOMPARE(TDialogSelectDevice::getFamilyView("Dev25"), Lang.get(549));
        QCOMPARE(TDialogSelectDevice::getFamilyView("DevAVR8_SPI"), Lang.get(550));
        QCOMPARE(TDialogSelectDevice::getFamilyView("Dev93"), Lang.get(554));
    }

    // A row of a family's own kind is handled only through what it names: one without would offer a
    // command that has no defaults, no form and always passes its check.
    void everyOwnRowNamesItsHandling() {
        const QVector<const TCmdRows*> tables{&TDev24::cmdTable(),   &TDev25::cmdTable(),
                                              &TDev93C::cmdTable(),  &TDevAVR8_SPI::cmdTable(),
                                              &TDevProg::cmdTable(), &TDevTools::cmdTable()};
        for (const TCmdRows* rows : tables)
            for (const TCmdRow& row : *rows)
                QVERIFY2((row.kind == TCmdKind::Own) == (row.own != nullptr), row.code);
    }
};

QTEST_GUILESS_MAIN(TestDeviceList)
#include "test_device_list.moc"
