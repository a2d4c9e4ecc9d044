#include "app/TLang.h"
#include "ui/TFormCmd.h"

#include <QLineEdit>
#include <QtTest>

// The command form itself: values keep the type the record held, hex is read with or without "0x", and
// the first invalid field names itself.
class TestFormCmd : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void valuesKeepTheirType() {
        TFormCmd form({{"n", "12"}, {"m", 7}, {"other", "kept"}});
        QLineEdit* n = form.addInt("n", "N:", 0, 100);
        QLineEdit* m = form.addHex("m", "M:", 0, 255);
        QCOMPARE(form.getParam(), TData({{"n", "12"}, {"m", 7}, {"other", "kept"}}));
        n->setText("15");
        m->setText("0x1f");
        const TData p = form.getParam();
        QCOMPARE(p.value("n"), QVariant(QString("15")));
        QCOMPARE(p.value("m"), QVariant(31));
        m->setText("A0");
        QCOMPARE(form.getParam().value("m"), QVariant(160));
        QCOMPARE(form.getError(), QString());
    }

    void firstInvalidFieldIsNamed() {
        TFormCmd form({{"a", 1}, {"b", 2}});
        QLineEdit* a = form.addInt("a", "A:", 0, 10);
        QLineEdit* b = form.addHex("b", "B:", 0, 255);
        b->setText("zz");
        QCOMPARE(form.getError(), QString("B: must be a hexadecimal number from 0x00 to 0xFF"));
        a->setText("11");
        QCOMPARE(form.getError(), QString("A: must be a number from 0 to 10"));
        a->setText("10");
        b->setText("100");
        QCOMPARE(form.getError(), QString("B: must be a hexadecimal number from 0x00 to 0xFF"));
    }
};

QTEST_MAIN(TestFormCmd)
#include "test_form_cmd.moc"
