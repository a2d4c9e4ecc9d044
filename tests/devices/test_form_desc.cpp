#include "app/TLang.h"
#include "misc/TFormDesc.h"

#include <QtTest>

using Kind = TFormDesc::Kind;

class TestFormDesc : public QObject {
    Q_OBJECT

    static QByteArray hex(const char* text) { return QByteArray::fromHex(text); }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void fusesMapToFieldsAndBack() {
        TFormDesc form;
        QVERIFY2(form.parse({"cap|Low fuse", "ckl|80|i|e|0|CKDIV8", "cho|30|-|e|0|SUT", "itm|00|SUT = 00",
                             "itm|10|SUT = 01", "itm|20|SUT = 10", "cap|High fuse", "ckl|20|i|ro|1|SPIEN",
                             "ckl|08|-|e|1|EESAVE|kept"}),
                 qPrintable(form.getErrorText()));
        QCOMPARE(form.getItems().size(), 6);
        QCOMPARE(form.getItems().at(2).options.size(), 3);
        QCOMPARE(form.getItems().at(5).caption, QString("EESAVE|kept"));
        QCOMPARE(form.getByteCount(), 2);

        const QByteArray def = hex("62D9");
        const QVector<QVariant> fields = form.toFields(def);
        QCOMPARE(fields, QVector<QVariant>({QVariant(), true, 2, QVariant(), true, true}));
        QCOMPARE(form.toBytes(fields, def), def);

        // SUT = 11 is not offered: the choice shows none and the bits stay as they were.
        QCOMPARE(form.toFields(hex("3000")).at(2), QVariant(-1));
        QCOMPARE(form.toBytes({QVariant(), false, -1, QVariant(), false, false}, hex("3000")), hex("B000"));
        // A read-only field never changes its bits.
        QCOMPARE(form.toBytes({QVariant(), true, 0, QVariant(), true, false}, hex("FFFF")), hex("4FF7"));
        QCOMPARE(form.toBytes({QVariant(), true, 1}, QByteArray()), hex("1000"));
    }

    void editFieldsCoverSeveralBytes() {
        TFormDesc form;
        QVERIFY(form.parse({"edr|FFFFFFFFFFFFFFFF|ro|-1|Unique ID:", "edr|0F|rw|9|Low nibble:"}));
        QCOMPARE(form.getItems().at(0).kind, Kind::Edit);
        QVERIFY(form.getItems().at(0).readOnly);
        QCOMPARE(form.getByteCount(), 10);
        const QByteArray id = hex("0123456789ABCDEF00F5");
        QCOMPARE(form.toFields(id), QVector<QVariant>({QString("0123456789ABCDEF"), QString("05")}));
        QCOMPARE(form.toBytes({QString("FFFFFFFFFFFFFFFF"), QString("3A")}, id), hex("0123456789ABCDEF00FA"));
    }

    void securityRegisterChecks() {
        TFormDesc form;
        QStringList lines;
        for (int i = 0; i < 3; ++i)
            lines << QString("ckl|%1|-|e|-|Security Register #%2 (0x%3..0x%4)")
                         .arg(1 << i, 2, 16, QChar('0'))
                         .arg(i + 1)
                         .arg(i * 256, 0, 16)
                         .arg(i * 256 + 255, 0, 16);
        QVERIFY2(form.parse(lines), qPrintable(form.getErrorText()));
        QCOMPARE(form.getItems().at(1).caption, QString("Security Register #2 (0x100..0x1ff)"));
        QCOMPARE(form.toFields(hex("05")), QVector<QVariant>({true, false, true}));
        QCOMPARE(form.toBytes({false, true, false}, hex("FF")), hex("FA"));
    }

    // Lock-out values belong to the field before them and are found in place.
    void lockOutValues() {
        TFormDesc form;
        QVERIFY2(form.parse({"cap|High fuse", "ckl|20|i|e|1|Serial programming enabled (SPIEN)",
                             "brk|20|spien|SPIEN", "cho|03|-|e|0|Clock (CKSEL)", "itm|00|Ext. Clock",
                             "itm|02|Int. RC", "brk|00|clock|CKSEL"}),
                 qPrintable(form.getErrorText()));
        QVERIFY(form.lockOuts(hex("0200")).isEmpty());
        const auto hits = form.lockOuts(hex("0020"));
        QCOMPARE(hits.size(), 2);
        QCOMPARE(hits.at(0).item, 1);
        QCOMPARE(hits.at(0).lockOut.kind, QString("spien"));
        QCOMPARE(hits.at(1).lockOut.name, QString("CKSEL"));
        QCOMPARE(hits.at(1).meaning, QString("Ext. Clock"));
        QVERIFY(!form.parse({"brk|00|clock|X"}));
        QVERIFY(!form.parse({"ckl|20|i|e|1|A", "brk|40|spien|A"}));
    }

    void badLinesAreNamed_data() {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("error");
        QTest::newRow("kind") << QStringList{"cap|x", "box|1"}
                              << "Form description line 2: unknown line kind \"box\"";
        QTest::newRow("fields") << QStringList{"ckl|01|-|e|Name"}
                                << "Form description line 1: the line needs 6 fields separated by \"|\"";
        QTest::newRow("mask")
            << QStringList{"ckl|1|-|e|0|A"}
            << "Form description line 1: \"1\" is not a hexadecimal mask of the expected length";
        QTest::newRow("wide mask") << QStringList{"cho|0300|-|e|0|A"}
                                   << "Form description line 1: \"0300\" is not a hexadecimal mask of the "
                                      "expected length";
        QTest::newRow("byte") << QStringList{"ckl|01|-|e|-1|A"}
                              << "Form description line 1: \"-1\" is not a register byte number";
        QTest::newRow("orphan") << QStringList{"itm|01|A"}
                                << "Form description line 1: a choice item without a choice list before it";
        QTest::newRow("access") << QStringList{"edr|FF|w|0|A"}
                                << "Form description line 1: \"w\" is not an access flag (e, rw or ro)";
        QTest::newRow("polarity") << QStringList{"ckl|01|x|e|0|A"}
                                  << "Form description line 1: \"x\" is not a polarity (- or i)";
        QTest::newRow("outside")
            << QStringList{"cho|30|-|e|0|SUT", "itm|40|x"}
            << "Form description line 2: the choice value 40 lies outside the mask of its list";
        QTest::newRow("bits") << QStringList{"ckl|03|-|e|0|LB"}
                              << "Form description line 1: a check box needs a mask of one bit, not 03";
        QTest::newRow("empty choice") << QStringList{"cho|30|-|e|0|SUT", "cap|x"}
                                      << "Form description line 2: the choice list \"SUT\" has no items";
        QTest::newRow("empty at end") << QStringList{"cap|x", "cho|30|-|e|0|SUT"}
                                      << "Form description line 2: the choice list \"SUT\" has no items";
    }

    void badLinesAreNamed() {
        QFETCH(QStringList, lines);
        QFETCH(QString, error);
        TFormDesc form;
        QVERIFY(!form.parse(lines));
        QCOMPARE(form.getErrorText(), error);
        QVERIFY(form.parse({}));
        QCOMPARE(form.getErrorText(), QString());
    }
};

QTEST_GUILESS_MAIN(TestFormDesc)
#include "test_form_desc.moc"
