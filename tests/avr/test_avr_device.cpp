#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TDevAVR8_SPI.h"
#include "devices/TDeviceList.h"
#include "misc/dev_misc.h"
#include "project/CTagPrj.h"

#include <QtTest>
#include <memory>

// The editing side of the AVR family with the shipped ATmega328PB and ATmega2560 descriptions.
class TestAvrDevice : public QObject {
    Q_OBJECT

    static std::unique_ptr<IDevice> device(const QString& name) {
        TData param;
        auto creator = DeviceList.getDeviceInstance(name, "avr/" + name + ".dev", param);
        return std::unique_ptr<IDevice>(creator ? creator(name, param) : nullptr);
    }
    static TData cmd(const QString& code, const TData& more = TData()) {
        TData p = more;
        p.insert(CTagCmd::cmd, code);
        return p;
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
    }

    void defaultsFollowTheCatalogue() {
        auto dev = device("ATmega328PB");
        QVERIFY(dev);
        QCOMPARE(dev->getSupportCmdList().size(), 29);
        QVERIFY(dev->supportCmd("osccal_read") && !dev->supportCmd("erase_blocks"));
        TData fuse = cmd("fuse_write");
        dev->getDefaultCmdParam(fuse);
        QCOMPARE(fuse.value("data").toString(), QString("62D9F7"));
        TData lock = cmd("lock_verify");
        dev->getDefaultCmdParam(lock);
        QCOMPARE(lock.value("data").toString(), QString("FF"));
        TData eeprom = cmd("eeprom_char_write");
        dev->getDefaultCmdParam(eeprom);
        QCOMPARE(eeprom.value("count").toLongLong(), 1024LL);
        TData flash = cmd("flash_file_read");
        dev->getDefaultCmdParam(flash);
        QCOMPARE(flash.value("count").toLongLong(), 32768LL);
        QCOMPARE(dev->getViewCmdParam(cmd("ident"), nullptr), QString("Signature: 1E9516"));
        QCOMPARE(dev->getViewCmdParam(fuse, nullptr), QString("62D9F7"));
    }

    // Operations whose instruction the part does not have are not offered, and say why.
    void operationsThePartLacks() {
        auto dev = device("AT90S2313");
        const QStringList offered = dev->getSupportCmdList();
        for (const char* code :
             {"fuse_read", "fuse_write", "fuse_verify", "lock_read", "lock_verify", "osccal_read"}) {
            QVERIFY2(!offered.contains(code) && !dev->supportCmd(code), code);
            QVERIFY(dev->getNotSupportedText(code).contains("AT90S2313"));
        }
        QVERIFY(dev->supportCmd("lock_write") && dev->supportCmd("erase") &&
                dev->supportCmd("flash_file_write"));
        QCOMPARE(dev->getNotSupportedText("lock_write"), QString());
        QCOMPARE(device("ATmega328PB")->getSupportCmdList(), TDevAVR8_SPI::getCmdList());
    }

    void checksMatchTheSpaces() {
        auto dev = device("ATmega328PB");
        QVERIFY(dev->checkCmdParam(cmd("fuse_write", {{"data", "62D9F7"}})));
        QVERIFY(!dev->checkCmdParam(cmd("fuse_write", {{"data", "62D9"}})));
        QVERIFY(!dev->checkCmdParam(cmd("fuse_verify", {{"data", "62D9FZ"}})));
        QVERIFY(dev->checkCmdParam(cmd("lock_write", {{"data", "FC"}})));
        QVERIFY(!dev->checkCmdParam(cmd("lock_write", {{"data", "FCFF"}})));
        // Lock bits 7 and 6 are fixed 1 in the part's instruction, which sends the byte as it is.
        QVERIFY(!dev->checkCmdParam(cmd("lock_write", {{"data", "3C"}})));
        // The EEPROM is 1 KiB, the flash 32 KiB.
        const TData inEeprom{{"addr_device", 1000}, {"count", 24}, {"fill_char", 0}};
        QVERIFY(dev->checkCmdParam(cmd("eeprom_char_write", inEeprom)));
        const TData pastEeprom{{"addr_device", 1000}, {"count", 25}, {"fill_char", 0}};
        QVERIFY(!dev->checkCmdParam(cmd("eeprom_char_write", pastEeprom)));
        QVERIFY(dev->checkCmdParam(cmd("flash_char_write", pastEeprom)));
        QVERIFY(!dev->checkCmdParam(cmd("erase_blocks")));
    }

    // Type code of AVR_ISP (3), cfg_hw, reset polarity, clock, delay.
    void setDevicePayload() {
        auto dev = device("ATmega2560");
        QVERIFY(dev);
        const QByteArray p = dev->getCmdSetDeviceExec(TData{{"clk", 2}});
        QCOMPARE(TMiscDev::getHexFromByteArray(p).left(8), QString("03000000"));
        QCOMPARE(p.size(), 9);
        TData lowReset = dev->getDevParam();
        lowReset.insert("reset_pol", 1);
        lowReset.insert("delay", 7);
        dev->setDevParam(lowReset);
        const QByteArray q = dev->getCmdSetDeviceExec(TData{{"clk", 2}});
        QCOMPARE(uchar(q.at(3)), uchar(1));
        QCOMPARE(uchar(q.at(8)), uchar(7));
        QCOMPARE(q.mid(4, 4), p.mid(4, 4));
    }
};

QTEST_GUILESS_MAIN(TestAvrDevice)
#include "test_avr_device.moc"
