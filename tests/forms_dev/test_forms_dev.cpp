#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDev93C.h"
#include "devices/TDevProg.h"
#include "devices/TDevTools.h"
#include "devices/TDeviceList.h"
#include "link/TProg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/CatalogueSetup.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

#include <memory>

// The parameter forms of the memory families, on catalogue parts in a project with the simulator's
// programmer description: every command's form gives back its record untouched, ranges are judged as the
// command list judges them, and register forms change exactly the bits of the field edited.
class TestFormsDev : public QObject {
    Q_OBJECT

    int cfg = -1;

    static IDevice* makeDevice(const QString& name, const QString& file) {
        if (name == "Tools") return TCmdFamily::create<TDevTools>(name, TData());
        if (name == "Prog") return TCmdFamily::create<TDevProg>(name, TData());
        TData param;
        QStringList desc;
        if (name.startsWith("93C")) {
            // The catalogue has no family row for the 93 series: the part is made by hand.
            QFile f(QStringLiteral(TARVELIX_DATA_DIR "/devices/") + file);
            f.open(QIODevice::ReadOnly | QIODevice::Text);
            for (const QString& line : QString::fromUtf8(f.readAll()).split('\n'))
                if (!line.isEmpty() && !line.startsWith('#')) desc << line;
            return TCmdFamily::create<TDev93C>(name, TDeviceList::getParamData(desc));
        }
        const TDeviceList::Creator creator = DeviceList.getDeviceInstance(name, file, param, &desc);
        return creator ? creator(name, param) : nullptr;
    }

    int add(const QString& code, TData p = {}) {
        p.insert("id_cfg", cfg);
        p.insert("cmd", code);
        p.insert("status", 1);
        return ProjectData.newCmd(p, -1);
    }

    // The part chosen by a set-device command of the configuration.
    IDevice* choose(const QString& name) {
        const QString file = name.startsWith("93C") ? "mw/93C46.dev" : DeviceList.getDeviceList().value(name);
        const int id = add("set_device", {{"device", name}, {"file", file}});
        IDevice* dev = ProjectData.getCmdObjectFromIdCmd(id)->getDeviceObject();
        Q_ASSERT(dev);
        return dev;
    }

    // A command with the family's defaults, as the command list inserts it.
    TData command(IDevice* dev, const QString& code) {
        const int id = add(code);
        TData p = ProjectData.getCmdData(id);
        dev->getDefaultCmdParam(p);
        ProjectData.updCmdParam(id, p);
        return ProjectData.getCmdData(id);
    }

    static TFormCmd* formOf(IDevice* dev, const TData& p) {
        return qobject_cast<TFormCmd*>(dev->getFormCmdParam(p));
    }

private slots:
    void initTestCase() {
        useSourceCatalogue();
        ProjectData.setDeviceFactory(makeDevice);
    }

    void init() {
        ProjectData.clrPrj();
        cfg = ProjectData.newCfg("A", "", -1);
        add("set_prog", {{"prog", "Sim"}});
    }

    void everyCommandGivesBackItsDefaults_data() {
        QTest::addColumn<QString>("device");
        QTest::newRow("SPI flash") << "W25Q32BV";
        QTest::newRow("AVR") << "ATmega328P";
        QTest::newRow("24 series") << "24C256";
        QTest::newRow("93 series") << "93C46";
    }

    void everyCommandGivesBackItsDefaults() {
        QFETCH(QString, device);
        IDevice* dev = choose(device);
        const QStringList withoutParameters{
            "ident", "erase", "test_empty", "test_empty_flash", "test_empty_eeprom", "lock", "unlock"};
        for (const QString& code : dev->getSupportCmdList()) {
            if (code == "separator") continue;
            const TData p = command(dev, code);
            std::unique_ptr<TFormCmd> form(formOf(dev, p));
            QVERIFY2(bool(form) != withoutParameters.contains(code), qPrintable(code));
            QVERIFY2(dev->getChangedParam(p) == p, qPrintable(code));
        }
    }

