#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TSignature.h"
#include "support/TestFiles.h"

#include <QTemporaryDir>
#include <QtTest>

using Pairs = TPairStringList;

class TestSignature : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    void put(const QString& name, const QByteArray& text) { TestFiles::writeFile(dir.filePath(name), text); }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.pathDevices = dir.path();
        put("auto.lst",
            "# families\n Dev25=spi/auto.dev|spi/detect.lst \nOne=only.dev\nThree=a|b|c\n"
            "Trail=a.dev|\nEmpty=|a|b||\nDev25=other.dev|other.lst\nDevAVR8_SPI=avr.dev|avr.lst\n");
        QVERIFY(QDir(dir.path()).mkdir("spi"));
        put("spi/detect.lst", "EF4018=W25Q128\n# x\n\nEF4018=W25Q128B\n 1F=A=B \nnoequals\n");
        put("spi/signature.lst", "EF4018=W25Q128, W25Q128B\nEF4018=second\nef4018=lower\n");
    }

    void autoListKeepsRecordsOfTwoParts() {
        const QVector<TFamilyRecord> records = TSignature::getAutoData();
        QCOMPARE(records.size(), 4);
        QCOMPARE(records.at(0).family, QString("Dev25"));
        QCOMPARE(records.at(0).devFile, QString("spi/auto.dev"));
        QCOMPARE(records.at(0).signFile, QString("spi/detect.lst"));
        QCOMPARE(records.at(1).family, QString("Empty"));
        QCOMPARE(records.at(1).devFile, QString("a"));
        QCOMPARE(TSignature::getAutoFamilyList(), QStringList({"Dev25", "Empty", "Dev25", "DevAVR8_SPI"}));
        QCOMPARE(TSignature::getAutoDevFile("Dev25"), QString("spi/auto.dev"));
        QCOMPARE(TSignature::getAutoSignFile("DevAVR8_SPI"), QString("avr.lst"));
        QCOMPARE(TSignature::getAutoDevFile("One"), QString());
        QCOMPARE(TSignature::getAutoSignFile("dev25"), QString());
    }

    void signatureListsKeepDuplicatesInOrder() {
        const Pairs expected{{"EF4018", "W25Q128"}, {"EF4018", "W25Q128B"}, {"1F", "A=B"}};
        QCOMPARE(TSignature::getSignatureListFromFile(dir.filePath("spi/detect.lst")), expected);
        QCOMPARE(TSignature::getSignatureListFromName("Dev25"), expected);
        QVERIFY(TSignature::getSignatureListFromName("Nope").isEmpty());
        QVERIFY(TSignature::getSignatureListFromFile(dir.filePath("missing.lst")).isEmpty());
    }

    void signatureLookupTakesTheFirstExactLine() {
        const QString spi = dir.filePath("spi");
        QCOMPARE(TSignature::getSignatureDeviceName(spi, "EF4018"), QString("W25Q128, W25Q128B"));
        QCOMPARE(TSignature::getSignatureDeviceName(spi, "ef4018"), QString("lower"));
        QCOMPARE(TSignature::getSignatureDeviceName(spi, "EF40"), QString("Unknown device"));
        QCOMPARE(TSignature::getSignatureDeviceName(dir.filePath("none"), "EF4018"), Lang.get(400));
    }

    void routeTableSkipsEmptyAndBarePartsAndTrims() {
        QCOMPARE(TSignature::getAutoRouteTable(" W25Q128 = 3 ||AT=|x|=5| ATmega8=-1|"),
                 Pairs({{"W25Q128 ", " 3"}, {"AT", ""}, {"", "5"}, {"ATmega8", "-1"}}));
        QVERIFY(TSignature::getAutoRouteTable("|||").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSignature)
#include "test_signature.moc"
