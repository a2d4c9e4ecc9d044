#include "app/TLang.h"
#include "misc/dev_misc.h"

#include <QtTest>

class TestDevMisc : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Lang.loadData(QString(TARVELIX_DATA_DIR) + "/language/eng.lng"); }

    void chunkLength() {
        QCOMPARE(TMiscDev::getSize(10, 5, 16), 0);
        QCOMPARE(TMiscDev::getSize(0x0E, 0xFF, 16), 2);
        QCOMPARE(TMiscDev::getSize(0x10, 0x13, 16), 4);
        QCOMPARE(TMiscDev::getSize(0x10, 0xFF, 16), 16);
        QCOMPARE(TMiscDev::getSize(5, 5, 16), 1);
        QCOMPARE(TMiscDev::getSize(0x1FFFFFFFF, 0x2000000FF, 256), 1);
        // Chunks of a whole range tile it exactly and end on page boundaries.
        qint64 covered = 0;
        for (qint64 a = 3; a <= 1000; a += TMiscDev::getSize(a, 1000, 64)) {
            const qint64 n = TMiscDev::getSize(a, 1000, 64);
            QVERIFY(n > 0 && (a + n == 1001 || (a + n) % 64 == 0));
            covered += n;
        }
        QCOMPARE(covered, 998);
    }

    void hexTexts() {
        QCOMPARE(TMiscDev::getHexFromInt(5), QString("05"));
        QCOMPARE(TMiscDev::getHexFromInt(0xabc), QString("ABC"));
        QCOMPARE(TMiscDev::getHexFromInt(qint64(0x123456789a)), QString("123456789A"));
        QCOMPARE(TMiscDev::getIntFromHex("1f"), 31);
        QCOMPARE(TMiscDev::getInt64FromHex("123456789A"), qint64(0x123456789a));
        QCOMPARE(TMiscDev::getByteArrayFromHex("A5 5a\n01"), QByteArray("\xA5\x5A\x01"));
        QCOMPARE(TMiscDev::getByteArrayFromHex("\t"), QByteArray());
        QCOMPARE(TMiscDev::getHexFromByteArray(QByteArray("\x0a\xff\x10")), QString("0AFF10"));
        QCOMPARE(TMiscDev::getMsgVerifyError(0x1F, 0xA, 0xFF),
                 QString("Address: 0x1F, Data: 0x0A, Read: 0xFF"));
    }

    void sizeTexts() {
        const QList<QPair<qint64, QString>> cases = {{196608, "192 Kbyte"},
                                                     {393216, "384 Kbyte"},
                                                     {786432, "768 Kbyte"},
                                                     {1024, "1 Kbyte"},
                                                     {512 * 1024, "512 Kbyte"},
                                                     {qint64(1) << 20, "1 Mbyte"},
                                                     {qint64(1) << 39, "512 Gbyte"},
                                                     {qint64(1) << 49, "512 Tbyte"},
                                                     {qint64(1) << 50, "1125899906842624 byte"},
                                                     {3 << 20, "3145728 byte"},
                                                     {3072, "3072 byte"},
                                                     {512, "512 byte"}};
        for (const auto& c : cases)
            QCOMPARE(TMiscDev::getViewDeviceSize(c.first), c.second);
    }

    void frequencyTexts() {
        QCOMPARE(TMiscDev::getViewFreqValue(999), QString("999 Hz"));
        QCOMPARE(TMiscDev::getViewFreqValue(1500), QString("1.5 KHz"));
        QCOMPARE(TMiscDev::getViewFreqValue(1234567), QString("1.234567 MHz"));
        QCOMPARE(TMiscDev::getViewFreqValue(999999999), QString("999.999999 MHz"));
        QCOMPARE(TMiscDev::getViewFreqValue(2000000000), QString("2000000000 "));
        QCOMPARE(TMiscDev::getViewFreqAndDutyCycleValue(8000000, 50), QString("8 MHz, 50 %"));
    }
};

QTEST_GUILESS_MAIN(TestDevMisc)
#include "test_dev_misc.moc"