    void rangesAreJudgedLikeTheCommandList() {
        IDevice* dev = choose("W25Q32BV");
        TData p = command(dev, "char_write");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* addr = form->findChild<QLineEdit*>("addr_device");
        auto* count = form->findChild<QLineEdit*>("count");
        addr->setText("0x400000");
        QCOMPARE(form->getError(), QString("Address: %1").arg(Lang.get(1720).arg("0x00", "0x3FFFFF")));
        // Each field alone is inside the part, the range they make is not.
        addr->setText("3FFFFF");
        count->setText("2");
        QCOMPARE(form->getError(), QString("Range: must lie inside 0x00..0x3FFFFF"));
        QVERIFY(!dev->checkCmdParam(dev->getChangedParam(p)));
        count->setText("1");
        QCOMPARE(form->getError(), QString());
        QCOMPARE(dev->getChangedParam(p).value("addr_device"), QVariant(qint64(0x3FFFFF)));
        QVERIFY(dev->checkCmdParam(dev->getChangedParam(p)));

        form.reset(formOf(dev, command(dev, "data_write")));
        QCOMPARE(form->getError(), QString("Data: must not be empty"));
        form->findChild<QPlainTextEdit*>("data")->setPlainText(QString("00").repeated(65));
        QCOMPARE(form->getError(), QString("Range: must hold at most 64 bytes"));

        // The security registers are an address space of their own.
        form.reset(formOf(dev, command(dev, "security_reg_read")));
        form->findChild<QLineEdit*>("file")->setText("sec.bin");
        form->findChild<QLineEdit*>("count")->setText("0x301");
        QCOMPARE(form->getError(), QString("Count: %1").arg(Lang.get(1720).arg("0x01", "0x300")));
    }

    // Intel HEX is offered beside HEX and BIN, kept as "IHEX" as the others are kept upper case, and
    // shown under its name in the command list.
    void fileFormsOfferIntelHex() {
        IDevice* dev = choose("W25Q32BV");
        const TData p = command(dev, "file_write");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* format = form->findChild<QComboBox*>("format");
        QCOMPARE(format->itemText(format->currentIndex()), QString("HEX"));
        QCOMPARE(format->itemText(3), QString("Intel HEX"));
        form->findChild<QLineEdit*>("file")->setText("fw.hex");
        format->setCurrentIndex(3);
        const TData changed = dev->getChangedParam(p);
        QCOMPARE(changed.value("format"), QVariant("IHEX"));
        QVERIFY(dev->checkCmdParam(changed));
        QCOMPARE(dev->getViewCmdParam(changed, nullptr).endsWith("fw.hex (Intel HEX)"), true);
    }

    // ATmega328P fuses from its device file: fields named by caption, choices of meanings, every value of
    // a choice selectable (unnamed ones in hex), each byte in hex beside its heading and in step.
    void fuseFieldsChangeExactlyTheirBits() {
        IDevice* dev = choose("ATmega328P");
        const TData p = command(dev, "fuse_write");
        QCOMPARE(p.value("data"), QVariant("62D9FF"));
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* spien = form->findChild<QCheckBox*>("SPIEN");
        auto* bootsz = form->findChild<QComboBox*>("BOOTSZ");
        auto* clock = form->findChild<QComboBox*>("SUT_CKSEL");
        auto* low = form->findChild<QLineEdit*>("byte0");
        auto* high = form->findChild<QLineEdit*>("byte1");
        auto* lockOut = form->findChild<QLabel*>("lockOut");
        QVERIFY(spien && bootsz && clock && low && high && lockOut);
        // Programmed fuses read 0: SPIEN (bit 5 of the high fuse) is checked.
        QVERIFY(spien->isChecked());
        QCOMPARE(spien->text(), QString("Serial program downloading (SPI) enabled (SPIEN)"));
        QCOMPARE(clock->currentText(),
                 QString("Int. RC Osc. 8 MHz; Start-up time PWRDWN/RESET: 6 CK/14 CK + 65 ms"));
        QCOMPARE(high->text(), QString("D9"));
        QVERIFY(lockOut->isHidden());
        bootsz->setCurrentIndex(0);
        QCOMPARE(bootsz->currentText(), QString("Boot Flash size=256 words start address=$3F00"));
        QCOMPARE(dev->getChangedParam(p).value("data"), QVariant("62DFFF"));
        QCOMPARE(high->text(), QString("DF"));
        clock->setCurrentText("0x35");
        QCOMPARE(dev->getChangedParam(p).value("data"), QVariant("75DFFF"));
        QCOMPARE(low->text(), QString("75"));

        // The whole byte typed in hex moves the fields; SPIEN unprogrammed is named in red.
        high->clear();
        QTest::keyClicks(high, "F9");
        QVERIFY(!spien->isChecked());
        QCOMPARE(bootsz->currentIndex(), 3);
        QCOMPARE(dev->getChangedParam(p).value("data"), QVariant("75F9FF"));
        QVERIFY(!lockOut->isHidden());
        QCOMPARE(lockOut->text(), Lang.get(1101).arg("SPIEN"));
        QCOMPARE(
            lockOut->text(),
            QString("SPIEN unprogrammed: serial programming disabled; only a high-voltage programmer can "
                    "recover the part"));

        // The factory value is one click away.
        form->findChild<QPushButton*>("factory")->click();
        QCOMPARE(dev->getChangedParam(p), p);
        QCOMPARE(high->text(), QString("D9"));
        QVERIFY(spien->isChecked() && lockOut->isHidden());
    }

    void clockLockOutAndRoundTrip() {
        IDevice* dev = choose("ATmega328P");
        TData p = command(dev, "fuse_verify");
        p.insert("data", "e2d9ff");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* ckdiv8 = form->findChild<QCheckBox*>("CKDIV8");
        auto* clock = form->findChild<QComboBox*>("SUT_CKSEL");
        QVERIFY(!ckdiv8->isChecked());
        const QString internal = clock->currentText();
        ckdiv8->setChecked(true);
        clock->setCurrentIndex(clock->count() - 1);
        QCOMPARE(dev->getChangedParam(p).value("data"), QVariant("40D9FF"));
        QCOMPARE(form->findChild<QLabel*>("lockOut")->text(),
                 Lang.get(1104).arg("SUT_CKSEL", clock->currentText()));
        // Back to the bits it had: the record keeps its own spelling.
        ckdiv8->setChecked(false);
        clock->setCurrentText(internal);
        QCOMPARE(dev->getChangedParam(p), p);

        // A read command shows the bytes but does not edit them.
        form.reset(formOf(dev, command(dev, "lock_read")));
        QVERIFY(!form->findChild<QComboBox*>("LB")->isEnabled());
        QVERIFY(!form->findChild<QPushButton*>("factory"));
    }

    // A part without a device file keeps one box per bit.
    void partWithoutDeviceFileKeepsBits() {
        IDevice* dev = choose("ATmega161");
        std::unique_ptr<TFormCmd> form(formOf(dev, command(dev, "fuse_write")));
        QCOMPARE(form->findChildren<QCheckBox*>().size(), 8);
        QVERIFY(form->findChildren<QComboBox*>().isEmpty());
    }

    void spiRegisterForms() {
        IDevice* dev = choose("W25Q32BV");
        TData p = command(dev, "status_reg_write");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        QVERIFY(!form->findChild<QCheckBox*>("BUSY")->isEnabled());
        form->findChild<QCheckBox*>("BP0")->setChecked(true);
        form->findChild<QCheckBox*>("QE")->setChecked(true);
        p = dev->getChangedParam(p);
        QCOMPARE(p.value("data"), QVariant("0402"));
        form.reset(formOf(dev, p));
        QVERIFY(form->findChild<QCheckBox*>("BP0")->isChecked());
        QVERIFY(!form->findChild<QCheckBox*>("BP1")->isChecked());
        QCOMPARE(dev->getChangedParam(p), p);

        // One check box per security register; the record keeps the mask as a number.
        p = command(dev, "security_reg_erase");
        form.reset(formOf(dev, p));
        const QList<QCheckBox*> regs = form->findChildren<QCheckBox*>();
        QCOMPARE(regs.size(), 3);
        QCOMPARE(regs.at(1)->text(), QString("Security Register #2 (0x100..0x1ff)"));
        regs.at(1)->setChecked(false);
        QCOMPARE(dev->getChangedParam(p).value("data"), QVariant(253));

        p = command(dev, "unique_id_read");
        p.insert("data", "0123456789ABCDEF");
        form.reset(formOf(dev, p));
        auto* id = form->findChild<QLineEdit*>("Unique ID:");
        QCOMPARE(id->text(), QString("0123456789ABCDEF"));
        QVERIFY(id->isReadOnly());
    }

    void eraseBlocksOfferTheCatalogueSizes() {
        IDevice* dev = choose("W25Q32BV");
        const TData p = command(dev, "erase_blocks");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* size = form->findChild<QComboBox*>("size");
        QCOMPARE(size->currentText(), QString("64 Kbyte"));
        size->setCurrentIndex(0);
        QCOMPARE(size->currentText(), QString("4 Kbyte"));
        QCOMPARE(form->getError(), QString());
        size->setCurrentIndex(1);
        form->findChild<QLineEdit*>("count")->setText("129");
        QCOMPARE(form->getError(), QString("Range: must lie inside 0x00..0x3FFFFF"));
        form->findChild<QLineEdit*>("count")->setText("128");
        QCOMPARE(dev->getChangedParam(p).value("size"), QVariant(qint64(32768)));
        QVERIFY(dev->checkCmdParam(dev->getChangedParam(p)));
    }

    void pinStatesAndClocksComeFromTheProgrammer() {
        IDevice* dev = choose("ATmega328P");
        TData p = command(dev, "set_clk");
        std::unique_ptr<TFormCmd> form(formOf(dev, p));
        auto* clk = form->findChild<QComboBox*>("clk");
        QCOMPARE(clk->count(), 5);
        QCOMPARE(clk->currentText(), QString("500 KHz"));
        clk->setCurrentIndex(4);
        QCOMPARE(dev->getChangedParam(p).value("clk"), QVariant(4));

        p = command(dev, "leave");
        form.reset(formOf(dev, p));
        auto* reset = form->findChild<QComboBox*>("P4 - RESET");
        QVERIFY(reset);
        QCOMPARE(form->findChildren<QComboBox*>().size(), 8);
        reset->setCurrentText("H (output - high)");
        form->findChild<QLineEdit*>("duration")->setText("100");
        p = dev->getChangedParam(p);
        QCOMPARE(p.value("state"), QVariant("---H----"));
        QCOMPARE(p.value("duration"), QVariant(100));
        form.reset(formOf(dev, p));
        QCOMPARE(form->findChild<QComboBox*>("P4 - RESET")->currentText(), QString("H (output - high)"));
        QCOMPARE(dev->getChangedParam(p), p);
    }

    void busAddressOfA24SeriesPart() {
        IDevice* dev = choose("24C256");
        TData p{{"cmd", "set_device"}, {"device", "24C256"}};
        dev->getDefaultParamCmdSetDevice(p);
        p.insert("addr", 5);
        std::unique_ptr<QWidget> wgt(dev->getWgtCmdSetDeviceParam(p));
        auto* form = qobject_cast<TFormCmd*>(wgt.get());
        QVERIFY(form);
        QVERIFY(form->findChild<QCheckBox*>("A2")->isChecked());
        QVERIFY(!form->findChild<QCheckBox*>("A1")->isChecked());
        QCOMPARE(form->getParam(), p);
        form->findChild<QCheckBox*>("A1")->setChecked(true);
        form->findChild<QCheckBox*>("A0")->setChecked(false);
        QCOMPARE(form->getParam().value("addr"), QVariant(6));
        QVERIFY(dev->checkCmdSetDeviceParam(form->getParam()));
    }
};

QTEST_MAIN(TestFormsDev)
#include "test_forms_dev.moc"
